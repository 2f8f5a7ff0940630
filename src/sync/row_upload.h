#pragma once

#include <expected>
#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "backend/row_kind.h"
#include "sync/sync_run.h"

namespace thalvorn {

/// Rows on their way up, whatever their table.
struct RowUpload {
  std::string_view table;
  std::vector<Uuid> ids;  ///< of the rows, in their order
  /// The body of a request with `count` rows from `first` on.
  std::function<std::string(std::size_t first, std::size_t count, RowColumns columns)> body;
  /// What a person calls the record in a row.
  std::function<std::string(const Uuid& id)> nameOf;
  std::string_view failure =
      {};  ///< in the log before the name of a record that was refused; empty: not told one by one
};

template <class Row>
RowUpload rowUpload(std::string_view table, std::vector<Row> rows, std::function<std::string(const Uuid&)> nameOf) {
  RowUpload upload{.table = table, .ids = {}, .body = {}, .nameOf = std::move(nameOf)};
  for (const Row& row : rows) upload.ids.push_back(row.id);
  upload.body = [rows = std::move(rows)](std::size_t first, std::size_t count, RowColumns columns) {
    const auto begin = rows.begin() + static_cast<std::ptrdiff_t>(first);
    return rowsToJson(std::vector<Row>(begin, begin + static_cast<std::ptrdiff_t>(count)), columns);
  };
  return upload;
}

/// Sends rows in requests of less than 1 MB. Those that the server refuses are found by halving, told by name and added
/// to `refusedRows`; the others go through. A server that is busy is waited for. Stops when the token is over.
SBTask<void> uploadRows(SyncRunPtr run, RunToken token, RowUpload upload, std::unordered_set<Uuid>* refusedRows);

/// How an upsert into `table` ended, in the log.
void logUpsert(SyncLog& log, std::string_view table, std::size_t rows, const std::expected<void, SBError>& sent);

/// Whether the server refuses this record for good: it is then passed over in this run, the others go on.
bool isRefusal(const SBError& error);

}  // namespace thalvorn
