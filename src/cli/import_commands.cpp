// import-tasks, import-history and import: records from spreadsheets.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <QFile>

#include "cli/commands.h"
#include "cli/json_text.h"
#include "cli/store_use.h"
#include "cli/text_table.h"
#include "cli/values.h"
#include "compliance/gmdss_register.h"
#include "core/service_history_csv.h"
#include "core/task_csv_import.h"
#include "operations/bunkering_report.h"
#include "operations/ships_log_report.h"

namespace thalvorn::cli {
namespace {

std::expected<std::string, std::string> csvText(const CommandContext& context, const std::string& name) {
  if (name == "-") return csvTextFromBytes(*context.input);
  const std::filesystem::path path = context.file(name);
  QFile file(QFile::decodeName(path.c_str()));
  if (!file.open(QIODevice::ReadOnly))
    return std::unexpected(
        fmt::format("Could not read CSV file. Check the name and the permissions of {}.", path.string()));
  return csvTextFromBytes(file.readAll().toStdString());
}

template <class T>
std::string jsonOf(const std::vector<T>& records) {
  std::vector<std::string> texts;
  texts.reserve(records.size());
  for (const T& record : records) texts.push_back(toJson(record));
  return jsonList(texts);
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

std::string noticesOf(const std::vector<CsvProblem>& problems) {
  std::string notices;
  for (const CsvProblem& problem : problems)
    notices += fmt::format("Line {}: {}\n", problem.line, printable(problem.message));
  return notices;
}

/// Adds the records in one edit.
template <class T>
QCoro::Task<std::expected<void, CommandResult>> addAll(CommandContext context, std::vector<T> records) {
  const KindFacts& facts = RecordKind<T>::facts;
  Edit edit{.label = counted(records.size(), facts.singular, facts.plural) + " imported"};
  for (T& record : records) edit.add(std::move(record));
  co_return co_await whenSaved(context, context.store->apply(std::move(edit)));
}

}  // namespace

QCoro::Task<CommandResult> importTasks(CommandContext context, Arguments arguments) {
  const auto vessel = vesselOption(*context.store, arguments);
  if (!vessel) co_return vessel.error();
  const auto text = csvText(context, arguments.operands.front());
  if (!text) co_return refused(text.error());
  const TaskCsvPreview preview = previewTaskCsv(*text, context.calendar);
  if (!preview.problem.empty()) co_return refused(preview.problem);
  if (!arguments.has("--dry-run")) {
    const auto saved = co_await addAll(context, tasksFromRows(preview.rows, **vessel, context.now, context.calendar));
    if (!saved) co_return saved.error();
  }
  co_return CommandResult{kDone,
                          JsonObject()
                                  .count("valid", preview.valid)
                                  .count("skipped", preview.skipped)
                                  .json("rows", jsonOf(preview.rows))
                                  .take() +
                              "\n",
                          previewNotices(preview)};
}

QCoro::Task<CommandResult> importHistory(CommandContext context, Arguments arguments) {
  const AppViewModel& store = *context.store;
  const auto vessel = vesselOption(store, arguments);
  if (!vessel) co_return vessel.error();
  const auto text = csvText(context, arguments.operands.front());
  if (!text) co_return refused(text.error());
  const Uuid vesselID = (*vessel)->id;
  ServiceCsvImport import = serviceLogsFromCsv(*text, vesselID, calendarAboard(context, vesselID));
  if (import.logs.empty() && import.skipped == 0 && !import.problems.empty())
    co_return refused(import.problems.front().message);
  const std::size_t inFile = import.logs.size();
  const std::vector<ServiceLog> logs =
      withoutKnown(std::move(import.logs), store.logs().records(), store.vessels().records(), vesselID);
  if (!arguments.has("--dry-run")) {
    const auto saved = co_await addAll(context, logs);
    if (!saved) co_return saved.error();
  }
  co_return CommandResult{kDone,
                          JsonObject()
                                  .count("new", logs.size())
                                  .count("known", inFile - logs.size())
                                  .count("skipped", import.skipped)
                                  .json("logs", jsonOf(logs))
                                  .take() +
                              "\n",
                          noticesOf(import.problems)};
}

namespace {

template <class T>
QCoro::Task<CommandResult> importRegister(CommandContext context, Arguments arguments) {
  const AppViewModel& store = *context.store;
  const auto vessel = vesselOption(store, arguments);
  if (!vessel) co_return vessel.error();
  const auto text = csvText(context, arguments.operands.back());
  if (!text) co_return refused(text.error());
  const Uuid vesselID = (*vessel)->id;
  RecordCsvImport<T> import = recordsFromCsv<T>(*text, vesselID, context.calendar, std::nullopt,
                                                [&](const Uuid& id) { return calendarAboard(context, id); });
  if (import.records.empty() && import.skipped == 0 && !import.problems.empty())
    co_return refused(import.problems.front().message);
  const std::size_t inFile = import.records.size();
  const std::vector<T> records =
      newRecords<T>(std::move(import.records), store.collection<T>().records(), store.vessels().records(), vesselID);
  if (!arguments.has("--dry-run")) {
    const auto saved = co_await addAll(context, records);
    if (!saved) co_return saved.error();
  }
  std::string notices;
  for (const std::string& column : import.ignoredColumns)
    notices += fmt::format("The column “{}” is not known and not read.\n", printable(column));
  co_return CommandResult{kDone,
                          JsonObject()
                                  .count("new", records.size())
                                  .count("known", inFile - records.size())
                                  .count("skipped", import.skipped)
                                  .json("records", jsonOf(records))
                                  .take() +
                              "\n",
                          notices + noticesOf(import.problems)};
}

}  // namespace

QCoro::Task<CommandResult> importRecords(CommandContext context, Arguments arguments) {
  using Import = QCoro::Task<CommandResult> (*)(CommandContext, Arguments);
  Import import = nullptr;
  std::vector<std::string_view> collections;
  forEachKind([&]<class T>(std::type_identity<T>) {
    if constexpr (HasRegister<T>) {
      collections.push_back(RecordKind<T>::facts.collection);
      if (equalIgnoringCase(arguments.operands.front(), collections.back())) import = importRegister<T>;
    }
  });
  if (import == nullptr)
    co_return misused(fmt::format("There is no register “{}”; the registers are {}.", arguments.operands.front(),
                                  fmt::join(collections, ", ")));
  co_return co_await import(std::move(context), std::move(arguments));
}

}  // namespace thalvorn::cli
