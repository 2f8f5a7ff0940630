#include "store/app_view_model.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QCoroFuture>
#include <QTemporaryDir>

#include <SQLiteCpp/SQLiteCpp.h>

#include "core/meters.h"
#include "core/task_completion.h"
#include "store/testing.h"

namespace thalvorn {
namespace {

using testing::HasSubstr;

class Store : public ::testing::Test {
 protected:
  void SetUp() override { open(); }

  void open() {
    viewModel.reset();
    cache.reset();
    auto opened = LocalCache::open(folder.filePath(QStringLiteral("a store.db")).toStdString());
    ASSERT_TRUE(opened) << opened.error().message;
    cache = std::move(*opened);
    viewModel = std::make_unique<AppViewModel>(*cache, clock);
    viewModel->reloadNow("local");
  }

  Vessel addVessel(std::string name, double hours = 0) {
    Vessel vessel{.id = Uuid::random(), .name = std::move(name), .engineHours = hours};
    EXPECT_TRUE(waitFor(viewModel->add(vessel)));
    return vessel;
  }

  MaintenanceTask addTask(const Vessel& vessel, std::string title) {
    MaintenanceTask task{.id = Uuid::random(), .vesselID = vessel.id, .title = std::move(title)};
    EXPECT_TRUE(waitFor(viewModel->add(task)));
    return task;
  }

  std::expected<Revision, CacheError> fold() {
    return waitForDone([&](LocalCache::Done done) { cache->foldNow(std::move(done)); });
  }

  QTemporaryDir folder;
  FixedClock clock{*parseTimestamp("2026-11-21T09:40:00Z")};
  std::unique_ptr<LocalCache> cache;
  std::unique_ptr<AppViewModel> viewModel;
};

TEST_F(Store, FindsEverythingAgainAfterReopening) {
  const Vessel vessel = addVessel("M/Y Meridian", 4812.4);
  MaintenanceTask task = addTask(vessel, "Engine coolant check");
  task.priority = TaskPriority::high;
  task.kind = TaskKind::warranty;
  task.snoozedUntil = clock.now() + std::chrono::hours(48);
  ASSERT_TRUE(waitFor(viewModel->update(task)));
  const MaintenanceTask deleted = addTask(vessel, "Deleted");
  ASSERT_TRUE(waitFor(viewModel->remove<MaintenanceTask>(deleted.id)));

  for (int round = 0; round < 2; ++round) {
    open();
    ASSERT_EQ(viewModel->vessels().size(), 1U);
    EXPECT_EQ(viewModel->vessels()[0], vessel);
    ASSERT_EQ(viewModel->tasks().size(), 1U);
    EXPECT_EQ(viewModel->tasks()[0], task);
    EXPECT_EQ(viewModel->selectedVesselID(), vessel.id);
    ASSERT_TRUE(fold());
  }
  // The coded form is without the three fields that travel beside it.
  const auto state = cache->load("local");
  EXPECT_THAT(state->segments.at("_tasks").at(0), Not(HasSubstr("priority")));
  EXPECT_THAT(state->segments.at("_tasks_extra").at(0), HasSubstr(R"("priority":"high","kind":"warranty")"));
}

TEST_F(Store, AnEditOfAnOlderCopyKeepsWhatOthersChanged) {
  const Vessel vessel = addVessel("Meridian");
  const MaintenanceTask opened = addTask(vessel, "Oil");
  MaintenanceTask elsewhere = opened;
  elsewhere.notes = "SAE 15W-40";
  ASSERT_TRUE(waitFor(viewModel->update(elsewhere)));
  MaintenanceTask form = opened;
  form.title = "Oil & filter";
  Edit edit{.label = "Task changed"};
  edit.replace(opened, form);
  ASSERT_TRUE(waitFor(viewModel->apply(std::move(edit))));
  const MaintenanceTask* now = viewModel->tasks().find(opened.id);
  EXPECT_EQ(now->title, "Oil & filter");
  EXPECT_EQ(now->notes, "SAE 15W-40");
}

TEST_F(Store, UndoPutsBackOnlyWhatNobodyChangedSince) {
  const Vessel vessel = addVessel("Meridian");
  const MaintenanceTask task = addTask(vessel, "Oil");
  MaintenanceTask changed = task;
  changed.title = "Oil change";
  changed.notes = "first";
  ASSERT_TRUE(waitFor(viewModel->update(changed)));
  const Uuid edit = viewModel->undoable().back().id;
  changed.notes = "second";
  ASSERT_TRUE(waitFor(viewModel->update(changed)));
  ASSERT_TRUE(waitFor(viewModel->undo(edit)));
  EXPECT_EQ(viewModel->tasks().find(task.id)->title, "Oil");
  EXPECT_EQ(viewModel->tasks().find(task.id)->notes, "second");
  EXPECT_FALSE(waitFor(viewModel->undo(edit)));

  ASSERT_TRUE(waitFor(viewModel->removeVessel(vessel.id)));
  EXPECT_TRUE(viewModel->vessels().empty());
  EXPECT_TRUE(viewModel->tasks().empty());
  EXPECT_FALSE(viewModel->selectedVesselID());
  ASSERT_TRUE(waitFor(viewModel->undo(viewModel->undoable().back().id)));
  EXPECT_EQ(viewModel->vessels().size(), 1U);
  EXPECT_EQ(viewModel->tasks().size(), 1U);
  open();
  EXPECT_EQ(viewModel->tasks().size(), 1U);
}

TEST_F(Store, RefusesAnEditOfADeletedRecordWhole) {
  const Vessel vessel = addVessel("Meridian");
  const MaintenanceTask gone = addTask(vessel, "Gone");
  ASSERT_TRUE(waitFor(viewModel->remove<MaintenanceTask>(gone.id)));
  Edit edit{.label = "Two at once"};
  MaintenanceTask renamed = gone;
  renamed.title = "Back";
  edit.add(MaintenanceTask{.id = Uuid::random(), .vesselID = vessel.id});
  edit.replace(gone, renamed);
  const SaveResult result = waitFor(viewModel->apply(std::move(edit)));
  ASSERT_FALSE(result);
  EXPECT_THAT(result.error().message, HasSubstr("deleted meanwhile"));
  EXPECT_TRUE(viewModel->tasks().empty());
}

TEST_F(Store, ACorruptEntryEmptiesItsCollectionAloneAndIsKept) {
  const Vessel vessel = addVessel("Meridian");
  addTask(vessel, "Damaged soon");
  ASSERT_TRUE(fold());
  SQLite::Database(cache->file().string(), SQLite::OPEN_READWRITE)
      .exec("UPDATE segment SET json = '[{' WHERE suffix = '_tasks'");
  MessageCatcher messages;
  viewModel->reloadNow("local");
  EXPECT_EQ(viewModel->vessels().size(), 1U);
  EXPECT_TRUE(viewModel->tasks().empty());
  EXPECT_THAT(messages.text(), HasSubstr("❌ decode failed for _tasks, key=local_tasks, bytes="));
  // New tasks are found again although the damaged bytes are still there.
  const MaintenanceTask task = addTask(vessel, "New");
  ASSERT_TRUE(fold());
  open();
  ASSERT_EQ(viewModel->tasks().size(), 1U);
  EXPECT_EQ(viewModel->tasks()[0].id, task.id);
}

TEST_F(Store, CompletingIsOneEditOfThreeRecordsThatUndoTakesBackWhole) {
  const Vessel vessel = addVessel("Meridian", 4812.4);
  MaintenanceTask task = addTask(vessel, "Impeller");
  task.dueAtEngineHours = 4818;
  task.recurringEngineHours = 500;
  ASSERT_TRUE(waitFor(viewModel->update(task)));

  CompletionForm form{
      .completedDate = clock.now(), .technicianNotes = "Replaced", .readings = {{HourSource::engine, 4812.9}}};
  ASSERT_TRUE(waitFor(viewModel->completeTask(task.id, form)));
  open();
  ASSERT_EQ(viewModel->logs().size(), 1U);
  EXPECT_EQ(viewModel->logs()[0].engineHoursAtService, 4812.9);
  EXPECT_EQ(viewModel->tasks()[0].dueAtEngineHours, 5312.9);
  EXPECT_EQ(viewModel->vessels()[0].engineHours, 4812.9);

  ServiceLog corrected = viewModel->logs()[0];
  corrected.technicianNotes = "Replaced, cover polished";
  EXPECT_FALSE(waitFor(viewModel->correctLog(corrected, "")));
  ASSERT_TRUE(waitFor(viewModel->correctLog(corrected, "Forgot the cover")));
  open();
  ASSERT_EQ(viewModel->logs()[0].corrections.size(), 1U);
  EXPECT_EQ(viewModel->logs()[0].corrections[0].before, "Replaced");

  EXPECT_FALSE(waitFor(viewModel->completeTask(task.id, form)));  // the same form sent twice
  form.logID = Uuid::random();
  ASSERT_TRUE(waitFor(viewModel->completeTask(task.id, form)));
  const Uuid completion = viewModel->undoable().back().id;
  ASSERT_TRUE(waitFor(viewModel->undo(completion)));
  EXPECT_EQ(viewModel->logs().size(), 1U);
  EXPECT_EQ(viewModel->tasks()[0].dueAtEngineHours, 5312.9);
}

TEST_F(Store, AReplacedMeterTakesItsTasksAlong) {
  const Vessel vessel = addVessel("Meridian", 4812);
  MaintenanceTask task = addTask(vessel, "Impeller");
  task.dueAtEngineHours = 4900;
  ASSERT_TRUE(waitFor(viewModel->update(task)));
  ASSERT_TRUE(waitFor(viewModel->updateMeters(vessel.id, {{HourSource::engine, 4700}})));
  EXPECT_EQ(viewModel->vessels()[0].engineHours, 4812);
  MeterAdjustment adjustment{.source = HourSource::engine, .hours = 0, .reason = "New panel"};
  ASSERT_TRUE(waitFor(viewModel->correctMeter(vessel.id, MeterChange::replaced, adjustment)));
  open();
  EXPECT_EQ(viewModel->vessels()[0].engineHours, 0);
  ASSERT_EQ(viewModel->vessels()[0].meterHistory.size(), 1U);
  EXPECT_EQ(viewModel->vessels()[0].meterHistory[0].reason, "New panel");
  EXPECT_EQ(viewModel->tasks()[0].dueAtEngineHours, 88);
}

TEST_F(Store, PhotosInsideRecordsMoveToDiskOnce) {
  const Vessel vessel = addVessel("Meridian");
  MaintenanceTask task{.id = Uuid::random(), .vesselID = vessel.id, .title = "Old"};
  task.photoData = {Bytes{{0xFF, 0xD8, 0xFF, 0xE0, 1, 2, 3}}};
  const std::map<std::string, std::vector<std::string>> old{{"_vessels", {toJson(vessel)}}, {"_tasks", {toJson(task)}}};
  ASSERT_TRUE(waitForDone([&](LocalCache::Done done) { cache->replaceAll("local", old, std::move(done)); }));
  MessageCatcher messages;
  viewModel->reloadNow("local");
  for (int round = 0; round < 2; ++round) {
    const MaintenanceTask& moved = viewModel->tasks()[0];
    EXPECT_TRUE(moved.photoData.empty());
    ASSERT_EQ(moved.photoPaths.size(), 1U);
    EXPECT_TRUE(viewModel->attachments().absolute(moved.photoPaths[0]));
    while (viewModel->unsavedCount() > 0) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    open();
  }
  EXPECT_THAT(messages.text(), HasSubstr("🧹 purged tasks blob: local_tasks → "));
}

TEST_F(Store, ANewVesselPhotoTellsViewsToReloadTheirs) {
  const Vessel vessel = addVessel("M/Y Meridian");
  VesselProfile profile{.id = Uuid::random(), .vesselID = vessel.id};
  ASSERT_TRUE(waitFor(viewModel->add(profile)));
  EXPECT_EQ(viewModel->vesselPhotoCacheVersion(), 0);
  profile.photoPath = "vessel_photos/bow.jpg";
  ASSERT_TRUE(waitFor(viewModel->update(profile)));
  EXPECT_EQ(viewModel->vesselPhotoCacheVersion(), 1);
  profile.flag = "Malta";
  ASSERT_TRUE(waitFor(viewModel->update(profile)));
  EXPECT_EQ(viewModel->vesselPhotoCacheVersion(), 1);
}

TEST_F(Store, TellsListenersWhichFieldsChanged) {
  const Vessel vessel = addVessel("Meridian");
  FieldSet seen{};
  QObject::connect(&viewModel->vessels().events(), &CollectionEvents::changed, &viewModel->vessels().events(),
                   [&](qsizetype, FieldSet fields) { seen = fields; });
  Vessel renamed = vessel;
  renamed.name = "Orion";
  ASSERT_TRUE(waitFor(viewModel->update(renamed)));
  EXPECT_EQ(seen, fieldSetOf<Vessel>({"name"}));
}

}  // namespace
}  // namespace thalvorn
