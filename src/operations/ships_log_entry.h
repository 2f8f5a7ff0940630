#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/enums.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

enum class SeaState : std::uint8_t { calm, slight, moderate, rough, veryRough };

template <>
struct EnumTexts<SeaState> {
  static constexpr std::array<EnumText, 5> table{{{"Calm"}, {"Slight"}, {"Moderate"}, {"Rough"}, {"Very Rough"}}};
};

enum class WeatherCondition : std::uint8_t { sunny, partCloud, overcast, rain, storm, fog };

template <>
struct EnumTexts<WeatherCondition> {
  static constexpr std::array<EnumText, 6> table{
      {{"Sunny"}, {"Partly Cloudy"}, {"Overcast"}, {"Rain"}, {"Storm"}, {"Fog"}}};
};

/// The subject of a line in the trip journal.
enum class TripLogCategory : std::uint8_t { observation, weather, navigation, engine, communication, safety, other };

template <>
struct EnumTexts<TripLogCategory> {
  static constexpr std::array<EnumText, 7> table{
      {{"Observation"}, {"Weather Update"}, {"Navigation"}, {"Engine"}, {"Communication"}, {"Safety"}, {"Other"}}};
};

/// What a person did on board during the passage.
enum class CrewDutyRole : std::uint8_t { captain, mate, officer, engineer, deckhand, stew, chef, bosun, other };

template <>
struct EnumTexts<CrewDutyRole> {
  static constexpr std::array<EnumText, 9> table{
      {{"Captain"}, {"Mate"}, {"Officer"}, {"Engineer"}, {"Deckhand"}, {"Stew"}, {"Chef"}, {"Bosun"}, {"Other"}}};
};

/// One passenger of the guest manifest.
struct GuestManifestEntry {
  Uuid id;
  std::string name;
  std::string note;
  friend bool operator==(const GuestManifestEntry&, const GuestManifestEntry&) = default;
};
BOOST_DESCRIBE_STRUCT(GuestManifestEntry, (), (id, name, note))
THALVORN_JSON_RECORD(GuestManifestEntry);

/// One line of the crew duty roster.
struct CrewDutyEntry {
  Uuid id;
  std::string name;
  Choice<CrewDutyRole> role;
  std::string watch;  ///< e.g. "0000–0400"
  friend bool operator==(const CrewDutyEntry&, const CrewDutyEntry&) = default;
};
BOOST_DESCRIBE_STRUCT(CrewDutyEntry, (), (id, name, role, watch))
THALVORN_JSON_RECORD(CrewDutyEntry);

/// One line of the trip journal.
struct TripLogEntry {
  Uuid id;
  Timestamp timestamp;
  Choice<TripLogCategory> category;
  std::string author;
  std::string text;
  friend bool operator==(const TripLogEntry&, const TripLogEntry&) = default;
};
BOOST_DESCRIBE_STRUCT(TripLogEntry, (), (id, timestamp, category, author, text))
THALVORN_JSON_RECORD(TripLogEntry);

/// One passage, or one day under way.
struct ShipsLogEntry {
  Uuid id;
  Uuid vesselID;
  Timestamp date;
  double engineHours = 0;  ///< reading of the main meter, hours
  std::optional<double> hoursUnderway;
  std::string departurePort;
  std::string arrivalPort;
  std::optional<double> distanceNM;       ///< nautical miles
  std::optional<double> fuelUsedGallons;  ///< US gallons as entered; never derived from the litres
  std::optional<double> fuelUsedLitres;   ///< litres as entered; never derived from the gallons
  std::optional<double> windSpeedKnots;
  std::string windDirection;
  std::optional<double> waveHeightFeet;
  Choice<SeaState> seaState;
  Choice<WeatherCondition> weather;
  std::int64_t crewCount = 0;  ///< crew aboard
  std::string notes;
  std::string skipper;  ///< the captain of the passage
  std::vector<GuestManifestEntry> guests;
  std::vector<CrewDutyEntry> crewRoster;
  std::vector<TripLogEntry> tripLog;

  friend bool operator==(const ShipsLogEntry&, const ShipsLogEntry&) = default;
};
BOOST_DESCRIBE_STRUCT(ShipsLogEntry, (),
                      (id, vesselID, date, engineHours, hoursUnderway, departurePort, arrivalPort, distanceNM,
                       fuelUsedGallons, fuelUsedLitres, windSpeedKnots, windDirection, waveHeightFeet, seaState,
                       weather, crewCount, notes, skipper, guests, crewRoster, tripLog))
THALVORN_JSON_RECORD(ShipsLogEntry);

template <>
struct RecordFacts<GuestManifestEntry> {
  static constexpr std::array facts{
      FieldFacts{.name = "name", .label = "Guest name"},
      FieldFacts{.name = "note", .label = "Note", .placeholder = "Note (e.g. VIP, owner’s party)"}};
};
static_assert(factsNameFields<GuestManifestEntry>());

template <>
struct RecordFacts<CrewDutyEntry> {
  static constexpr std::array facts{FieldFacts{.name = "name", .label = "Name", .required = true},
                                    FieldFacts{.name = "role", .label = "Role"},
                                    FieldFacts{.name = "watch", .label = "Watch", .placeholder = "Watch (opt.)"}};
};
static_assert(factsNameFields<CrewDutyEntry>());

template <>
struct RecordFacts<TripLogEntry> {
  static constexpr std::array facts{FieldFacts{.name = "timestamp", .label = "Time", .required = true},
                                    FieldFacts{.name = "category", .label = "Category"},
                                    FieldFacts{.name = "author", .label = "Author"},
                                    FieldFacts{.name = "text",
                                               .label = "Entry",
                                               .placeholder = "Add a journal entry…",
                                               .required = true,
                                               .entry = FieldEntry::multiline}};
};
static_assert(factsNameFields<TripLogEntry>());

template <>
struct RecordFacts<ShipsLogEntry> {
  static constexpr std::array facts{
      FieldFacts{.name = "date", .label = "Date & time", .required = true},
      FieldFacts{.name = "engineHours", .label = "Eng Hrs", .unit = "hrs", .decimals = 1, .minimum = 0, .maximum = 1e6},
      FieldFacts{.name = "hoursUnderway",
                 .label = "Voyage Hours",
                 .unit = "hrs",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e5,
                 .required = true},
      FieldFacts{.name = "departurePort", .label = "Departure port"},
      FieldFacts{.name = "arrivalPort", .label = "Arrival port"},
      FieldFacts{
          .name = "distanceNM", .label = "Distance (NM)", .unit = "nm", .decimals = 1, .minimum = 0, .maximum = 1e5},
      FieldFacts{.name = "fuelUsedGallons",
                 .label = "Fuel Used (gal)",
                 .unit = "gal",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e7},
      FieldFacts{
          .name = "fuelUsedLitres", .label = "Fuel Used (L)", .unit = "L", .decimals = 1, .minimum = 0, .maximum = 1e7},
      FieldFacts{
          .name = "windSpeedKnots", .label = "Wind (kts)", .unit = "kts", .decimals = 0, .minimum = 0, .maximum = 250},
      FieldFacts{.name = "windDirection", .label = "Wind direction", .placeholder = "e.g. SW"},
      FieldFacts{
          .name = "waveHeightFeet", .label = "Wave (ft)", .unit = "ft", .decimals = 1, .minimum = 0, .maximum = 120},
      FieldFacts{.name = "seaState", .label = "Sea state"},
      FieldFacts{.name = "weather", .label = "Weather"},
      FieldFacts{.name = "crewCount", .label = "Crew aboard", .minimum = 0, .maximum = 1000},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "skipper", .label = "Captain"},
      FieldFacts{.name = "guests", .label = "Guests"},
      FieldFacts{.name = "crewRoster", .label = "Crew roster"},
      FieldFacts{.name = "tripLog", .label = "Trip Journal"}};
};
static_assert(factsNameFields<ShipsLogEntry>());

}  // namespace thalvorn
