#pragma once

#include <filesystem>
#include <future>

#include "store/app_view_model.h"
#include "tasks.h"

namespace thalvorn::bench {

/// A store with a fleet of this computer only: one vessel, `tasks` tasks and as many service logs.
inline std::filesystem::path makeStore(const std::filesystem::path& folder, std::size_t tasks) {
  const auto file = folder / (std::to_string(tasks) + ".sqlite");
  auto cache = LocalCache::open(file).value();
  const Vessel vessel{.id = Uuid::named(Uuid{}, "vessel"), .name = "M/Y Meridian", .engineHours = 4812.4};
  std::map<std::string, std::vector<std::string>> lists{{"_vessels", {toJson(vessel)}}};
  for (const MaintenanceTask& task : makeTasks(tasks, vessel.id, parseTimestamp("2026-11-21").value())) {
    lists["_tasks"].push_back(toJson(task));
    ServiceLog log{.id = Uuid::named(vessel.id, "log" + task.id.toString()),
                   .taskID = task.id,
                   .vesselID = vessel.id,
                   .taskTitle = task.title,
                   .category = task.category,
                   .completedDate = parseTimestamp("2026-03-14").value(),
                   .technicianNotes = "Replaced and tested, no leaks found.",
                   .completedBy = "L. Marchetti"};
    lists["_logs"].push_back(toJson(log));
  }
  std::promise<void> done;
  cache->replaceAll("local", std::move(lists), [&](const auto&) { done.set_value(); });
  done.get_future().wait();
  cache->setPreference("thalvorn.lastFleet", "local");
  cache->flush();
  return file;
}

}  // namespace thalvorn::bench
