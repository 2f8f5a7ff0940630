#include "core/task_status.h"

#include <algorithm>

namespace thalvorn {
namespace {

using std::chrono::sys_days;
using std::chrono::year;

/// Asks the processor for the task some way ahead: a pass over many is otherwise mostly waiting for memory.
void fetchAhead(std::span<const MaintenanceTask> tasks, std::size_t index) {
  constexpr std::size_t distance = 24;
  const MaintenanceTask& ahead = tasks[std::min(index + distance, tasks.size() - 1)];
  __builtin_prefetch(&ahead.vesselID);
  __builtin_prefetch(&ahead.snoozedUntil);
}

}  // namespace

StatusHorizon::StatusHorizon(Timestamp now, const Calendar& calendar) : now_(now) {
  if (!isCalendarTime(now)) return;  // no days can be counted from here: every date is due soon
  calendarBegin_ = sys_days{year{1} / 1 / 1};
  calendarEnd_ = sys_days{year{10000} / 1 / 1};
  overdueUntil_ = calendar.addDays(now, -1).value_or(overdueUntil_);
  onTrackFrom_ = calendar.addDays(now, 8).value_or(onTrackFrom_);
  beyondFrom_ = calendar.addDays(now, 31).value_or(beyondFrom_);
}

StatusCounts countTasks(std::span<const MaintenanceTask> tasks, const Fleet& fleet, const StatusHorizon& horizon,
                        const std::optional<Uuid>& vesselID) {
  constexpr std::size_t snoozed = caseCount<TaskStatus>;
  std::array<std::size_t, caseCount<TaskStatus> + 1> counted{};
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    fetchAhead(tasks, i);
    const MaintenanceTask& task = tasks[i];
    if (vesselID && task.vesselID != *vesselID) continue;
    const TaskStatus status = taskStatus(task, fleet.meters(task.vesselID).reading(task.hourSource), horizon);
    ++counted[isSnoozed(task, horizon.now()) ? snoozed : static_cast<std::size_t>(status)];
  }
  return {.overdue = counted[0],
          .dueSoon = counted[1],
          .onTrack = counted[2],
          .beyondHorizon = counted[3],
          .completed = counted[4],
          .snoozed = counted[snoozed]};
}

TodayCounts countToday(std::span<const MaintenanceTask> tasks, const Fleet& fleet, Timestamp now,
                       const Calendar& calendar, const std::optional<Uuid>& vesselID) {
  const StatusHorizon horizon(now, calendar);
  const Timestamp dayBegin = calendar.startOfDay(now);
  const Timestamp nextDay = calendar.addDays(dayBegin, 1).value_or(Timestamp::max());
  const StatusHorizon atDayBegin(dayBegin, calendar);
  TodayCounts counts;
  for (const MaintenanceTask& task : tasks) {
    if ((vesselID && task.vesselID != *vesselID) || isSnoozed(task, now)) continue;
    const double reading = fleet.meters(task.vesselID).reading(task.hourSource);
    const TaskStatus status = taskStatus(task, reading, horizon);
    if (status == TaskStatus::dueSoon)
      counts.dueSoon += task.dueDate && *task.dueDate >= dayBegin && *task.dueDate < nextDay;
    else if (status == TaskStatus::onTrack)
      counts.onTrack += taskStatus(task, reading, atDayBegin) == TaskStatus::beyondHorizon;
  }
  return counts;
}

std::span<const StatusLegend> statusLegend() {
  static constexpr std::array<StatusLegend, 3> legend{{{TaskStatus::overdue, "past its due date or hours"},
                                                       {TaskStatus::dueSoon, "due within 7 days"},
                                                       {TaskStatus::onTrack, "due in 8–30 days"}}};
  return legend;
}

const StatusHelp& statusHelp() {
  static constexpr StatusHelp help{
      .title = "How task status is determined",
      .section = "Task Status",
      .introduction =
          "Each task can have a due date, an engine-hour target, or both. The worst status across the two triggers "
          "determines the badge — overdue beats due soon beats on track.",
      .rules = {{{TaskStatus::overdue, "Overdue",
                  "Due date is in the past, OR current engine hours are at or past the target."},
                 {TaskStatus::dueSoon, "Due Soon",
                  "Due date is within the next 7 days, OR engine hours are within 10 hours of target."},
                 {TaskStatus::onTrack, "On Track",
                  "Due date is 8–30 days out, OR engine hours are 11–50 hours away. Either trigger inside the window "
                  "is enough."}}},
      .elsewhere =
          "Tasks beyond 30 days AND 50 hours out only appear in Task Library (in the Maintenance Tasks menu). "
          "Completed tasks live in the History tab."};
  return help;
}

}  // namespace thalvorn
