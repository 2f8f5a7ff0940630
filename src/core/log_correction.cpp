#include "core/log_correction.h"

#include <fmt/format.h>

#include "base/describe.h"
#include "base/number_format.h"
#include "core/task_completion.h"

namespace thalvorn {
namespace {

std::string textOf(const std::string& value) { return value; }
std::string textOf(double value) { return formatQuantity(value); }
std::string textOf(Timestamp value) { return formatTimestamp(value); }
std::string textOf(const Uuid& value) { return value.toString(); }
template <class E>
std::string textOf(Choice<E> value) {
  return std::string(value.display());
}
template <class T>
std::string textOf(const std::optional<T>& value) {
  return value ? textOf(*value) : std::string();
}
std::string textOf(const PartUsage& part) {
  std::string text = formatQuantity(part.quantity) + " × " + part.name;
  if (!part.partNumber.empty()) text += " (" + part.partNumber + ")";
  if (part.cost) text += ", " + formatNumber(*part.cost, 2);
  return text;
}
template <class T>
std::string textOf(const std::vector<T>& values) {
  std::string text;
  for (const T& value : values) text += (text.empty() ? "" : "\n") + textOf(value);
  return text;
}

constexpr FieldSet kCorrectable = ~fieldSetOf<ServiceLog>({"id", "taskID", "vesselID", "corrections"});

}  // namespace

std::expected<ServiceLog, std::string> correctLog(const ServiceLog& log, const ServiceLog& corrected,
                                                  const std::string& reason, const std::string& author, Timestamp now) {
  const FieldSet changed = changedFields(log, corrected) & kCorrectable;
  if (changed == 0) return std::unexpected("Nothing was changed.");
  if (reason.find_first_not_of(" \t\r\n") == std::string::npos)
    return std::unexpected("Give a reason: it is kept with the earlier text.");
  if ((changed & fieldSetOf<ServiceLog>({"completedDate"})) && corrected.completedDate > now)
    return std::unexpected("The completion date is in the future. Enter the day on which the work was done.");

  ServiceLog result = log;
  copyFields(corrected, result, changed);
  std::size_t position = 0;
  boost::mp11::mp_for_each<FieldList<ServiceLog>>([&](auto field) {
    if constexpr (!std::is_same_v<std::decay_t<decltype(log.*field.pointer)>, std::vector<LogCorrection>>)
      if (changed >> position & 1)
        result.corrections.push_back(
            {.id = Uuid::named(log.id, fmt::format("correction {}", result.corrections.size() + 1)),
             .at = now,
             .field = field.name,
             .before = textOf(log.*field.pointer),
             .after = textOf(corrected.*field.pointer),
             .reason = reason,
             .author = author});
    ++position;
  });
  return result;
}

MaintenanceTask rescheduleAfterCorrection(MaintenanceTask task, const ServiceLog& before, const ServiceLog& after,
                                          const Calendar& calendar) {
  if (task.id != after.taskID || task.isCompleted) return task;
  const auto counted = nextDue(task, before.completedDate, before.engineHoursAtService, calendar);
  const auto anew = nextDue(task, after.completedDate, after.engineHoursAtService, calendar);
  if (counted && anew) {
    if (task.dueDate == counted->dueDate) task.dueDate = anew->dueDate;
    if (task.dueAtEngineHours == counted->dueAtEngineHours) task.dueAtEngineHours = anew->dueAtEngineHours;
  }
  return task;
}

}  // namespace thalvorn
