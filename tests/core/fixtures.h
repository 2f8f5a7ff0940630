#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "base/calendar.h"
#include "core/maintenance_task.h"
#include "core/vessel.h"

namespace thalvorn::testing {

inline Timestamp at(std::string_view text) { return parseTimestamp(text).value(); }
inline Calendar zone(std::string_view name) { return Calendar::inZone(name).value(); }
inline Uuid id(std::string_view name) { return Uuid::named(Uuid{}, name); }

/// A twin-engine yacht with one generator and no hydraulics; engine 1 at 1,000 h.
inline Vessel yacht(std::string_view name = "Aurelia") {
  Vessel vessel;
  vessel.id = id(name);
  vessel.name = name;
  vessel.numberOfEngines = 2;
  vessel.hasGenerator = true;
  vessel.engineHours = 1000;
  vessel.engine2Hours = 990;
  vessel.generator1Hours = 4000;
  return vessel;
}

inline MaintenanceTask task(std::string_view title, const Vessel& vessel = yacht()) {
  MaintenanceTask made;
  made.id = id(title);
  made.vesselID = vessel.id;
  made.title = title;
  return made;
}

inline MaintenanceTask dueOn(std::string_view title, Timestamp due, const Vessel& vessel = yacht()) {
  MaintenanceTask made = task(title, vessel);
  made.dueDate = due;
  return made;
}

inline MaintenanceTask dueAt(std::string_view title, double hours, const Vessel& vessel = yacht()) {
  MaintenanceTask made = task(title, vessel);
  made.triggerType = TriggerType::engineHours;
  made.dueAtEngineHours = hours;
  return made;
}

}  // namespace thalvorn::testing
