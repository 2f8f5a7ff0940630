// board, complete, snooze and unsnooze.

#include <fmt/format.h>

#include "base/date_format.h"
#include "base/number_format.h"
#include "cli/commands.h"
#include "cli/json_text.h"
#include "cli/store_use.h"
#include "cli/text_table.h"
#include "cli/values.h"
#include "core/meter_pace.h"
#include "core/part_text.h"
#include "core/status_reason.h"
#include "core/task_board.h"
#include "core/task_completion.h"

namespace thalvorn::cli {
namespace {

constexpr double kMostMoney = 1e9;

/// The open and completed tasks of one kind, or all.
std::vector<MaintenanceTask> tasksOfKind(const AppViewModel& store, std::optional<TaskKind> kind) {
  std::vector<MaintenanceTask> tasks;
  for (const MaintenanceTask& task : store.tasks().records())
    if (!kind || task.kind == *kind) tasks.push_back(task);
  return tasks;
}

struct Board {
  std::vector<MaintenanceTask> tasks;
  std::vector<TaskRow> rows;
  StatusCounts counts;
};

std::string boardJson(const AppViewModel& store, const Board& board) {
  std::vector<std::string> tasks;
  for (const TaskRow& row : board.rows) {
    const MaintenanceTask& task = board.tasks[row.index];
    tasks.push_back(JsonObject(toJson(task, JsonFields::full))
                        .text("status", rawText(row.status))
                        .flag("snoozed", row.snoozed)
                        .text("vesselName", vesselName(store, task.vesselID))
                        .take());
  }
  return JsonObject()
             .count("overdue", board.counts.overdue)
             .count("dueSoon", board.counts.dueSoon)
             .count("onTrack", board.counts.onTrack)
             .count("beyondHorizon", board.counts.beyondHorizon)
             .count("completed", board.counts.completed)
             .json("tasks", jsonList(tasks))
             .take() +
         "\n";
}

std::string boardTable(const CommandContext& context, const Board& board, const Vessel* only,
                       const StatusHorizon& horizon) {
  const AppViewModel& store = *context.store;
  std::string text =
      fmt::format("{}, {}\n{} overdue, {} due soon, {} on track, {} beyond the horizon, {} completed{}\n",
                  only != nullptr ? printable(only->name) : counted(store.vessels().size(), "vessel", "vessels"),
                  formatDateTime(context.calendar.local(context.now)), board.counts.overdue, board.counts.dueSoon,
                  board.counts.onTrack, board.counts.beyondHorizon, board.counts.completed,
                  board.counts.snoozed > 0 ? fmt::format(", {} snoozed", board.counts.snoozed) : "");
  if (board.rows.empty()) return text + "\nNothing is due within 30 days or 50 hours.\n";
  TextTable table;
  table.row({"STATUS", "DUE", "TASK", "CATEGORY", "VESSEL", "ID"});
  const Vessel unknown;
  for (const TaskRow& row : board.rows) {
    const MaintenanceTask& task = board.tasks[row.index];
    const Vessel* vessel = store.vessels().find(task.vesselID);
    const StatusReason reason = explainStatus(task, vessel != nullptr ? *vessel : unknown, horizon, context.calendar);
    const DueText due = dueText(task, reason, context.now, context.calendar);
    std::string status(displayText(row.status));
    if (row.snoozed) status += " (snoozed)";
    table.row({status, due.first, task.title, std::string(task.category.display()),
               vessel != nullptr ? vessel->name : "", task.id.toString()});
  }
  return text + "\n" + table.take();
}

}  // namespace

QCoro::Task<CommandResult> showBoard(CommandContext context, Arguments arguments) {
  const AppViewModel& store = *context.store;
  TaskQuery query;
  query.descending = arguments.has("--descending");
  if (const auto field = arguments.value("--sort")) {
    const auto known = caseFromRaw<TaskSortField>(*field);
    if (!known)
      co_return misused(fmt::format("“{}” is no order; the orders are name, category, due and status.", *field));
    query.sort = *known;
  }
  std::optional<TaskKind> kind;
  if (const auto name = arguments.value("--kind")) {
    const auto known = readKind(*name);
    if (!known) co_return misused(known.error());
    kind = *known;
  }
  const auto vessel = vesselOption(store, arguments);
  if (!vessel) co_return vessel.error();
  if (*vessel != nullptr) query.vesselID = (*vessel)->id;

  if (auto refusal = closed<MaintenanceTask>(store)) co_return *std::move(refusal);
  Board board{.tasks = tasksOfKind(store, kind), .rows = {}, .counts = {}};
  Fleet fleet(store.vessels().records());
  learnPaces(fleet, store.tasks().records(), store.logs().records(), context.now);
  const StatusHorizon horizon(context.now, context.calendar);
  board.rows = listTasks(board.tasks, fleet, horizon, query);
  board.counts = countTasks(board.tasks, fleet, horizon, query.vesselID);
  co_return done(context.json ? boardJson(store, board) : boardTable(context, board, *vessel, horizon));
}

namespace {

/// The sheet "Mark complete & log" as the options fill it in.
Read<CompletionForm> completionForm(const CommandContext& context, const Arguments& arguments) {
  CompletionForm form;
  form.completedDate = context.now;
  if (const auto on = arguments.value("--on")) {
    const auto moment = readMoment(*on, context.calendar);
    if (!moment) return std::unexpected(moment.error());
    form.completedDate = *moment;
  }
  form.technicianNotes = arguments.value("--notes").value_or("");
  form.completedBy = arguments.value("--by").value_or("");
  if (const auto cost = arguments.value("--cost")) {
    const auto amount = readNumber(*cost, "the labor cost", 0, kMostMoney);
    if (!amount) return std::unexpected(amount.error());
    form.cost = *amount;
  }
  for (const std::string& written : arguments.values("--meter")) {
    const auto meter = readMeter(written);
    if (!meter) return std::unexpected(meter.error());
    form.readings.push_back({meter->first, meter->second});
  }
  for (const std::string& written : arguments.values("--part")) {
    auto part = partFromText(written);
    if (!part) return std::unexpected(part.error());
    form.partsUsed.push_back(std::move(*part));
  }
  return form;
}

QCoro::Task<CommandResult> storedTask(CommandContext context, Saving saving, Uuid id, std::string text) {
  const auto saved = co_await whenSaved(context, saving);
  if (!saved) co_return saved.error();
  const MaintenanceTask* task = context.store->tasks().find(id);
  if (task == nullptr) co_return refused("This task was deleted meanwhile.");
  co_return done(context.json ? toJson(*task, JsonFields::full) + "\n" : text);
}

}  // namespace

QCoro::Task<CommandResult> completeOne(CommandContext context, Arguments arguments) {
  AppViewModel& store = *context.store;
  const auto task = findTask(store, arguments.operands.front());
  if (!task) co_return task.error();
  const Uuid taskID = (*task)->id;
  const Uuid vesselID = (*task)->vesselID;
  const auto form = completionForm(context, arguments);
  if (!form) co_return misused(form.error());
  const Vessel* before = store.vessels().find(vesselID);
  if (before == nullptr) co_return refused("The vessel of this task is not in the fleet.");
  std::string notices;
  for (const MeterReading& reading : form->readings) {
    const auto notice = checkReading(*before, reading.source, reading.hours.value_or(0), context.now);
    if (notice) notices += noticeText(*notice) + "\n";
  }

  const auto saved = co_await whenSaved(context, store.completeTask(taskID, *form));
  if (!saved) co_return saved.error();
  const ServiceLog* log = store.logs().find(form->logID);
  const MaintenanceTask* after = store.tasks().find(taskID);
  const Vessel* vessel = store.vessels().find(vesselID);
  if (log == nullptr || after == nullptr || vessel == nullptr)
    co_return refused("The task was completed, but its records were deleted meanwhile.");
  co_return CommandResult{kDone,
                          JsonObject()
                                  .json("log", toJson(*log))
                                  .json("task", toJson(*after, JsonFields::full))
                                  .json("vessel", toJson(*vessel))
                                  .take() +
                              "\n",
                          notices};
}

QCoro::Task<CommandResult> snooze(CommandContext context, Arguments arguments) {
  const auto task = findTask(*context.store, arguments.operands.front());
  if (!task) co_return task.error();
  const auto until = readMoment(arguments.required("--until"), context.calendar);
  if (!until) co_return misused(until.error());
  const Uuid id = (*task)->id;
  std::string text = fmt::format("Snoozed “{}” until {}.\n", printable((*task)->title),
                                 formatDateTime(context.calendar.local(*until)));
  co_return co_await storedTask(context, context.store->snoozeTask(id, *until), id, std::move(text));
}

QCoro::Task<CommandResult> unsnooze(CommandContext context, Arguments arguments) {
  const auto task = findTask(*context.store, arguments.operands.front());
  if (!task) co_return task.error();
  const Uuid id = (*task)->id;
  std::string text = fmt::format("“{}” is no longer snoozed.\n", printable((*task)->title));
  co_return co_await storedTask(context, context.store->unsnoozeTask(id), id, std::move(text));
}

}  // namespace thalvorn::cli
