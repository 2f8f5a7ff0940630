// What the crew does: each operation reads the records as they stand, lets the rules of core/ work out the new ones,
// and applies them as one edit.

#include <fmt/format.h>

#include <algorithm>
#include <ranges>

#include "core/log_correction.h"
#include "core/meters.h"
#include "core/task_completion.h"
#include "core/task_snooze.h"
#include "store/app_view_model.h"

namespace thalvorn {
namespace {

constexpr std::string_view kTaskGone = "This task was deleted meanwhile; nothing was changed.";
constexpr std::string_view kVesselGone = "This vessel was deleted meanwhile; nothing was changed.";

}  // namespace

// ---- tasks ----

Saving AppViewModel::completeTask(const Uuid& taskID, const CompletionForm& form) {
  const MaintenanceTask* task = tasks().find(taskID);
  if (!task) return refused(std::string(kTaskGone));
  const Vessel* vessel = vessels().find(task->vesselID);
  if (!vessel) return refused(std::string(kVesselGone));
  auto completion = thalvorn::completeTask(*task, *vessel, form, now(), calendar());
  if (!completion) return refused(std::string(displayText(completion.error())));
  Edit edit{.label = "“" + task->title + "” completed"};
  edit.add(std::move(completion->log));
  edit.replace(*task, std::move(completion->task));
  edit.replace(*vessel, std::move(completion->vessel));
  return apply(std::move(edit));
}

Saving AppViewModel::snoozeTask(const Uuid& taskID, Timestamp until) {
  const MaintenanceTask* task = tasks().find(taskID);
  if (!task) return refused(std::string(kTaskGone));
  auto snoozed = thalvorn::snoozeTask(*task, until, now(), calendar(), displayName());
  if (!snoozed) return refused(std::move(snoozed.error()));
  Edit edit{.label = "“" + task->title + "” snoozed"};
  edit.replace(*task, std::move(*snoozed));
  return apply(std::move(edit));
}

Saving AppViewModel::unsnoozeTask(const Uuid& taskID) {
  const MaintenanceTask* task = tasks().find(taskID);
  if (!task) return refused(std::string(kTaskGone));
  Edit edit{.label = "“" + task->title + "” no longer snoozed"};
  edit.replace(*task, thalvorn::unsnoozeTask(*task));
  return apply(std::move(edit));
}

Saving AppViewModel::correctLog(const ServiceLog& corrected, std::string reason) {
  const ServiceLog* log = logs().find(corrected.id);
  if (!log) return refused("This service log was deleted meanwhile; nothing was changed.");
  auto result = thalvorn::correctLog(*log, corrected, reason, displayName(), now());
  if (!result) return refused(std::move(result.error()));
  Edit edit{.label = "“" + log->taskTitle + "” corrected"};
  const bool isLatest = std::ranges::none_of(logs().records(), [&](const ServiceLog& other) {
    return other.taskID == log->taskID && other.completedDate > log->completedDate;
  });
  if (const MaintenanceTask* task = tasks().find(log->taskID); task && isLatest)
    edit.replace(*task, rescheduleAfterCorrection(*task, *log, *result, calendar()));
  edit.replace(*log, std::move(*result));
  return apply(std::move(edit));
}

// ---- meters ----

Saving AppViewModel::updateMeters(const Uuid& vesselID, const std::vector<MeterReading>& readings) {
  const Vessel* vessel = vessels().find(vesselID);
  if (!vessel) return refused(std::string(kVesselGone));
  RaisedMeters raised = raiseMeters(*vessel, readings, now());
  Edit edit{.label = "Hour meters of “" + vessel->name + "” updated"};
  edit.replace(*vessel, std::move(raised.vessel));
  return apply(std::move(edit));
}

Saving AppViewModel::correctMeter(const Uuid& vesselID, MeterChange change, MeterAdjustment adjustment) {
  const Vessel* vessel = vessels().find(vesselID);
  if (!vessel) return refused(std::string(kVesselGone));
  if (adjustment.author.empty()) adjustment.author = displayName();
  const bool replaced = change == MeterChange::replaced;
  auto adjusted =
      replaced ? replaceMeter(*vessel, adjustment, now()) : thalvorn::correctMeter(*vessel, adjustment, now());
  if (!adjusted) return refused(std::move(adjusted.error()));
  Edit edit{.label = std::string(meterLabel(adjustment.source)) + " of “" + vessel->name +
                     (replaced ? "” replaced" : "” corrected")};
  if (replaced) {
    for (MaintenanceTask& moved : followNewMeter(tasks().records(), vesselID, adjusted->meterHistory.back()))
      edit.replace(*tasks().find(moved.id), std::move(moved));
  }
  edit.replace(*vessel, std::move(*adjusted));
  return apply(std::move(edit));
}

// ---- vessels ----

Saving AppViewModel::removeVessel(const Uuid& vesselID) {
  const Vessel* vessel = vessels().find(vesselID);
  if (!vessel) return refused(std::string(kVesselGone));
  Edit edit{.label = "“" + vessel->name + "” deleted"};
  forEachKind([&]<class T>(std::type_identity<T>) {
    for (const T& record : collection<T>().records())
      if (vesselOf(record) == vesselID) edit.remove(record);
  });
  edit.remove(*vessel);
  return apply(std::move(edit));
}

std::vector<std::string> AppViewModel::whatHangsOn(const Uuid& vesselID) const {
  std::vector<std::string> lines;
  forEachKind([&]<class T>(std::type_identity<T>) {
    const auto records = collection<T>().records();
    const auto count = std::ranges::count_if(records, [&](const T& record) { return vesselOf(record) == vesselID; });
    if (count == 0) return;
    const KindFacts& facts = RecordKind<T>::facts;
    lines.push_back(fmt::format("{} {}", count, count == 1 ? facts.singular : facts.plural));
  });
  return lines;
}

Saving AppViewModel::reorderVessels(const std::vector<Uuid>& order) {
  Edit edit{.label = "Vessels put in order"};
  for (std::size_t position = 0; position < order.size(); ++position) {
    const Vessel* vessel = vessels().find(order[position]);
    if (!vessel) return refused(std::string(kVesselGone));
    if (vessel->sortOrder == static_cast<std::int64_t>(position)) continue;
    Vessel moved = *vessel;
    moved.sortOrder = static_cast<std::int64_t>(position);
    edit.replace(*vessel, std::move(moved));
  }
  return apply(std::move(edit));
}

}  // namespace thalvorn
