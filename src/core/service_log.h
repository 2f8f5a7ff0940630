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

/// One part line of a service.
struct PartUsage {
  Uuid id;
  std::string name;
  double quantity = 1;  ///< fractions allowed, e.g. litres of oil
  std::string partNumber;
  std::optional<double> cost;  ///< of the line, in the currency of the service
  friend bool operator==(const PartUsage&, const PartUsage&) = default;
};
BOOST_DESCRIBE_STRUCT(PartUsage, (), (id, name, quantity, partNumber, cost))

template <>
struct RecordFacts<PartUsage> {
  static constexpr std::array facts{
      FieldFacts{.name = "name", .label = "Part", .required = true},
      FieldFacts{.name = "quantity", .label = "Quantity", .decimals = 2, .minimum = 0, .maximum = 1e6},
      FieldFacts{.name = "partNumber", .label = "Part number"},
      FieldFacts{.name = "cost", .label = "Cost", .decimals = 2, .minimum = 0, .maximum = 1e9}};
};
static_assert(factsNameFields<PartUsage>());

/// What a field of a service log read before it was corrected.
struct LogCorrection {
  Uuid id;
  Timestamp at;
  std::string field;   ///< name of the corrected field
  std::string before;  ///< its earlier text
  std::string after;
  std::string reason;
  std::string author;
  friend bool operator==(const LogCorrection&, const LogCorrection&) = default;
};
BOOST_DESCRIBE_STRUCT(LogCorrection, (), (id, at, field, before, after, reason, author))

/// The record of one completed service.
struct ServiceLog {
  Uuid id;
  Uuid taskID;  ///< the task that was completed
  Uuid vesselID;
  std::optional<Uuid> equipmentID;  ///< the piece of equipment serviced
  std::string taskTitle;            ///< title, category and kind as they were at the service
  Choice<TaskCategory> category;
  Choice<TaskKind> kind;
  Timestamp completedDate;
  double engineHoursAtService = 0;  ///< reading of the task's meter, hours
  std::string technicianNotes;
  std::optional<double> cost;
  std::string completedBy;
  std::vector<PartUsage> partsUsed;
  std::vector<std::string> photoPaths;     ///< photos taken at this service
  std::vector<LogCorrection> corrections;  ///< earlier texts, oldest first

  friend bool operator==(const ServiceLog&, const ServiceLog&) = default;
};
BOOST_DESCRIBE_STRUCT(ServiceLog, (),
                      (id, taskID, vesselID, equipmentID, taskTitle, category, kind, completedDate,
                       engineHoursAtService, technicianNotes, cost, completedBy, partsUsed, photoPaths, corrections))
template <>
struct JsonForm<ServiceLog> {
  static constexpr std::array<std::string_view, 2> extra{"photoPaths", "corrections"};
};
THALVORN_JSON_RECORD(ServiceLog);

template <>
struct RecordFacts<ServiceLog> {
  static constexpr std::array facts{
      FieldFacts{.name = "taskTitle", .label = "Task", .required = true},
      FieldFacts{.name = "category", .label = "Category"},
      FieldFacts{.name = "kind", .label = "Kind"},
      FieldFacts{.name = "completedDate", .label = "Done on", .required = true},
      FieldFacts{.name = "engineHoursAtService",
                 .label = "Meter at service",
                 .unit = "hrs",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e6},
      FieldFacts{.name = "technicianNotes", .label = "Technician notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "cost", .label = "Labor cost (optional)", .decimals = 2, .minimum = 0, .maximum = 1e9},
      FieldFacts{.name = "completedBy", .label = "Completed by (optional)"},
      FieldFacts{.name = "equipmentID", .label = "Equipment serviced"},
      FieldFacts{.name = "partsUsed", .label = "Parts used"}};
};
static_assert(factsNameFields<ServiceLog>());

/// Labour and parts of a service together; empty when neither has a cost.
std::optional<double> totalCost(const ServiceLog& log);

}  // namespace thalvorn
