#include "sync/table_reader.h"

#include <deque>
#include <string>

namespace thalvorn {
namespace {

constexpr std::size_t kPagesAtOnce = 6;

SBError unreadable() { return SBError::server(200, QStringLiteral("Invalid JSON response")); }

}  // namespace

SBTask<Download> readTable(SupabaseClient* client, TableQuery query, std::string_view order, TakePage take,
                           RunToken token) {
  const std::string clause(order);
  Download download;
  const auto first = co_await client->read(TableQuery(query).order(clause), true);
  if (!first) co_return std::unexpected(first.error());
  if (token.isOver()) co_return download;
  const int fresh = co_await take(first->rows);
  if (fresh < 0) co_return std::unexpected(unreadable());
  download.rows = static_cast<std::size_t>(fresh);
  const std::int64_t total = first->total.value_or(fresh);
  if (fresh == total) {
    download.complete = true;
    co_return download;
  }
  if (fresh == 0) co_return download;

  // The first reply follows an order of its own, so the pages begin again at the first row.
  const std::int64_t page = fresh;
  const std::string stable = clause.empty() ? "id.asc" : clause + ",id.asc";
  std::deque<SBTask<TableReply>> underWay;
  std::int64_t next = 0;
  std::int64_t last = total;
  while (next < total || !underWay.empty()) {
    while (next < total && underWay.size() < kPagesAtOnce) {
      const bool isLast = next + page >= total;
      underWay.push_back(client->read(TableQuery(query).order(stable).limit(page).offset(next), isLast));
      next += page;
    }
    const auto reply = co_await underWay.front();
    underWay.pop_front();
    if (!reply) co_return std::unexpected(reply.error());
    if (token.isOver()) co_return download;
    const int rows = co_await take(reply->rows);
    if (rows < 0) co_return std::unexpected(unreadable());
    download.rows += static_cast<std::size_t>(rows);
    last = reply->total.value_or(last);
  }
  download.complete = last == total && static_cast<std::int64_t>(download.rows) == total;
  co_return download;
}

}  // namespace thalvorn
