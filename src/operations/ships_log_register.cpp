#include "operations/ships_log_register.h"

namespace thalvorn {

std::string routeText(const ShipsLogEntry& entry) {
  if (entry.departurePort.empty() || entry.arrivalPort.empty()) return entry.departurePort + entry.arrivalPort;
  return entry.departurePort + " → " + entry.arrivalPort;
}

std::string Register<ShipsLogEntry>::name(const ShipsLogEntry& entry) {
  const std::string route = routeText(entry);
  return route.empty() ? "Log entry" : route;
}

}  // namespace thalvorn
