#include "compliance/gmdss.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "compliance/demo_radio_log.h"
#include "compliance/gmdss_register.h"
#include "core/record_csv.h"

namespace thalvorn {
namespace {

using enum GMDSSTestType;

const Uuid kVessel = Uuid::named(Uuid{}, "Aurelia");
const Calendar kRome = Calendar::inZone("Europe/Rome").value();

Timestamp at(std::string_view text) { return parseTimestamp(text).value(); }

GMDSSTestLog test(GMDSSTestType type, std::string_view date, GMDSSTestResult result = GMDSSTestResult::pass) {
  return {.id = Uuid::random(),
          .vesselID = kVessel,
          .testType = type,
          .date = at(date),
          .result = result,
          .createdAt = at(date)};
}

GMDSSDue dueOf(GMDSSTestType type, const std::vector<GMDSSTestLog>& tests, Timestamp now) {
  const std::vector<GMDSSDue> dues = gmdssDues(kVessel, tests, now, kRome);
  return *std::ranges::find(dues, type, &GMDSSDue::test);
}

TEST(GMDSS, ATestIsDueAgainAfterItsPeriodByTheCalendarAboard) {
  const struct {
    GMDSSTestType test;
    std::string_view passed;
    std::string_view due;  ///< start of the day in Rome
  } cases[]{{dailyBatteryCheck, "2026-03-28T08:00:00Z", "2026-03-28T23:00:00Z"},
            {dailyBatteryCheck, "2026-03-28T23:30:00Z", "2026-03-29T22:00:00Z"},  // past midnight, clocks change
            {weeklyDSCTest, "2026-12-28T08:00:00Z", "2027-01-03T23:00:00Z"},
            {monthlyEPIRBTest, "2026-01-31T08:00:00Z", "2026-02-27T23:00:00Z"},
            {monthlySARTTest, "2026-04-30T08:00:00Z", "2026-05-29T22:00:00Z"},
            {annualRadioSurvey, "2028-02-29T08:00:00Z", "2029-02-27T23:00:00Z"}};
  for (const auto& [type, passed, due] : cases) {
    const std::vector<GMDSSTestLog> tests{test(type, passed)};
    const Timestamp start = at(due);
    const auto standing = [&](Timestamp now) { return dueOf(type, tests, now).standing; };
    EXPECT_EQ(dueOf(type, tests, at(passed)).nextDue, start) << rawText(type) << " " << passed;
    EXPECT_EQ(standing(start - std::chrono::seconds(1)), GMDSSStanding::inDate);
    EXPECT_EQ(standing(start), GMDSSStanding::dueToday);
    EXPECT_EQ(standing(start + std::chrono::hours(25)), GMDSSStanding::overdue);
  }
}

TEST(GMDSS, AFailedTestStaysFailedUntilItIsPassed) {
  std::vector<GMDSSTestLog> tests{test(monthlyEPIRBTest, "2026-10-20T08:00:00Z"),
                                  test(monthlyEPIRBTest, "2026-11-10T08:00:00Z", GMDSSTestResult::fail)};
  GMDSSDue due = dueOf(monthlyEPIRBTest, tests, at("2026-11-12T08:00:00Z"));
  EXPECT_EQ(due.standing, GMDSSStanding::failed);
  EXPECT_EQ(due.last, tests[1].date);
  EXPECT_EQ(due.nextDue, at("2026-11-19T23:00:00Z")) << "counted from when it was passed";

  // Entered later for the same minute, it counts.
  tests.push_back(test(monthlyEPIRBTest, "2026-11-10T08:00:00Z", GMDSSTestResult::passWithNotes));
  tests.back().createdAt += std::chrono::minutes(5);
  due = dueOf(monthlyEPIRBTest, tests, at("2026-11-12T08:00:00Z"));
  EXPECT_EQ(due.standing, GMDSSStanding::inDate);
  EXPECT_EQ(due.nextDue, at("2026-12-09T23:00:00Z"));
}

TEST(GMDSS, TestsOfOtherVesselsOfTomorrowAndOfUnknownResultCountForNothing) {
  std::vector<GMDSSTestLog> tests{test(weeklyDSCTest, "2026-11-10T08:00:00Z"),
                                  test(weeklyDSCTest, "2026-11-13T08:00:00Z"), test(other, "2026-11-10T08:00:00Z")};
  tests[0].vesselID = Uuid::random();
  EXPECT_EQ(dueOf(weeklyDSCTest, tests, at("2026-11-12T08:00:00Z")).standing, GMDSSStanding::never);
  tests.push_back(test(weeklyDSCTest, "2026-11-11T08:00:00Z"));
  tests.back().result = Choice<GMDSSTestResult>::fromRaw("deferred");
  const GMDSSDue due = dueOf(weeklyDSCTest, tests, at("2026-11-12T08:00:00Z"));
  EXPECT_EQ(due.last, tests.back().date);
  EXPECT_FALSE(due.nextDue || due.inOrder());

  const auto dues = gmdssDues(kVessel, tests, at("2026-11-12T08:00:00Z"), kRome);
  EXPECT_EQ(gmdssStandingText(dues), "5 never passed");
  EXPECT_EQ(gmdssStandingText({}), "All in date");
  EXPECT_EQ(gmdssPeriod(other), "");
}

TEST(GMDSS, TheStationHoldsWhatConcernsTheRadio) {
  const auto item = [](std::string component, EquipmentSystem system) {
    EquipmentItem made{.id = Uuid::random(), .vesselID = kVessel, .component = std::move(component)};
    made.system = system;
    return made;
  };
  std::vector<EquipmentItem> equipment{
      item("VHF 1", EquipmentSystem::communications), item("Epirb, port wing", EquipmentSystem::safety),
      item("Liferaft", EquipmentSystem::safety), item("", EquipmentSystem::communications)};
  equipment.push_back(equipment[0]);
  equipment.back().vesselID = Uuid::random();
  std::vector<ShipDocument> documents(2, ShipDocument{.vesselID = kVessel, .title = "Ship radio licence"});
  documents[0].category = DocumentCategory::radio;
  CrewMember officer;
  officer.vesselID = kVessel;
  officer.firstName = "Jonas";
  officer.lastName = "Lindqvist";
  officer.certifications = {{.type = CertificationType::gmdssRadio, .certNumber = "GOC 1"},
                            {.type = CertificationType::gmdssRadio, .certNumber = "old", .isArchived = true},
                            {.type = CertificationType::medical, .certNumber = "ENG1"}};
  CrewMember ashore = officer;
  ashore.isActive = false;
  const RadioStation station =
      radioStation(kVessel, {}, equipment, documents, std::vector{officer, ashore}, at("2026-11-12T08:00:00Z"), kRome);
  ASSERT_EQ(station.equipment.size(), 3U);
  EXPECT_EQ(station.equipment[1].component, "Epirb, port wing");
  EXPECT_EQ(station.licenses.size(), 1U);
  ASSERT_EQ(station.operators.size(), 1U);
  EXPECT_EQ(station.operators[0].name, "Jonas Lindqvist");
  EXPECT_EQ(station.operators[0].certificate.certNumber, "GOC 1");
}

TEST(GMDSS, ASpreadsheetWithoutTimesOfEntryTakesThoseOfTheTests) {
  const auto read = recordsFromCsv<GMDSSTestLog>(
      "Date,Test,Result,Performed by\n2026-11-10 09:00,Weekly DSC Test Call,Pass with notes,Zoë\n", kVessel, kRome);
  ASSERT_EQ(read.records.size(), 1U);
  EXPECT_EQ(read.records[0].testType, weeklyDSCTest);
  EXPECT_EQ(read.records[0].result, GMDSSTestResult::passWithNotes);
  EXPECT_EQ(read.records[0].date, at("2026-11-10T08:00:00Z"));
  EXPECT_EQ(read.records[0].createdAt, read.records[0].date);
}

TEST(DemoRadioLog, TheYachtsDifferAndNothingLiesInTheFuture) {
  for (const std::string_view moment : {"2026-11-20T23:05:00Z", "2026-03-29T00:30:00Z", "2028-02-29T22:59:59Z"}) {
    const Timestamp now = at(moment);
    const DemoFleet fleet = demoFleet(now, kRome);
    const std::vector<GMDSSTestLog> log = demoRadioLog(fleet, now, kRome);
    EXPECT_EQ(log, demoRadioLog(fleet, kRome.startOfDay(now) + std::chrono::hours(20), kRome));
    std::set<Uuid> ids;
    for (const GMDSSTestLog& one : log) {
      EXPECT_TRUE(ids.insert(one.id).second);
      EXPECT_LT(one.createdAt, now);
      EXPECT_FALSE(one.performedBy.empty() || (one.result != GMDSSTestResult::pass && one.notes.empty()));
    }
    std::vector<std::string> standings;
    for (const Vessel& vessel : fleet.vessels)
      standings.push_back(gmdssStandingText(gmdssDues(vessel.id, log, now, kRome)));
    std::ranges::sort(standings);
    EXPECT_EQ(standings, (std::vector<std::string>{"1 overdue", "All in date", "All in date"}));
    EXPECT_EQ(std::ranges::count(log, GMDSSTestResult::fail, &GMDSSTestLog::result), 1);
  }
}

}  // namespace
}  // namespace thalvorn
