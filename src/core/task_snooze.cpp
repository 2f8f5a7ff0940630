#include "core/task_snooze.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/date_format.h"

namespace thalvorn {
namespace {

std::string counted(std::int64_t count, std::string_view unit) {
  return fmt::format("{} {}{}", count, unit, count == 1 ? "" : "s");
}

std::string periodText(Timestamp from, Timestamp until, const Calendar& calendar) {
  const auto days = calendar.dayComponent(from, until).value_or(0);
  if (days > 0) return counted(days, "day");
  const auto minutes = std::chrono::ceil<std::chrono::minutes>(until - from).count();
  return minutes >= 60 ? counted(minutes / 60, "hour") : counted(minutes, "minute");
}

}  // namespace

std::expected<MaintenanceTask, std::string> snoozeTask(MaintenanceTask task, Timestamp until, Timestamp now,
                                                       const Calendar& calendar, std::string_view who) {
  if (task.isCompleted) return std::unexpected("This task is completed; there is nothing to snooze.");
  if (until <= now) return std::unexpected("Choose a moment in the future until which the task stays silent.");
  task.snoozedUntil = until;
  if (!task.notes.empty() && !task.notes.ends_with('\n')) task.notes += '\n';
  task.notes +=
      fmt::format("[Snoozed {}{}{} for {} — silent until {}]", formatDate(calendar.date(now)),
                  who.empty() ? "" : " by ", who, periodText(now, until, calendar), formatDate(calendar.date(until)));
  return task;
}

MaintenanceTask unsnoozeTask(MaintenanceTask task) {
  task.snoozedUntil.reset();
  return task;
}

}  // namespace thalvorn
