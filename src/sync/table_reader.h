#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QPromise>
#include <boost/unordered/unordered_flat_set.hpp>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "backend/supabase_client.h"
#include "sync/run_token.h"

namespace thalvorn {

/// What a download came to.
struct Download {
  std::int64_t rows = 0;  ///< distinct ones, with those that an earlier run took
  /// Every row that the filters allow was seen, by a count that did not change meanwhile: only then is a record that is
  /// not among them gone.
  bool complete = false;
};

/// Identities by the hundred thousand, close together.
using UuidSet = boost::unordered_flat_set<Uuid, std::hash<Uuid>>;

/// How far a download has come that was cut off, so that the next one goes on there: over a slow link a long table
/// takes several runs.
struct PartialDownload {
  std::int64_t next = 0;                ///< the offset of the first page that has not been taken, and saved
  std::int64_t page = 0;                ///< how many rows the server gives at a time
  std::int64_t total = 0;               ///< as it was counted at the beginning
  std::optional<std::int64_t> version;  ///< the table's change stamp at the beginning; empty where there is none
  std::shared_ptr<UuidSet> seen = std::make_shared<UuidSet>();
};

/// A page that was taken.
struct TakenPage {
  int fresh = 0;  ///< rows that no page before it had; negative when the page could not be read
  /// To be awaited before the page counts: whether all it brought is on disk. Empty where nothing is kept.
  std::function<QCoro::Task<bool>()> saved = {};
};
/// A task that is done.
template <class T>
QCoro::Task<T> ready(T value) {
  co_return value;
}

/// Takes a page that has been read; one page after the other, in order.
using TakePage = std::function<QCoro::Task<TakenPage>()>;
/// Reads the rows of a page and gives what takes them. While it does so other pages may be read too.
using ReadPage = std::function<QCoro::Task<TakePage>(QByteArray rows)>;

/// Lets six requests of a run be under way at a time, as many as one connection after the other to a server bears;
/// those behind them wait for their turn.
class RequestTurns {
 public:
  static constexpr int kAtOnce = 6;

  /// Reads when it is its turn; once `token` is over nothing is asked any more.
  static SBTask<TableReply> read(std::shared_ptr<RequestTurns> turns, SupabaseClient* client, TableQuery query,
                                 bool count, RunToken token);

 private:
  void leave();

  int underWay_ = 0;
  std::deque<std::shared_ptr<QPromise<void>>> waiting_;
};

/// The first replies of tables whose turn comes soon. Most tables of an account are small, and most of the time that
/// they take is the way to the server and back.
class PagesAhead {
 public:
  /// So many are asked for, or here and not taken yet, at a time.
  static constexpr std::size_t kMost = 5;

  PagesAhead() = default;
  ~PagesAhead();
  PagesAhead(const PagesAhead&) = delete;
  PagesAhead& operator=(const PagesAhead&) = delete;

  bool isFull() const { return asked_.size() >= kMost; }
  void ask(const std::shared_ptr<RequestTurns>& turns, SupabaseClient* client, TableQuery query, std::string_view order,
           const RunToken& token);
  /// The reply that was asked for, if it was.
  std::optional<SBTask<TableReply>> take(const TableQuery& query, std::string_view order);
  /// What has been asked for of this table counts no more: it is about to change by our own hand.
  void forget(std::string_view table);

 private:
  struct Asked {
    QByteArray path;
    QByteArray table;
    RunToken token;
    SBTask<TableReply> reply;
  };
  std::deque<Asked> asked_;
};

/// What to read, and from where.
struct TableRead {
  SupabaseClient* client = nullptr;
  TableQuery query;
  std::string_view order = {};      ///< the table's own
  std::string_view key = "id.asc";  ///< the order of what makes a row distinct
  RunToken token;
  std::shared_ptr<PartialDownload> partial = std::make_shared<PartialDownload>();
  std::shared_ptr<RequestTurns> turns = std::make_shared<RequestTurns>();
  std::function<void(std::size_t rows)> expect = {};  ///< told how many there are where one page is not enough
  std::shared_ptr<PagesAhead> ahead = {};             ///< where the first reply may lie already
};

/// Reads every row of `from.query` in the table's own order. What does not fit into the first reply (servers cut
/// silently) is read in pages of that reply's length, ordered by `key` last, six at a time. A page is taken while those
/// behind it are on their way and those before it are being saved; a failure leaves those before it taken. With
/// `from.partial` it goes on where an earlier one was cut off.
SBTask<Download> readTable(TableRead from, ReadPage read);

/// For pages that are read as they are taken, and kept nowhere.
ReadPage readAtOnce(std::function<TakenPage(QByteArray rows)> take);

/// Rows came or went while a table was read that is only of use whole; it is read again in a while.
SBError changedMeanwhile();

/// The rows of a table that is only of use whole. A type of its own, as `StoredFile` is.
struct WholeTable {
  QJsonArray rows;
};

/// Reads every row of `query`, distinct by all its columns; `key` is an order that leaves no two rows equal. Fails when
/// rows came or went meanwhile.
SBTask<WholeTable> readWhole(SupabaseClient* client, TableQuery query, std::string_view key, RunToken token);

}  // namespace thalvorn
