#include "core/reminders.h"

#include <iterator>

#include "base/json.h"
#include "core/status_reason.h"
#include "core/task_status.h"

namespace thalvorn {
namespace {

std::string duePoint(const MaintenanceTask& task) {
  std::string point;
  if (task.dueDate) appendTimestamp(point, *task.dueDate);
  point.push_back('/');
  if (task.dueAtEngineHours) appendJsonNumber(point, *task.dueAtEngineHours);
  return point;
}

}  // namespace

std::vector<Reminder> dueReminders(std::span<const MaintenanceTask> tasks, const Vessel& vessel, Timestamp now,
                                   const Calendar& calendar, std::int64_t leadDays) {
  const StatusHorizon horizon(now, calendar);
  std::vector<Reminder> overdueOnes;
  std::vector<Reminder> reminders;
  for (const MaintenanceTask& task : tasks) {
    if (task.vesselID != vessel.id || isSnoozed(task, now)) continue;
    const TaskStatus status = taskStatus(task, vessel.reading(task.hourSource), horizon);
    if (status > TaskStatus::dueSoon) continue;
    const StatusReason reason = explainStatus(task, vessel, horizon, calendar);
    const bool overdue = status == TaskStatus::overdue;
    const bool dateIsNear = reason.remainingDays && *reason.remainingDays <= leadDays;
    const bool hoursAreNear = reason.remainingHours && statusOfHours(*reason.remainingHours) <= TaskStatus::dueSoon;
    if (!overdue && !dateIsNear && !hoursAreNear) continue;
    (overdue ? overdueOnes : reminders)
        .push_back({.taskID = task.id,
                    .stage = (overdue ? "overdue " : "due ") + duePoint(task),
                    .title = "Maintenance due: " + task.title,
                    .body = "Vessel: " + vessel.name + "\n" + dueText(task, reason, now, calendar).first,
                    .overdue = overdue});
  }
  overdueOnes.insert(overdueOnes.end(), std::make_move_iterator(reminders.begin()),
                     std::make_move_iterator(reminders.end()));
  return overdueOnes;
}

}  // namespace thalvorn
