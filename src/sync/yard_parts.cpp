#include "sync/yard_parts.h"

#include <algorithm>

#include "sync/row_upload.h"
#include "sync/table_reader.h"

namespace thalvorn {
namespace {

template <class P>
TakenPage gather(std::vector<RowOf<P>>& all, const QByteArray& json) {
  auto rows =
      listFromJson<RowOf<P>>(std::string_view(json.data(), static_cast<std::size_t>(json.size())), JsonFields::full);
  if (!rows) return {.fresh = -1};
  TakenPage taken;
  for (RowOf<P>& row : rows->records) {
    if (std::ranges::find(all, row.id, &RowOf<P>::id) != all.end()) continue;
    all.push_back(std::move(row));
    ++taken.fresh;
  }
  return taken;
}

template <class P>
SBTask<std::vector<RowOf<P>>> readPart(SyncRunPtr run, std::vector<Uuid> periods) {
  const auto gathered = std::make_shared<std::vector<RowOf<P>>>();
  TableQuery query(RowKind<P>::facts.table);
  query.eq("account_id", run->accountID).in("yard_period_id", periods);
  const auto read =
      co_await readTable({.client = &run->client, .query = std::move(query), .token = run->token},
                         readAtOnce([gathered](const QByteArray& json) { return gather<P>(*gathered, json); }));
  if (!read) co_return std::unexpected(read.error());
  if (!read->complete) co_return std::unexpected(changedMeanwhile());
  co_return std::move(*gathered);
}

template <class P>
std::vector<P> recordsOf(const std::vector<RowOf<P>>& rows, const std::vector<P>* known) {
  std::vector<P> records;
  const auto take = [&](const RowOf<P>& row) {
    const P* before = nullptr;
    if (known) {
      const auto found = std::ranges::find(*known, row.id, &P::id);
      if (found != known->end()) before = &*found;
    }
    if (auto made = recordFromRow<P>(row, before)) records.push_back(std::move(made->record));
  };
  if (known) {
    for (const P& element : *known) {
      const auto row = std::ranges::find(rows, element.id, &RowOf<P>::id);
      if (row != rows.end()) take(*row);
    }
  }
  std::vector<const RowOf<P>*> fresh;
  for (const RowOf<P>& row : rows)
    if (!known || std::ranges::find(*known, row.id, &P::id) == known->end()) fresh.push_back(&row);
  std::ranges::sort(fresh, {}, [](const RowOf<P>* row) { return std::tie(row->updatedAt, row->id); });
  for (const RowOf<P>* row : fresh) take(*row);
  return records;
}

template <class P>
SBTask<bool> sendPart(SyncRunPtr run, RunToken token, std::vector<P> wanted, std::vector<RowOf<P>> stored) {
  constexpr std::string_view table = RowKind<P>::facts.table;
  std::vector<RowOf<P>> changed;
  std::unordered_map<Uuid, std::string> names;
  for (const P& element : wanted) {
    names.emplace(element.id, element.title);
    const auto was = std::ranges::find(stored, element.id, &RowOf<P>::id);
    RowContext context{.userID = Uuid::parse(run->userID).value_or(Uuid{}),
                       .accountID = Uuid::parse(run->accountID).value_or(Uuid{}),
                       .updatedAt = run->client.serverNow(),
                       .seenVersion = 0};
    if (was != stored.end()) {
      const auto known = recordFromRow<P>(*was, &element);
      if (known && known->record == element) continue;
      context.seenVersion = was->serverVersion;
    }
    changed.push_back(rowFromRecord<P>(element, context, was == stored.end() ? nullptr : &*was));
  }
  std::unordered_set<Uuid> refused;
  RowUpload upload = rowUpload(table, std::move(changed), [names](const Uuid& id) { return names.at(id); });
  const auto sent = co_await uploadRows(run, token, std::move(upload), &refused);
  if (!sent) co_return std::unexpected(sent.error());
  for (const RowOf<P>& row : stored) {
    if (names.contains(row.id)) continue;
    if (token.isOver()) break;
    TableQuery asSeen = TableQuery(table).eq("id", row.id);
    if (row.serverVersion) asSeen.eq("server_version", std::to_string(*row.serverVersion));
    const auto removed = co_await run->client.remove(asSeen);
    if (removed) continue;
    const SBError& error = removed.error();
    run->log.say("❌ Yard delete: " + error.logLine().toStdString());
    if (!isRefusal(error)) co_return std::unexpected(error);
    run->problems.push_back({std::string(table), row.title, error.text.toStdString()});
    refused.insert(row.id);
  }
  co_return refused.empty();
}

template <class Row>
void distribute(YardParts& parts, std::vector<Row> rows, std::vector<Row> YardPartRows::* list) {
  for (Row& row : rows) (parts[row.yardPeriodId].*list).push_back(std::move(row));
}

}  // namespace

SBTask<YardParts> readYardParts(SyncRunPtr run, std::vector<Uuid> periods) {
  YardParts parts;
  if (periods.empty()) co_return parts;
  auto orders = co_await readPart<WorkOrder>(run, periods);
  if (!orders) co_return std::unexpected(orders.error());
  distribute(parts, *std::move(orders), &YardPartRows::workOrders);
  auto punches = co_await readPart<PunchListItem>(run, periods);
  if (!punches) co_return std::unexpected(punches.error());
  distribute(parts, *std::move(punches), &YardPartRows::punchList);
  auto entries = co_await readPart<YardLogEntry>(run, std::move(periods));
  if (!entries) co_return std::unexpected(entries.error());
  distribute(parts, *std::move(entries), &YardPartRows::logEntries);
  co_return parts;
}

void attachParts(YardPeriod& period, const YardPartRows& parts, const YardPeriod* known) {
  period.workOrders = recordsOf<WorkOrder>(parts.workOrders, known ? &known->workOrders : nullptr);
  period.punchList = recordsOf<PunchListItem>(parts.punchList, known ? &known->punchList : nullptr);
  period.logEntries = recordsOf<YardLogEntry>(parts.logEntries, known ? &known->logEntries : nullptr);
}

SBTask<bool> sendYardParts(SyncRunPtr run, RunToken token, YardPeriod period, YardPartRows stored) {
  const auto orders = co_await sendPart<WorkOrder>(run, token, std::move(period.workOrders), stored.workOrders);
  if (!orders) co_return std::unexpected(orders.error());
  const auto punches = co_await sendPart<PunchListItem>(run, token, std::move(period.punchList), stored.punchList);
  if (!punches) co_return std::unexpected(punches.error());
  const auto entries = co_await sendPart<YardLogEntry>(run, token, std::move(period.logEntries), stored.logEntries);
  if (!entries) co_return std::unexpected(entries.error());
  co_return *orders && *punches && *entries;
}

}  // namespace thalvorn
