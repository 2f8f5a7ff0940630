#include "sync/table_reader.h"

#include <QCoroFuture>
#include <QCoroTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPromise>
#include <QSet>
#include <algorithm>
#include <string>
#include <utility>

namespace thalvorn {
namespace {

/// Pages that are asked for, on their way, or here and not taken yet. More than are under way at a time, so that the
/// connections have something to do while a page is taken.
constexpr std::size_t kPagesAhead = 8;
/// For so many records at most room is made on the server's word.
constexpr std::int64_t kMostExpected = 1'000'000;
/// Pages that are taken and not on disk yet.
constexpr std::size_t kPagesUnsaved = 4;

/// The rows that came so far, and each as text.
struct Whole {
  QJsonArray rows;
  QSet<QByteArray> seen;
};

TakenPage gather(Whole& whole, const QByteArray& json) {
  const QJsonDocument page = QJsonDocument::fromJson(json);
  if (!page.isArray()) return {.fresh = -1};
  TakenPage taken;
  const QJsonArray rows = page.array();
  for (const QJsonValue& row : rows) {
    const QByteArray text = QJsonDocument(row.toObject()).toJson(QJsonDocument::Compact);
    if (whole.seen.contains(text)) continue;
    whole.seen.insert(text);
    whole.rows.append(row);
    ++taken.fresh;
  }
  return taken;
}

SBError unreadable() { return SBError::server(200, QStringLiteral("Invalid JSON response")); }
SBError givenUp() { return SBError::network(QStringLiteral("The download was given up")); }
SBError notKept() { return SBError::server(200, QStringLiteral("A page could not be kept")); }

/// A page that came, and what takes it.
struct ReadReply {
  TakePage take;
  std::optional<std::int64_t> total;
};

SBTask<ReadReply> readPage(SBTask<TableReply> asked, ReadPage read) {
  auto reply = co_await asked;
  if (!reply) co_return std::unexpected(reply.error());
  const std::optional<std::int64_t> total = reply->total;
  TakePage take = co_await read(std::exchange(reply->rows, {}));
  co_return ReadReply{std::move(take), total};
}

SBTask<ReadReply> fetchPage(std::shared_ptr<RequestTurns> turns, SupabaseClient* client, TableQuery query, bool count,
                            RunToken token, ReadPage read) {
  return readPage(RequestTurns::read(std::move(turns), client, std::move(query), count, std::move(token)),
                  std::move(read));
}

/// The pages that were taken and are on their way to the disk.
struct OnTheirWay {
  std::shared_ptr<PartialDownload> partial;
  std::deque<std::function<QCoro::Task<bool>()>> pages;
};

/// Waits until no more than `most` pages are unsaved, and counts those that are saved. False when one cannot be.
QCoro::Task<bool> settle(OnTheirWay* unsaved, std::size_t most, RunToken token) {
  while (unsaved->pages.size() > most || (!unsaved->pages.empty() && !unsaved->pages.front())) {
    const auto saved = unsaved->pages.front();
    if (saved && !co_await saved()) co_return false;
    if (token.isOver()) co_return false;
    unsaved->pages.pop_front();
    unsaved->partial->next += unsaved->partial->page;
  }
  co_return true;
}

/// Whoever waits for a turn asks for nothing any more once the download is over, however it ended.
struct Asking {
  explicit Asking(const RunToken& whole) : token(RunToken::partOf(whole)) {}
  ~Asking() { token.end(); }
  Asking(const Asking&) = delete;
  Asking& operator=(const Asking&) = delete;
  mutable RunToken token;
};

}  // namespace

SBTask<TableReply> RequestTurns::read(std::shared_ptr<RequestTurns> turns, SupabaseClient* client, TableQuery query,
                                      bool count, RunToken token) {
  if (turns->underWay_ < kAtOnce) {
    ++turns->underWay_;
  } else {
    const auto turn = turns->waiting_.emplace_back(std::make_shared<QPromise<void>>());
    turn->start();
    co_await turn->future();
  }
  // The client may be gone by now, and with it the run.
  if (token.isOver()) {
    turns->leave();
    co_return std::unexpected(givenUp());
  }
  auto reply = co_await client->read(std::move(query), count);
  turns->leave();
  co_return std::move(reply);
}

void RequestTurns::leave() {
  if (waiting_.empty()) {
    --underWay_;
    return;
  }
  const auto next = std::move(waiting_.front());
  waiting_.pop_front();
  next->finish();
}

PagesAhead::~PagesAhead() {
  for (Asked& asked : asked_) asked.token.end();
}

void PagesAhead::ask(const std::shared_ptr<RequestTurns>& turns, SupabaseClient* client, TableQuery query,
                     std::string_view order, const RunToken& token) {
  query.order(order);
  const QByteArray path = query.path();
  const QByteArray table = query.table();
  const RunToken part = RunToken::partOf(token);
  asked_.push_back({path, table, part, RequestTurns::read(turns, client, std::move(query), true, part)});
}

std::optional<SBTask<TableReply>> PagesAhead::take(const TableQuery& query, std::string_view order) {
  const auto asked = std::ranges::find(asked_, TableQuery(query).order(order).path(), &Asked::path);
  if (asked == asked_.end()) return std::nullopt;
  std::optional<SBTask<TableReply>> reply(std::move(asked->reply));
  asked_.erase(asked);
  return reply;
}

void PagesAhead::forget(std::string_view table) {
  std::erase_if(asked_, [&](Asked& asked) {
    const bool isMeant = std::string_view(asked.table.data(), static_cast<std::size_t>(asked.table.size())) == table;
    if (isMeant) asked.token.end();
    return isMeant;
  });
}

SBTask<Download> readTable(TableRead from, ReadPage read) {
  const std::string clause(from.order);
  const std::shared_ptr<PartialDownload> partial = from.partial;
  const RunToken token = from.token;
  const Asking asking(token);
  Download download;
  if (partial->next == 0) {
    std::optional<SBTask<TableReply>> asked;
    if (from.ahead) asked = from.ahead->take(from.query, clause);
    if (!asked)
      asked = RequestTurns::read(from.turns, from.client, TableQuery(from.query).order(clause), true, asking.token);
    const auto first = co_await readPage(*std::move(asked), read);
    if (!first) co_return std::unexpected(first.error());
    if (token.isOver()) co_return download;
    const TakenPage taken = co_await first->take();
    if (taken.fresh < 0) co_return std::unexpected(unreadable());
    if (taken.saved && !co_await taken.saved()) co_return std::unexpected(notKept());
    download.rows = taken.fresh;
    partial->total = first->total.value_or(taken.fresh);
    partial->page = taken.fresh;
    if (taken.fresh == partial->total) {
      download.complete = true;
      co_return download;
    }
    if (taken.fresh == 0) co_return download;
    const auto expected = static_cast<std::size_t>(std::clamp<std::int64_t>(partial->total, 0, kMostExpected));
    partial->seen->reserve(expected);
    if (from.expect) from.expect(expected);
  } else {
    download.rows = static_cast<std::int64_t>(partial->seen->size());
  }

  // The first reply follows an order of its own, so the pages begin again at the first row.
  const std::string stable = clause + (clause.empty() ? "" : ",") + std::string(from.key);
  std::deque<SBTask<ReadReply>> coming;
  OnTheirWay unsaved{.partial = partial, .pages = {}};
  std::int64_t asked = partial->next;
  std::int64_t last = -1;
  std::optional<SBError> failure;
  while (!failure && (asked < partial->total || !coming.empty())) {
    while (asked < partial->total && coming.size() < kPagesAhead) {
      const bool isLast = asked + partial->page >= partial->total;
      coming.push_back(fetchPage(from.turns, from.client,
                                 TableQuery(from.query).order(stable).limit(partial->page).offset(asked), isLast,
                                 asking.token, read));
      asked += partial->page;
    }
    const auto reply = co_await coming.front();
    coming.pop_front();
    if (token.isOver()) co_return download;
    if (!reply) {
      failure = reply.error();
      break;
    }
    TakenPage taken = co_await reply->take();
    if (token.isOver()) co_return download;
    if (taken.fresh < 0) {
      failure = unreadable();
      break;
    }
    download.rows += taken.fresh;
    unsaved.pages.push_back(std::move(taken.saved));
    last = reply->total.value_or(last);
    // Where the next page has come already it is taken first; else there is time to see this one saved.
    const bool isNextHere = !coming.empty() && coming.front().isReady();
    if (!co_await settle(&unsaved, isNextHere ? kPagesUnsaved : 0, token)) failure = notKept();
    // One page at a turn of the event loop, however many are here: the window draws in between.
    if (isNextHere && !token.isOver()) co_await QCoro::sleepFor(std::chrono::milliseconds(0));
    if (token.isOver()) co_return download;
  }
  if (!co_await settle(&unsaved, 0, token) && !failure) failure = notKept();
  if (token.isOver()) co_return download;
  if (failure) co_return std::unexpected(*failure);
  download.complete = last == partial->total && download.rows == partial->total;
  co_return download;
}

ReadPage readAtOnce(std::function<TakenPage(QByteArray rows)> take) {
  return [take = std::move(take)](const QByteArray& rows) {
    return ready<TakePage>([take, rows] { return ready(take(rows)); });
  };
}

SBError changedMeanwhile() {
  SBError error = SBError::server(200, QStringLiteral("Changed while it was read"));
  error.text = QStringLiteral("Somebody changed this while it was read; it is read again.");
  return error;
}

SBTask<WholeTable> readWhole(SupabaseClient* client, TableQuery query, std::string_view key, RunToken token) {
  const auto whole = std::make_shared<Whole>();
  const auto read = co_await readTable({.client = client, .query = std::move(query), .key = key, .token = token},
                                       readAtOnce([whole](const QByteArray& json) { return gather(*whole, json); }));
  if (!read) co_return std::unexpected(read.error());
  if (!read->complete) co_return std::unexpected(changedMeanwhile());
  co_return WholeTable{whole->rows};
}

}  // namespace thalvorn
