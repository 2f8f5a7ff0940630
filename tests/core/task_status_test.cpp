#include "core/task_status.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <vector>

#include "core/status_reason.h"
#include "fixtures.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;
using namespace thalvorn::testing;
using enum TaskStatus;

constexpr auto kDay = 24h;

/// The rule as it is told: by the calendar's day count for every single date.
TaskStatus statusByDayCount(Timestamp due, Timestamp now, const Calendar& calendar) {
  const auto days = calendar.dayComponent(now, due);
  if (!days) return dueSoon;
  return *days < 0 ? overdue : *days <= 7 ? dueSoon : *days <= 30 ? onTrack : beyondHorizon;
}

TEST(TaskStatus, FollowsTheDueDate) {
  const Timestamp now = at("2026-06-15T12:00:00Z");
  const StatusHorizon horizon(now, zone("Europe/Rome"));
  const struct {
    std::chrono::seconds away;
    TaskStatus status;
  } cases[] = {{-400 * kDay, overdue}, {-25h, overdue},      {-24h, overdue},           {-24h + 1s, dueSoon},
               {-23h, dueSoon},        {0s, dueSoon},        {7 * kDay + 5h, dueSoon},  {8 * kDay - 1s, dueSoon},
               {8 * kDay, onTrack},    {30 * kDay, onTrack}, {31 * kDay - 1s, onTrack}, {31 * kDay, beyondHorizon}};
  for (const auto& [away, status] : cases)
    EXPECT_EQ(taskStatus(dueOn("Survey", now + away), 0, horizon), status) << away.count();
}

TEST(TaskStatus, FollowsTheHoursMeter) {
  const StatusHorizon horizon(at("2026-06-15T12:00:00Z"), Calendar::utc());
  const struct {
    double remaining;
    TaskStatus status;
  } cases[] = {{-0.5, overdue}, {0, overdue},  {0.1, dueSoon},       {10, dueSoon},
               {10.5, onTrack}, {50, onTrack}, {50.1, beyondHorizon}};
  for (const auto& [remaining, status] : cases)
    EXPECT_EQ(taskStatus(dueAt("Oil", 1000 + remaining), 1000, horizon), status) << remaining;
}

TEST(TaskStatus, TheWorseTriggerDecidesWhateverTheTriggerTypeSays) {
  const Timestamp now = at("2026-06-15T12:00:00Z");
  const StatusHorizon horizon(now, Calendar::utc());
  MaintenanceTask both = dueOn("Impeller", now + 40 * kDay);
  both.dueAtEngineHours = 1005;
  for (const TriggerType trigger : allCases<TriggerType>()) {
    both.triggerType = trigger;
    EXPECT_EQ(taskStatus(both, 1000, horizon), dueSoon);
  }
  EXPECT_EQ(taskStatus(both, 900, horizon), beyondHorizon);
  EXPECT_EQ(taskStatus(task("Someday"), 1000, horizon), beyondHorizon);
  both.isCompleted = true;
  EXPECT_EQ(taskStatus(both, 2000, horizon), completed);
}

TEST(TaskStatus, AgreesWithTheDayCountAroundDaylightSavingInEveryZone) {
  std::mt19937_64 random(7);
  for (const auto* name : {"Europe/Rome", "America/New_York", "Australia/Lord_Howe", "Pacific/Apia"}) {
    const Calendar calendar = zone(name);
    for (const auto* change : {"2026-03-29T00:30:00Z", "2026-03-08T06:59:00Z", "2026-10-25T00:30:00Z",
                               "2026-11-01T05:30:00Z", "2026-04-04T14:45:00Z"}) {
      for (int i = 0; i < 200; ++i) {
        const Timestamp now = at(change) + std::chrono::seconds(random() % 3'456'000) - 35 * kDay;
        const StatusHorizon horizon(now, calendar);
        // Near a threshold, where an hour decides.
        static constexpr std::array<int, 3> thresholds{-1, 8, 31};
        const Timestamp due = now + thresholds[random() % 3] * kDay + std::chrono::minutes(random() % 180) - 90min;
        ASSERT_EQ(horizon.statusOfDate(due), statusByDayCount(due, now, calendar))
            << name << " " << formatTimestamp(now) << " " << formatTimestamp(due);
      }
    }
  }
}

TEST(TaskStatus, ADateWithoutADayCountIsDueSoon) {
  const Timestamp now = at("2026-06-15T12:00:00Z");
  const Timestamp farAway = Timestamp{std::chrono::seconds{400'000'000'000}};
  const Timestamp farBack = Timestamp{std::chrono::seconds{-400'000'000'000}};
  EXPECT_EQ(StatusHorizon(now, Calendar::utc()).statusOfDate(farAway), dueSoon);
  EXPECT_EQ(StatusHorizon(now, Calendar::utc()).statusOfDate(farBack), dueSoon);
  EXPECT_EQ(StatusHorizon(farAway, Calendar::utc()).statusOfDate(now), dueSoon);
}

TEST(TaskCounts, CountEachStatusOnceAndLeaveSnoozedOnesOut) {
  const Timestamp now = at("2026-06-15T12:00:00Z");
  const StatusHorizon horizon(now, Calendar::utc());
  const std::vector<Vessel> vessels{yacht("Aurelia"), yacht("Borealis")};
  std::vector<MaintenanceTask> tasks{dueOn("a", now - 3 * kDay, vessels[0]), dueOn("b", now + 1h, vessels[0]),
                                     dueOn("c", now + 9 * kDay, vessels[0]), dueAt("d", 1051, vessels[0]),
                                     dueOn("e", now - 3 * kDay, vessels[0]), dueAt("f", 999, vessels[1]),
                                     dueOn("g", now - 3 * kDay, vessels[0])};
  tasks[4].snoozedUntil = now + 1s;
  tasks[5].snoozedUntil = now;  // its snooze has just ended
  tasks[6].isCompleted = true;
  tasks[6].snoozedUntil = now + kDay;
  const Fleet fleet(vessels);
  EXPECT_EQ(countTasks(tasks, fleet, horizon),
            (StatusCounts{.overdue = 2, .dueSoon = 1, .onTrack = 1, .beyondHorizon = 1, .completed = 1, .snoozed = 1}));
  EXPECT_EQ(countTasks(tasks, fleet, horizon, vessels[1].id), (StatusCounts{.overdue = 1}));
}

TEST(TaskCounts, TodayCountsWhatTheDayBrings) {
  // 23:30 in Rome: an hour later is tomorrow there, though not in UTC.
  const Timestamp now = at("2026-06-15T21:30:00Z");
  const Calendar rome = zone("Europe/Rome");
  const std::vector<Vessel> vessels{yacht()};
  const std::vector<MaintenanceTask> tasks{dueOn("this morning", at("2026-06-15T06:00:00Z")),
                                           dueOn("before midnight", now + 29min), dueOn("after midnight", now + 31min),
                                           dueOn("since today on the board", now + 30 * kDay + 1h),
                                           dueOn("since yesterday on the board", now + 29 * kDay)};
  EXPECT_EQ(countToday(tasks, Fleet(vessels), now, rome), (TodayCounts{.dueSoon = 2, .onTrack = 1}));
}

TEST(StatusReason, TellsTheTriggerThatDecidedAndWhatIsLeft) {
  const Timestamp now = at("2026-06-15T12:00:00Z");
  const Calendar utc = Calendar::utc();
  const StatusHorizon horizon(now, utc);
  const Vessel vessel = yacht();
  MaintenanceTask impeller = dueOn("Impeller", now + 40 * kDay);
  impeller.triggerType = TriggerType::both;
  impeller.dueAtEngineHours = 1006.2;
  impeller.recurringDays = 400;
  impeller.recurringEngineHours = 500;

  const StatusReason byHours = explainStatus(impeller, vessel, horizon, utc);
  EXPECT_EQ(byHours.status, dueSoon);
  EXPECT_EQ(byHours.decidedBy, TriggerType::engineHours);
  EXPECT_EQ(byHours.remainingDays, 40);
  EXPECT_NEAR(byHours.remainingHours.value(), 6.2, 1e-9);
  EXPECT_NEAR(byHours.intervalUsed.value(), 1 - 6.2 / 500, 1e-9);
  EXPECT_EQ(dueText(impeller, byHours, now, utc).first, "in 6.2 h");
  EXPECT_EQ(dueText(impeller, byHours, now, utc).second, "or 25 Jul");

  impeller.dueDate = now - 19 * kDay;
  impeller.dueAtEngineHours = 1300;
  const StatusReason byDate = explainStatus(impeller, vessel, horizon, utc);
  EXPECT_EQ(byDate.decidedBy, TriggerType::date);
  EXPECT_EQ(byDate.intervalUsed, 1);
  EXPECT_EQ(dueText(impeller, byDate, now, utc).first, "19 days past");

  impeller.snoozedUntil = at("2026-12-01T00:00:00Z");
  const StatusReason snoozed = explainStatus(impeller, vessel, horizon, utc);
  EXPECT_TRUE(snoozed.snoozed);
  EXPECT_EQ(dueText(impeller, snoozed, now, utc).first, "until 1 Dec");
  EXPECT_EQ(dueText(impeller, snoozed, now, utc).second, "Snoozed — click to change");

  EXPECT_FALSE(explainStatus(task("Someday"), vessel, horizon, utc).decidedBy);
}

TEST(StatusReason, SaysWhenTheVesselLacksTheMeter) {
  const Timestamp now = at("2026-06-15T12:00:00Z");
  const Calendar utc = Calendar::utc();
  MaintenanceTask oil = dueAt("Hydraulic oil", 30);
  for (const auto& [source, missing] : {std::pair{HourSource::engine2, false}, {HourSource::hydraulic, true}}) {
    oil.hourSource = source;
    const StatusReason reason = explainStatus(oil, yacht(), StatusHorizon(now, utc), utc);
    EXPECT_EQ(reason.meterMissing, missing);
    const std::string text = reasonText(oil, reason, yacht(), now, utc);
    EXPECT_EQ(text.find("names a meter the vessel lacks") != std::string::npos, missing) << text;
  }
  EXPECT_EQ(explainStatus(oil, yacht(), StatusHorizon(now, utc), utc).status, onTrack) << "an absent meter reads 0";
}

}  // namespace
}  // namespace thalvorn
