#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_set>

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

/// How far a download has come that was cut off, so that the next one goes on there: over a slow link a long table
/// takes several runs.
struct PartialDownload {
  std::int64_t next = 0;                ///< the offset of the first page that has not been taken
  std::int64_t page = 0;                ///< how many rows the server gives at a time
  std::int64_t total = 0;               ///< as it was counted at the beginning
  std::optional<std::int64_t> version;  ///< the table's change stamp at the beginning; empty where there is none
  std::shared_ptr<std::unordered_set<Uuid>> seen = std::make_shared<std::unordered_set<Uuid>>();
};

/// Takes a page as it comes and gives how many rows it held that no page before it had; negative when the page could
/// not be read.
using TakePage = std::function<QCoro::Task<int>(QByteArray rows)>;

/// Reads every row of `query` in the table's own `order`. What does not fit into the first reply (servers cut silently)
/// is read in pages of that reply's length, ordered by `id` last, six at a time. Pages are handed over as they come; a
/// failure leaves those before it taken. `key` is the order of what makes a row distinct. With `partial` it goes on
/// where an earlier one was cut off.
SBTask<Download> readTable(SupabaseClient* client, TableQuery query, std::string_view order, TakePage take,
                           RunToken token, std::string_view key = "id.asc",
                           std::shared_ptr<PartialDownload> partial = nullptr);

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
