#include "store/app_view_model.h"

#include <gmock/gmock.h>

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
    view_model.reset();
    cache.reset();
    auto opened = LocalCache::open(folder.filePath(QStringLiteral("a store.db")).toStdString());
    ASSERT_TRUE(opened) << opened.error().message;
    cache = std::move(*opened);
    view_model = std::make_unique<AppViewModel>(*cache, clock);
    view_model->reloadNow("local");
  }

  Vessel addVessel(std::string name, double hours = 0) {
    Vessel vessel{.id = Uuid::random(), .name = std::move(name), .engineHours = hours};
    EXPECT_TRUE(waitFor(view_model->add(vessel)));
    return vessel;
  }

  MaintenanceTask addTask(const Vessel& vessel, std::string title) {
    MaintenanceTask task{.id = Uuid::random(), .vesselID = vessel.id, .title = std::move(title)};
    EXPECT_TRUE(waitFor(view_model->add(task)));
    return task;
  }

  std::expected<Revision, CacheError> fold() {
    return waitForDone([&](LocalCache::Done done) { cache->foldNow(std::move(done)); });
  }

  QTemporaryDir folder;
  FixedClock clock{*parseTimestamp("2026-11-21T09:40:00Z")};
  std::unique_ptr<LocalCache> cache;
  std::unique_ptr<AppViewModel> view_model;
};

TEST_F(Store, FindsEverythingAgainAfterReopening) {
  const Vessel vessel = addVessel("M/Y Meridian", 4812.4);
  MaintenanceTask task = addTask(vessel, "Engine coolant check");
  task.priority = TaskPriority::high;
  task.kind = TaskKind::warranty;
  task.snoozedUntil = clock.now() + std::chrono::hours(48);
  ASSERT_TRUE(waitFor(view_model->update(task)));
  const MaintenanceTask deleted = addTask(vessel, "Deleted");
  ASSERT_TRUE(waitFor(view_model->remove<MaintenanceTask>(deleted.id)));

  for (int round = 0; round < 2; ++round) {
    open();
    ASSERT_EQ(view_model->vessels().size(), 1U);
    EXPECT_EQ(view_model->vessels()[0], vessel);
    ASSERT_EQ(view_model->tasks().size(), 1U);
    EXPECT_EQ(view_model->tasks()[0], task);
    EXPECT_EQ(view_model->selectedVesselID(), vessel.id);
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
  ASSERT_TRUE(waitFor(view_model->update(elsewhere)));
  MaintenanceTask form = opened;
  form.title = "Oil & filter";
  Edit edit{.label = "Task changed"};
  edit.replace(opened, form);
  ASSERT_TRUE(waitFor(view_model->apply(std::move(edit))));
  const MaintenanceTask* now = view_model->tasks().find(opened.id);
  EXPECT_EQ(now->title, "Oil & filter");
  EXPECT_EQ(now->notes, "SAE 15W-40");
}

TEST_F(Store, UndoPutsBackOnlyWhatNobodyChangedSince) {
  const Vessel vessel = addVessel("Meridian");
  const MaintenanceTask task = addTask(vessel, "Oil");
  MaintenanceTask changed = task;
  changed.title = "Oil change";
  changed.notes = "first";
  ASSERT_TRUE(waitFor(view_model->update(changed)));
  const Uuid edit = view_model->undoable().back().id;
  changed.notes = "second";
  ASSERT_TRUE(waitFor(view_model->update(changed)));
  ASSERT_TRUE(waitFor(view_model->undo(edit)));
  EXPECT_EQ(view_model->tasks().find(task.id)->title, "Oil");
  EXPECT_EQ(view_model->tasks().find(task.id)->notes, "second");
  EXPECT_FALSE(waitFor(view_model->undo(edit)));

  ASSERT_TRUE(waitFor(view_model->removeVessel(vessel.id)));
  EXPECT_TRUE(view_model->vessels().empty());
  EXPECT_TRUE(view_model->tasks().empty());
  EXPECT_FALSE(view_model->selectedVesselID());
  ASSERT_TRUE(waitFor(view_model->undo(view_model->undoable().back().id)));
  EXPECT_EQ(view_model->vessels().size(), 1U);
  EXPECT_EQ(view_model->tasks().size(), 1U);
  open();
  EXPECT_EQ(view_model->tasks().size(), 1U);
}

TEST_F(Store, RefusesAnEditOfADeletedRecordWhole) {
  const Vessel vessel = addVessel("Meridian");
  const MaintenanceTask gone = addTask(vessel, "Gone");
  ASSERT_TRUE(waitFor(view_model->remove<MaintenanceTask>(gone.id)));
  Edit edit{.label = "Two at once"};
  MaintenanceTask renamed = gone;
  renamed.title = "Back";
  edit.add(MaintenanceTask{.id = Uuid::random(), .vesselID = vessel.id});
  edit.replace(gone, renamed);
  const SaveResult result = waitFor(view_model->apply(std::move(edit)));
  ASSERT_FALSE(result);
  EXPECT_THAT(result.error().message, HasSubstr("deleted meanwhile"));
  EXPECT_TRUE(view_model->tasks().empty());
}

TEST_F(Store, ACorruptEntryEmptiesItsCollectionAloneAndIsKept) {
  const Vessel vessel = addVessel("Meridian");
  addTask(vessel, "Damaged soon");
  ASSERT_TRUE(fold());
  SQLite::Database(cache->file().string(), SQLite::OPEN_READWRITE)
      .exec("UPDATE segment SET json = '[{' WHERE suffix = '_tasks'");
  MessageCatcher messages;
  view_model->reloadNow("local");
  EXPECT_EQ(view_model->vessels().size(), 1U);
  EXPECT_TRUE(view_model->tasks().empty());
  EXPECT_THAT(messages.text(), HasSubstr("❌ decode failed for _tasks, key=local_tasks, bytes="));
  // New tasks are found again although the damaged bytes are still there.
  const MaintenanceTask task = addTask(vessel, "New");
  ASSERT_TRUE(fold());
  open();
  ASSERT_EQ(view_model->tasks().size(), 1U);
  EXPECT_EQ(view_model->tasks()[0].id, task.id);
}

TEST_F(Store, CompletingIsOneEditOfThreeRecordsThatUndoTakesBackWhole) {
  const Vessel vessel = addVessel("Meridian", 4812.4);
  MaintenanceTask task = addTask(vessel, "Impeller");
  task.dueAtEngineHours = 4818;
  task.recurringEngineHours = 500;
  ASSERT_TRUE(waitFor(view_model->update(task)));

  CompletionForm form{
      .completedDate = clock.now(), .technicianNotes = "Replaced", .readings = {{HourSource::engine, 4812.9}}};
  ASSERT_TRUE(waitFor(view_model->completeTask(task.id, form)));
  open();
  ASSERT_EQ(view_model->logs().size(), 1U);
  EXPECT_EQ(view_model->logs()[0].engineHoursAtService, 4812.9);
  EXPECT_EQ(view_model->tasks()[0].dueAtEngineHours, 5312.9);
  EXPECT_EQ(view_model->vessels()[0].engineHours, 4812.9);

  ServiceLog corrected = view_model->logs()[0];
  corrected.technicianNotes = "Replaced, cover polished";
  EXPECT_FALSE(waitFor(view_model->correctLog(corrected, "")));
  ASSERT_TRUE(waitFor(view_model->correctLog(corrected, "Forgot the cover")));
  open();
  ASSERT_EQ(view_model->logs()[0].corrections.size(), 1U);
  EXPECT_EQ(view_model->logs()[0].corrections[0].before, "Replaced");

  EXPECT_FALSE(waitFor(view_model->completeTask(task.id, form)));  // the same form sent twice
  form.logID = Uuid::random();
  ASSERT_TRUE(waitFor(view_model->completeTask(task.id, form)));
  const Uuid completion = view_model->undoable().back().id;
  ASSERT_TRUE(waitFor(view_model->undo(completion)));
  EXPECT_EQ(view_model->logs().size(), 1U);
  EXPECT_EQ(view_model->tasks()[0].dueAtEngineHours, 5312.9);
}

TEST_F(Store, AReplacedMeterTakesItsTasksAlong) {
  const Vessel vessel = addVessel("Meridian", 4812);
  MaintenanceTask task = addTask(vessel, "Impeller");
  task.dueAtEngineHours = 4900;
  ASSERT_TRUE(waitFor(view_model->update(task)));
  ASSERT_TRUE(waitFor(view_model->updateMeters(vessel.id, {{HourSource::engine, 4700}})));
  EXPECT_EQ(view_model->vessels()[0].engineHours, 4812);
  MeterAdjustment adjustment{.source = HourSource::engine, .hours = 0, .reason = "New panel"};
  ASSERT_TRUE(waitFor(view_model->correctMeter(vessel.id, MeterChange::replaced, adjustment)));
  open();
  EXPECT_EQ(view_model->vessels()[0].engineHours, 0);
  ASSERT_EQ(view_model->vessels()[0].meterHistory.size(), 1U);
  EXPECT_EQ(view_model->vessels()[0].meterHistory[0].reason, "New panel");
  EXPECT_EQ(view_model->tasks()[0].dueAtEngineHours, 88);
}

TEST_F(Store, TellsListenersWhichFieldsChanged) {
  const Vessel vessel = addVessel("Meridian");
  FieldSet seen{};
  QObject::connect(&view_model->vessels().events(), &CollectionEvents::changed, &view_model->vessels().events(),
                   [&](qsizetype, FieldSet fields) { seen = fields; });
  Vessel renamed = vessel;
  renamed.name = "Orion";
  ASSERT_TRUE(waitFor(view_model->update(renamed)));
  EXPECT_EQ(seen, fieldSetOf<Vessel>({"name"}));
}

}  // namespace
}  // namespace thalvorn
