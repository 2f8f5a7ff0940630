#pragma once

#include <expected>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/vessel.h"
#include "operations/ships_log_entry.h"

/// The rules of the ship's log: a new entry, its journal, roster and manifest, and what adds up over entries.
namespace thalvorn {

inline constexpr std::string_view kNoCrewOnRoster = "No crew on roster";
inline constexpr std::string_view kNoJournal = "No journal entries yet";

/// A new entry as of now: the main meter's reading, the port where the vessel arrived last, and the captain, crew count
/// and roster of her latest entry, so that little is left to type.
ShipsLogEntry newShipsLogEntry(const Vessel& vessel, std::span<const ShipsLogEntry> log, Timestamp now,
                               const Uuid& id = Uuid::random());

// The trip journal. Lines are changed within a copy of the entry, which then replaces the stored one as a whole.

/// The entry with another line at its journal's end; text and author without blanks around them. An empty text is
/// refused with a sentence.
std::expected<ShipsLogEntry, std::string> withJournalLine(ShipsLogEntry entry, TripLogEntry line);
/// The entry without the line; as it is when it has no such line.
ShipsLogEntry withoutJournalLine(ShipsLogEntry entry, const Uuid& lineID);
/// The lines in the order of time; those of one moment in the order of writing.
std::vector<TripLogEntry> journalInOrder(const ShipsLogEntry& entry);
/// "3 entries".
std::string journalCountText(const ShipsLogEntry& entry);

/// The name as it is printed: a placeholder for a guest without one.
std::string_view printedName(const GuestManifestEntry& guest);
std::string_view printedName(const CrewDutyEntry& crew);

/// Sums over entries; those without a value add nothing. Gallons and litres are both as entered, so an entry may count
/// in either or in both.
struct ShipsLogTotals {
  std::size_t passages = 0;
  double distanceNM = 0;
  double hoursUnderway = 0;
  std::optional<double> fuelGallons{};  ///< empty when no entry has a value
  std::optional<double> fuelLitres{};

  void add(const ShipsLogEntry& entry);
  std::string distanceText() const;  ///< "345 nm"
  std::string fuelText() const;      ///< "1234 gal", "4671 L" or "1234 gal / 4671 L"
};
ShipsLogTotals totalsOf(std::span<const ShipsLogEntry> entries);

/// The figures over the list: "Passages", "Total distance" and "Total fuel".
struct ShipsLogStatistic {
  std::string_view label;
  std::string value;
};
std::vector<ShipsLogStatistic> statistics(const ShipsLogTotals& totals);

/// "Vessel: M/Y Meridian  ·  Passages: 12  ·  Total NM: 345  ·  Underway Hrs: 67.5  ·  Fuel Used: 1234 gal", the line
/// that heads an export.
std::string exportHeader(std::string_view vesselName, const ShipsLogTotals& totals);

}  // namespace thalvorn
