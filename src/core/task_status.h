#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string_view>

#include "base/calendar.h"
#include "base/enums.h"
#include "base/timestamp.h"
#include "core/fleet.h"
#include "core/maintenance_task.h"

/// What makes a task overdue, due soon or on track.
///
/// A task is judged on both its triggers, the due date and the reading of an hour meter, and the worse one decides. By
/// date the day count of the calendar from now to the due moment matters, truncated toward zero: below 0 is overdue, up
/// to 7 due soon, up to 30 on track. So a due moment that passed less than a day ago is still due soon. By hours it is
/// what the meter still has to run: none is overdue, up to 10 h due soon, up to 50 h on track.
namespace thalvorn {

/// From worst to best; the worse of two is the lesser.
enum class TaskStatus : std::uint8_t { overdue, dueSoon, onTrack, beyondHorizon, completed };

template <>
struct EnumTexts<TaskStatus> {
  static constexpr std::array<EnumText, 5> table{{{"overdue", "Overdue"},
                                                  {"dueSoon", "Due soon"},
                                                  {"onTrack", "On track"},
                                                  {"beyondHorizon", "Beyond horizon"},
                                                  {"completed", "Completed"}}};
};

/// The status that the hours still to run give alone.
constexpr TaskStatus statusOfHours(double remaining) {
  constexpr double dueSoonHours = 10;
  constexpr double onTrackHours = 50;
  return static_cast<TaskStatus>((remaining > 0) + (remaining > dueSoonHours) + (remaining > onTrackHours));
}

/// The moments at which a due date changes its status, worked out once so that a pass over many tasks only compares
/// points in time.
class StatusHorizon {
 public:
  StatusHorizon(Timestamp now, const Calendar& calendar);

  Timestamp now() const { return now_; }

  /// The status that the due date gives alone. A moment to which the calendar counts no days is due soon.
  TaskStatus statusOfDate(Timestamp due) const {
    const int passed = (due > overdueUntil_) + (due >= onTrackFrom_) + (due >= beyondFrom_);
    const bool counted = due >= calendarBegin_ && due < calendarEnd_;
    return counted ? static_cast<TaskStatus>(passed) : TaskStatus::dueSoon;
  }

 private:
  Timestamp now_;
  Timestamp calendarBegin_ = Timestamp::min();
  Timestamp calendarEnd_ = Timestamp::max();
  Timestamp overdueUntil_ = Timestamp::min();  ///< a day ago
  Timestamp onTrackFrom_ = Timestamp::max();   ///< in 8 days
  Timestamp beyondFrom_ = Timestamp::max();    ///< in 31 days
};

/// The status of a task. `reading` is what the meter named by its `hourSource` shows, in hours.
inline TaskStatus taskStatus(const MaintenanceTask& task, double reading, const StatusHorizon& horizon) {
  if (task.isCompleted) return TaskStatus::completed;
  const TaskStatus byDate = task.dueDate ? horizon.statusOfDate(*task.dueDate) : TaskStatus::beyondHorizon;
  const TaskStatus byHours =
      task.dueAtEngineHours ? statusOfHours(*task.dueAtEngineHours - reading) : TaskStatus::beyondHorizon;
  return byDate < byHours ? byDate : byHours;
}

/// Whether the crew has silenced an open task until a moment still to come.
inline bool isSnoozed(const MaintenanceTask& task, Timestamp now) {
  return !task.isCompleted && task.snoozedUntil && *task.snoozedUntil > now;
}

/// How many tasks stand in each status. A snoozed task is counted as snoozed only, until its snooze ends.
struct StatusCounts {
  std::size_t overdue = 0;
  std::size_t dueSoon = 0;
  std::size_t onTrack = 0;
  std::size_t beyondHorizon = 0;
  std::size_t completed = 0;
  std::size_t snoozed = 0;
  friend bool operator==(const StatusCounts&, const StatusCounts&) = default;
};

/// Counts the tasks of one vessel, or of all when none is named.
StatusCounts countTasks(std::span<const MaintenanceTask> tasks, const Fleet& fleet, const StatusHorizon& horizon,
                        const std::optional<Uuid>& vesselID = std::nullopt);

/// What the day brings: the home dashboard's "Due Soon (today)" and "On Track (today)". Snoozed tasks are left out.
struct TodayCounts {
  std::size_t dueSoon = 0;  ///< due soon, and the due moment falls on today's date
  std::size_t onTrack = 0;  ///< on track, and beyond the horizon when the day began: new on the board today
  friend bool operator==(const TodayCounts&, const TodayCounts&) = default;
};

/// Counts what the day of `now` brings, by the dates of the calendar.
TodayCounts countToday(std::span<const MaintenanceTask> tasks, const Fleet& fleet, Timestamp now,
                       const Calendar& calendar, const std::optional<Uuid>& vesselID = std::nullopt);

/// One line of the board's colour legend: the status's display text and what the colour means.
struct StatusLegend {
  TaskStatus status;
  std::string_view meaning;
};
std::span<const StatusLegend> statusLegend();

/// The help panel that tells the rule to the crew.
struct StatusHelp {
  struct Rule {
    TaskStatus status;
    std::string_view label;
    std::string_view text;
  };
  std::string_view title;
  std::string_view section;
  std::string_view introduction;
  std::array<Rule, 3> rules;
  std::string_view elsewhere;  ///< where the tasks are that the board does not show
};
const StatusHelp& statusHelp();

}  // namespace thalvorn
