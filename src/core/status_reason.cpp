#include "core/status_reason.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "base/date_format.h"
#include "base/number_format.h"
#include "core/task_repetition.h"

namespace thalvorn {
namespace {

constexpr double kBoardDays = 30;
constexpr double kBoardHours = 50;

double used(double remaining, double interval) { return std::clamp(1 - remaining / interval, 0.0, 1.0); }

double secondsOf(std::chrono::seconds duration) { return static_cast<double>(duration.count()); }

bool decidedByHours(const MaintenanceTask& task, const StatusReason& reason) {
  if (!task.dueDate) return true;
  if (reason.decidedBy != TriggerType::both) return reason.decidedBy == TriggerType::engineHours;
  // Both say the same: the one that has used more of its interval is the more pressing.
  return reason.remainingHours &&
         *reason.remainingHours / kBoardHours < static_cast<double>(reason.remainingDays.value_or(0)) / kBoardDays;
}

std::string hoursAway(double remaining) {
  if (std::abs(remaining) < 0.05) return "due now";
  return remaining < 0 ? fmt::format("{} h past", formatNumber(-remaining, 1))
                       : fmt::format("in {} h", formatNumber(remaining, 1));
}

std::string everyText(const MaintenanceTask& task) {
  const std::string interval = intervalText(repeatDays(task), repeatHours(task));
  return interval.empty() ? interval : "every " + interval;
}

}  // namespace

StatusReason explainStatus(const MaintenanceTask& task, const Vessel& vessel, const StatusHorizon& horizon,
                           const Calendar& calendar) {
  StatusReason reason;
  const double reading = vessel.reading(task.hourSource);
  reason.status = taskStatus(task, reading, horizon);
  reason.snoozed = isSnoozed(task, horizon.now());
  reason.meterMissing = task.dueAtEngineHours && !vessel.hasMeter(task.hourSource);

  if (task.dueDate) {
    reason.remainingDays = calendar.dayComponent(horizon.now(), *task.dueDate);
    const auto days = repeatDays(task);
    constexpr double daySeconds = 86400;
    reason.intervalUsed =
        used(secondsOf(*task.dueDate - horizon.now()) / daySeconds, days ? static_cast<double>(*days) : kBoardDays);
  }
  if (task.dueAtEngineHours) {
    reason.remainingHours = *task.dueAtEngineHours - reading;
    const double byHours = used(*reason.remainingHours, repeatHours(task).value_or(kBoardHours));
    reason.intervalUsed = std::max(reason.intervalUsed.value_or(0), byHours);
  }
  if (task.dueDate && task.dueAtEngineHours) {
    const TaskStatus byDate = horizon.statusOfDate(*task.dueDate);
    const TaskStatus byHours = statusOfHours(*reason.remainingHours);
    reason.decidedBy = byDate == byHours  ? TriggerType::both
                       : byDate < byHours ? TriggerType::date
                                          : TriggerType::engineHours;
  } else if (task.dueDate) {
    reason.decidedBy = TriggerType::date;
  } else if (task.dueAtEngineHours) {
    reason.decidedBy = TriggerType::engineHours;
  }
  return reason;
}

DueText dueText(const MaintenanceTask& task, const StatusReason& reason, Timestamp now, const Calendar& calendar) {
  const auto shortDate = [&](Timestamp time) { return formatShortDate(calendar.date(time), calendar.date(now)); };
  if (reason.snoozed && task.snoozedUntil) return {"until " + shortDate(*task.snoozedUntil), std::string(kSnoozedText)};

  if (task.dueAtEngineHours && reason.remainingHours && decidedByHours(task, reason))
    return {hoursAway(*reason.remainingHours), task.dueDate
                                                   ? "or " + shortDate(*task.dueDate)
                                                   : fmt::format("at {} h", formatNumber(*task.dueAtEngineHours, 1))};
  if (!task.dueDate) return {"—", everyText(task)};

  const std::string due = formatDue(*task.dueDate, now, calendar);
  if (task.dueAtEngineHours) return {due, fmt::format("or at {} h", formatNumber(*task.dueAtEngineHours, 1))};
  return {due, reason.remainingDays.value_or(0) < 0 ? shortDate(*task.dueDate) : everyText(task)};
}

std::string reasonText(const MaintenanceTask& task, const StatusReason& reason, const Vessel& vessel, Timestamp now,
                       const Calendar& calendar) {
  if (reason.status == TaskStatus::completed) return "Completed: it lives in the service history.";
  std::string text;
  if (!reason.decidedBy) {
    text = "Neither a due date nor an hours target is set, so it never falls due.";
  } else {
    const std::string byDate =
        task.dueDate ? fmt::format("due {}", formatDate(calendar.date(*task.dueDate))) : std::string();
    const std::string byHours =
        task.dueAtEngineHours ? fmt::format("due at {} h, {} stands at {} h", formatNumber(*task.dueAtEngineHours, 1),
                                            task.hourSource.display(), formatNumber(vessel.reading(task.hourSource), 1))
                              : std::string();
    const std::string_view label = displayText(reason.status);
    switch (*reason.decidedBy) {
      case TriggerType::date:
        text = fmt::format("{} by date: {}.", label, byDate);
        break;
      case TriggerType::engineHours:
        text = fmt::format("{} by hours: {}.", label, byHours);
        break;
      case TriggerType::both:
        text = fmt::format("{} by date and by hours: {}; {}.", label, byDate, byHours);
        break;
    }
  }
  if (reason.snoozed && task.snoozedUntil)
    text += fmt::format(" Snoozed until {}.", formatShortDate(calendar.date(*task.snoozedUntil), calendar.date(now)));
  if (reason.meterMissing)
    text += fmt::format(" The task names a meter the vessel lacks ({}): choose one that {} has.",
                        task.hourSource.display(), vessel.name.empty() ? "the vessel" : vessel.name);
  return text;
}

}  // namespace thalvorn
