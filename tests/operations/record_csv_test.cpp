#include "core/record_csv.h"

#include <gtest/gtest.h>

#include "operations/bunkering_register.h"
#include "operations/ships_log_register.h"

namespace thalvorn {
namespace {

Timestamp at(std::string_view text) { return parseTimestamp(text).value(); }

const Uuid kVessel = Uuid::named(Uuid{}, "Aurelia");
const Calendar kRome = Calendar::inZone("Europe/Rome").value();

/// An entry in which every field says something, with all that makes CSV hard.
ShipsLogEntry fullEntry() {
  ShipsLogEntry entry{.id = Uuid::named(kVessel, "entry"), .vesselID = kVessel, .date = at("2026-10-25T01:30:15Z")};
  entry.engineHours = 1234.56789;
  entry.hoursUnderway = 7.5;
  entry.departurePort = "Porto \"Cervo\", berth 7";
  entry.arrivalPort = "=1+2";
  entry.distanceNM = 0.1;
  entry.fuelUsedLitres = 1e-7;
  entry.windDirection = " SW ";
  entry.seaState = SeaState::veryRough;
  entry.weather = Choice<WeatherCondition>::fromRaw("Hail, heavy");
  entry.crewCount = 6;
  entry.notes = "Two lines\r\nwith 'quotes'; and ⚓ άγκυρα";
  entry.skipper = "-Ana";
  entry.guests = {{.id = Uuid::named(kVessel, "guest"), .name = "", .note = "VIP, \"owner\""}};
  entry.crewRoster = {
      {.id = Uuid::named(kVessel, "mate"), .name = "Rune", .role = CrewDutyRole::bosun, .watch = "0–4"}};
  entry.tripLog = {{.id = Uuid::named(kVessel, "line"),
                    .timestamp = at("2026-10-25T00:30:00Z"),
                    .category = TripLogCategory::engine,
                    .author = "Jo",
                    .text = "Alarm\nreset"}};
  return entry;
}

template <class T>
std::string csvOf(const std::vector<T>& records, const RecordCsvOptions& options = {}) {
  return recordsCsv<T>(records, kRome, options);
}

TEST(RecordCsv, EveryFieldOfARecordComesBackUnchanged) {
  std::vector<ShipsLogEntry> entries{fullEntry(), {.id = Uuid::random(), .vesselID = kVessel}};
  entries[1].date = at("2026-06-01T06:00:00Z");
  for (const CsvFormat format : {CsvFormat{}, CsvFormat{CsvSeparator::semicolon, ','}, CsvFormat{CsvSeparator::tab}}) {
    const auto read = recordsFromCsv<ShipsLogEntry>(csvOf(entries, {.format = format}), Uuid::random(), kRome);
    EXPECT_EQ(read.records, entries);
    EXPECT_TRUE(read.problems.empty() && read.ignoredColumns.empty() && read.skipped == 0);
  }
}

TEST(RecordCsv, ColumnsAreTheFieldsLabelsDateFirstIdentitiesLast) {
  const std::string text =
      csvOf<ShipsLogEntry>({}, {.vesselName = [](const Uuid&) { return std::string("M/Y Aurelia"); }});
  const std::string_view head = std::string_view(text).substr(3);
  EXPECT_TRUE(head.starts_with("Vessel,Date & time,Eng Hrs,Voyage Hours,Departure port,Arrival port,Distance (NM),"))
      << head;
  EXPECT_TRUE(head.ends_with(",Guests,Crew roster,Trip Journal,id,vesselID\r\n")) << head;
  const std::string bunkering = csvOf<BunkeringRecord>(
      {{.vesselName = "S/Y Thalvorn", .date = at("2026-05-06T10:00:00Z"), .fuelType = FuelType::vlsfo}},
      {.vesselName = [](const Uuid&) { return std::string("another"); }});
  EXPECT_NE(bunkering.find("\r\n2026-05-06 12:00,S/Y Thalvorn,"), std::string::npos) << bunkering;
  EXPECT_EQ(bunkering.find("another"), std::string::npos) << "the record holds its vessel's name itself";
}

TEST(RecordCsv, TotalsStandBelowAndAreNotRead) {
  std::vector<BunkeringRecord> records{{.id = Uuid::random(), .vesselID = kVessel, .date = at("2026-05-06T10:00:00Z")}};
  std::string text = csvOf(records, {.totals = {{"Total Records", 1}, {"Total Cost (USD)", 1234.5, 2}}});
  EXPECT_TRUE(text.ends_with("\r\n\r\n\"SUMMARY\"\r\n\"Total Records\",1\r\n\"Total Cost (USD)\",1234.50\r\n")) << text;
  EXPECT_EQ(recordsFromCsv<BunkeringRecord>(text, kVessel, kRome).records, records);
  // A spreadsheet that saves the file again fills every row up to the widest.
  text.replace(text.find("\"SUMMARY\"\r"), 10, "SUMMARY,,,,\r\n\r");
  const auto read = recordsFromCsv<BunkeringRecord>(text, kVessel, kRome);
  EXPECT_EQ(read.records, records);
  EXPECT_TRUE(read.problems.empty());
}

TEST(RecordCsv, SaysLineByLineWhatCannotBeRead) {
  constexpr std::string_view text =
      "PORT,date,Fuel type,Quantity (Gal),Colour,Total Charge (inc. tax),id\n"
      "Nassau,2026-05-06,vlsfo,\"1,250.5\",red,9000,\n"
      "Calvi,06.05.2026,Diesel,10,,,\n"
      ",,,,,,\n"
      "Bonifacio,,Diesel,10,,,\n"
      "Amalfi,2026-05-07 08:00,Rocket fuel,-5,,much,nonsense\n";
  const auto read = recordsFromCsv<BunkeringRecord>(text, kVessel, kRome);
  ASSERT_EQ(read.records.size(), 2U);
  EXPECT_EQ(read.skipped, 2U);
  EXPECT_EQ(read.ignoredColumns, std::vector<std::string>{"Colour"});
  EXPECT_EQ(read.records[0].port, "Nassau");
  EXPECT_EQ(read.records[0].date, at("2026-05-05T22:00:00Z"));
  EXPECT_EQ(read.records[0].fuelType, FuelType::vlsfo);
  EXPECT_EQ(read.records[0].quantityGallons, 1250.5);
  EXPECT_EQ(read.records[0].vesselID, kVessel);
  EXPECT_EQ(read.records[1].fuelType.raw(), "Rocket fuel");
  EXPECT_EQ(read.records[1].quantityGallons, 0);
  std::vector<std::size_t> lines;
  lines.reserve(read.problems.size());
  for (const CsvProblem& problem : read.problems) lines.push_back(problem.line);
  EXPECT_EQ(lines, (std::vector<std::size_t>{3, 5, 6, 6, 6}));
  EXPECT_EQ(read.problems[0].message, "Skipped: “06.05.2026” is not a date such as 2026-05-31 08:00.");
  EXPECT_EQ(read.problems[2].message, "Quantity (Gal): “-5” is less than 0. Left empty.");

  const auto unnamed = recordsFromCsv<BunkeringRecord>("Port,Quantity (Gal)\nNassau,5\n", kVessel, kRome);
  EXPECT_TRUE(unnamed.records.empty());
  ASSERT_EQ(unnamed.problems.size(), 1U);
  EXPECT_EQ(unnamed.problems[0].message, "The first line must name the columns; “Date” is missing.");

  const auto broken =
      recordsFromCsv<ShipsLogEntry>("Date & time,Guests,Notes\n2026-05-06,\"[{\"\"name\"\":\",kept\n", kVessel, kRome);
  ASSERT_EQ(broken.records.size(), 1U);
  EXPECT_TRUE(broken.records[0].guests.empty());
  EXPECT_EQ(broken.records[0].notes, "kept");
  EXPECT_EQ(broken.problems.size(), 1U);
}

TEST(RecordCsv, WhatIsThereAlreadyIsLeftOut) {
  std::vector<ShipsLogEntry> entries{fullEntry(), fullEntry()};
  entries[1].id = Uuid::random();
  entries[1].vesselID = Uuid::random();
  const Vessel aurelia{.id = kVessel, .name = "Aurelia"};
  const auto fresh = newRecords<ShipsLogEntry>(entries, std::span(entries).first(1), std::span(&aurelia, 1), kVessel);
  ASSERT_EQ(fresh.size(), 1U);
  EXPECT_EQ(fresh[0].id, entries[1].id);
  EXPECT_EQ(fresh[0].vesselID, kVessel) << "the vessel in the file is not in this fleet";

  // A sheet without identities can be read twice as well.
  constexpr std::string_view sheet = "Date,Port\n2026-05-06,Nassau\n2026-05-06,Calvi\n2026-05-06,Calvi\n";
  const auto once = newRecords<BunkeringRecord>(recordsFromCsv<BunkeringRecord>(sheet, kVessel, kRome).records, {},
                                                std::span(&aurelia, 1), kVessel);
  EXPECT_EQ(once.size(), 2U);
  EXPECT_TRUE(newRecords<BunkeringRecord>(recordsFromCsv<BunkeringRecord>(sheet, kVessel, kRome).records, once,
                                          std::span(&aurelia, 1), kVessel)
                  .empty());
}

}  // namespace
}  // namespace thalvorn
