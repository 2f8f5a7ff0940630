#include <QJsonArray>
#include <QJsonDocument>

#include "backend/logging.h"
#include "backend/supabase_client.h"

namespace thalvorn {
namespace {

/// "0-999/1523" → 1523; empty for "*" and anything else.
std::optional<std::int64_t> totalOf(const HttpReply& reply) {
  const QByteArray range = reply.header("content-range");
  bool isNumber = false;
  const qlonglong total = range.mid(range.indexOf('/') + 1).toLongLong(&isNumber);
  return isNumber ? std::optional<std::int64_t>(total) : std::nullopt;
}

/// A change without a filter would hit every row that the policies allow.
SBError unfiltered() {
  return SBError::refused(QStringLiteral("A filter is missing"),
                          QStringLiteral("Nothing was changed: the program did not say which records it meant."));
}

}  // namespace

HttpRequest SupabaseClient::restRequest(QByteArray method, const QByteArray& path, QByteArray body,
                                        int attempts) const {
  HttpRequest request;
  request.method = std::move(method);
  request.url = config_.address("/rest/v1" + path);
  request.headers = {{"Content-Type", "application/json"}};
  request.body = std::move(body);
  request.attempts = attempts;
  return request;
}

SBTask<TableReply> SupabaseClient::read(TableQuery query, bool count, int attempts) {
  HttpRequest request = restRequest("GET", query.path(), {}, attempts);
  if (count) request.headers.emplace_back("Prefer", "count=exact");
  // An offset just past a table that shrank meanwhile is an empty page.
  auto reply = co_await sendAuthorized(std::move(request), QStringLiteral("download"), count ? 416 : 0);
  if (!reply) co_return std::unexpected(std::move(reply.error()));
  TableReply table{reply->status == 416 ? QByteArrayLiteral("[]") : reply->body, totalOf(*reply),
                   httpDate(reply->header("date"))};
  if (!table.rows.trimmed().startsWith('['))
    co_return std::unexpected(SBError::server(reply->status, QStringLiteral("Invalid JSON response")));
  co_return table;
}

SBTask<HttpReply> SupabaseClient::write(QByteArray method, const TableQuery& target, QByteArray body,
                                        const QByteArray& prefer, QString what, int attempts) {
  HttpRequest request = restRequest(std::move(method), target.path(), std::move(body), attempts);
  if (!prefer.isEmpty()) request.headers.emplace_back("Prefer", prefer);
  return sendAuthorized(std::move(request), std::move(what));
}

SBTask<void> SupabaseClient::upsert(TableQuery target, QByteArray rows, int attempts) {
  if (rows == "[]") co_return std::expected<void, SBError>{};
  const auto reply = co_await write("POST", target, rows, "resolution=merge-duplicates,return=minimal",
                                    QStringLiteral("upsert"), attempts);
  if (!reply) co_return std::unexpected(reply.error());
  co_return std::expected<void, SBError>{};
}

SBTask<void> SupabaseClient::upsertOne(TableQuery target, QByteArray row, int attempts) {
  const auto reply = co_await write("POST", target, row, "return=minimal,resolution=merge-duplicates",
                                    QStringLiteral("upsert"), attempts);
  if (!reply) co_return std::unexpected(reply.error());
  co_return std::expected<void, SBError>{};
}

SBTask<TableReply> SupabaseClient::insert(TableQuery target, QByteArray rows, int attempts) {
  auto reply = co_await write("POST", target, rows, "return=representation", QStringLiteral("insert"), attempts);
  if (!reply) co_return std::unexpected(std::move(reply.error()));
  co_return TableReply{reply->body, totalOf(*reply), httpDate(reply->header("date"))};
}

SBTask<std::int64_t> SupabaseClient::update(TableQuery target, QByteArray changes, int attempts) {
  if (!target.hasFilter()) co_return std::unexpected(unfiltered());
  const auto reply =
      co_await write("PATCH", target, changes, "return=minimal,count=exact", QStringLiteral("update"), attempts);
  if (!reply) co_return std::unexpected(reply.error());
  co_return totalOf(*reply).value_or(0);
}

SBTask<void> SupabaseClient::remove(TableQuery target, int attempts) {
  if (!target.hasFilter()) co_return std::unexpected(unfiltered());
  const auto reply = co_await write("DELETE", target, {}, {}, QStringLiteral("delete"), attempts);
  if (!reply) co_return std::unexpected(reply.error());
  co_return std::expected<void, SBError>{};
}

SBTask<AnyCodable> SupabaseClient::call(QString procedure, QJsonObject arguments, int attempts) {
  HttpRequest request = restRequest("POST", "/rpc/" + procedure.toLatin1(),
                                    QJsonDocument(arguments).toJson(QJsonDocument::Compact), attempts);
  const auto reply = co_await sendAuthorized(std::move(request), procedure);
  if (!reply) co_return std::unexpected(reply.error());
  if (reply->body.trimmed().isEmpty()) co_return AnyCodable();
  // A bare value is no document of its own for the parser, but the element of a list.
  QJsonParseError fault;
  const QJsonDocument parsed = QJsonDocument::fromJson('[' + reply->body + ']', &fault);
  if (fault.error != QJsonParseError::NoError)
    co_return std::unexpected(SBError::server(reply->status, QStringLiteral("Invalid JSON response")));
  co_return parsed.array().first();
}

}  // namespace thalvorn
