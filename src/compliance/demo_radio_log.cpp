#include "compliance/demo_radio_log.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "core/demo_dice.h"
#include "core/demo_tables.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;
using enum GMDSSTestType;

/// A test that is done again and again.
struct Round {
  GMDSSTestType test;
  int everyDays;
  int times;
  int lastDaysAgo;  ///< yesterday at the earliest, so that no hour of today lies before it
  int hour;
  std::string_view remark;  ///< of the tests that were passed with notes
};
constexpr std::array<Round, 5> kRounds{
    {{dailyBatteryCheck, 1, 6, 1, 8, "Reserve battery 24.1 V under load, charger looked at."},
     {weeklyDSCTest, 7, 8, 4, 9, "Acknowledged at the second call only, heavy traffic on 2187.5 kHz."},
     {monthlyEPIRBTest, 29, 4, 12, 10, "Housing washed, hydrostatic release in date until next spring."},
     {monthlySARTTest, 29, 4, 12, 10, "Port SART bracket tightened."},
     {annualRadioSurvey, 360, 2, 96, 11, "Surveyor’s report filed; spare aerial fuse put aboard."}}};

}  // namespace

std::vector<GMDSSTestLog> demoRadioLog(const DemoFleet& fleet, Timestamp now, const Calendar& calendar) {
  std::vector<GMDSSTestLog> log;
  const Timestamp noon = calendar.startOfDay(now) + 12h;
  for (const Vessel& vessel : fleet.vessels) {
    const auto yacht = std::ranges::find(demo::yachts(), vessel.name, [](const auto& one) { return one.vessel.name; });
    if (yacht == demo::yachts().end()) continue;
    const auto add = [&](GMDSSTestType test, int daysAgo, std::chrono::minutes timeOfDay, GMDSSTestResult result,
                         std::string_view notes) {
      const Timestamp day = calendar.startOfDay(calendar.addDays(noon, -daysAgo).value_or(noon));
      log.push_back({.id = Uuid::named(vessel.id, fmt::format("radio test {} {}", rawText(test), daysAgo)),
                     .vesselID = vessel.id,
                     .testType = test,
                     .date = day + timeOfDay,
                     .result = result,
                     .performedBy = std::string(yacht->crew[static_cast<std::size_t>(demo::Role::deck)]),
                     .notes = std::string(notes),
                     .createdAt = day + timeOfDay + 10min});
    };
    const auto number = yacht - demo::yachts().begin();
    for (const Round& round : kRounds) {
      const bool behind = number == 2 && round.test == weeklyDSCTest;
      demo::Dice dice(Uuid::named(vessel.id, rawText(round.test)));
      for (int back = 0; back < round.times; ++back) {
        const int daysAgo = round.lastDaysAgo + (behind ? 9 : 0) + back * round.everyDays;
        const std::chrono::minutes time = std::chrono::hours(round.hour) + std::chrono::minutes(5 * dice.below(11));
        const bool remarked = dice.below(4) == 0;
        const bool failed = number == 1 && round.test == monthlyEPIRBTest && back == 1;
        if (failed) {
          add(round.test, daysAgo, time, GMDSSTestResult::fail,
              "No strobe on self-test. Battery past its date; new one ordered.");
          add(round.test, daysAgo - 3, time, GMDSSTestResult::pass,
              "New battery fitted by the agent, strobe and tone good.");
        } else {
          add(round.test, daysAgo, time, remarked ? GMDSSTestResult::passWithNotes : GMDSSTestResult::pass,
              remarked ? round.remark : std::string_view());
        }
      }
    }
  }
  std::ranges::sort(log, [](const GMDSSTestLog& a, const GMDSSTestLog& b) {
    return a.date != b.date ? a.date > b.date : a.id < b.id;
  });
  return log;
}

}  // namespace thalvorn
