#pragma once

#include "core/register.h"
#include "operations/ships_log_entry.h"

namespace thalvorn {

/// Departure " → " arrival; the port that is known alone when the other is not.
std::string routeText(const ShipsLogEntry& entry);

/// One record per passage or day under way.
template <>
struct Register<ShipsLogEntry> {
  static constexpr RegisterFacts facts{
      .key = "shipsLog", .title = "Ship's Log", .singular = "log entry", .plural = "log entries"};
  static constexpr auto date = &ShipsLogEntry::date;
  /// How a person calls an entry: its route.
  static std::string name(const ShipsLogEntry& entry);
  static constexpr std::array columns{
      fieldColumn<&ShipsLogEntry::date>({.title = "Date"}),
      computedColumn<ShipsLogEntry>({.key = "route", .title = "Route", .weight = 1.8},
                                    [](const ShipsLogEntry& entry) -> RegisterValue { return routeText(entry); }),
      fieldColumn<&ShipsLogEntry::departurePort>({.searched = true}),
      fieldColumn<&ShipsLogEntry::arrivalPort>({.searched = true}),
      fieldColumn<&ShipsLogEntry::distanceNM>({.title = "Distance"}),
      fieldColumn<&ShipsLogEntry::hoursUnderway>({.title = "Hrs Underway"}),
      fieldColumn<&ShipsLogEntry::engineHours>(),
      fieldColumn<&ShipsLogEntry::fuelUsedGallons>({.title = "Fuel (gal)"}),
      fieldColumn<&ShipsLogEntry::fuelUsedLitres>({.title = "Fuel (L)"}),
      fieldColumn<&ShipsLogEntry::windSpeedKnots>(),
      fieldColumn<&ShipsLogEntry::waveHeightFeet>(),
      fieldColumn<&ShipsLogEntry::seaState>({.filter = ColumnFilter::choices}),
      fieldColumn<&ShipsLogEntry::weather>({.filter = ColumnFilter::choices}),
      fieldColumn<&ShipsLogEntry::crewCount>(),
      fieldColumn<&ShipsLogEntry::skipper>({.searched = true, .filter = ColumnFilter::text}),
      fieldColumn<&ShipsLogEntry::notes>({.searched = true, .weight = 2.2})};
};

}  // namespace thalvorn
