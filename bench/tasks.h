#pragma once

#include <random>
#include <vector>

#include "core/maintenance_task.h"
#include "core/template_catalogue.h"

namespace thalvorn::bench {

/// Believable tasks of one vessel, the same every time: titles and notes of the catalogue, four in five with a date,
/// three in five with hours.
inline std::vector<MaintenanceTask> makeTasks(std::size_t count, const Uuid& vessel, Timestamp now) {
  const auto templates = templateCatalogue();
  std::mt19937 random(20261121);
  std::vector<MaintenanceTask> tasks(count);
  for (std::size_t i = 0; i < count; ++i) {
    MaintenanceTask& task = tasks[i];
    const TaskTemplate& pattern = templates[random() % templates.size()];
    task.id = Uuid::named(vessel, std::to_string(i));
    task.vesselID = vessel;
    task.title = pattern.title;
    task.notes = pattern.notes;
    task.category = pattern.category;
    task.triggerType = pattern.triggerType;
    task.hourSource = static_cast<HourSource>(random() % 3);
    if (random() % 5 != 0) task.dueDate = now + std::chrono::hours(static_cast<int>(random() % 9600) - 1200);
    task.recurringDays = static_cast<std::int64_t>(30 + random() % 700);
    if (random() % 5 < 3) {
      task.dueAtEngineHours = 4000 + static_cast<double>(random() % 12000) / 10;
      task.recurringEngineHours = 250;
    }
    task.isCompleted = random() % 20 == 0;
  }
  return tasks;
}

}  // namespace thalvorn::bench
