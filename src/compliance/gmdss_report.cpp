#include "compliance/gmdss_report.h"

#include <fmt/format.h>

#include "base/date_format.h"
#include "core/record_paper.h"

namespace thalvorn {
namespace {

/// A paper that names the vessel in its title, and hence nowhere else.
Document titledWithVessel(std::string_view title, const ReportVessel& vessel, const ReportSetting& setting) {
  Document document = reportOf(fmt::format("{} — {}", title, vessel.vessel.name), std::span(&vessel, 1), setting);
  document.vesselName.clear();
  return document;
}

std::string dayOr(const std::optional<Timestamp>& time, const ReportSetting& setting, std::string_view otherwise) {
  return time ? formatDate(setting.calendar.date(*time)) : std::string(otherwise);
}

/// An expiry date, and below it when it has passed.
Cell expiryCell(const std::optional<Timestamp>& expiry, const ReportSetting& setting) {
  Cell cell(dayOr(expiry, setting, "—"));
  if (expiry && setting.calendar.date(*expiry) < setting.calendar.date(setting.now)) cell.note = "Expired";
  return cell;
}

Table standings(const RadioStation& station, const ReportSetting& setting) {
  Table table{.columns = {{.title = "Test", .weight = 2}, {"Every"}, {"Last test"}, {"Next due"}, {"Standing"}}};
  for (const GMDSSDue& due : station.dues) {
    Cell standing{std::string(displayText(due.standing))};
    standing.strong = !due.inOrder();
    table.rows.push_back({.cells = {std::string(displayText(due.test)), std::string(gmdssPeriod(due.test)),
                                    dayOr(due.last, setting, "—"), dayOr(due.nextDue, setting, "—"), standing}});
  }
  return table;
}

Table equipmentTable(const RadioStation& station) {
  Table table{.columns = {{.title = "Component", .weight = 1.6}, {"Make"}, {"Model"}, {"Serial number"}, {"Location"}},
              .emptyText = "No radio equipment in the equipment register."};
  for (const EquipmentItem& item : station.equipment) {
    const bool named = item.component.find_first_not_of(" \t") != std::string::npos;
    table.rows.push_back({.cells = {named ? item.component : "Unnamed Component", item.make, item.model,
                                    item.serialNumber, item.location}});
  }
  return table;
}

Table licenseTable(const RadioStation& station, const ReportSetting& setting) {
  Table table{.columns = {{.title = "Document", .weight = 1.6}, {"Number"}, {"Issuer"}, {"Issued"}, {"Expires"}},
              .emptyText = "No radio licences or certificates among the ship’s documents."};
  for (const ShipDocument& document : station.licenses)
    table.rows.push_back(
        {.cells = {document.title, document.documentNumber, document.issuingAuthority,
                   dayOr(document.issueDate, setting, "—"), expiryCell(document.expiryDate, setting)}});
  return table;
}

Table operatorTable(const RadioStation& station, const ReportSetting& setting) {
  Table table{.columns = {{.title = "Name", .weight = 1.6}, {"Number"}, {"Issuer"}, {"Issued"}, {"Expires"}},
              .emptyText = "No radio operator’s certificate. Tracked in Crew → Certifications."};
  for (const auto& [name, certificate] : station.operators)
    table.rows.push_back(
        {.cells = {name, certificate.certNumber, certificate.issuingBody, dayOr(certificate.issueDate, setting, "—"),
                   expiryCell(certificate.expiryDate, setting)}});
  return table;
}

}  // namespace

Document gmdssReport(std::span<const GMDSSTestLog> tests, const RadioStation& station, const ReportVessel& vessel,
                     const ReportPeriod& period, const ReportSetting& setting) {
  Document document = titledWithVessel("GMDSS Compliance Log", vessel, setting);
  document.period = periodOf(tests, period, setting.calendar);
  document.headNotes.push_back(orderText(tests));
  GMDSSTotals totals;
  for (const GMDSSTestLog& test : tests) totals.add(test);
  auto& blocks = document.blocks;
  blocks.push_back(Heading{"COMPLIANCE SUMMARY", gmdssStandingText(station.dues)});
  blocks.push_back(standings(station, setting));
  blocks.push_back(
      Paragraph{"As of printing, by all tests of the vessel. A test that was passed, with or without notes, counts "
                "until the next "
                "is due.",
                true});
  blocks.push_back(Heading{"RADIO EQUIPMENT TEST LOG", fmt::format("{} passed, {} of them with notes; {} failed",
                                                                   totals.passed, totals.withNotes, totals.failed)});
  Table log = registerTable<GMDSSTestLog>(tests, {"date", "testType", "result", "performedBy", "notes"}, setting);
  log.columns[1].wraps = log.columns[2].wraps = false;
  log.emptyText = "No test log entries yet.";
  for (std::size_t i = 0; i < tests.size(); ++i) log.rows[i].cells[2].strong = tests[i].result == GMDSSTestResult::fail;
  blocks.push_back(std::move(log));
  blocks.push_back(Heading{"EPIRB / SART / Radio Equipment"});
  blocks.push_back(equipmentTable(station));
  blocks.push_back(Heading{"Radio Licenses & Certificates"});
  blocks.push_back(licenseTable(station, setting));
  blocks.push_back(Heading{"GMDSS Radio Operator Certifications"});
  blocks.push_back(operatorTable(station, setting));
  blocks.push_back(Signatures{{"Radio operator — name, signature, date", "Master — name, signature, date"}});
  return document;
}

Document gmdssEntryReport(const GMDSSTestLog& test, const ReportVessel& vessel, const ReportSetting& setting) {
  using R = GMDSSTestLog;
  Document document = titledWithVessel("GMDSS Compliance Entry", vessel, setting);
  document.period = formatDate(setting.calendar.date(test.date));
  document.blocks.push_back(
      FieldGrid{{labeledField<&R::testType>(test, setting), labeledField<&R::result>(test, setting),
                 labeledField<&R::date>(test, setting), labeledField<&R::performedBy>(test, setting),
                 labeledField<&R::createdAt>(test, setting)},
                2});
  if (!test.notes.empty()) {
    document.blocks.push_back(Heading{"Notes"});
    document.blocks.push_back(Paragraph{test.notes});
  }
  document.blocks.push_back(Signatures{{"Radio operator — name, signature, date", "Master — name, signature, date"}});
  return document;
}

}  // namespace thalvorn
