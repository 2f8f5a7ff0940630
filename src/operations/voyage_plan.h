#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"
#include "operations/position_facts.h"

namespace thalvorn {

/// A point on a leg's route.
struct Waypoint {
  Uuid id;
  std::string name;
  double latitude = 0;   ///< decimal degrees, north positive
  double longitude = 0;  ///< decimal degrees, east positive
  std::string notes;
  friend bool operator==(const Waypoint&, const Waypoint&) = default;
};
BOOST_DESCRIBE_STRUCT(Waypoint, (), (id, name, latitude, longitude, notes))
template <>
struct JsonForm<Waypoint> {
  static constexpr bool snakeCase = true;
};

/// One leg of a voyage plan.
struct VoyageLeg {
  Uuid id;
  std::int64_t legNumber = 1;  ///< position in the plan, from 1
  std::string fromPort;
  std::string toPort;
  double distanceNM = 0;  ///< as typed; counts only while the leg has fewer than two waypoints
  double speedKnots = 0;
  double engineBurnGPH = 0;  ///< US gallons per hour of the propulsion engines
  double generatorGPH = 0;   ///< US gallons per hour of the generators
  double fuelAdded = 0;      ///< US gallons taken on at the start of the leg
  std::optional<Timestamp> departDate;
  std::vector<Waypoint> waypoints;
  friend bool operator==(const VoyageLeg&, const VoyageLeg&) = default;
};
BOOST_DESCRIBE_STRUCT(VoyageLeg, (),
                      (id, legNumber, fromPort, toPort, distanceNM, speedKnots, engineBurnGPH, generatorGPH, fuelAdded,
                       departDate, waypoints))
template <>
struct JsonForm<VoyageLeg> {
  static constexpr bool snakeCase = true;
};

/// The worksheet of a passage: its legs and the fuel it starts with.
struct VoyagePlan {
  Uuid id;
  Uuid vesselID;
  std::string planName;
  Timestamp dateCreated;
  double fuelTankGallons = 0;  ///< in the vessel's tanks at departure, US gallons
  double bladderGallons = 0;   ///< in bunker tanks or bladders, US gallons
  double unusablePct = 0;      ///< share of the total fuel that cannot be drawn, 0 to 1
  double contingencyPct = 0;   ///< reserve as a share of the fuel available, 0 to 1
  double fuelPricePerGallon = 0;
  double defaultEngineBurnGPH = 0;  ///< given to new legs
  double defaultGeneratorGPH = 0;
  std::vector<VoyageLeg> legs;
  std::string notes;

  friend bool operator==(const VoyagePlan&, const VoyagePlan&) = default;
};
BOOST_DESCRIBE_STRUCT(VoyagePlan, (),
                      (id, vesselID, planName, dateCreated, fuelTankGallons, bladderGallons, unusablePct,
                       contingencyPct, fuelPricePerGallon, defaultEngineBurnGPH, defaultGeneratorGPH, legs, notes))
template <>
struct JsonForm<VoyagePlan> {
  static constexpr bool snakeCase = true;
};
THALVORN_JSON_RECORD(VoyagePlan);

template <>
struct RecordFacts<Waypoint> {
  static constexpr std::array facts{FieldFacts{.name = "name", .label = "Name"}, kLatitudeFacts, kLongitudeFacts,
                                    FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline}};
};
static_assert(factsNameFields<Waypoint>());

template <>
struct RecordFacts<VoyageLeg> {
  static constexpr std::array facts{
      FieldFacts{.name = "legNumber", .label = "Leg", .minimum = 1, .maximum = 1000},
      FieldFacts{.name = "fromPort", .label = "From", .placeholder = "From port / waypoint"},
      FieldFacts{.name = "toPort", .label = "To", .placeholder = "To port / waypoint"},
      FieldFacts{.name = "distanceNM", .label = "Distance", .unit = "nm", .decimals = 1, .minimum = 0, .maximum = 1e5},
      FieldFacts{.name = "speedKnots", .label = "Speed", .unit = "kn", .decimals = 1, .minimum = 0, .maximum = 100},
      FieldFacts{
          .name = "engineBurnGPH", .label = "Engine burn", .unit = "GPH", .decimals = 1, .minimum = 0, .maximum = 1e5},
      FieldFacts{.name = "generatorGPH",
                 .label = "Generator burn",
                 .unit = "GPH",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e5},
      FieldFacts{.name = "fuelAdded",
                 .label = "Fuel Added (this leg)",
                 .unit = "gal",
                 .decimals = 0,
                 .minimum = 0,
                 .maximum = 1e7},
      FieldFacts{.name = "departDate", .label = "Depart Date/Time"},
      FieldFacts{.name = "waypoints", .label = "Waypoints"}};
};
static_assert(factsNameFields<VoyageLeg>());

template <>
struct RecordFacts<VoyagePlan> {
  static constexpr std::array facts{
      FieldFacts{.name = "planName", .label = "Plan name", .required = true},
      FieldFacts{.name = "dateCreated", .label = "Created"},
      FieldFacts{.name = "fuelTankGallons", .label = "Fuel Onboard", .unit = "gal", .minimum = 0, .maximum = 1e7},
      FieldFacts{
          .name = "bladderGallons", .label = "Bunker Tanks Onboard", .unit = "gal", .minimum = 0, .maximum = 1e7},
      FieldFacts{.name = "unusablePct",
                 .label = "Unusable",
                 .help = "share of the total fuel that cannot be drawn (0.1 = 10 %)",
                 .decimals = 2,
                 .minimum = 0,
                 .maximum = 1},
      FieldFacts{.name = "contingencyPct",
                 .label = "Contingency",
                 .help = "reserve as a share of the fuel available (0.1 = 10 %)",
                 .decimals = 2,
                 .minimum = 0,
                 .maximum = 1},
      FieldFacts{
          .name = "fuelPricePerGallon", .label = "Fuel price per gallon", .decimals = 3, .minimum = 0, .maximum = 1e6},
      FieldFacts{.name = "defaultEngineBurnGPH",
                 .label = "Default engine burn",
                 .unit = "GPH",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e5},
      FieldFacts{.name = "defaultGeneratorGPH",
                 .label = "Default generator burn",
                 .unit = "GPH",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e5},
      FieldFacts{.name = "legs", .label = "Legs"},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline}};
};
static_assert(factsNameFields<VoyagePlan>());

}  // namespace thalvorn
