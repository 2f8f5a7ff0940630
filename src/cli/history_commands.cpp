// history: the service history with its costs.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "base/date_format.h"
#include "base/number_format.h"
#include "cli/commands.h"
#include "cli/history_query.h"
#include "cli/json_text.h"
#include "cli/period.h"
#include "cli/store_use.h"
#include "cli/text_table.h"

namespace thalvorn::cli {

bool HistoryQuery::takes(const ServiceLog& log) const {
  return (!vesselID || log.vesselID == *vesselID) && (!taskID || log.taskID == *taskID) &&
         (!from || log.completedDate >= *from) && (!to || log.completedDate <= *to);
}

std::expected<HistoryQuery, CommandResult> historyQuery(const CommandContext& context, const Arguments& arguments) {
  if (auto refusal = closed<ServiceLog>(*context.store)) return std::unexpected(*std::move(refusal));
  const auto period = readPeriod(context, arguments);
  if (!period) return std::unexpected(period.error());
  HistoryQuery query{.vesselID = {}, .taskID = {}, .from = period->first, .to = period->last};
  const auto vessel = vesselOption(*context.store, arguments);
  if (!vessel) return std::unexpected(vessel.error());
  if (*vessel != nullptr) query.vesselID = (*vessel)->id;
  // A task's history outlives the task.
  if (const auto task = arguments.value("--task")) {
    query.taskID = Uuid::parse(*task);
    if (!query.taskID) return std::unexpected(refused(fmt::format("“{}” is not an identifier.", *task)));
  }
  return query;
}

std::vector<const ServiceLog*> services(const AppViewModel& store, const HistoryQuery& query) {
  std::vector<const ServiceLog*> found;
  for (const ServiceLog& log : store.logs().records())
    if (query.takes(log)) found.push_back(&log);
  std::ranges::sort(found, std::greater(),
                    [](const ServiceLog* log) { return std::pair(log->completedDate, log->id); });
  return found;
}

namespace {

std::string currencyOf(const AppViewModel& store, const Uuid& vesselID) {
  const VesselProfile* profile = store.profileOf(vesselID);
  return profile == nullptr || profile->currency.empty() ? "USD" : profile->currency;
}

struct History {
  std::vector<const ServiceLog*> logs;   ///< newest first
  std::map<std::string, double> totals;  ///< by currency
};

std::string historyJson(const AppViewModel& store, const History& history) {
  std::vector<std::string> logs;
  for (const ServiceLog* log : history.logs) {
    JsonObject text(toJson(*log));
    text.text("vesselName", vesselName(store, log->vesselID));
    if (const auto cost = totalCost(*log)) text.number("totalCost", *cost);
    logs.push_back(text.text("currency", currencyOf(store, log->vesselID)).take());
  }
  JsonObject totals;
  for (const auto& [currency, cost] : history.totals) totals.number(currency, std::round(cost * 100) / 100);
  return JsonObject().json("logs", jsonList(logs)).json("totals", totals.take()).take() + "\n";
}

std::string historyTable(const CommandContext& context, const History& history) {
  using enum TextTable::Align;
  const AppViewModel& store = *context.store;
  if (history.logs.empty()) return "No services are logged.\n";
  TextTable table({left, left, left, right, left, right, left});
  table.row({"DATE", "TASK", "VESSEL", "METER", "BY", "COST", "ID"});
  for (const ServiceLog* log : history.logs) {
    const auto cost = totalCost(*log);
    table.row({formatDate(context.calendar.date(log->completedDate)), log->taskTitle, vesselName(store, log->vesselID),
               hoursText(log->engineHoursAtService), log->completedBy,
               cost ? formatMoney(*cost, currencyOf(store, log->vesselID)) : "", log->id.toString()});
  }
  std::string text = table.take() + "\n" + counted(history.logs.size(), "service", "services");
  for (const auto& [currency, cost] : history.totals) text += ", " + formatMoney(cost, currency);
  return text + "\n";
}

}  // namespace

QCoro::Task<CommandResult> showHistory(CommandContext context, Arguments arguments) {
  const AppViewModel& store = *context.store;
  const auto query = historyQuery(context, arguments);
  if (!query) co_return query.error();
  History history{.logs = services(store, *query), .totals = {}};
  for (const ServiceLog* log : history.logs)
    if (const auto cost = totalCost(*log)) history.totals[currencyOf(store, log->vesselID)] += *cost;
  co_return done(context.json ? historyJson(store, history) : historyTable(context, history));
}

}  // namespace thalvorn::cli
