#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/task_status.h"

namespace thalvorn {

/// Why a task has its status: what each trigger says and how far off it is.
struct StatusReason {
  TaskStatus status = TaskStatus::beyondHorizon;
  std::optional<TriggerType> decidedBy;       ///< the worse trigger, `both` when they agree; empty without any trigger
  std::optional<std::int64_t> remainingDays;  ///< day count of the calendar; empty without a due date
  std::optional<double> remainingHours;       ///< hours the meter still has to run; below 0 when past
  /// How much of the interval is used, 0 to 1, by the trigger that has used more. A task without an interval is
  /// measured over the 30 days or 50 hours that the board looks ahead. Empty without any trigger.
  std::optional<double> intervalUsed;
  bool snoozed = false;
  bool meterMissing = false;  ///< judged by hours on a meter that the vessel is not fitted with
};

/// Explains the status of an open or completed task of `vessel`.
StatusReason explainStatus(const MaintenanceTask& task, const Vessel& vessel, const StatusHorizon& horizon,
                           const Calendar& calendar);

/// When a task falls due, as a list shows it: the trigger that decides first, then the rest in small print.
struct DueText {
  std::string first;   ///< "2 days past", "Wed 25 Nov", "in 6.2 h", "12.4 h past", "until 1 Dec" (snoozed)
  std::string second;  ///< "or 14 Dec", "at 9,107.6 h", "every 365 days", "Snoozed — click to change"
};
DueText dueText(const MaintenanceTask& task, const StatusReason& reason, Timestamp now, const Calendar& calendar);

/// One sentence on why the task stands where it does, with a warning when it "names a meter the vessel lacks".
std::string reasonText(const MaintenanceTask& task, const StatusReason& reason, const Vessel& vessel, Timestamp now,
                       const Calendar& calendar);

/// What a snoozed task shows in place of its due point.
inline constexpr std::string_view kSnoozedText = "Snoozed — click to change";

}  // namespace thalvorn
