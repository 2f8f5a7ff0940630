// templates and add-templates.

#include <fmt/format.h>

#include "cli/commands.h"
#include "cli/json_text.h"
#include "cli/store_use.h"
#include "cli/text_table.h"
#include "cli/values.h"
#include "core/template_catalogue.h"

namespace thalvorn::cli {
QCoro::Task<CommandResult> showTemplates(CommandContext context, Arguments arguments) {
  std::optional<TaskCategory> category;
  if (const auto name = arguments.value("--category")) {
    const auto known = readCategory(*name);
    if (!known) co_return misused(known.error());
    category = *known;
  }
  const auto found = findTemplates(arguments.value("--search").value_or(""), category);
  if (context.json) {
    std::vector<std::string> templates;
    templates.reserve(found.size());
    for (const TaskTemplate* each : found) templates.push_back(toJson(*each));
    co_return done(jsonLines(templates));
  }
  if (found.empty()) co_return done("No templates match.\n");
  TextTable table;
  table.row({"TITLE", "CATEGORY", "INTERVAL", "NOTE"});
  for (const TaskTemplate* each : found)
    table.row({each->title, std::string(each->category.display()), repeatText(*each), each->notes});
  co_return done(table.take());
}

QCoro::Task<CommandResult> addTemplates(CommandContext context, Arguments arguments) {
  AppViewModel& store = *context.store;
  TemplateStart start{.startDate = context.now};
  if (const auto date = arguments.value("--start")) {
    const auto moment = readMoment(*date, context.calendar);
    if (!moment) co_return misused(moment.error());
    start.startDate = *moment;
  }
  const auto vessel = vesselOption(store, arguments);
  if (!vessel) co_return vessel.error();
  std::vector<MaintenanceTask> tasks;
  for (const std::string& title : arguments.operands) {
    const TaskTemplate* found = templateTitled(title);
    if (found == nullptr)
      co_return refused(
          fmt::format("There is no template “{}”; templates --search finds them. Nothing was added.", title));
    tasks.push_back(taskFromTemplate(*found, **vessel, start, context.calendar));
  }
  const std::string name = (*vessel)->name;
  Edit edit{.label = counted(tasks.size(), "task", "tasks") + " added"};
  for (const MaintenanceTask& task : tasks) edit.add(task);
  const auto saved = co_await whenSaved(context, store.apply(std::move(edit)));
  if (!saved) co_return saved.error();
  if (!context.json)
    co_return done(fmt::format("Added {} to {}.\n", counted(tasks.size(), "task", "tasks"), printable(name)));
  std::vector<std::string> stored;
  stored.reserve(tasks.size());
  for (const MaintenanceTask& task : tasks) stored.push_back(toJson(task, JsonFields::full));
  co_return done(jsonLines(stored));
}

}  // namespace thalvorn::cli
