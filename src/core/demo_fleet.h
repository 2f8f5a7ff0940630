#pragma once

#include <vector>

#include "base/calendar.h"
#include "core/maintenance_task.h"
#include "core/service_log.h"
#include "core/vessel.h"
#include "core/vessel_profile.h"

namespace thalvorn {

/// The fleet on which people try the program: three invented yachts with years of work behind them.
struct DemoFleet {
  std::vector<Vessel> vessels;
  std::vector<VesselProfile> profiles;
  std::vector<MaintenanceTask> tasks;
  std::vector<ServiceLog> logs;  ///< latest first
};

/// Always the same records, dated so that today some work is overdue, some due soon and some on track. They depend on
/// the date alone, not on the hour.
DemoFleet demoFleet(Timestamp now, const Calendar& calendar);

}  // namespace thalvorn
