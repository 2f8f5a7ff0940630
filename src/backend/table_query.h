#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// The address of some rows of one table: filters, order and window, percent-encoded as the server reads them.
///
///     TableQuery("vessels").eq("account_id", account).order("sort_order.asc,name.asc")
class TableQuery {
 public:
  explicit TableQuery(std::string_view table);

  TableQuery& eq(std::string_view column, std::string_view value) { return filter(column, "eq", value); }
  TableQuery& eq(std::string_view column, const Uuid& value) { return eq(column, std::string_view(value.toString())); }
  TableQuery& gt(std::string_view column, std::string_view value) { return filter(column, "gt", value); }
  TableQuery& gt(std::string_view column, const Uuid& value) { return gt(column, std::string_view(value.toString())); }
  TableQuery& gt(std::string_view column, Timestamp value) { return gt(column, formatTimestamp(value)); }
  TableQuery& gte(std::string_view column, std::int64_t value) { return filter(column, "gte", std::to_string(value)); }
  TableQuery& isNull(std::string_view column);
  /// One of `values`; at most `kMostInList` at a time keep the address short enough.
  TableQuery& in(std::string_view column, const std::vector<Uuid>& values);
  /// e.g. "id,name"; all columns when not given.
  TableQuery& select(std::string_view columns);
  /// e.g. "sort_order.asc,name.asc"; nothing for an empty text.
  TableQuery& order(std::string_view clause);
  TableQuery& limit(std::int64_t rows);
  TableQuery& offset(std::int64_t rows);
  /// The columns that an upsert goes by when it is not the primary key.
  TableQuery& onConflict(std::string_view columns);

  const QByteArray& table() const { return table_; }
  /// Whether at least one filter narrows the rows down.
  bool hasFilter() const { return hasFilter_; }
  /// Below the REST base: "/vessels?account_id=eq.…".
  QByteArray path() const;

  static constexpr std::size_t kMostInList = 100;

 private:
  TableQuery& filter(std::string_view column, std::string_view relation, std::string_view value);
  TableQuery& clause(std::string_view name, const QByteArray& encoded);

  QByteArray table_;
  QByteArray query_;
  bool hasFilter_ = false;
};

}  // namespace thalvorn
