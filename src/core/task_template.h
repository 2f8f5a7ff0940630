#pragma once

#include <optional>
#include <string>

#include "base/json.h"
#include "base/uuid.h"
#include "core/maintenance_enums.h"

namespace thalvorn {

/// A ready-made task definition of the template library.
struct TaskTemplate {
  Uuid id;
  std::string title;
  Choice<TaskCategory> category;
  Choice<TriggerType> triggerType;
  std::optional<std::int64_t> recurringDays;   ///< days
  std::optional<double> recurringEngineHours;  ///< hours
  std::string notes;
  friend bool operator==(const TaskTemplate&, const TaskTemplate&) = default;
};
BOOST_DESCRIBE_STRUCT(TaskTemplate, (), (id, title, category, triggerType, recurringDays, recurringEngineHours, notes))
THALVORN_JSON_RECORD(TaskTemplate);

}  // namespace thalvorn
