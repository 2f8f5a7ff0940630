#include "core/task_completion.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/date_format.h"
#include "base/number_format.h"
#include "core/task_repetition.h"

namespace thalvorn {
namespace {

std::vector<PartUsage> filledParts(const CompletionForm& form) {
  std::vector<PartUsage> parts;
  for (const PartUsage& part : form.partsUsed) {
    if (part.name.empty() && part.partNumber.empty()) continue;
    parts.push_back(part);
    if (part.id.isNil()) parts.back().id = Uuid::named(form.logID, fmt::format("part {}", parts.size()));
  }
  return parts;
}

}  // namespace

std::optional<NextDue> nextDue(const MaintenanceTask& task, Timestamp completedDate, double readingAtService,
                               const Calendar& calendar) {
  if (!repeats(task)) return std::nullopt;
  NextDue next;
  if (const auto days = repeatDays(task)) next.dueDate = calendar.addDays(completedDate, *days);
  if (const auto hours = repeatHours(task)) next.dueAtEngineHours = readingAtService + *hours;
  return next;
}

std::string_view completionDateProblem(Timestamp completedDate, Timestamp now, const Calendar& calendar) {
  if (completedDate <= now || calendar.date(completedDate) == calendar.date(now)) return {};
  return "The completion date is in the future. Enter the day on which the work was done.";
}

std::expected<Completion, CompletionRefusal> completeTask(MaintenanceTask task, const Vessel& vessel,
                                                          const CompletionForm& form, Timestamp now,
                                                          const Calendar& calendar) {
  if (task.isCompleted) return std::unexpected(CompletionRefusal::alreadyCompleted);
  if (task.vesselID != vessel.id) return std::unexpected(CompletionRefusal::otherVessel);

  RaisedMeters raised = raiseMeters(vessel, form.readings, now);
  ServiceLog log{.id = form.logID,
                 .taskID = task.id,
                 .vesselID = task.vesselID,
                 .equipmentID = form.equipmentID,
                 .taskTitle = task.title,
                 .category = task.category,
                 .kind = task.kind,
                 .completedDate = form.completedDate,
                 .engineHoursAtService = raised.vessel.reading(task.hourSource),
                 .technicianNotes = form.technicianNotes,
                 .cost = form.cost,
                 .completedBy = form.completedBy,
                 .partsUsed = filledParts(form),
                 .photoPaths = form.photoPaths,
                 .corrections = {}};

  if (const auto next = nextDue(task, log.completedDate, log.engineHoursAtService, calendar)) {
    task.dueDate = next->dueDate;
    task.dueAtEngineHours = next->dueAtEngineHours;
  } else {
    task.isCompleted = true;
  }
  task.snoozedUntil.reset();
  task.photoPaths.insert(task.photoPaths.end(), form.photoPaths.begin(), form.photoPaths.end());
  return Completion{.log = std::move(log),
                    .task = std::move(task),
                    .vessel = std::move(raised.vessel),
                    .notices = std::move(raised.notices)};
}

std::string nextDueText(const std::optional<NextDue>& next, const Calendar& calendar) {
  if (!next) return "Does not repeat: it moves to the service history.";
  std::string text = "Next due: ";
  if (next->dueAtEngineHours) text += formatNumber(*next->dueAtEngineHours, 1) + " h";
  if (next->dueAtEngineHours && next->dueDate) text += " or ";
  if (next->dueDate) text += formatDate(calendar.date(*next->dueDate));
  return text;
}

std::optional<NextDue> previewNextDue(const MaintenanceTask& task, const Vessel& vessel, const CompletionForm& form,
                                      Timestamp now, const Calendar& calendar) {
  const Vessel raised = raiseMeters(vessel, form.readings, now).vessel;
  return nextDue(task, form.completedDate, raised.reading(task.hourSource), calendar);
}

}  // namespace thalvorn
