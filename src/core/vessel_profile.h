#pragma once

#include <optional>
#include <string>

#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// The particulars of a vessel that its papers print; one per vessel.
struct VesselProfile {
  Uuid id;
  Uuid vesselID;
  std::string formerNames;
  std::string flag;
  std::string portOfRegistry;
  std::string officialNumber;
  std::string imoNumber;  ///< seven digits, the last a check digit; empty when she has none
  std::string callSign;
  std::string mmsi;          ///< nine digits
  std::string hullNumber;    ///< HIN or yard number
  std::string classSociety;  ///< class and notation
  std::optional<double> grossTonnage;
  std::optional<double> netTonnage;
  std::optional<double> beamFeet;
  std::optional<double> draftFeet;
  std::optional<double> airDraftFeet;
  std::string builder;
  std::string yearBuilt;
  std::string hullMaterial;
  std::string engineMake;  ///< makes and serial numbers of the main engines
  std::string generatorMake;
  std::optional<double> fuelCapacityGallons;  ///< US gallons
  std::optional<double> waterCapacityGallons;
  std::optional<double> cruisingSpeedKnots;
  std::optional<std::int64_t> maxGuests;
  std::optional<std::int64_t> safeManning;
  std::string owner;
  std::string manager;
  std::string managerPhone;
  std::string designatedPerson;  ///< DPA with the 24-hour telephone
  std::string homePort;
  std::string timeZone;  ///< aboard, IANA name; empty = the computer's
  std::string currency;  ///< ISO 4217 code of costs; empty = USD
  std::string photoPath;
  std::string notes;
  std::optional<Timestamp> updatedAt;
  friend bool operator==(const VesselProfile&, const VesselProfile&) = default;
};
BOOST_DESCRIBE_STRUCT(VesselProfile, (),
                      (id, vesselID, formerNames, flag, portOfRegistry, officialNumber, imoNumber, callSign, mmsi,
                       hullNumber, classSociety, grossTonnage, netTonnage, beamFeet, draftFeet, airDraftFeet, builder,
                       yearBuilt, hullMaterial, engineMake, generatorMake, fuelCapacityGallons, waterCapacityGallons,
                       cruisingSpeedKnots, maxGuests, safeManning, owner, manager, managerPhone, designatedPerson,
                       homePort, timeZone, currency, photoPath, notes, updatedAt))
THALVORN_JSON_RECORD(VesselProfile);

template <>
struct RecordFacts<VesselProfile> {
  static constexpr std::array facts{
      FieldFacts{.name = "formerNames", .label = "Former names"},
      FieldFacts{.name = "flag", .label = "Flag"},
      FieldFacts{.name = "portOfRegistry", .label = "Port of registry"},
      FieldFacts{.name = "officialNumber", .label = "Official number"},
      FieldFacts{.name = "imoNumber", .label = "IMO number", .placeholder = "7 digits"},
      FieldFacts{.name = "callSign", .label = "Call sign"},
      FieldFacts{.name = "mmsi", .label = "MMSI", .placeholder = "9 digits"},
      FieldFacts{.name = "hullNumber", .label = "Hull number (HIN)"},
      FieldFacts{.name = "classSociety", .label = "Class and notation"},
      FieldFacts{
          .name = "grossTonnage", .label = "Gross tonnage", .unit = "GT", .decimals = 0, .minimum = 0, .maximum = 1e6},
      FieldFacts{
          .name = "netTonnage", .label = "Net tonnage", .unit = "NT", .decimals = 0, .minimum = 0, .maximum = 1e6},
      FieldFacts{.name = "beamFeet", .label = "Beam", .unit = "ft", .decimals = 1, .minimum = 0, .maximum = 300},
      FieldFacts{.name = "draftFeet", .label = "Draft", .unit = "ft", .decimals = 1, .minimum = 0, .maximum = 100},
      FieldFacts{
          .name = "airDraftFeet", .label = "Air draft", .unit = "ft", .decimals = 1, .minimum = 0, .maximum = 500},
      FieldFacts{.name = "builder", .label = "Builder"},
      FieldFacts{.name = "yearBuilt", .label = "Year built"},
      FieldFacts{.name = "hullMaterial", .label = "Hull material"},
      FieldFacts{.name = "engineMake", .label = "Main engines"},
      FieldFacts{.name = "generatorMake", .label = "Generators"},
      FieldFacts{.name = "fuelCapacityGallons", .label = "Fuel capacity", .unit = "gal", .minimum = 0, .maximum = 1e7},
      FieldFacts{
          .name = "waterCapacityGallons", .label = "Water capacity", .unit = "gal", .minimum = 0, .maximum = 1e7},
      FieldFacts{.name = "cruisingSpeedKnots",
                 .label = "Cruising speed",
                 .unit = "kn",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 100},
      FieldFacts{.name = "maxGuests", .label = "Guests, at most", .minimum = 0, .maximum = 1000},
      FieldFacts{.name = "safeManning", .label = "Safe manning", .minimum = 0, .maximum = 1000},
      FieldFacts{.name = "owner", .label = "Owner"},
      FieldFacts{.name = "manager", .label = "Manager"},
      FieldFacts{.name = "managerPhone", .label = "Manager's telephone", .entry = FieldEntry::phone},
      FieldFacts{.name = "designatedPerson", .label = "Designated person ashore"},
      FieldFacts{.name = "homePort", .label = "Home port"},
      FieldFacts{.name = "timeZone", .label = "Time zone aboard", .placeholder = "e.g. Europe/Rome"},
      FieldFacts{.name = "currency", .label = "Currency of costs", .placeholder = "USD"},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline}};
};
static_assert(factsNameFields<VesselProfile>());

}  // namespace thalvorn
