#include "core/meters.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "core/meter_pace.h"
#include "core/status_reason.h"
#include "fixtures.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;
using namespace thalvorn::testing;

constexpr auto kDay = 24h;
const Timestamp kNow = at("2026-06-15T12:00:00Z");

TEST(Meters, OnlyCountUpWhateverIsEntered) {
  std::mt19937 random(11);
  std::uniform_int_distribution<int> hours(-500, 3000);
  Vessel vessel = yacht();
  for (int i = 0; i < 500; ++i) {
    const auto source = static_cast<HourSource>(random() % caseCount<HourSource>);
    const std::vector<MeterReading> entered{{source, hours(random) / 2.0}, {HourSource::engine, std::nullopt}};
    const RaisedMeters raised = raiseMeters(vessel, entered, kNow + std::chrono::minutes(i));
    for (const HourSource meter : allCases<HourSource>())
      ASSERT_GE(raised.vessel.reading(meter), vessel.reading(meter));
    ASSERT_EQ(raised.rose, raised.vessel.reading(source) > vessel.reading(source));
    ASSERT_EQ(raised.rose, raised.vessel.engineHoursUpdatedAt != vessel.engineHoursUpdatedAt);
    vessel = raised.vessel;
  }
}

TEST(Meters, SayWhyAReadingWasLeftOutOrLooksWrong) {
  Vessel vessel = yacht();
  vessel.engineHoursUpdatedAt = kNow - 2 * kDay;
  const auto finding = [&](HourSource source, double hours) -> std::optional<MeterFinding> {
    const auto notice = checkReading(vessel, source, hours, kNow);
    if (!notice) return std::nullopt;
    EXPECT_FALSE(noticeText(*notice).empty());
    return notice->finding;
  };
  EXPECT_EQ(finding(HourSource::engine, 1000), std::nullopt) << "unchanged";
  EXPECT_EQ(finding(HourSource::engine, 1048), std::nullopt);
  EXPECT_EQ(finding(HourSource::engine, 1048.5), MeterFinding::implausible);
  EXPECT_EQ(finding(HourSource::engine, 999.9), MeterFinding::lower);
  EXPECT_EQ(finding(HourSource::engine, -1), MeterFinding::lower);
  EXPECT_EQ(finding(HourSource::engine, std::nan("")), MeterFinding::notANumber);
  EXPECT_EQ(finding(HourSource::engine, std::numeric_limits<double>::infinity()), MeterFinding::notANumber);
  EXPECT_EQ(finding(HourSource::hydraulic, 5), MeterFinding::notFitted);
  vessel.engineHoursUpdatedAt = kNow - 1h;
  EXPECT_EQ(finding(HourSource::engine, 1024), std::nullopt) << "readings are noted once a day";
  vessel.engineHoursUpdatedAt.reset();
  EXPECT_EQ(finding(HourSource::engine, 9000), std::nullopt) << "the first reading may be anything";

  const std::vector<MeterReading> entered{{HourSource::engine, 1500.0}, {HourSource::generator1, 3999.0}};
  vessel.engineHoursUpdatedAt = kNow - kDay;
  const RaisedMeters raised = raiseMeters(vessel, entered, kNow);
  EXPECT_EQ(raised.vessel.engineHours, 1500) << "an implausible reading is taken, with a warning";
  EXPECT_EQ(raised.vessel.generator1Hours, 4000);
  ASSERT_EQ(raised.notices.size(), 2U);
  EXPECT_FALSE(raised.notices[0].ignored());
  EXPECT_TRUE(raised.notices[1].ignored());
}

TEST(Meters, ACorrectionNeedsAReasonAndStaysInTheHistory) {
  const MeterAdjustment typo{
      .source = HourSource::engine2, .hours = 99, .reason = "Typed a digit too many", .author = "Ana"};
  const Vessel corrected = correctMeter(yacht(), typo, kNow).value();
  EXPECT_EQ(corrected.engine2Hours, 99);
  ASSERT_EQ(corrected.meterHistory.size(), 1U);
  const MeterEvent& event = corrected.meterHistory[0];
  EXPECT_EQ(event.change, MeterChange::corrected);
  EXPECT_EQ(event.before, 990);
  EXPECT_EQ(event.after, 99);
  EXPECT_EQ(event.reason, typo.reason);
  EXPECT_EQ(event.at, kNow);

  for (const auto& [hours, reason] : {std::pair{99.0, " \n"}, {-1.0, "x"}, {std::nan(""), "x"}, {990.0, "x"}})
    EXPECT_FALSE(
        correctMeter(yacht(), {.source = HourSource::engine2, .hours = hours, .reason = reason, .author = {}}, kNow));
}

TEST(Meters, TasksFollowAReplacedMeterWithTheSameHoursToRun) {
  const Vessel before = yacht();
  std::vector<MaintenanceTask> tasks{dueAt("Oil", 1006), dueAt("Late", 990), dueAt("Gen oil", 4100),
                                     dueAt("Other", 1006, yacht("Borealis")), dueOn("Survey", kNow)};
  tasks[2].hourSource = HourSource::generator1;
  const Vessel after = replaceMeter(before, {.hours = 0, .reason = "Display failed", .author = {}}, kNow).value();
  EXPECT_EQ(after.meterHistory.back().change, MeterChange::replaced);
  const auto moved = followNewMeter(tasks, before.id, after.meterHistory.back());
  ASSERT_EQ(moved.size(), 2U);
  EXPECT_EQ(moved[0].dueAtEngineHours, 6);
  const StatusHorizon horizon(kNow, Calendar::utc());
  for (std::size_t i = 0; i < moved.size(); ++i)
    EXPECT_EQ(taskStatus(moved[i], after.engineHours, horizon), taskStatus(tasks[i], before.engineHours, horizon));
}

TEST(MeterPace, AveragesTheLastNinetyDaysAndIgnoresTypingErrors) {
  EXPECT_EQ(averageDailyHours({}), std::nullopt);
  EXPECT_EQ(averageDailyHours({{kNow, 1000}, {kNow - 3h, 990}}), std::nullopt) << "less than a day";
  EXPECT_NEAR(averageDailyHours({{kNow - 10 * kDay, 980}, {kNow, 1000}}).value(), 2, 1e-9);
  EXPECT_NEAR(averageDailyHours({{kNow, 1000}, {kNow - 5 * kDay, 9900}, {kNow - 10 * kDay, 980}}).value(), 2, 1e-9);
  // 4 h a day before the window, 1 h a day in it: the reading before the window only sets where it begins.
  EXPECT_NEAR(averageDailyHours({{kNow, 1000}, {kNow - 90 * kDay, 910}, {kNow - 190 * kDay, 510}}).value(), 1, 1e-9);
  EXPECT_NEAR(averageDailyHours({{kNow, 1000}, {kNow - 180 * kDay, 820}}).value(), 1, 1e-9);
}

TEST(MeterPace, IsLearnedFromTheLogsOfEachMeterSinceItWasReplaced) {
  Vessel vessel = yacht();
  vessel = replaceMeter(vessel, {.source = HourSource::engine2, .hours = 970, .reason = "New", .author = {}},
                        kNow - 20 * kDay)
               .value();
  vessel.engine2Hours = 990;
  vessel.engineHoursUpdatedAt = kNow;
  const std::vector<Vessel> vessels{vessel};
  std::vector<MaintenanceTask> tasks{dueAt("Oil", 1100), dueAt("Oil 2", 1100)};
  tasks[1].hourSource = HourSource::engine2;
  const auto log = [&](const MaintenanceTask& of, Timestamp when, double hours) {
    ServiceLog made;
    made.taskID = of.id;
    made.vesselID = of.vesselID;
    made.completedDate = when;
    made.engineHoursAtService = hours;
    return made;
  };
  const std::vector<ServiceLog> logs{log(tasks[0], kNow - 40 * kDay, 880), log(tasks[1], kNow - 40 * kDay, 100),
                                     log(task("Unknown"), kNow - 30 * kDay, 20)};
  Fleet fleet(vessels);
  learnPaces(fleet, tasks, logs, kNow);
  const Fleet::Meters& meters = fleet.meters(vessel.id);
  EXPECT_NEAR(meters.pace(HourSource::engine), 3, 1e-9);
  EXPECT_NEAR(meters.pace(HourSource::engine2), 1, 1e-9);
  EXPECT_EQ(meters.pace(HourSource::generator1), Fleet::kAssumedHoursPerDay);
}

TEST(MeterPace, SpeaksOfEstimatesAsEstimates) {
  const Timestamp reached = projectedDate(1030, 1000, 3, kNow);
  EXPECT_EQ(reached, kNow + 10 * kDay);
  EXPECT_EQ(aboutDate(reached, kNow, Calendar::utc()), "about 25 Jun");
  EXPECT_LT(projectedDate(1e300, 0, 1e-300, kNow), Timestamp::max());
}

}  // namespace
}  // namespace thalvorn
