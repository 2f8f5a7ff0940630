#pragma once

#include <expected>
#include <optional>
#include <string>
#include <vector>

#include "base/calendar.h"
#include "core/maintenance_task.h"
#include "core/meters.h"
#include "core/service_log.h"
#include "core/vessel.h"

/// "Mark complete & log": what a completed task becomes.
namespace thalvorn {

/// What the sheet collects. Only the date is needed.
struct CompletionForm {
  Uuid logID = Uuid::random();  ///< of the service log that will be written
  Timestamp completedDate{};
  std::string technicianNotes;
  std::optional<Uuid> equipmentID;
  std::optional<double> cost;
  std::string completedBy;
  std::vector<PartUsage> partsUsed;    ///< lines without a name and a part number are left out
  std::vector<MeterReading> readings;  ///< taken during the service
  std::vector<std::string> photoPaths;
};

/// The three records that change together, and what became of the readings.
struct Completion {
  ServiceLog log;
  MaintenanceTask task;
  Vessel vessel;
  std::vector<MeterNotice> notices;
};

/// Why a task cannot be completed.
enum class CompletionRefusal : std::uint8_t { alreadyCompleted, otherVessel };

template <>
struct EnumTexts<CompletionRefusal> {
  static constexpr std::array<EnumText, 2> table{
      {{"alreadyCompleted", "This task is already completed. Its record is in the service history."},
       {"otherVessel", "This task belongs to another vessel."}}};
};

/// What a form says of a completion date after today; empty when it is fine. Scripts and imports may date work as they
/// like.
std::string_view completionDateProblem(Timestamp completedDate, Timestamp now, const Calendar& calendar);

/// Completes a task on the vessel's meters: the meters rise to the readings, a service log is written, and the task
/// moves on by its intervals or, when it does not repeat, is done. A snooze ends.
std::expected<Completion, CompletionRefusal> completeTask(MaintenanceTask task, const Vessel& vessel,
                                                          const CompletionForm& form, Timestamp now,
                                                          const Calendar& calendar);

/// The due point that follows a completion.
struct NextDue {
  std::optional<Timestamp> dueDate;
  std::optional<double> dueAtEngineHours;
  friend bool operator==(const NextDue&, const NextDue&) = default;
};

/// Counted from the completion date and the meter's reading at the service. A trigger without an interval is spent.
/// Empty when the task does not repeat.
std::optional<NextDue> nextDue(const MaintenanceTask& task, Timestamp completedDate, double readingAtService,
                               const Calendar& calendar);

/// "Next due: 5,312.9 h or 21 Nov 2027", or that the task does not repeat.
std::string nextDueText(const std::optional<NextDue>& next, const Calendar& calendar);

/// The next due point that completing with this form would give, for the sheet.
std::optional<NextDue> previewNextDue(const MaintenanceTask& task, const Vessel& vessel, const CompletionForm& form,
                                      Timestamp now, const Calendar& calendar);

}  // namespace thalvorn
