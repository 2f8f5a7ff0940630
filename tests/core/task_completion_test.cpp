#include "core/task_completion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/log_correction.h"
#include "core/task_snooze.h"
#include "core/task_status.h"
#include "fixtures.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;
using namespace thalvorn::testing;
using ::testing::ElementsAre;

constexpr auto kDay = 24h;
const Timestamp kNow = at("2026-11-21T08:40:00Z");

MaintenanceTask impeller() {
  MaintenanceTask made = dueAt("Raw water impeller replacement", 1006.2);
  made.triggerType = TriggerType::both;
  made.hourSource = HourSource::engine2;
  made.dueDate = at("2027-02-12T00:00:00Z");
  made.recurringDays = 365;
  made.recurringEngineHours = 500;
  return made;
}

CompletionForm doneAt(Timestamp when) {
  CompletionForm form;
  form.completedDate = when;
  return form;
}

TEST(Completion, WritesTheLogRaisesTheMetersAndMovesTheTaskOn) {
  MaintenanceTask task = impeller();
  task.category = TaskCategory::engine2;
  task.snoozedUntil = kNow + kDay;
  task.photoPaths = {"before.jpg"};
  CompletionForm form = doneAt(kNow - 2h);
  form.technicianNotes = "Replaced impeller and cover gasket.";
  form.equipmentID = id("pump");
  form.cost = 186;
  form.completedBy = "L. Marchetti";
  form.partsUsed = {{.id = {}, .name = "Impeller kit", .quantity = 1, .partNumber = "09-1027B-9", .cost = 92.4}, {}};
  form.readings = {{HourSource::engine, 900.0}, {HourSource::engine2, 1012.9}, {HourSource::generator1, std::nullopt}};
  form.photoPaths = {"after.jpg"};

  const Completion done = completeTask(task, yacht(), form, kNow, zone("Europe/Rome")).value();
  EXPECT_EQ(done.log.id, form.logID);
  EXPECT_EQ(done.log.taskID, task.id);
  EXPECT_EQ(done.log.vesselID, task.vesselID);
  EXPECT_EQ(done.log.equipmentID, form.equipmentID);
  EXPECT_EQ(done.log.taskTitle, task.title);
  EXPECT_EQ(done.log.category, TaskCategory::engine2);
  EXPECT_EQ(done.log.completedDate, form.completedDate);
  EXPECT_EQ(done.log.engineHoursAtService, 1012.9) << "the task's meter after it rose";
  EXPECT_EQ(done.log.technicianNotes, form.technicianNotes);
  EXPECT_EQ(done.log.completedBy, form.completedBy);
  ASSERT_EQ(done.log.partsUsed.size(), 1U) << "blank lines are left out";
  EXPECT_FALSE(done.log.partsUsed[0].id.isNil());
  EXPECT_EQ(done.log.photoPaths, form.photoPaths);
  EXPECT_EQ(totalCost(done.log), 186 + 92.4);

  EXPECT_EQ(done.vessel.engineHours, 1000) << "a lower reading is left out";
  EXPECT_EQ(done.vessel.engine2Hours, 1012.9);
  EXPECT_EQ(done.vessel.generator1Hours, 4000);
  EXPECT_EQ(done.vessel.engineHoursUpdatedAt, kNow);
  ASSERT_EQ(done.notices.size(), 1U);
  EXPECT_EQ(done.notices[0].source, HourSource::engine);

  EXPECT_FALSE(done.task.isCompleted);
  EXPECT_EQ(done.task.dueDate, form.completedDate + 365 * kDay);
  EXPECT_EQ(done.task.dueAtEngineHours, 1512.9);
  EXPECT_FALSE(done.task.snoozedUntil);
  EXPECT_THAT(done.task.photoPaths, ElementsAre("before.jpg", "after.jpg"));

  const auto preview = previewNextDue(task, yacht(), form, kNow, zone("Europe/Rome"));
  EXPECT_EQ(preview, (NextDue{done.task.dueDate, done.task.dueAtEngineHours}));
  EXPECT_EQ(nextDueText(preview, zone("Europe/Rome")), "Next due: 1,512.9 h or 21 Nov 2027");
}

TEST(Completion, WithoutReadingsTheVesselStaysAsItIs) {
  const Completion done = completeTask(impeller(), yacht(), doneAt(kNow), kNow, Calendar::utc()).value();
  EXPECT_EQ(done.vessel, yacht());
  EXPECT_EQ(done.log.engineHoursAtService, 990);
}

TEST(Completion, OnlyPlannedMaintenanceWithAnIntervalAboveZeroRepeats) {
  const struct {
    const char* what;
    std::optional<std::int64_t> days;
    std::optional<double> hours;
    std::optional<NextDue> next;
    TaskKind kind;
    TriggerType trigger;
    bool hasDate, hasHours;
  } cases[] = {
      {"no interval", {}, {}, {}, TaskKind::plannedMaintenance, TriggerType::date, true, false},
      {"zero", 0, 0, {}, TaskKind::plannedMaintenance, TriggerType::both, true, true},
      {"negative", -5, -5, {}, TaskKind::plannedMaintenance, TriggerType::both, true, true},
      {"squawk", 30, 100, {}, TaskKind::deficiencySquawk, TriggerType::both, true, true},
      {"warranty", 30, {}, {}, TaskKind::warranty, TriggerType::date, true, false},
      {"days", 30, {}, NextDue{kNow + 30 * kDay, {}}, TaskKind::plannedMaintenance, TriggerType::date, true, false},
      {"hours", {}, 100, NextDue{{}, 1100}, TaskKind::plannedMaintenance, TriggerType::engineHours, false, true},
      {"both", 30, 100, NextDue{kNow + 30 * kDay, 1100}, TaskKind::plannedMaintenance, TriggerType::both, true, true},
      {"both, never dated", 30, 100, NextDue{kNow + 30 * kDay, 1100}, TaskKind::plannedMaintenance, TriggerType::both,
       false, true},
      {"a date task that still carries an hours target moves both", 30, 100, NextDue{kNow + 30 * kDay, 1100},
       TaskKind::plannedMaintenance, TriggerType::date, true, true},
      {"an hours target without interval is spent",
       30,
       {},
       NextDue{kNow + 30 * kDay, {}},
       TaskKind::plannedMaintenance,
       TriggerType::both,
       true,
       true},
      {"an unused interval does not make a task repeat",
       {},
       100,
       {},
       TaskKind::plannedMaintenance,
       TriggerType::date,
       true,
       false}};
  for (const auto& each : cases) {
    MaintenanceTask made = task(each.what);
    made.kind = each.kind;
    made.triggerType = each.trigger;
    made.recurringDays = each.days;
    made.recurringEngineHours = each.hours;
    if (each.hasDate) made.dueDate = kNow - 3 * kDay;
    if (each.hasHours) made.dueAtEngineHours = 1005;
    const Completion done = completeTask(made, yacht(), doneAt(kNow), kNow, Calendar::utc()).value();
    EXPECT_EQ(done.task.isCompleted, !each.next) << each.what;
    if (each.next)
      EXPECT_EQ((NextDue{done.task.dueDate, done.task.dueAtEngineHours}), *each.next) << each.what;
    else
      EXPECT_EQ(done.task.dueDate, made.dueDate) << each.what;
  }
}

TEST(Completion, NextDueKeepsTheWallClockThroughDaylightSaving) {
  MaintenanceTask weekly = dueOn("Alarm test", kNow);
  weekly.recurringDays = 7;
  for (const auto& [name, done, next] : {std::tuple{"Europe/Rome", "2026-10-22T08:00:00Z", "2026-10-29T09:00:00Z"},
                                         {"America/New_York", "2026-03-05T15:00:00Z", "2026-03-12T14:00:00Z"}})
    EXPECT_EQ(nextDue(weekly, at(done), 0, zone(name))->dueDate, at(next)) << name;
}

TEST(Completion, IsRefusedWhenItMakesNoSense) {
  MaintenanceTask done = impeller();
  done.isCompleted = true;
  EXPECT_EQ(completeTask(done, yacht(), doneAt(kNow), kNow, Calendar::utc()).error(),
            CompletionRefusal::alreadyCompleted);
  EXPECT_EQ(completeTask(impeller(), yacht("Borealis"), doneAt(kNow), kNow, Calendar::utc()).error(),
            CompletionRefusal::otherVessel);
  EXPECT_NE(completionDateProblem(kNow + kDay, kNow, Calendar::utc()), "");
  EXPECT_EQ(completionDateProblem(kNow + 3h, kNow, Calendar::utc()), "") << "later today";
}

TEST(Snooze, SilencesTheTaskAndNotesIt) {
  MaintenanceTask raft = dueOn("Life raft service", kNow - 3 * kDay);
  raft.notes = "Approved station";
  const Calendar rome = zone("Europe/Rome");
  const Timestamp until = rome.addDays(kNow, 10).value();
  const MaintenanceTask snoozed = snoozeTask(raft, until, kNow, rome, "Ana").value();
  EXPECT_EQ(snoozed.notes, "Approved station\n[Snoozed 21 Nov 2026 by Ana for 10 days — silent until 1 Dec 2026]");
  EXPECT_TRUE(isSnoozed(snoozed, until - 1s));
  EXPECT_FALSE(isSnoozed(snoozed, until));
  EXPECT_FALSE(isSnoozed(unsnoozeTask(snoozed), kNow));

  raft.notes.clear();
  EXPECT_EQ(snoozeTask(raft, kNow + 2h, kNow, rome)->notes,
            "[Snoozed 21 Nov 2026 for 2 hours — silent until 21 Nov 2026]");
  EXPECT_FALSE(snoozeTask(raft, kNow, kNow, rome));
  raft.isCompleted = true;
  EXPECT_FALSE(snoozeTask(raft, until, kNow, rome));
}

TEST(LogCorrection, KeepsWhatTheLogReadBefore) {
  CompletionForm form = doneAt(kNow - 30 * kDay);
  form.cost = 100;
  form.partsUsed = {{.id = {}, .name = "Impeller", .quantity = 2, .partNumber = "09", .cost = 4.5}};
  const ServiceLog log = completeTask(impeller(), yacht(), form, kNow, Calendar::utc())->log;
  ServiceLog edited = log;
  edited.cost = 120.5;
  edited.partsUsed.clear();
  edited.taskID = id("another");
  const ServiceLog first = correctLog(log, edited, "Invoice came", "Ana", kNow).value();
  EXPECT_EQ(first.taskID, log.taskID);
  EXPECT_EQ(first.cost, 120.5);
  ASSERT_EQ(first.corrections.size(), 2U);
  EXPECT_EQ(first.corrections[0].field, "cost");
  EXPECT_EQ(first.corrections[0].before, "100");
  EXPECT_EQ(first.corrections[0].after, "120.5");
  EXPECT_EQ(first.corrections[1].before, "2 × Impeller (09), 4.50");
  EXPECT_EQ(first.corrections[1].after, "");

  edited = first;
  edited.corrections.clear();
  edited.technicianNotes = "Two impellers";
  const ServiceLog second = correctLog(first, edited, "Forgotten", "Ana", kNow + kDay).value();
  EXPECT_EQ(second.corrections.size(), 3U) << "earlier corrections cannot be taken out";
  EXPECT_NE(second.corrections[1].id, second.corrections[2].id);

  EXPECT_FALSE(correctLog(log, log, "x", "", kNow));
  EXPECT_FALSE(correctLog(log, edited, " ", "", kNow));
  edited.completedDate = kNow + 40 * kDay;
  EXPECT_FALSE(correctLog(log, edited, "x", "", kNow));
}

TEST(LogCorrection, MovesTheDuePointThatWasCountedFromTheLog) {
  const Calendar utc = Calendar::utc();
  Completion done = completeTask(impeller(), yacht(), doneAt(kNow), kNow, utc).value();
  ServiceLog corrected = done.log;
  corrected.completedDate -= 5 * kDay;
  corrected.engineHoursAtService = 980;
  const MaintenanceTask moved = rescheduleAfterCorrection(done.task, done.log, corrected, utc);
  EXPECT_EQ(moved.dueDate, kNow + 360 * kDay);
  EXPECT_EQ(moved.dueAtEngineHours, 1480);
  done.task.dueDate = kNow + 20 * kDay;
  EXPECT_EQ(rescheduleAfterCorrection(done.task, done.log, corrected, utc).dueDate, kNow + 20 * kDay);
}

}  // namespace
}  // namespace thalvorn
