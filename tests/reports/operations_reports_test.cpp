// The papers of the ship's log and the bunkering register, read back from their PDF files.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "operations/bunkering_report.h"
#include "operations/ships_log_report.h"
#include "read_back.h"

namespace thalvorn {
namespace {

Timestamp at(std::string_view text) { return parseTimestamp(text).value(); }

ReportSetting setting() {
  return {.now = at("2026-11-21T08:40:00Z"), .calendar = Calendar::inZone("Europe/Rome").value()};
}

ReportVessel vesselNamed(std::string name) {
  ReportVessel one;
  one.vessel.id = Uuid::named(Uuid{}, name);
  one.vessel.name = std::move(name);
  one.profile.flag = "Cayman Islands";
  one.profile.imoNumber = "9990014";
  one.profile.callSign = "ZGQM4";
  return one;
}

ShipsLogEntry fullEntry(const ReportVessel& vessel) {
  ShipsLogEntry entry{.id = Uuid::random(), .vesselID = vessel.vessel.id, .date = at("2026-06-01T06:05:00Z")};
  entry.engineHours = 4812.4;
  entry.hoursUnderway = 7.5;
  entry.departurePort = "Antibes";
  entry.arrivalPort = "Calvi";
  entry.distanceNM = 92.4;
  entry.fuelUsedGallons = 410;
  entry.fuelUsedLitres = 1552;
  entry.windSpeedKnots = 17.6;
  entry.windDirection = "SW";
  entry.waveHeightFeet = 3.25;
  entry.seaState = SeaState::veryRough;
  entry.weather = WeatherCondition::partCloud;
  entry.crewCount = 7;
  entry.notes = "Slowed off the cape.\nWatermaker run.";
  entry.skipper = "Giulia Marchetti";
  entry.guests = {{.id = Uuid::random(), .name = "  ", .note = "VIP"},
                  {.id = Uuid::random(), .name = "Mrs Brown", .note = ""}};
  entry.crewRoster = {{.id = Uuid::random(), .name = "Tom Ashdown", .role = CrewDutyRole::mate, .watch = "0000–0400"}};
  entry.tripLog = {{.id = Uuid::random(),
                    .timestamp = at("2026-06-01T12:00:00Z"),
                    .category = TripLogCategory::weather,
                    .author = "Tom",
                    .text = "Wind SW 5"},
                   {.id = Uuid::random(),
                    .timestamp = at("2026-06-01T06:10:00Z"),
                    .category = TripLogCategory::navigation,
                    .author = "",
                    .text = "Let go all lines"}};
  return entry;
}

TEST(ShipsLogPaper, TheLogOfAVesselHasItsColumnsAndSums) {
  const ReportVessel vessel = vesselNamed("M/Y Meridian");
  std::vector<ShipsLogEntry> entries{fullEntry(vessel), fullEntry(vessel)};
  entries[1].date = at("2026-05-30T22:30:00Z");
  entries[1].distanceNM = {};
  entries[1].fuelUsedGallons = {};
  entries[1].fuelUsedLitres = {};
  entries[0].fuelUsedLitres = {};
  const Document report = shipsLogReport(entries, vessel, {}, setting());
  EXPECT_EQ(report.fileName, "M/Y Meridian Ships Log");
  expectInOrder(
      oneBlank(printedText(report)),
      {"Ship's Log", "31 May 2026 – 1 Jun 2026", "2 log entries, newest first",
       "Vessel: M/Y Meridian · Passages: 2 · Total NM: 92 · Underway Hrs: 15.0 · Fuel Used: 410 gal · "
       "Generated: 21 Nov 2026 09:40 UTC+1",
       "Flag", "Cayman Islands", "9990014", "Date Route Distance Hrs Underway Eng Hrs Fuel (gal) Weather Captain Notes",
       "1 Jun 2026 08:05 Antibes → Calvi 92.4 7.5 4,812.4 410.0 Partly Cloudy Giulia Marchetti",
       "31 May 2026 00:30 Antibes → Calvi 7.5 4,812.4", "SUMMARY", "Passages 2", "Total distance 92 nm",
       "Hours underway 15.0 hrs", "Total fuel 410 gal", "Officer of the watch — name, signature, date", "Page 1 of 1"});

  entries[1].fuelUsedLitres = 1552;
  expectInOrder(oneBlank(printedText(shipsLogReport(entries, vessel, {}, setting()))),
                {"Fuel Used: 410 gal / 1552 L", "Fuel (gal) Fuel (L)", "1,552.0"});
  const ReportPeriod period{at("2026-05-01"), {}};
  expectInOrder(oneBlank(printedText(shipsLogReport({}, vessel, period, setting()))),
                {"from 1 May 2026", "0 log entries", "Passages: 0", "No entries", "Total distance 0 nm"});
}

TEST(ShipsLogPaper, ALongLogRepeatsItsHeadAndLosesNoEntry) {
  const ReportVessel vessel = vesselNamed("M/Y Meridian");
  std::vector<ShipsLogEntry> entries;
  for (int i = 0; i < 300; ++i) {
    ShipsLogEntry entry = fullEntry(vessel);
    entry.date += std::chrono::hours(24 * i);
    entry.notes = fmt::format("note{}x {}", i, std::string(static_cast<std::size_t>(i % 7) * 40, 'w'));
    entries.push_back(std::move(entry));
  }
  const std::string text = printedText(shipsLogReport(entries, vessel, {}, setting()));
  for (int i = 0; i < 300; ++i) EXPECT_EQ(count(text, fmt::format("note{}x", i)), 1U);
  EXPECT_EQ(count(text, "Hrs Underway"), count(text, "\f"));
  EXPECT_NE(text.find("300 log entries, oldest first"), std::string::npos);
}

TEST(ShipsLogPaper, ASearchNamesTheVesselOfEachEntry) {
  const std::vector<ReportVessel> vessels{vesselNamed("M/Y Meridian"), vesselNamed("S/Y Aurora")};
  const std::vector<ShipsLogEntry> entries{fullEntry(vessels[1]), fullEntry(vessels[0])};
  expectInOrder(oneBlank(printedText(shipsLogSearchExport(entries, vessels, {}, setting()))),
                {"Ship's Log — Search Export", "1 Jun 2026\n", "Vessel: M/Y Meridian, S/Y Aurora · Passages: 2",
                 "Date Vessel Route", "08:05 S/Y Aurora", "08:05 M/Y", "Times are ship’s time, UTC+2."});
  const std::string csv = shipsLogCsv(entries, vessels, setting().calendar);
  EXPECT_NE(csv.find("\r\nS/Y Aurora,2026-06-01 08:05,"), std::string::npos);
  const auto read = recordsFromCsv<ShipsLogEntry>(csv, vessels[0].vessel.id, setting().calendar);
  EXPECT_EQ(read.records, entries);
  EXPECT_TRUE(read.problems.empty() && read.ignoredColumns.empty());
}

TEST(ShipsLogPaper, TimesStandByTheClockAboardEachVessel) {
  std::vector<ReportVessel> vessels{vesselNamed("M/Y Meridian"), vesselNamed("S/Y Aurora")};
  vessels[1].profile.timeZone = "America/New_York";
  const std::vector<ShipsLogEntry> entries{fullEntry(vessels[1]), fullEntry(vessels[0])};
  const std::string search = oneBlank(printedText(shipsLogSearchExport(entries, vessels, {}, setting())));
  expectInOrder(search, {"02:05 S/Y Aurora", "UTC−4", "08:05 M/Y", "UTC+2", "ship’s time, UTC−4 or UTC+2."});
  expectInOrder(oneBlank(printedText(tripReports(entries, vessels, setting()))),
                {"1 Jun 2026 02:05 UTC−4", "1 Jun 2026 08:00", "1 Jun 2026 08:05 UTC+2", "1 Jun 2026 14:00"});
}

TEST(ShipsLogPaper, TripReportsPrintEveryFieldOfEveryEntryOnItsOwnPage) {
  const std::vector<ReportVessel> vessels{vesselNamed("M/Y Meridian"), vesselNamed("S/Y Aurora")};
  std::vector<ShipsLogEntry> entries{fullEntry(vessels[0]), {.id = Uuid::random(), .vesselID = vessels[1].vessel.id}};
  entries[1].date = at("2026-06-03T06:05:00Z");
  const std::string printed = oneBlank(printedText(tripReports(entries, vessels, setting())));
  EXPECT_EQ(count(printed, "\f"), 2U);
  expectInOrder(printed, {"Trip Reports",
                          "Ship's Log Entry — 1 Jun 2026",
                          "Antibes → Calvi",
                          "Vessel M/Y Meridian",
                          "IMO number",
                          "9990014",
                          "Date & time 1 Jun 2026 08:05 UTC+2",
                          "Captain Giulia Marchetti",
                          "Departure port Antibes",
                          "Arrival port Calvi",
                          "Distance (NM) 92.4 nm",
                          "Voyage Hours 7.5 hrs",
                          "Eng Hrs 4812.4 hrs",
                          "Crew aboard 7",
                          "Fuel Used (gal) 410.0 gal",
                          "Fuel Used (L) 1,552.0 L",
                          "Wind (kts) 18 kts",
                          "Wind direction SW",
                          "Wave (ft) 3.",
                          "Sea state Very Rough",
                          "Weather Partly Cloudy",
                          "Notes",
                          "Slowed off the cape.",
                          "Watermaker run.",
                          "Tom Ashdown Mate 0000–0400",
                          "Unnamed guest VIP",
                          "Mrs Brown",
                          "Trip Journal",
                          "2 entries",
                          "1 Jun 2026 08:10 Navigation Let go all lines",
                          "1 Jun 2026 14:00 Weather Update Tom Wind SW 5",
                          "Master — name, signature, date",
                          "\f",
                          "Ship's Log Entry — 3 Jun 2026",
                          "Vessel S/Y Aurora",
                          "Distance (NM) —",
                          "No crew on roster",
                          "No guests added.",
                          "No journal entries yet",
                          "Master — name, signature, date"});
  // One trip alone is titled by its day and headed by its vessel.
  const Document alone = tripReports(std::span(entries).first(1), std::span(vessels).first(1), setting());
  EXPECT_EQ(alone.title, "Ship's Log Entry — 1 Jun 2026");
  EXPECT_EQ(count(printedText(alone), "Ship's Log Entry — 1 Jun 2026"), 2U) << "at the head and the foot";
  expectInOrder(printedText(tripReports({}, vessels, setting())), {"Trip Reports", "No entries"});
}

std::vector<BunkeringRecord> deliveries(const ReportVessel& vessel) {
  BunkeringRecord one{.id = Uuid::random(),
                      .vesselID = vessel.vessel.id,
                      .vesselName = "M/Y Meridian",
                      .vesselIMO = "9990014",
                      .supplierName = "Harbor Bunkers Inc.",
                      .supplierContact = "+1 305 555 0100",
                      .date = at("2026-11-14T10:00:00Z"),
                      .port = "Port of Miami",
                      .location = "Berth 7",
                      .fuelType = FuelType::mgo,
                      .quantityGallons = 2400,
                      .pricePerGallon = 3.912,
                      .totalCharge = 9602.1,
                      .currency = "USD",
                      .invoiceNumber = "INV-20418",
                      .notes = "Sample bottle no. 4 kept aboard"};
  BunkeringRecord two = one;
  two.date = at("2026-11-02T10:00:00Z");
  two.port = "Nassau";
  two.totalCharge = 100;
  two.quantityGallons = 20;
  two.notes = "";
  return {one, two};
}

TEST(BunkeringPaper, TheReportAddsUpWhatWasInvoiced) {
  const ReportVessel vessel = vesselNamed("M/Y Meridian");
  std::vector<BunkeringRecord> records = deliveries(vessel);
  const Document report = bunkeringReport(records, vessel, {}, setting());
  EXPECT_EQ(report.fileName, "BunkeringReport_20261121_094000");
  const std::string printed = printedText(report);
  expectInOrder(oneBlank(printed),
                {"⛽ Fuel Bunkering Report", "Generated: 21 Nov 2026 09:40 UTC+1", "2 bunkering records, newest first",
                 "2 Nov 2026 – 14 Nov 2026", "9990014", "14 Nov 2026", "Port of Miami", "Berth 7", "Harbor Bunkers",
                 "MGO", "2,400.0 3.912 USD 9,388.80 USD 9,602.10", "INV-20418", "Sample bottle no. 4 kept aboard",
                 "Nassau", "SUMMARY", "Total Fuel Cost: USD 9,702.10", "Fuel Bunkering Report | Page 1 of 1"});
  EXPECT_EQ(report.title, "⛽  Fuel Bunkering Report");
  const auto& lines = std::get<Summary>(report.blocks[1]).lines;
  EXPECT_EQ(lines[0].label, "Total Records: 2     Total Quantity: 2,420.0 gal");
  EXPECT_EQ(count(printed, "Invoiced in"), 0U);
  EXPECT_EQ(count(printed, " L\n"), 0U);

  // Other currencies stay apart, and the paper says what its one figure is.
  records[1].currency = "EUR";
  ReportSetting metric = setting();
  metric.litres = true;
  expectInOrder(oneBlank(printedText(bunkeringReport(records, vessel, {}, metric))),
                {"9,085.0 L", "EUR 100.00", "Quantity in litres 9,160.7 L", "Total Fuel Cost: USD 9,702.10",
                 "Invoiced in EUR EUR 100.00", "Invoiced in USD USD 9,602.10"});
  EXPECT_NE(printedText(bunkeringReport(records, vessel, {}, metric)).find("without converting"), std::string::npos);
  expectInOrder(oneBlank(printedText(bunkeringReport({}, vessel, {}, setting()))),
                {"0 bunkering records", "No entries", "Total Records: 0", "Total Fuel Cost: USD 0.00"});
}

TEST(BunkeringPaper, TheRecordPrintsEveryField) {
  const ReportVessel vessel = vesselNamed("M/Y Meridian");
  ReportSetting metric = setting();
  metric.litres = true;
  expectInOrder(oneBlank(printedText(bunkeringRecordReport(deliveries(vessel)[0], vessel, metric))),
                {"Bunkering Record", "M/Y Meridian · 14 Nov 2026", "Vessel M/Y Meridian", "IMO number 9990014",
                 "Supplier / Bunker Co. Harbor Bunkers Inc.", "Supplier contact +1 305 555 0100", "Date 14 Nov 2026",
                 "Port Port of Miami", "Berth / anchorage Berth 7", "Fuel type MGO", "Quantity 2,400.0 gal (9,085.0 L)",
                 "Price per gallon USD 3.912", "Calculated total USD 9,388.80", "Total charge (inc. tax) USD 9,602.10",
                 "Currency USD", "Invoice Number INV-20418", "Notes", "Sample bottle no. 4 kept aboard",
                 "Supplier’s representative"});
}

}  // namespace
}  // namespace thalvorn
