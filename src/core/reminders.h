#pragma once

#include <span>
#include <string>
#include <vector>

#include "base/calendar.h"
#include "core/maintenance_task.h"
#include "core/vessel.h"

namespace thalvorn {

/// What a reminder of the desktop says of one task.
struct Reminder {
  Uuid taskID;
  std::string stage;  ///< of which due point, and whether it is near or past: each stage is told once
  std::string title;  ///< "Maintenance due: Engine coolant check"
  std::string body;   ///< "Vessel: M/Y Meridian" and when it is due
  bool overdue = false;
  friend bool operator==(const Reminder&, const Reminder&) = default;
};

/// The reminders that are due now for the tasks of a vessel: one when a due moment is at most `leadDays` calendar days
/// away or 10 hours or less are left on the meter, and another once the task is overdue. Completed and snoozed tasks
/// have none. Overdue tasks come first.
std::vector<Reminder> dueReminders(std::span<const MaintenanceTask> tasks, const Vessel& vessel, Timestamp now,
                                   const Calendar& calendar, std::int64_t leadDays);

}  // namespace thalvorn
