// templates, add-templates and import-tasks: filling a vessel's maintenance programme.

#include <fmt/format.h>

#include <QFile>

#include "cli/commands.h"
#include "cli/json_text.h"
#include "cli/store_use.h"
#include "cli/text_table.h"
#include "cli/values.h"
#include "core/task_csv_import.h"
#include "core/template_catalogue.h"

namespace thalvorn::cli {
namespace {

Edit additionOf(std::vector<MaintenanceTask> tasks) {
  Edit edit{.label = counted(tasks.size(), "task", "tasks") + " added"};
  for (MaintenanceTask& task : tasks) edit.add(std::move(task));
  return edit;
}

std::expected<std::string, std::string> csvText(const CommandContext& context, const std::string& name) {
  if (name == "-") return csvTextFromBytes(*context.input);
  const std::filesystem::path path = context.file(name);
  QFile file(QFile::decodeName(path.c_str()));
  if (!file.open(QIODevice::ReadOnly))
    return std::unexpected(
        fmt::format("Could not read CSV file. Check the name and the permissions of {}.", path.string()));
  return csvTextFromBytes(file.readAll().toStdString());
}

std::string previewJson(const TaskCsvPreview& preview) {
  std::vector<std::string> rows;
  rows.reserve(preview.rows.size());
  for (const TaskCsvRow& row : preview.rows) rows.push_back(toJson(row));
  return JsonObject()
             .count("valid", preview.valid)
             .count("skipped", preview.skipped)
             .json("rows", jsonList(rows))
             .take() +
         "\n";
}

/// What a person should know of the file: skipped rows, cells that were not read, unknown columns.
std::string previewNotices(const TaskCsvPreview& preview) {
  std::string notices;
  for (const std::string& column : preview.ignoredColumns)
    notices += fmt::format("The column “{}” is not known and not read.\n", printable(column));
  for (const TaskCsvRow& row : preview.rows)
    for (const std::string& problem : row.problems)
      notices += fmt::format("Line {}, {}: {}\n", row.line, printable(previewTitle(row)), printable(problem));
  return notices;
}

}  // namespace

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
  const auto saved = co_await whenSaved(context, store.apply(additionOf(tasks)));
  if (!saved) co_return saved.error();
  if (!context.json)
    co_return done(fmt::format("Added {} to {}.\n", counted(tasks.size(), "task", "tasks"), printable(name)));
  std::vector<std::string> stored;
  stored.reserve(tasks.size());
  for (const MaintenanceTask& task : tasks) stored.push_back(toJson(task, JsonFields::full));
  co_return done(jsonLines(stored));
}

QCoro::Task<CommandResult> importTasks(CommandContext context, Arguments arguments) {
  AppViewModel& store = *context.store;
  const auto vessel = vesselOption(store, arguments);
  if (!vessel) co_return vessel.error();
  const auto text = csvText(context, arguments.operands.front());
  if (!text) co_return refused(text.error());
  const TaskCsvPreview preview = previewTaskCsv(*text, context.calendar);
  if (!preview.problem.empty()) co_return refused(preview.problem);
  if (!arguments.has("--dry-run")) {
    Edit edit = additionOf(tasksFromRows(preview.rows, **vessel, context.now, context.calendar));
    edit.label = counted(edit.changes.size(), "task", "tasks") + " imported";
    const auto saved = co_await whenSaved(context, store.apply(std::move(edit)));
    if (!saved) co_return saved.error();
  }
  co_return CommandResult{kDone, previewJson(preview), previewNotices(preview)};
}

}  // namespace thalvorn::cli
