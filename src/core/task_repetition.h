#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/maintenance_task.h"

namespace thalvorn {

/// The interval in days by which the task repeats. Only planned maintenance repeats, 0 means no repeat, and a task that
/// falls due by hours alone, without any due date, has no use for it.
inline std::optional<std::int64_t> repeatDays(const MaintenanceTask& task) {
  const bool used = task.triggerType != TriggerType::engineHours || task.dueDate;
  if (task.kind == TaskKind::plannedMaintenance && used && task.recurringDays && *task.recurringDays > 0)
    return task.recurringDays;
  return std::nullopt;
}

/// The interval in hours by which the task repeats, likewise.
inline std::optional<double> repeatHours(const MaintenanceTask& task) {
  const bool used = task.triggerType != TriggerType::date || task.dueAtEngineHours;
  if (task.kind == TaskKind::plannedMaintenance && used && task.recurringEngineHours && *task.recurringEngineHours > 0)
    return task.recurringEngineHours;
  return std::nullopt;
}

/// "365 days", "250 h", "365 days or 250 h"; empty without any interval.
std::string intervalText(const std::optional<std::int64_t>& days, const std::optional<double>& hours);

inline bool repeats(const MaintenanceTask& task) { return repeatDays(task) || repeatHours(task); }

}  // namespace thalvorn
