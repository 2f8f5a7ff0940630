#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"
#include "core/maintenance_enums.h"

namespace thalvorn {

/// One maintenance item of one vessel. The described order below is that of its stored form.
struct MaintenanceTask {
  Uuid id;
  // What decides the status stands together, so that a pass over a million tasks reads half as much memory.
  Uuid vesselID;
  Choice<HourSource> hourSource;
  bool isCompleted = false;  ///< set when a one-off task has been done
  std::optional<Timestamp> dueDate;
  std::optional<double> dueAtEngineHours;  ///< meter reading at which the task falls due, hours
  std::optional<Timestamp> snoozedUntil;   ///< not flagged before this point in time
  std::string title;
  std::string notes;
  Choice<TaskCategory> category;
  Choice<TriggerType> triggerType;
  std::optional<std::int64_t> recurringDays;   ///< repeat interval, days; absent or 0 for a one-off
  std::optional<double> recurringEngineHours;  ///< repeat interval, hours; absent or 0 for a one-off
  Choice<TaskPriority> priority = TaskPriority::medium;
  Choice<TaskKind> kind = TaskKind::plannedMaintenance;
  std::vector<Bytes> photoData;         ///< photos held inline (legacy form)
  std::vector<std::string> photoPaths;  ///< photos held as files

  friend bool operator==(const MaintenanceTask&, const MaintenanceTask&) = default;
};
BOOST_DESCRIBE_STRUCT(MaintenanceTask, (),
                      (id, vesselID, title, notes, category, triggerType, hourSource, dueDate, recurringDays,
                       dueAtEngineHours, recurringEngineHours, priority, kind, snoozedUntil, isCompleted, photoData,
                       photoPaths))
/// Priority, kind and snooze are not part of the coded form; they travel in the remote row and in the cache's side
/// entry.
template <>
struct JsonForm<MaintenanceTask> {
  static constexpr std::array<std::string_view, 3> extra{"priority", "kind", "snoozedUntil"};
};
THALVORN_JSON_RECORD(MaintenanceTask);

template <>
struct RecordFacts<MaintenanceTask> {
  static constexpr std::array facts{
      FieldFacts{.name = "title", .label = "Title", .placeholder = "e.g. Engine oil & filter change", .required = true},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "category", .label = "Category", .required = true},
      FieldFacts{.name = "triggerType", .label = "Falls due"},
      FieldFacts{.name = "hourSource", .label = "Hour meter"},
      FieldFacts{.name = "dueDate", .label = "Due date", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "recurringDays",
                 .label = "Repeat every",
                 .unit = "days",
                 .help = "days (0 = no repeat)",
                 .minimum = 0,
                 .maximum = 36500},
      FieldFacts{
          .name = "dueAtEngineHours", .label = "Due at", .unit = "hrs", .decimals = 1, .minimum = 0, .maximum = 1e6},
      FieldFacts{.name = "recurringEngineHours",
                 .label = "Repeat every",
                 .unit = "hrs",
                 .help = "hours (0 = no repeat)",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e6},
      FieldFacts{.name = "priority", .label = "Priority"},
      FieldFacts{.name = "kind", .label = "Kind"},
      FieldFacts{.name = "snoozedUntil", .label = "Snoozed until"},
      FieldFacts{.name = "photoPaths", .label = "Photos"}};
};
static_assert(factsNameFields<MaintenanceTask>());

}  // namespace thalvorn
