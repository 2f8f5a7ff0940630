#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/calendar.h"
#include "base/timestamp.h"
#include "core/fleet.h"
#include "core/maintenance_task.h"
#include "core/service_log.h"

/// How fast meters run, learned from the readings of services, and when they should reach a target.
namespace thalvorn {

/// A meter reading that was noted at some time, hours.
struct DatedReading {
  Timestamp at;
  double hours = 0;
};

/// Average running hours a day over the last 90 days before the latest reading, which is taken for true: earlier ones
/// above it are typing errors and do not count. Empty when the readings span less than a day. The order of `readings`
/// does not matter.
std::optional<double> averageDailyHours(std::vector<DatedReading> readings);

/// Teaches the fleet the pace of every meter from its current reading and the service logs since it was last corrected
/// or replaced. A log's reading belongs to the meter that its task names.
void learnPaces(Fleet& fleet, std::span<const MaintenanceTask> tasks, std::span<const ServiceLog> logs, Timestamp now);

/// When a meter should reach `target`, an estimate; in the past when it has. `hoursPerDay` is above 0.
Timestamp projectedDate(double target, double reading, double hoursPerDay, Timestamp now);

/// An estimated date as a person says it: "about 12 May".
std::string aboutDate(Timestamp estimate, Timestamp now, const Calendar& calendar);

}  // namespace thalvorn
