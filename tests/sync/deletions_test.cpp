#include <gmock/gmock.h>

#include <QCoroFuture>

#include "simulation.h"
#include "sync/conflicts.h"

namespace thalvorn {
namespace {

QCoro::Task<bool> stored(Saving saving) { co_return (co_await saving).has_value(); }

/// Two computers of one account: the captain's, and that of an engineer who was invited.
class Deletions : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(backend.isRunning());
    ASSERT_TRUE(captain.signUp());
    ASSERT_TRUE(backend.setPlan(captain.model->accountID(), "fleet"));
    ASSERT_TRUE(finished(captain.cloud->refreshAccount()));
    ASSERT_TRUE(
        finished(captain.cloud->inviteTeamMember(engineer.email, QStringLiteral("Engineer"), TeamRole::editor)));
    ASSERT_TRUE(engineer.signUp());
    ASSERT_TRUE(finished(stored(captain.model->add(vessel))));
    ASSERT_TRUE(finished(stored(captain.model->add(task))));
    exchange(captain);
    exchange(engineer);
    ASSERT_TRUE(engineer.model->tasks().find(task.id));
  }
  static void exchange(SimulatedClient& client) {
    EXPECT_EQ(finished(syncWhenFree(client.cloud.get())), SyncOutcome::complete);
  }

  const BackendProcess backend{QStringList{QStringLiteral("--mail-interval"), QStringLiteral("0")}};
  SimulatedClient captain{backend, QStringLiteral("captain@example.com"), std::chrono::seconds(0), 1};
  SimulatedClient engineer{backend, QStringLiteral("engineer@example.com"), std::chrono::seconds(0), 2};
  const Vessel vessel{.id = Uuid::random(), .name = "M/Y Meridian"};
  const MaintenanceTask task{.id = Uuid::random(), .vesselID = vessel.id, .title = "Coolant check"};
};

TEST_F(Deletions, OfAnotherPersonCanBeTakenBackFromTheHistory) {
  MaintenanceTask changed = task;
  changed.notes = "Hose is soft";
  ASSERT_TRUE(finished(stored(engineer.model->update(changed))));
  ASSERT_TRUE(finished(stored(captain.model->remove<MaintenanceTask>(task.id))));
  exchange(captain);
  exchange(engineer);
  ASSERT_FALSE(engineer.model->tasks().find(task.id));
  ASSERT_EQ(engineer.model->conflicts().size(), 1U);

  auto edit = takeBack(*engineer.model, engineer.model->conflicts().records().front());
  ASSERT_TRUE(edit);
  ASSERT_TRUE(finished(stored(engineer.model->apply(*std::move(edit)))));
  exchange(engineer);
  // The intention outlives the program, and so does the record.
  engineer.kill();
  engineer.start();
  exchange(engineer);
  exchange(captain);
  ASSERT_TRUE(captain.model->tasks().find(task.id));
  EXPECT_EQ(captain.model->tasks().find(task.id)->notes, "Hose is soft");
}

TEST_F(Deletions, HoldAgainstACopyThatNeverHeardOfItsOwnUpload) {
  // The upload arrived and its reply was lost; on another computer of the same user the record was deleted since.
  MaintenanceTask unheard = task;
  unheard.id = Uuid::random();
  ASSERT_TRUE(finished(stored(captain.model->add(unheard))));
  ASSERT_TRUE(
      backend.execute(QStringLiteral("insert into public.deleted_records(account_id, table_name, record_id, deleted_by)"
                                     " values ('%1', 'maintenance_tasks', '%2', '%3')")
                          .arg(QString::fromStdString(captain.model->accountID()),
                               QString::fromStdString(unheard.id.toString()), captain.cloud->userID())));
  exchange(captain);
  exchange(captain);
  EXPECT_FALSE(captain.model->tasks().find(unheard.id));
  EXPECT_EQ(captain.model->conflicts().size(), 1U) << "what was in it stays to be seen";
}

TEST_F(Deletions, ThatARoleNoLongerAllowsAreToldAndKept) {
  ASSERT_TRUE(finished(stored(engineer.model->remove<MaintenanceTask>(task.id))));
  ASSERT_TRUE(backend.execute(QStringLiteral("update public.account_members set role = 'viewOnly' where user_id = '%1'")
                                  .arg(engineer.cloud->userID())));
  EXPECT_EQ(finished(syncWhenFree(engineer.cloud.get())), SyncOutcome::incomplete);
  EXPECT_EQ(engineer.cloud->sync().problems().size(), 1U);
  EXPECT_EQ(engineer.model->dirtyCount(), 1);
  exchange(captain);
  EXPECT_TRUE(captain.model->tasks().find(task.id));
}

TEST_F(Deletions, GoInTheSameRunOnceABusyServerIsReady) {
  ASSERT_TRUE(finished(stored(captain.model->remove<MaintenanceTask>(task.id))));
  captain.proxy.deferNext("DELETE");
  exchange(captain);
  exchange(engineer);
  EXPECT_FALSE(engineer.model->tasks().find(task.id));
}

}  // namespace
}  // namespace thalvorn
