#include "sync/table_reader.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <deque>
#include <string>

namespace thalvorn {
namespace {

constexpr std::size_t kPagesAtOnce = 6;

/// The rows that came so far, and each as text.
struct Whole {
  QJsonArray rows;
  QSet<QByteArray> seen;
};

QCoro::Task<int> gather(std::shared_ptr<Whole> whole, QByteArray json) {
  const QJsonDocument page = QJsonDocument::fromJson(json);
  if (!page.isArray()) co_return -1;
  int fresh = 0;
  const QJsonArray rows = page.array();
  for (const QJsonValue& row : rows) {
    const QByteArray text = QJsonDocument(row.toObject()).toJson(QJsonDocument::Compact);
    if (whole->seen.contains(text)) continue;
    whole->seen.insert(text);
    whole->rows.append(row);
    ++fresh;
  }
  co_return fresh;
}

SBError unreadable() { return SBError::server(200, QStringLiteral("Invalid JSON response")); }

}  // namespace

SBTask<Download> readTable(SupabaseClient* client, TableQuery query, std::string_view order, TakePage take,
                           RunToken token, std::string_view key, std::shared_ptr<PartialDownload> partial) {
  const std::string clause(order);
  if (!partial) partial = std::make_shared<PartialDownload>();
  Download download;
  if (partial->next == 0) {
    const auto first = co_await client->read(TableQuery(query).order(clause), true);
    if (!first) co_return std::unexpected(first.error());
    if (token.isOver()) co_return download;
    const int fresh = co_await take(first->rows);
    if (fresh < 0) co_return std::unexpected(unreadable());
    download.rows = fresh;
    partial->total = first->total.value_or(fresh);
    partial->page = fresh;
    if (fresh == partial->total) {
      download.complete = true;
      co_return download;
    }
    if (fresh == 0) co_return download;
  } else {
    download.rows = static_cast<std::int64_t>(partial->seen->size());
  }

  // The first reply follows an order of its own, so the pages begin again at the first row.
  const std::string stable = clause + (clause.empty() ? "" : ",") + std::string(key);
  std::deque<SBTask<TableReply>> underWay;
  std::int64_t asked = partial->next;
  std::int64_t last = -1;
  while (asked < partial->total || !underWay.empty()) {
    while (asked < partial->total && underWay.size() < kPagesAtOnce) {
      const bool isLast = asked + partial->page >= partial->total;
      underWay.push_back(client->read(TableQuery(query).order(stable).limit(partial->page).offset(asked), isLast));
      asked += partial->page;
    }
    const auto reply = co_await underWay.front();
    underWay.pop_front();
    if (!reply) co_return std::unexpected(reply.error());
    if (token.isOver()) co_return download;
    const int rows = co_await take(reply->rows);
    if (rows < 0) co_return std::unexpected(unreadable());
    download.rows += rows;
    if (token.isOver()) co_return download;
    partial->next += partial->page;
    last = reply->total.value_or(last);
  }
  download.complete = last == partial->total && download.rows == partial->total;
  co_return download;
}

SBError changedMeanwhile() {
  SBError error = SBError::server(200, QStringLiteral("Changed while it was read"));
  error.text = QStringLiteral("Somebody changed this while it was read; it is read again.");
  return error;
}

SBTask<WholeTable> readWhole(SupabaseClient* client, TableQuery query, std::string_view key, RunToken token) {
  const auto whole = std::make_shared<Whole>();
  const auto read = co_await readTable(
      client, std::move(query), {}, [whole](QByteArray json) { return gather(whole, std::move(json)); }, token, key);
  if (!read) co_return std::unexpected(read.error());
  if (!read->complete) co_return std::unexpected(changedMeanwhile());
  co_return WholeTable{whole->rows};
}

}  // namespace thalvorn
