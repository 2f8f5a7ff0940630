#include "sync/sync_manager.h"

#include <gmock/gmock.h>

#include "backend/row_kind.h"
#include "computer.h"
#include "store/full_disk.h"
#include "store/preferences.h"

namespace thalvorn {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// The store has saved something, or found that it cannot.
QCoro::Task<void> nextChange(AppViewModel* model) {
  co_await nextEmission(model, &AppViewModel::unsavedChanged, std::chrono::seconds(60));
}

constexpr int kCutAfter = 4;

/// Takes a page; after `kCutAfter` the run is over.
TakenPage countFresh(const QByteArray& json, UuidSet& seen, int& pages, RunToken& token) {
  const auto rows = listFromJson<SBVesselRow>(json.toStdString(), JsonFields::full);
  TakenPage taken;
  for (const SBVesselRow& row : rows.value().records) taken.fresh += seen.insert(row.id).second ? 1 : 0;
  if (++pages == kCutAfter) token.end();
  return taken;
}

TEST(SyncRuns, AreSkippedWithTheirReason) {
  Computer here(
      BackendConfig::from(QStringLiteral("http://127.0.0.1:9"), QStringLiteral("sb_publishable_none")).value());
  here.model->reloadNow(Uuid::random().toString());
  EXPECT_EQ(finished(here.cloud->sync().syncAll()), SyncOutcome::skipped);
  EXPECT_EQ(here.said().back(), "❌ syncAll skipped — not authenticated");
  here.model->reloadNow("demo");
  EXPECT_EQ(finished(here.cloud->sync().syncAll()), SyncOutcome::skipped);
  EXPECT_EQ(here.said().back(), "🎭 syncAll skipped — demo mode (data is local-only)");
}

TEST(SyncRuns, GoOneAtATimeUntilOneIsStuck) {
  Computer here;
  ASSERT_TRUE(here.signIn());
  auto running = here.cloud->sync().syncAll();
  EXPECT_EQ(finished(here.cloud->sync().syncAll()), SyncOutcome::skipped);
  EXPECT_THAT(here.said(), Contains("⏭ syncAll skipped — already syncing"));
  finished(here.timing.wait(std::chrono::minutes(6)));
  EXPECT_EQ(finished(here.cloud->sync().syncAll()), SyncOutcome::complete);
  EXPECT_THAT(here.said(), Contains("⚠️ isSyncing stuck for >5 min — force resetting"));
  EXPECT_EQ(finished(std::move(running)), SyncOutcome::incomplete) << "the run that was taken over wrote nothing more";
}

TEST(SyncRuns, FetchOnceAnHourWhatIsPaidByVolumeAndSendAtOnce) {
  Computer here;
  ASSERT_TRUE(here.signUp("captain"));
  SyncManager& sync = here.cloud->sync();
  const auto fullRuns = [&] {
    finished(untilIdle(here.cloud.get()));
    return std::ranges::count(here.said(), "☁️ syncAll starting for uid: " + here.cloud->userID().toStdString());
  };
  const auto atFirst = fullRuns();
  sync.periodicSync();
  EXPECT_EQ(fullRuns(), atFirst + 1) << "every turn, as long as nobody calls the connection metered";
  sync.metered().setDesktopSays(true);
  EXPECT_TRUE(sync.metered().isMetered());
  ASSERT_TRUE(here.add(Vessel{.id = Uuid::random(), .name = "M/Y Meridian"}));
  sync.periodicSync();
  EXPECT_EQ(fullRuns(), atFirst + 1);
  EXPECT_EQ(here.model->dirtyCount(), 0) << "what was changed here went up all the same";
  finished(here.timing.wait(std::chrono::minutes(59)));
  sync.periodicSync();
  EXPECT_EQ(fullRuns(), atFirst + 1);
  finished(here.timing.wait(std::chrono::minutes(1)));
  sync.periodicSync();
  EXPECT_EQ(fullRuns(), atFirst + 2);
  sync.fullSync();
  EXPECT_EQ(fullRuns(), atFirst + 3) << "asked for by a person, at any time";

  sync.metered().setChoice(MeteredChoice::off);
  sync.periodicSync();
  EXPECT_EQ(fullRuns(), atFirst + 4) << "the person knows better than the desktop";
  sync.metered().setChoice(MeteredChoice::on);
  sync.metered().setDesktopSays(false);
  EXPECT_EQ(MeteredConnection(*here.cache).choice(), MeteredChoice::on) << "kept for the next start";
  sync.periodicSync();
  EXPECT_EQ(fullRuns(), atFirst + 4);
}

TEST(SyncRuns, ClearTheDemoFlagThatASignInHasLeft) {
  Computer here;
  ASSERT_TRUE(here.signUp("captain"));
  Preferences(*here.cache).setText(preference_keys::lastFleet, "demo");
  EXPECT_EQ(here.sync(), SyncOutcome::complete) << "the flag holds up nothing";
  EXPECT_THAT(here.said(), Contains("⚠️ stale demo-mode flag found on an authenticated session — clearing it"));
  EXPECT_FALSE(here.cache->preference(preference_keys::lastFleet));
}

TEST(SyncRuns, AskAgainForMembersThatCouldNotBeSaved) {
  Computer captain;
  ASSERT_TRUE(captain.signUp("captain"));
  ASSERT_TRUE(sharedBackend().setPlan(captain.model->accountID(), "fleet"));
  ASSERT_EQ(captain.sync(), SyncOutcome::complete);
  Computer second;
  ASSERT_TRUE(second.signIn(captain.email, Computer::kPassword));
  ASSERT_TRUE(finished(
      captain.cloud->inviteTeamMember(QStringLiteral("mate@example.com"), QStringLiteral("Mate"), TeamRole::editor)));
  {
    const FullDisk full(0);
    second.model->add(Vessel{.id = Uuid::random(), .name = "M/Y Meridian"});
    finished(nextChange(second.model.get()));
    ASSERT_FALSE(second.model->saveProblem().empty());
    EXPECT_EQ(second.sync(), SyncOutcome::incomplete);
    EXPECT_EQ(second.model->accountMembers().size(), 1) << "nothing is taken in that might be lost";
  }
  second.model->retrySaving();
  while (second.model->unsavedCount() > 0) finished(nextChange(second.model.get()));
  ASSERT_EQ(second.sync(), SyncOutcome::complete);
  second.model->reloadNow(second.model->prefix());
  EXPECT_EQ(second.model->accountMembers().size(), 2);
}

TEST(SyncRuns, GoOnWithALongTableWhereTheyWereCutOff) {
  Computer first;
  ASSERT_TRUE(first.signUp("captain"));
  constexpr int kVessels = 40;  // six pages
  for (int i = 0; i < kVessels; ++i)
    first.model->add(Vessel{.id = Uuid::random(), .name = "Tender " + std::to_string(i)});
  ASSERT_EQ(first.sync(), SyncOutcome::complete) << first.problems();

  const TableQuery vessels = TableQuery("vessels").eq("account_id", first.model->accountID());
  const auto partial = std::make_shared<PartialDownload>();
  RunToken token;
  int pages = 0;
  const auto read = [&] {
    return finished(readTable(
        {.client = &first.cloud->client(), .query = vessels, .order = "name.asc", .token = token, .partial = partial},
        readAtOnce([&](const QByteArray& rows) { return countFresh(rows, *partial->seen, pages, token); })));
  };
  const auto cut = read();
  ASSERT_TRUE(cut);
  EXPECT_FALSE(cut->complete);
  const int before = std::exchange(pages, 100);
  token = RunToken();
  const auto whole = read();
  ASSERT_TRUE(whole);
  EXPECT_TRUE(whole->complete);
  EXPECT_EQ(whole->rows, kVessels);
  EXPECT_EQ(before, kCutAfter);
  EXPECT_LE(pages - 100, 6 - (kCutAfter - 2)) << "the pages taken before the cut are not asked for again";
}

TEST(SyncRuns, SendTheRestOfARecordWithADocumentThatCannotBeRead) {
  Computer here;
  ASSERT_TRUE(here.signUp("captain"));
  ASSERT_TRUE(here.add(Vessel{.id = Uuid::random(), .name = "M/Y Meridian"}));
  ShipContact contact;
  contact.id = Uuid::random();
  contact.vesselID = here.model->vessels().records().front().id;
  contact.company = "Hullworks";
  ASSERT_TRUE(here.add(contact));
  ASSERT_EQ(here.sync(), SyncOutcome::complete) << here.problems();
  const QString where = QStringLiteral(" where id = '%1'").arg(QString::fromStdString(contact.id.toString()));
  ASSERT_TRUE(sharedBackend().execute(
      QStringLiteral("update public.ship_contacts set compliance_documents_json = '{broken'") + where));
  contact.company = "Hullworks & Sons";
  ASSERT_TRUE(here.update(contact));
  EXPECT_EQ(here.sync(), SyncOutcome::complete) << here.problems();
  EXPECT_TRUE(sharedBackend().execute(
      QStringLiteral("select 1 / count(*) from public.ship_contacts") + where +
      QStringLiteral(" and company = 'Hullworks & Sons' and compliance_documents_json = '{broken'")));

  // What this program would put over the document stays here.
  contact.complianceDocuments.emplace_back().id = Uuid::random();
  ASSERT_TRUE(here.update(contact));
  EXPECT_EQ(here.sync(), SyncOutcome::incomplete);
  EXPECT_THAT(here.problems(), HasSubstr("update this program"));
}

TEST(SyncRuns, SendTheOtherPartsOfAYardPeriodWhenOneIsRefused) {
  Computer here;
  ASSERT_TRUE(here.signUp("captain"));
  const Vessel vessel{.id = Uuid::random(), .name = "M/Y Meridian"};
  ASSERT_TRUE(here.add(vessel));
  YardPeriod period{.id = Uuid::random(), .vesselID = vessel.id};
  period.workOrders.push_back({.id = Uuid::random(), .vesselID = Uuid::random(), .title = "Adrift"});
  period.workOrders.push_back({.id = Uuid::random(), .vesselID = vessel.id, .title = "Antifoul"});
  for (WorkOrder& order : period.workOrders) order.yardPeriodID = period.id;
  ASSERT_TRUE(here.add(period));
  EXPECT_EQ(here.sync(), SyncOutcome::incomplete);
  EXPECT_THAT(here.cloud->sync().problems(), ElementsAre(testing::Field(&SyncProblem::record, "Adrift")));
  EXPECT_TRUE(sharedBackend().execute(
      QStringLiteral("select 1 / count(*) from public.work_orders where title = 'Antifoul' and yard_period_id = '%1'")
          .arg(QString::fromStdString(period.id.toString()))));
}

TEST(SyncRuns, GoOnPastATableWhoseRepliesAreLost) {
  SimulatedClient here(sharedBackend(), QStringLiteral("alone@example.com"), std::chrono::seconds(0), 1);
  ASSERT_TRUE(here.signUp());
  here.proxy.lose("/maintenance_tasks");
  EXPECT_EQ(finished(syncWhenFree(here.cloud.get())), SyncOutcome::incomplete);
  EXPECT_THAT(here.cloud->sync().problems(), ElementsAre(testing::Field(&SyncProblem::table, "maintenance_tasks")));
  EXPECT_EQ(here.cloud->log().lines().back().text, QStringLiteral("✅ Sync complete"));
}

TEST(SyncRuns, CountNoPageThatTheDiskDidNotTake) {
  Computer first;
  ASSERT_TRUE(first.signUp("captain"));
  constexpr int kVessels = 40;
  for (int i = 0; i < kVessels; ++i)
    first.model->add(Vessel{.id = Uuid::random(), .name = "Tender " + std::to_string(i)});
  ASSERT_EQ(first.sync(), SyncOutcome::complete) << first.problems();

  Computer second;
  std::optional<FullDisk> full;
  int inserted = 0;
  QObject::connect(&second.model->vessels().events(), &CollectionEvents::inserted, second.model.get(), [&] {
    if (++inserted == 15) full.emplace(0);
  });
  ASSERT_TRUE(second.signIn(first.email, Computer::kPassword));
  EXPECT_THAT(second.cloud->sync().problems(), Contains(testing::Field(&SyncProblem::table, "vessels")));
  ASSERT_TRUE(full);
  full.reset();
  second.model->retrySaving();
  while (second.model->unsavedCount() > 0) finished(nextChange(second.model.get()));
  ASSERT_EQ(second.sync(), SyncOutcome::complete) << second.problems();
  EXPECT_EQ(inserted, kVessels);
  second.model->reloadNow(second.model->prefix());
  EXPECT_EQ(second.model->vessels().size(), kVessels);
}

TEST(SyncRuns, ReadLongPagesAsideAndTakeThemInOrder) {
  // Pages long enough to be read on a thread of their own, some of which change what is here already.
  Computer first;
  ASSERT_TRUE(first.signUp("captain"));
  const Vessel vessel{.id = Uuid::random(), .name = "M/Y Meridian"};
  first.model->add(vessel);
  std::vector<MaintenanceTask> tasks;
  for (int i = 0; i < 30; ++i)
    tasks.push_back(
        {.id = Uuid::random(), .vesselID = vessel.id, .notes = std::string(8'000, static_cast<char>('a' + i % 26))});
  for (const MaintenanceTask& task : tasks) first.model->add(task);
  ASSERT_EQ(first.sync(), SyncOutcome::complete) << first.problems();
  Computer second;
  ASSERT_TRUE(second.signIn(first.email, Computer::kPassword));
  EXPECT_EQ(second.model->tasks().size(), tasks.size());

  MaintenanceTask mine = *second.model->tasks().find(tasks[20].id);
  mine.title = "Mine";
  for (MaintenanceTask& task : tasks) {
    task.priority = TaskPriority::high;
    first.model->update(task);
  }
  ASSERT_EQ(first.sync(), SyncOutcome::complete) << first.problems();
  auto run = second.cloud->sync().syncAll();
  second.model->update(mine);
  EXPECT_EQ(finished(std::move(run)), SyncOutcome::complete);
  ASSERT_EQ(second.sync(), SyncOutcome::complete) << second.problems();
  for (const MaintenanceTask& task : tasks) {
    const MaintenanceTask* here = second.model->tasks().find(task.id);
    ASSERT_TRUE(here);
    EXPECT_EQ(here->notes, task.notes);
    EXPECT_EQ(here->priority, TaskPriority::high);
    EXPECT_EQ(here->title, task.id == mine.id ? "Mine" : "") << "entered here while the pages came";
  }
}

TEST(SyncRuns, PassOverWhatCannotBeReadAndHoldBackNothingElse) {
  Computer here;
  ASSERT_TRUE(here.signIn());
  const Vessel vessel{.id = Uuid::random(), .name = "M/Y Meridian"};
  here.model->add(vessel);
  VoyagePlan plan;
  plan.id = Uuid::random();
  plan.vesselID = vessel.id;
  plan.planName = "Good";
  here.model->add(plan);
  // The server refuses what hangs on a vessel that it does not have, by name, and takes the others.
  const ServiceLog refused{.id = Uuid::random(), .vesselID = Uuid::random(), .taskTitle = "Adrift"};
  here.model->add(refused);
  const ServiceLog fine{.id = Uuid::random(), .vesselID = vessel.id, .taskTitle = "Fine"};
  here.model->add(fine);
  finished(here.cloud->sync().syncAll());
  EXPECT_EQ(here.model->dirtyCount(), 1);
  EXPECT_THAT(here.cloud->sync().problems(), Contains(testing::Field(&SyncProblem::record, "Adrift")));

  ASSERT_TRUE(sharedBackend().execute(
      QStringLiteral("insert into public.voyage_plans(id, user_id, account_id, vessel_id, plan_name, date_created, "
                     "plan_json) values (gen_random_uuid(), '%1', '%2', '%3', 'Broken', now(), 'no JSON')")
          .arg(here.cloud->userID(), QString::fromStdString(here.model->accountID()),
               QString::fromStdString(vessel.id.toString()))));
  finished(here.cloud->sync().syncAll());
  EXPECT_THAT(here.said(), Contains("❌ VoyagePlan JSON decode FAILED for 'Broken'"));
  EXPECT_THAT(here.said(), Contains("   Raw payload (first 300 chars): no JSON"));
  EXPECT_TRUE(here.model->voyagePlans().find(plan.id)) << "the others still load";
  const QString gone =
      QStringLiteral("delete from public.voyage_plans where id = '%1'").arg(QString::fromStdString(plan.id.toString()));
  ASSERT_TRUE(sharedBackend().execute(gone));
  finished(here.cloud->sync().syncAll());
  EXPECT_FALSE(here.model->voyagePlans().find(plan.id)) << "and what was deleted elsewhere goes";

  const std::string token = here.cache->preference("sb_access_token").value_or("");
  ASSERT_FALSE(token.empty());
  for (const std::string& line : here.said()) EXPECT_THAT(line, Not(HasSubstr(token)));
}

}  // namespace
}  // namespace thalvorn
