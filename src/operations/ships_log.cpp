#include "operations/ships_log.h"

#include <fmt/format.h>

#include <algorithm>

namespace thalvorn {
namespace {

std::string_view withoutBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::string_view nameOr(std::string_view name, std::string_view placeholder) {
  return withoutBlanks(name).empty() ? placeholder : name;
}

void addTo(std::optional<double>& sum, const std::optional<double>& value) {
  if (value) sum = sum.value_or(0) + *value;
}

}  // namespace

ShipsLogEntry newShipsLogEntry(const Vessel& vessel, std::span<const ShipsLogEntry> log, Timestamp now,
                               const Uuid& id) {
  ShipsLogEntry entry{.id = id, .vesselID = vessel.id, .date = now, .engineHours = vessel.engineHours};
  const ShipsLogEntry* last = nullptr;
  for (const ShipsLogEntry& other : log)
    if (other.vesselID == vessel.id && (last == nullptr || other.date >= last->date)) last = &other;
  if (last == nullptr) return entry;
  entry.departurePort = last->arrivalPort;
  entry.skipper = last->skipper;
  entry.crewCount = last->crewCount;
  entry.crewRoster = last->crewRoster;
  for (CrewDutyEntry& crew : entry.crewRoster) crew.id = Uuid::named(id, crew.id.toString());
  return entry;
}

std::expected<ShipsLogEntry, std::string> withJournalLine(ShipsLogEntry entry, TripLogEntry line) {
  line.text = std::string(withoutBlanks(line.text));
  line.author = std::string(withoutBlanks(line.author));
  if (line.text.empty()) return std::unexpected("Write what happened first.");
  entry.tripLog.push_back(std::move(line));
  return entry;
}

ShipsLogEntry withoutJournalLine(ShipsLogEntry entry, const Uuid& lineID) {
  std::erase_if(entry.tripLog, [&](const TripLogEntry& line) { return line.id == lineID; });
  return entry;
}

std::vector<TripLogEntry> journalInOrder(const ShipsLogEntry& entry) {
  std::vector<const TripLogEntry*> lines;
  lines.reserve(entry.tripLog.size());
  for (const TripLogEntry& line : entry.tripLog) lines.push_back(&line);
  std::ranges::sort(lines, {}, [](const TripLogEntry* line) { return std::pair(line->timestamp, line); });
  std::vector<TripLogEntry> ordered;
  ordered.reserve(lines.size());
  for (const TripLogEntry* line : lines) ordered.push_back(*line);
  return ordered;
}

std::string journalCountText(const ShipsLogEntry& entry) {
  return fmt::format("{} {}", entry.tripLog.size(), entry.tripLog.size() == 1 ? "entry" : "entries");
}

std::string_view printedName(const GuestManifestEntry& guest) { return nameOr(guest.name, "Unnamed guest"); }
std::string_view printedName(const CrewDutyEntry& crew) { return nameOr(crew.name, "Unnamed crew"); }

void ShipsLogTotals::add(const ShipsLogEntry& entry) {
  ++passages;
  distanceNM += entry.distanceNM.value_or(0);
  hoursUnderway += entry.hoursUnderway.value_or(0);
  addTo(fuelGallons, entry.fuelUsedGallons);
  addTo(fuelLitres, entry.fuelUsedLitres);
}

ShipsLogTotals totalsOf(std::span<const ShipsLogEntry> entries) {
  ShipsLogTotals totals;
  for (const ShipsLogEntry& entry : entries) totals.add(entry);
  return totals;
}

std::string ShipsLogTotals::distanceText() const { return fmt::format("{:.0f} nm", distanceNM); }

std::string ShipsLogTotals::fuelText() const {
  if (!fuelLitres) return fmt::format("{:.0f} gal", fuelGallons.value_or(0));
  const std::string litres = fmt::format("{:.0f} L", *fuelLitres);
  return fuelGallons ? fmt::format("{:.0f} gal / {}", *fuelGallons, litres) : litres;
}

std::vector<ShipsLogStatistic> statistics(const ShipsLogTotals& totals) {
  return {{"Passages", fmt::format("{}", totals.passages)},
          {"Total distance", totals.distanceText()},
          {"Total fuel", totals.fuelText()}};
}

std::string exportHeader(std::string_view vesselName, const ShipsLogTotals& totals) {
  return fmt::format("Vessel: {}  ·  Passages: {}  ·  Total NM: {:.0f}  ·  Underway Hrs: {:.1f}  ·  Fuel Used: {}",
                     vesselName, totals.passages, totals.distanceNM, totals.hoursUnderway, totals.fuelText());
}

}  // namespace thalvorn
