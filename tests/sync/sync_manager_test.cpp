#include "sync/sync_manager.h"

#include <gmock/gmock.h>

#include <QCoroFuture>
#include <filesystem>

#include "backend/next_emission.h"
#include "simulation.h"

namespace thalvorn {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

QCoro::Task<void> untilIdle(CloudSession* cloud) {
  SyncManager& sync = cloud->sync();
  while (sync.isSyncing()) co_await nextEmission(&sync, &SyncManager::stateChanged, std::chrono::seconds(60));
}

/// One computer; the backend is started by the first test that signs in and shared by the others.
class SyncRuns : public testing::Test {
 protected:
  static BackendProcess& backend() {
    static BackendProcess process({QStringLiteral("--max-rows"), QStringLiteral("7")});
    return process;
  }
  void open(const BackendConfig& config) {
    cache = LocalCache::open(std::filesystem::path(folder.path().toStdString()) / "store.db").value();
    model = std::make_unique<AppViewModel>(*cache, clock);
    cloud = std::make_unique<CloudSession>(*model, config, clock, timing,
                                           SyncManager::Options{.deletionDelay = std::chrono::seconds(0)});
  }
  void signIn() {
    open(backend().config());
    ASSERT_TRUE(finished(cloud->signIn(backend().email(0), backend().password(0))));
    finished(untilIdle(cloud.get()));
  }
  std::vector<std::string> said() const {
    std::vector<std::string> lines;
    for (const SyncLog::Line& line : cloud->log().lines()) lines.push_back(line.text.toStdString());
    return lines;
  }

  QTemporaryDir folder;
  SystemClock clock;
  HastyTiming timing;
  std::unique_ptr<LocalCache> cache;
  std::unique_ptr<AppViewModel> model;
  std::unique_ptr<CloudSession> cloud;
};

TEST_F(SyncRuns, AreSkippedWithTheirReason) {
  open(BackendConfig::from(QStringLiteral("http://127.0.0.1:9"), QStringLiteral("sb_publishable_none")).value());
  model->reloadNow(Uuid::random().toString());
  EXPECT_EQ(finished(cloud->sync().syncAll()), SyncOutcome::skipped);
  EXPECT_EQ(said().back(), "❌ syncAll skipped — not authenticated");
  model->reloadNow("demo");
  EXPECT_EQ(finished(cloud->sync().syncAll()), SyncOutcome::skipped);
  EXPECT_EQ(said().back(), "🎭 syncAll skipped — demo mode (data is local-only)");
}

TEST_F(SyncRuns, GoOneAtATimeUntilOneIsStuck) {
  signIn();
  auto running = cloud->sync().syncAll();
  EXPECT_EQ(finished(cloud->sync().syncAll()), SyncOutcome::skipped);
  EXPECT_THAT(said(), Contains("⏭ syncAll skipped — already syncing"));
  finished(timing.wait(std::chrono::minutes(6)));
  EXPECT_EQ(finished(cloud->sync().syncAll()), SyncOutcome::complete);
  EXPECT_THAT(said(), Contains("⚠️ isSyncing stuck for >5 min — force resetting"));
  EXPECT_EQ(finished(std::move(running)), SyncOutcome::incomplete) << "the run that was taken over wrote nothing more";
}

TEST_F(SyncRuns, PassOverWhatCannotBeReadAndHoldBackNothingElse) {
  signIn();
  const Vessel vessel{.id = Uuid::random(), .name = "M/Y Meridian"};
  model->add(vessel);
  VoyagePlan plan;
  plan.id = Uuid::random();
  plan.vesselID = vessel.id;
  plan.planName = "Good";
  model->add(plan);
  // The server refuses what hangs on a vessel that it does not have, by name, and takes the others.
  const ServiceLog refused{.id = Uuid::random(), .vesselID = Uuid::random(), .taskTitle = "Adrift"};
  model->add(refused);
  const ServiceLog fine{.id = Uuid::random(), .vesselID = vessel.id, .taskTitle = "Fine"};
  model->add(fine);
  finished(cloud->sync().syncAll());
  EXPECT_EQ(model->dirtyCount(), 1);
  EXPECT_THAT(cloud->sync().problems(), Contains(testing::Field(&SyncProblem::record, "Adrift")));

  ASSERT_TRUE(backend().execute(
      QStringLiteral("insert into public.voyage_plans(id, user_id, account_id, vessel_id, plan_name, date_created, "
                     "plan_json) values (gen_random_uuid(), '%1', '%2', '%3', 'Broken', now(), 'no JSON')")
          .arg(cloud->userID(), QString::fromStdString(model->accountID()),
               QString::fromStdString(vessel.id.toString()))));
  finished(cloud->sync().syncAll());
  EXPECT_THAT(said(), Contains("❌ VoyagePlan JSON decode FAILED for 'Broken'"));
  EXPECT_THAT(said(), Contains("   Raw payload (first 300 chars): no JSON"));
  EXPECT_TRUE(model->voyagePlans().find(plan.id)) << "the others still load";

  const std::string token = cache->preference("sb_access_token").value_or("");
  ASSERT_FALSE(token.empty());
  for (const std::string& line : said()) EXPECT_THAT(line, Not(HasSubstr(token)));
}

}  // namespace
}  // namespace thalvorn
