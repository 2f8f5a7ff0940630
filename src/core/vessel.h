#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"
#include "core/maintenance_enums.h"

namespace thalvorn {

/// Why an hour meter was set to something other than a later reading.
enum class MeterChange : std::uint8_t { corrected, replaced };

template <>
struct EnumTexts<MeterChange> {
  static constexpr std::array<EnumText, 2> table{{{"corrected", "Meter corrected"}, {"replaced", "Meter replaced"}}};
};

/// One correction or replacement of an hour meter. Readings in hours.
struct MeterEvent {
  Uuid id;
  Timestamp at;
  Choice<HourSource> hourSource;
  Choice<MeterChange> change;
  double before = 0;
  double after = 0;
  std::string reason;
  std::string author;
  friend bool operator==(const MeterEvent&, const MeterEvent&) = default;
};
BOOST_DESCRIBE_STRUCT(MeterEvent, (), (id, at, hourSource, change, before, after, reason, author))

/// One boat under management.
struct Vessel {
  Uuid id;
  std::string name;
  std::string type;                               ///< free text, e.g. "Motor yacht"
  double lengthFeet = 0;                          ///< length overall, feet
  double engineHours = 0;                         ///< meter of engine 1, the main meter, hours
  std::optional<Timestamp> engineHoursUpdatedAt;  ///< last update of any meter
  double engine2Hours = 0;
  double engine3Hours = 0;
  double generator1Hours = 0;
  double generator2Hours = 0;
  double hydraulicHours = 0;
  std::string notes;
  std::int64_t numberOfEngines = 1;  ///< 1 to 3
  bool hasGenerator = false;
  std::int64_t numberOfGenerators = 1;  ///< 1 or 2, when there is a generator
  bool hasHydraulic = false;
  bool useISM = false;
  std::int64_t sortOrder = 0;            ///< position in the vessel list
  std::vector<MeterEvent> meterHistory;  ///< corrections and replacements, oldest first

  /// The stored reading of a meter in hours, also of one the vessel does not have (normally 0).
  double reading(Choice<HourSource> source) const;
  void setReading(HourSource source, double hours);
  /// Whether the vessel is fitted with the meter.
  bool hasMeter(Choice<HourSource> source) const;
  /// The meters that the vessel is fitted with, in declared order.
  std::vector<HourSource> meters() const;

  friend bool operator==(const Vessel&, const Vessel&) = default;
};
BOOST_DESCRIBE_STRUCT(Vessel, (),
                      (id, name, type, lengthFeet, engineHours, engineHoursUpdatedAt, engine2Hours, engine3Hours,
                       generator1Hours, generator2Hours, hydraulicHours, notes, numberOfEngines, hasGenerator,
                       numberOfGenerators, hasHydraulic, useISM, sortOrder, meterHistory))
template <>
struct JsonForm<Vessel> {
  static constexpr std::array<std::string_view, 1> extra{"meterHistory"};
};
THALVORN_JSON_RECORD(Vessel);

/// The label of a meter on the hours editor: "Engine 1" … "Gen 1", "Gen 2", "Hydraulic".
std::string_view meterLabel(HourSource source);

template <>
struct RecordFacts<Vessel> {
  static constexpr std::array facts{
      FieldFacts{.name = "name", .label = "Vessel name", .placeholder = "e.g. M/Y Meridian", .required = true},
      FieldFacts{.name = "type", .label = "Type", .placeholder = "e.g. Motor yacht"},
      FieldFacts{
          .name = "lengthFeet", .label = "Length overall", .unit = "ft", .decimals = 1, .minimum = 0, .maximum = 1000},
      FieldFacts{.name = "engineHours",
                 .label = "Engine 1",
                 .unit = "hrs",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e6,
                 .countsUp = true},
      FieldFacts{.name = "engine2Hours",
                 .label = "Engine 2",
                 .unit = "hrs",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e6,
                 .countsUp = true},
      FieldFacts{.name = "engine3Hours",
                 .label = "Engine 3",
                 .unit = "hrs",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e6,
                 .countsUp = true},
      FieldFacts{.name = "generator1Hours",
                 .label = "Gen 1",
                 .unit = "hrs",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e6,
                 .countsUp = true},
      FieldFacts{.name = "generator2Hours",
                 .label = "Gen 2",
                 .unit = "hrs",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e6,
                 .countsUp = true},
      FieldFacts{.name = "hydraulicHours",
                 .label = "Hydraulic",
                 .unit = "hrs",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e6,
                 .countsUp = true},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "numberOfEngines", .label = "Engines", .minimum = 1, .maximum = 3},
      FieldFacts{.name = "hasGenerator", .label = "Has a generator"},
      FieldFacts{.name = "numberOfGenerators", .label = "Generators", .minimum = 1, .maximum = 2},
      FieldFacts{.name = "hasHydraulic", .label = "Has a hydraulic system"},
      FieldFacts{.name = "useISM", .label = "Uses the ISM safety module"}};
};
static_assert(factsNameFields<Vessel>());

}  // namespace thalvorn
