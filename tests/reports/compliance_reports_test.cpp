// The papers of the radio test log, read back from their PDF files.

#include <gtest/gtest.h>

#include "compliance/gmdss_report.h"
#include "read_back.h"

namespace thalvorn {
namespace {

Timestamp at(std::string_view text) { return parseTimestamp(text).value(); }

ReportSetting setting() {
  return {.now = at("2026-11-21T08:40:00Z"), .calendar = Calendar::inZone("Europe/Rome").value()};
}

ReportVessel meridian() {
  ReportVessel one;
  one.vessel = {.id = Uuid::named(Uuid{}, "Meridian"), .name = "M/Y Meridian"};
  one.profile.callSign = "ZGQM4";
  return one;
}

GMDSSTestLog weekly(std::string_view date, GMDSSTestResult result = GMDSSTestResult::pass) {
  return {.id = Uuid::random(),
          .vesselID = meridian().vessel.id,
          .testType = GMDSSTestType::weeklyDSCTest,
          .date = at(date),
          .result = result,
          .performedBy = "Jonas Lindqvist",
          .notes = "Acknowledged by MRCC",
          .createdAt = at("2026-11-18T09:00:00Z")};
}

TEST(GMDSSPaper, TheLogShowsStandingsTestsAndTheStation) {
  const ReportVessel vessel = meridian();
  const std::vector<GMDSSTestLog> tests{weekly("2026-11-18T08:30:00Z", GMDSSTestResult::passWithNotes),
                                        weekly("2026-11-11T08:30:00Z", GMDSSTestResult::fail)};
  EquipmentItem unnamed{.vesselID = vessel.vessel.id, .component = "  ", .make = "Sailor"};
  unnamed.system = EquipmentSystem::communications;
  ShipDocument license{
      .vesselID = vessel.vessel.id, .title = "Ship radio licence", .category = DocumentCategory::radio};
  license.expiryDate = at("2026-11-19T23:00:00Z");
  CrewMember officer;
  officer.vesselID = vessel.vessel.id;
  officer.lastName = "Lindqvist";
  officer.certifications = {{.type = CertificationType::gmdssRadio, .issuingBody = "MCA", .certNumber = "GOC 4711"}};
  const RadioStation station = radioStation(vessel.vessel.id, tests, std::span(&unnamed, 1), std::span(&license, 1),
                                            std::span(&officer, 1), setting().now, setting().calendar);
  const Document report = gmdssReport(tests, station, vessel, {}, setting());
  EXPECT_EQ(reportFileName(report), "GMDSS Compliance Log — M Y Meridian");
  const std::string printed = oneBlank(printedText(report));
  EXPECT_EQ(count(printed, "GMDSS Compliance Log — M/Y Meridian"), 2U) << "at the head and the foot";
  expectInOrder(printed, {"2 test log entries, newest first",
                          "11 Nov 2026 – 18 Nov 2026",
                          "ZGQM4",
                          "COMPLIANCE SUMMARY",
                          "4 never passed",
                          "Weekly DSC Test Call Weekly 18 Nov 2026 25 Nov 2026 In date",
                          "Annual Radio Survey Annual — —",
                          "RADIO EQUIPMENT TEST LOG",
                          "1 passed, 1 of them with notes; 1 failed",
                          "18 Nov 2026 09:30",
                          "Weekly DSC Test Call Pass with notes Jonas Lindqvist",
                          "Acknowledged by MRCC",
                          "11 Nov 2026 09:30",
                          "Fail",
                          "EPIRB / SART / Radio Equipment",
                          "Unnamed Component Sailor",
                          "Radio Licenses & Certificates",
                          "Ship radio licence",
                          "20 Nov 2026",
                          "Expired",
                          "GMDSS Radio Operator Certifications",
                          "Lindqvist GOC 4711 MCA — —",
                          "Master — name, signature, date"});
  expectInOrder(printedText(gmdssReport({}, {}, vessel, {at("2026-05-01"), {}}, setting())),
                {"from 1 May 2026", "No test log entries yet.", "No radio equipment", "No radio licences",
                 "Tracked in Crew → Certifications"});
}

TEST(GMDSSPaper, AnEntryPrintsEveryField) {
  const Document report = gmdssEntryReport(weekly("2026-11-18T08:30:00Z"), meridian(), setting());
  expectInOrder(oneBlank(printedText(report)),
                {"GMDSS Compliance Entry — M/Y Meridian", "Test Weekly DSC Test Call", "Result Pass",
                 "Date 18 Nov 2026 09:30", "Performed by Jonas Lindqvist", "Entered 18 Nov 2026 10:00", "Notes",
                 "Acknowledged by MRCC", "Radio operator — name, signature, date"});
}

}  // namespace
}  // namespace thalvorn
