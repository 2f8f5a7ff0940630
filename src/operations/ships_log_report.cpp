#include "operations/ships_log_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "base/date_format.h"
#include "core/record_paper.h"
#include "operations/ships_log.h"
#include "reports/document/document_text.h"

namespace thalvorn {
namespace {

using Entries = std::span<const ShipsLogEntry>;
using Vessels = std::span<const ReportVessel>;

/// Up to so many vessels are named in the head of an export.
constexpr std::size_t kNamedVessels = 3;

Table logTable(Entries entries, bool litres, const ReportSetting& setting) {
  Table table = litres ? registerTable(entries,
                                       {"date", "route", "distanceNM", "hoursUnderway", "engineHours",
                                        "fuelUsedGallons", "fuelUsedLitres", "weather", "skipper", "notes"},
                                       setting)
                       : registerTable(entries,
                                       {"date", "route", "distanceNM", "hoursUnderway", "engineHours",
                                        "fuelUsedGallons", "weather", "skipper", "notes"},
                                       setting);
  table.columns[2].title = "Distance";
  return table;
}

const ReportVessel* vesselWith(const Uuid& id, Vessels vessels) {
  const auto found = std::ranges::find(vessels, id, [](const ReportVessel& one) { return one.vessel.id; });
  return found != vessels.end() ? &*found : nullptr;
}

/// The calendar aboard the vessel.
Calendar clockOf(const Uuid& vesselID, Vessels vessels, const Calendar& otherwise) {
  const ReportVessel* vessel = vesselWith(vesselID, vessels);
  return vessel != nullptr ? aboard(vessel->profile, otherwise) : otherwise;
}

/// The times of a table of several vessels by each one's clock; where the clocks differ, every time with its offset.
void setTimesAboard(Table& table, Entries entries, Vessels vessels, const Calendar& otherwise) {
  std::set<std::string> zones;
  for (const ReportVessel& one : vessels) zones.insert(aboard(one.profile, otherwise).zoneName());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const LocalTime time = clockOf(entries[i].vesselID, vessels, otherwise).local(entries[i].date);
    Cell& cell = table.rows[i].cells.front();
    cell.text = formatDateTime(time);
    if (zones.size() > 1) cell.note = formatUtcOffset(time.utcOffset);
  }
}

/// The offsets at which the entries' times stand: "UTC+2", "UTC+1 or UTC+2" where the clock was changed between them.
std::string offsetsOf(Entries entries, Vessels vessels, const ReportSetting& setting) {
  std::set<std::chrono::seconds> offsets;
  for (const ShipsLogEntry& entry : entries)
    offsets.insert(clockOf(entry.vesselID, vessels, setting.calendar).local(entry.date).utcOffset);
  if (entries.empty()) offsets.insert(setting.calendar.local(setting.now).utcOffset);
  std::string text;
  for (const auto offset : offsets) text += (text.empty() ? "" : " or ") + formatUtcOffset(offset);
  return text;
}

/// Head, table and sums, which the log of a vessel and the result of a search have in common.
Document logDocument(std::string title, Entries entries, Vessels vessels, std::string_view vesselNames,
                     const ReportPeriod& period, const ReportSetting& setting) {
  Document document = reportOf(std::move(title), vessels, setting);
  document.orientation = Orientation::landscape;
  const ShipsLogTotals totals = totalsOf(entries);
  document.headLine = fmt::format("{}  ·  {}", exportHeader(vesselNames, totals), document.generatedLine);
  if (std::string days = periodOf(entries, period, setting.calendar); !days.empty())
    document.headNotes.push_back(std::move(days));
  document.headNotes.push_back(orderText(entries));

  Table table = logTable(entries, totals.fuelLitres.has_value(), setting);
  if (vessels.size() != 1) {
    setTimesAboard(table, entries, vessels, setting.calendar);
    addVesselColumn(table, entries, vessels);
  }
  document.blocks.push_back(std::move(table));
  document.blocks.push_back(Summary{
      .lines = {{"Passages", fmt::format("{}", totals.passages)},
                {"Total distance", totals.distanceText()},
                {"Hours underway", hoursText(totals.hoursUnderway)},
                {"Total fuel", totals.fuelText()}},
      .remarks = fmt::format("Distance in nautical miles. Times are ship’s time, {}.\nEng Hrs is the reading of "
                             "engine 1; fuel is as entered in the log.",
                             offsetsOf(entries, vessels, setting))});
  return document;
}

std::vector<LabeledText> fieldsOf(const ShipsLogEntry& entry, const ReportSetting& setting) {
  using E = ShipsLogEntry;
  std::vector<LabeledText> fields{labeledField<&E::date>(entry, setting),
                                  labeledField<&E::skipper>(entry, setting),
                                  labeledField<&E::departurePort>(entry, setting),
                                  labeledField<&E::arrivalPort>(entry, setting),
                                  labeledField<&E::distanceNM>(entry, setting),
                                  labeledField<&E::hoursUnderway>(entry, setting),
                                  labeledField<&E::engineHours>(entry, setting),
                                  labeledField<&E::crewCount>(entry, setting),
                                  labeledField<&E::fuelUsedGallons>(entry, setting),
                                  labeledField<&E::fuelUsedLitres>(entry, setting),
                                  labeledField<&E::windSpeedKnots>(entry, setting),
                                  labeledField<&E::windDirection>(entry, setting),
                                  labeledField<&E::waveHeightFeet>(entry, setting),
                                  labeledField<&E::seaState>(entry, setting),
                                  labeledField<&E::weather>(entry, setting)};
  fields.front().value += " " + formatUtcOffset(setting.calendar.local(entry.date).utcOffset);
  return fields;
}

Table rosterTable(const ShipsLogEntry& entry) {
  Table table{.columns = {{.title = "Name", .weight = 2}, {.title = "Role"}, {.title = "Watch"}},
              .emptyText = std::string(kNoCrewOnRoster)};
  for (const CrewDutyEntry& crew : entry.crewRoster)
    table.rows.push_back({.cells = {std::string(printedName(crew)), std::string(crew.role.display()), crew.watch}});
  return table;
}

Table manifestTable(const ShipsLogEntry& entry) {
  Table table{.columns = {{.title = "Guest name"}, {.title = "Note", .weight = 2}}, .emptyText = "No guests added."};
  for (const GuestManifestEntry& guest : entry.guests)
    table.rows.push_back({.cells = {std::string(printedName(guest)), guest.note}});
  return table;
}

Table journalTable(const ShipsLogEntry& entry, const ReportSetting& setting) {
  Table table{.columns = {{.title = "Time", .wraps = false},
                          {.title = "Category", .wraps = false},
                          {.title = "Author"},
                          {.title = "Entry", .weight = 4}},
              .emptyText = std::string(kNoJournal)};
  for (TripLogEntry& line : journalInOrder(entry))
    table.rows.push_back(
        {.cells = {formatDateTime(setting.calendar.local(line.timestamp)), std::string(line.category.display()),
                   std::move(line.author), std::move(line.text)}});
  return table;
}

std::string entryTitle(const ShipsLogEntry& entry, const ReportSetting& setting) {
  return "Ship's Log Entry — " + formatDate(setting.calendar.date(entry.date));
}

}  // namespace

Document shipsLogReport(Entries entries, const ReportVessel& vessel, const ReportPeriod& period,
                        const ReportSetting& setting) {
  Document document = logDocument("Ship's Log", entries, std::span(&vessel, 1), vessel.vessel.name, period, setting);
  document.fileName = vessel.vessel.name + " Ships Log";
  document.blocks.push_back(Signatures{{"Officer of the watch — name, signature, date",
                                        "Chief Engineer — name, signature, date", "Master — name, signature, date"}});
  return document;
}

Document shipsLogSearchExport(Entries entries, Vessels vessels, const ReportPeriod& period,
                              const ReportSetting& setting) {
  std::string names;
  for (const ReportVessel& one : vessels) names += (names.empty() ? "" : ", ") + one.vessel.name;
  if (vessels.size() > kNamedVessels) names = fmt::format("{} vessels", vessels.size());
  Document document = logDocument("Ship's Log — Search Export", entries, vessels, names, period, setting);
  document.fileName = document.title;
  return document;
}

Document tripReports(Entries entries, Vessels vessels, const ReportSetting& setting) {
  Document document = reportOf("Trip Reports", vessels, setting);
  // Each page block names its vessel itself where there are several.
  const bool several = vessels.size() != 1;
  const bool alone = entries.size() == 1;
  const auto settingOf = [&](const ShipsLogEntry& entry) {
    ReportSetting own = setting;
    own.calendar = clockOf(entry.vesselID, vessels, setting.calendar);
    return own;
  };
  if (alone) document.title = entryTitle(entries.front(), settingOf(entries.front()));
  document.headNotes.push_back(orderText(entries));
  if (alone) document.headNotes.back() = routeText(entries.front());
  if (entries.empty()) document.blocks.push_back(Paragraph{"No entries"});
  for (const ShipsLogEntry& entry : entries) {
    const ReportSetting own = settingOf(entry);
    if (!document.blocks.empty()) document.blocks.push_back(PageBreak{});
    if (!alone) document.blocks.push_back(Heading{entryTitle(entry, own), routeText(entry)});
    if (several) {
      std::vector<LabeledText> particulars;
      if (const ReportVessel* vessel = vesselWith(entry.vesselID, vessels)) {
        particulars = labeled(particularsOf(vessel->profile, setting.numbers));
        particulars.insert(particulars.begin(), {"Vessel", vessel->vessel.name});
      }
      document.blocks.push_back(FieldGrid{std::move(particulars), 2});
    }
    document.blocks.push_back(FieldGrid{fieldsOf(entry, own), 2});
    if (!entry.notes.empty()) {
      document.blocks.push_back(Heading{"Notes"});
      document.blocks.push_back(Paragraph{entry.notes});
    }
    document.blocks.push_back(Heading{"Crew duty roster"});
    document.blocks.push_back(rosterTable(entry));
    document.blocks.push_back(Heading{"Guest passenger manifest"});
    document.blocks.push_back(manifestTable(entry));
    document.blocks.push_back(Heading{"Trip Journal", journalCountText(entry)});
    document.blocks.push_back(journalTable(entry, own));
    document.blocks.push_back(
        Signatures{{"Officer of the watch — name, signature, date", "Master — name, signature, date"}});
  }
  return document;
}

std::string shipsLogCsv(Entries entries, Vessels vessels, const Calendar& calendar, const CsvFormat& format) {
  return recordsCsv(
      entries, calendar,
      {.format = format,
       .vesselName = [vessels](const Uuid& id) { return std::string(vesselNameOf(id, vessels)); },
       .calendarAboard = [vessels, &calendar](const Uuid& id) { return clockOf(id, vessels, calendar); }});
}

}  // namespace thalvorn
