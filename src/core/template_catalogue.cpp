#include "core/template_catalogue.h"

#include <algorithm>
#include <charconv>

#include "base/csv.h"
#include "base/search_text.h"
#include "core/task_repetition.h"

namespace thalvorn {

/// The catalogue's file: title, category, trigger type, intervals and note of each template.
extern const std::string_view kMaintenanceTemplates;

namespace {

/// The space in which the templates' identities are named.
constexpr Uuid kTemplateSpace{
    {0x5b, 0x1e, 0x0c, 0x86, 0x7d, 0x2a, 0x4f, 0x39, 0x9a, 0x11, 0x36, 0xc4, 0x0e, 0xd8, 0x52, 0x7f}};

template <class T>
std::optional<T> numberIn(std::string_view cell) {
  T value{};
  const auto read = std::from_chars(cell.data(), cell.data() + cell.size(), value);
  return read.ec == std::errc() && !cell.empty() ? std::optional(value) : std::nullopt;
}

std::vector<TaskTemplate> readCatalogue() {
  std::vector<TaskTemplate> templates;
  std::optional<CsvHeader> header;
  readCsv(openCsv(kMaintenanceTemplates), [&](const CsvRow& row) {
    if (!header) {
      header.emplace(row.cells);
      return;
    }
    const auto cell = [&](std::string_view name) { return row.cell(header->column(name)); };
    TaskTemplate& made = templates.emplace_back();
    made.title = cell("title");
    made.id = Uuid::named(kTemplateSpace, made.title);
    made.category = Choice<TaskCategory>::fromRaw(cell("category"));
    made.triggerType = cell("triggerType") == "hours" ? Choice<TriggerType>(TriggerType::engineHours)
                                                      : Choice<TriggerType>::fromRaw(cell("triggerType"));
    made.recurringDays = numberIn<std::int64_t>(cell("recurringDays"));
    made.recurringEngineHours = numberIn<double>(cell("recurringHours"));
    made.notes = cell("notes");
  });
  return templates;
}

}  // namespace

std::span<const TaskTemplate> templateCatalogue() {
  static const std::vector<TaskTemplate> templates = readCatalogue();
  return templates;
}

std::vector<const TaskTemplate*> findTemplates(std::string_view search, const std::optional<TaskCategory>& category) {
  SearchWords words(search);
  std::vector<const TaskTemplate*> found;
  for (const TaskTemplate& made : templateCatalogue())
    if ((!category || made.category == *category) && words.matches({made.title, made.category.display(), made.notes}))
      found.push_back(&made);
  return found;
}

const TaskTemplate* templateTitled(std::string_view title) {
  const std::string wanted = foldText(title);
  const auto all = templateCatalogue();
  const auto found = std::ranges::find(all, wanted, [](const TaskTemplate& made) { return foldText(made.title); });
  return found == all.end() ? nullptr : &*found;
}

std::string repeatText(const TaskTemplate& made) {
  return "Every " + intervalText(made.recurringDays, made.recurringEngineHours);
}

std::string proposedHoursText(const TaskTemplate& made) {
  return made.recurringEngineHours ? "Set to current + " + intervalText({}, made.recurringEngineHours) : std::string();
}

HourSource meterOfCategory(Choice<TaskCategory> category) {
  switch (category.knownOr(TaskCategory::other)) {
    case TaskCategory::engine2:
      return HourSource::engine2;
    case TaskCategory::engine3:
      return HourSource::engine3;
    case TaskCategory::generator:
      return HourSource::generator1;
    case TaskCategory::hydraulic:
      return HourSource::hydraulic;
    default:
      return HourSource::engine;
  }
}

MaintenanceTask taskFromTemplate(const TaskTemplate& made, const Vessel& vessel, const TemplateStart& start,
                                 const Calendar& calendar, const Uuid& taskID) {
  using From = TemplateStart::From;
  MaintenanceTask task;
  task.id = taskID;
  task.vesselID = vessel.id;
  task.title = made.title;
  task.notes = made.notes;
  task.category = made.category;
  task.triggerType = made.triggerType;
  task.hourSource = meterOfCategory(made.category);
  task.recurringDays = made.recurringDays;
  task.recurringEngineHours = made.recurringEngineHours;

  const double current = vessel.reading(task.hourSource);
  if (start.from == From::notKnown) {
    if (made.recurringDays) task.dueDate = start.startDate;
    if (made.recurringEngineHours)
      task.dueAtEngineHours = made.recurringDays ? current + *made.recurringEngineHours : current;
    return task;
  }
  const bool lastDone = start.from == From::lastDone;
  const Timestamp fromDate = lastDone ? start.lastDone.value_or(start.startDate) : start.startDate;
  const double fromHours = lastDone ? start.lastDoneHours.value_or(current) : current;
  if (made.recurringDays) task.dueDate = calendar.addDays(fromDate, *made.recurringDays);
  if (made.recurringEngineHours) task.dueAtEngineHours = fromHours + *made.recurringEngineHours;
  return task;
}

}  // namespace thalvorn
