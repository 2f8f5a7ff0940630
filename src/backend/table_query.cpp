#include "backend/table_query.h"

namespace thalvorn {
namespace {

QByteArray bytes(std::string_view text) { return QByteArray(text.data(), static_cast<qsizetype>(text.size())); }

/// Everything but letters, digits and -._~ is escaped: a plus sign left as it is would arrive as a blank.
QByteArray encoded(std::string_view text) { return bytes(text).toPercentEncoding(); }

}  // namespace

TableQuery::TableQuery(std::string_view table) : table_(bytes(table)) {}

TableQuery& TableQuery::clause(std::string_view name, const QByteArray& value) {
  query_.append(query_.isEmpty() ? '?' : '&').append(bytes(name)).append('=').append(value);
  return *this;
}

TableQuery& TableQuery::filter(std::string_view column, std::string_view relation, std::string_view value) {
  hasFilter_ = true;
  return clause(column, bytes(relation) + '.' + encoded(value));
}

TableQuery& TableQuery::isNull(std::string_view column) {
  hasFilter_ = true;
  return clause(column, "is.null");
}

TableQuery& TableQuery::in(std::string_view column, const std::vector<Uuid>& values) {
  QByteArray list;
  for (const Uuid& id : values) list.append(list.isEmpty() ? "" : ",").append(bytes(id.toString()));
  hasFilter_ = true;
  return clause(column, "in.(" + list + ")");
}

TableQuery& TableQuery::select(std::string_view columns) { return clause("select", bytes(columns)); }

TableQuery& TableQuery::order(std::string_view order_clause) {
  return order_clause.empty() ? *this : clause("order", bytes(order_clause));
}

TableQuery& TableQuery::limit(std::int64_t rows) { return clause("limit", QByteArray::number(qlonglong{rows})); }

TableQuery& TableQuery::offset(std::int64_t rows) { return clause("offset", QByteArray::number(qlonglong{rows})); }

TableQuery& TableQuery::onConflict(std::string_view columns) { return clause("on_conflict", bytes(columns)); }

QByteArray TableQuery::path() const { return "/" + table_ + query_; }

}  // namespace thalvorn
