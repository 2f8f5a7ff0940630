#include <gmock/gmock.h>

#include "computer.h"
#include "sync/conflicts.h"

namespace thalvorn {
namespace {

using testing::Contains;
using testing::HasSubstr;

/// A captain with a vessel, and a mate who was invited to her.
class Crew : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(captain.signUp("captain"));
    account = captain.model->accountID();
    ASSERT_TRUE(sharedBackend().setPlan(account, "fleet"));
    ASSERT_TRUE(finished(captain.cloud->refreshAccount()));
    ASSERT_TRUE(captain.add(vessel));
    ASSERT_TRUE(captain.add(bunkering));
    ASSERT_EQ(captain.sync(), SyncOutcome::complete) << captain.problems();
    mate.email = QStringLiteral("mate-%1@example.com").arg(captain.cloud->userID());
    ASSERT_TRUE(invite());
    ASSERT_TRUE(finished(mate.cloud->signUp(mate.email, Computer::kPassword)));
    ASSERT_EQ(mate.sync(), SyncOutcome::complete) << mate.problems();
    ASSERT_EQ(mate.model->accountID(), account);
    ASSERT_TRUE(mate.model->vessels().find(vessel.id));
  }
  bool invite() {
    return finished(captain.cloud->inviteTeamMember(mate.email, QStringLiteral("Mate"), TeamRole::editor)).has_value();
  }
  AccountMember membership() {
    for (const AccountMember& member : captain.model->accountMembers().records())
      if (member.invitedEmail && QString::fromStdString(*member.invitedEmail) == mate.email) return member;
    return {};
  }
  /// Whether the server has a vessel that is named after the captain's in any other account.
  bool isAstray() {
    return !sharedBackend().execute(
        QStringLiteral("do $$ begin if exists (select from public.vessels where name like '%%1%' and account_id <> "
                       "'%2') then raise 'astray'; end if; end $$")
            .arg(QString::fromStdString(vessel.name), QString::fromStdString(account)));
  }

  Computer captain;
  Computer mate;
  std::string account;
  const Vessel vessel{.id = Uuid::random(), .name = "M/Y " + Uuid::random().toString()};
  const BunkeringRecord bunkering = [this] {
    BunkeringRecord record;
    record.id = Uuid::random();
    record.vesselID = vessel.id;
    record.date = *parseTimestamp("2026-11-18T09:00:00Z");
    return record;
  }();
};

TEST_F(Crew, WhoWasRemovedKeepsTheFleetToReadAndSendsItNowhereElse) {
  const std::string user = mate.cloud->userID().toStdString();
  Vessel tender{.id = Uuid::random(), .name = "Tender of " + vessel.name};
  ASSERT_TRUE(finished(captain.cloud->removeMember(membership().id)));
  ASSERT_TRUE(mate.add(tender)) << "entered before this computer hears of it";

  std::vector<QString> told;
  QObject::connect(mate.cloud.get(), &CloudSession::fleetSetAside, mate.cloud.get(),
                   [&](const QString& prefix) { told.push_back(prefix); });
  mate.sync();
  EXPECT_EQ(mate.sync(), SyncOutcome::complete) << mate.problems();
  const std::string aside = AppViewModel::setAsidePrefix(user, account);
  EXPECT_THAT(told, testing::ElementsAre(QString::fromStdString(aside)));
  EXPECT_NE(mate.model->accountID(), account);
  EXPECT_FALSE(mate.model->accountID().empty()) << "an account of his own";
  EXPECT_EQ(mate.model->vessels().size(), 0);
  EXPECT_FALSE(isAstray());
  const Vessel own{.id = Uuid::random(), .name = "Own"};
  ASSERT_TRUE(mate.add(own));
  EXPECT_EQ(mate.sync(), SyncOutcome::complete) << mate.problems();

  mate.model->reloadNow(aside);
  EXPECT_TRUE(mate.model->vessels().find(vessel.id));
  EXPECT_TRUE(mate.model->vessels().find(tender.id));
  EXPECT_FALSE(mate.model->rights(AppTabPermissionKey::tasks).write);
  EXPECT_FALSE(mate.add(Vessel{.id = Uuid::random(), .name = "Not here"}));
  EXPECT_EQ(mate.sync(), SyncOutcome::skipped);
  mate.model->reloadNow(user);

  // Taken in again, he goes on where he was, and what waited is sent.
  ASSERT_TRUE(
      sharedBackend().execute(QStringLiteral("set session_replication_role = replica; update public.account_members "
                                             "set is_active = false where user_id = '%1'")
                                  .arg(mate.cloud->userID())));
  ASSERT_TRUE(invite());
  mate.sync();
  EXPECT_EQ(mate.sync(), SyncOutcome::complete) << mate.problems();
  ASSERT_EQ(mate.model->accountID(), account);
  EXPECT_TRUE(mate.model->vessels().find(tender.id));
  EXPECT_FALSE(mate.model->vessels().find(own.id));
  EXPECT_EQ(mate.model->dirtyCount(), 0);
  ASSERT_EQ(captain.sync(), SyncOutcome::complete) << captain.problems();
  EXPECT_TRUE(captain.model->vessels().find(tender.id));
  EXPECT_FALSE(captain.model->vessels().find(own.id));
}

TEST_F(Crew, ARecordWithoutANameIsToldByItsDay) {
  BunkeringRecord adrift = bunkering;
  adrift.id = Uuid::random();
  adrift.vesselID = Uuid::random();  // the server has no such vessel
  ASSERT_TRUE(mate.add(adrift));
  EXPECT_EQ(mate.sync(), SyncOutcome::incomplete);
  EXPECT_THAT(mate.cloud->sync().problems(), Contains(testing::Field(&SyncProblem::record, "18 Nov 2026")));

  ConflictNote note;
  note.tableName = RecordKind<BunkeringRecord>::facts.table;
  note.fields = {"date"};
  note.other = toJson(bunkering, JsonFields::full);
  EXPECT_EQ(nameOf(*mate.model, note), "18 Nov 2026");
  const auto lines = conflictLines(*mate.model, note);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_THAT(lines[0].other, HasSubstr("18 Nov 2026")) << "as people write dates";
}

}  // namespace
}  // namespace thalvorn
