// CSV export of 100,000 records beside encoding the same records as JSON.

#include "core/record_csv.h"
#include "figures.h"
#include "operations/bunkering_register.h"
#include "operations/ships_log_register.h"

using namespace thalvorn;
using namespace std::chrono_literals;

namespace {

constexpr std::size_t kRecords = 100'000;
const Uuid kVessel = Uuid::named(Uuid{}, "vessel");

std::vector<ShipsLogEntry> passages() {
  std::vector<ShipsLogEntry> entries(kRecords);
  for (std::size_t i = 0; i < kRecords; ++i) {
    ShipsLogEntry& entry = entries[i];
    const auto tenths = static_cast<double>(i % 900) / 10;
    entry.id = Uuid::random();
    entry.vesselID = kVessel;
    entry.date = parseTimestamp("2020-01-01").value() + 8h * i + 7min * (i % 100);
    entry.engineHours = 1000 + tenths;
    entry.hoursUnderway = tenths / 8;
    entry.departurePort = i % 3 == 0 ? "Porto Cervo" : "Bonifacio, Quai Comparetti";
    entry.arrivalPort = "Saint-Tropez";
    entry.distanceNM = tenths;
    if (i % 2 == 0) entry.fuelUsedGallons = tenths * 9;
    entry.windSpeedKnots = 12;
    entry.windDirection = "NW";
    entry.seaState = SeaState::moderate;
    entry.crewCount = 7;
    entry.skipper = "Giulia Marchetti";
    entry.notes = "Light airs in the morning, sea breeze from noon.";
    if (i % 4 == 0) {
      entry.tripLog = {{.id = Uuid::random(), .timestamp = entry.date, .author = "Tom", .text = "Let go, wind NW 4"},
                       {.id = Uuid::random(), .timestamp = entry.date + 2h, .author = "Tom", .text = "Fast alongside"}};
      entry.crewRoster = {{.id = Uuid::random(), .name = "Tom Ashdown", .role = CrewDutyRole::mate, .watch = "0–4"}};
    }
  }
  return entries;
}

std::vector<BunkeringRecord> deliveries() {
  std::vector<BunkeringRecord> records(kRecords);
  for (std::size_t i = 0; i < kRecords; ++i) {
    BunkeringRecord& record = records[i];
    record.id = Uuid::random();
    record.vesselID = kVessel;
    record.vesselName = "M/Y Meridian";
    record.supplierName = "Riviera Bunkers";
    record.date = parseTimestamp("2020-01-01").value() + 9h * i;
    record.port = "Antibes";
    record.quantityGallons = 1000 + static_cast<double>(i % 700);
    record.pricePerGallon = 4.125;
    record.totalCharge = record.quantityGallons * 4.3;
    record.currency = "EUR";
    record.invoiceNumber = "RB-" + std::to_string(i);
  }
  return records;
}

template <class T>
void compare(const std::string& what, const std::vector<T>& records) {
  const Calendar calendar = Calendar::inZone("Europe/Rome").value();
  bench::inTurn(
      7, [&] { bench::keep(recordsCsv<T>(records, calendar).size()); },
      [&] { bench::keep(listToJson(records, JsonFields::full).size()); })
      .atMost(what, "encoding them as JSON", 3);
}

}  // namespace

int main() {
  compare("export 100,000 log entries as CSV", passages());
  compare("export 100,000 bunkerings as CSV", deliveries());
}
