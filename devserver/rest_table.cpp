#include <fmt/format.h>

#include <algorithm>

#include "devserver/payload.h"
#include "devserver/rest_work.h"

namespace thalvorn::devserver {
namespace {

Outcome<Response> readTable(Session& session, const Work& work, const std::string& name) {
  const auto relation = "\"public\"." + identifier(name);
  const auto range = rowRange(work.query, work.request.method == "GET" ? work.request.header("Range") : std::nullopt);
  if (!range) return std::unexpected(range.error());
  Statement sql;
  sql << "WITH pgrst_source AS (SELECT ";
  appendSelect(sql, relation, work.query.select);
  sql << " FROM " << relation;
  appendWhere(sql, relation, work.query.where);
  appendOrder(sql, relation, work.query.order);
  appendLimit(sql, work, *range);
  sql << ")";
  if (work.preferences.count) {
    sql << ", pgrst_source_count AS (SELECT 1 FROM " << relation;
    appendWhere(sql, relation, work.query.where);
    sql << ")";
  }
  sql << " SELECT " << (work.preferences.count ? "(SELECT count(*) FROM pgrst_source_count)" : "NULL::bigint")
      << ", count(_postgrest_t), " << bodyOf(work, "json_agg(_postgrest_t)", "[]") << kReplySettings
      << " FROM (SELECT * FROM pgrst_source) _postgrest_t";
  auto result = execute(session, work, sql);
  if (!result) return std::unexpected(result.error());
  auto page = pageStatus(range->offset, *result);
  if (!page) return std::unexpected(page.error());

  Response response{.status = page->first, .headers = {}, .body = std::move(result->body)};
  response.with("Content-Range", page->second);
  response.with("Content-Location", "/" + name + (work.request.query.empty() ? "" : "?" + work.request.query));
  addContentType(work, response);
  Preferences applied;
  applied.count = work.preferences.count;
  applied.handling = work.preferences.handling;
  applied.timezone = work.preferences.timezone;
  addApplied(applied, response);
  if (auto fault = applyChosenReply(*result, response)) return std::unexpected(std::move(*fault));
  return response;
}

Outcome<std::vector<std::string>> writtenColumns(const Work& work, const std::string& name, const TableFacts& table,
                                                 const Payload& payload) {
  auto columns = work.query.columns.value_or(payload.keys);
  for (const auto& column : columns) {
    if (!table.columns.contains(column)) {
      return std::unexpected(refusal(
          400, "PGRST204", fmt::format("Could not find the '{}' column of '{}' in the schema cache", column, name)));
    }
  }
  return columns;
}

/// FROM clauses that turn the JSON body into rows `pgrst_body` with the types of the table's columns.
void appendBody(Statement& sql, const Work& work, const TableFacts& table, const std::vector<std::string>& columns,
                bool isArray) {
  const bool defaults = work.preferences.missing == "default";
  const std::string kind = defaults ? "jsonb" : "json";
  std::string source =
      isArray ? "pgrst_payload.json_data" : fmt::format("{}_build_array(pgrst_payload.json_data)", kind);
  sql << "FROM (SELECT ";
  sql.bind(work.request.body) << "::" << kind << " AS json_data) pgrst_payload, ";
  if (defaults) {
    std::vector<std::string> pairs;
    for (const auto& column : columns) {
      const auto& facts = table.columns.find(column)->second;
      if (facts.defaultValue) pairs.push_back(textLiteral(column) + ", " + *facts.defaultValue);
    }
    sql << "LATERAL (SELECT jsonb_agg(jsonb_build_object(" << joined(pairs, [](auto& pair) { return pair; })
        << ") || elem) AS val FROM jsonb_array_elements(" << source << ") elem) pgrst_defaults, ";
    source = "pgrst_defaults.val";
  }
  if (columns.empty()) {
    sql << fmt::format("LATERAL (SELECT FROM {}_array_elements({})) pgrst_body", kind, source);
    return;
  }
  sql << "LATERAL (SELECT " << joined(columns, identifier)
      << fmt::format(" FROM {}_to_recordset({}) AS _(", kind, source)
      << joined(columns,
                [&](const std::string& column) {
                  return identifier(column) + " " + table.columns.find(column)->second.type;
                })
      << ")) pgrst_body";
}

/// `WITH pgrst_source AS (… RETURNING …) SELECT …` around a writing statement.
void appendReturning(Statement& sql, const Work& work, const std::string& relation) {
  const bool representation = work.preferences.returning == "representation";
  sql << " RETURNING ";
  if (representation) {
    appendSelect(sql, relation, work.query.select);
  } else {
    sql << "1";
  }
  sql << ") SELECT NULL::bigint, count(_postgrest_t), "
      << (representation ? bodyOf(work, "json_agg(_postgrest_t)", "[]") : "''::text") << kReplySettings
      << " FROM (SELECT * FROM pgrst_source) _postgrest_t";
}

/// The reply to a write; `status` without and with the rows in it.
Outcome<Response> writeReply(const Work& work, ResultSet& result, const Preferences& applied,
                             std::pair<int, int> status) {
  const bool representation = work.preferences.returning == "representation";
  Response response{.status = representation ? status.second : status.first, .headers = {}, .body = {}};
  response.with("Content-Range", work.preferences.count ? fmt::format("*/{}", result.count) : "*/*");
  if (representation) {
    addContentType(work, response);
    response.body = std::move(result.body);
  }
  addApplied(applied, response);
  if (auto fault = applyChosenReply(result, response)) return std::unexpected(std::move(*fault));
  return response;
}

Outcome<Response> insertRows(Session& session, const Work& work, const std::string& name, const TableFacts& table) {
  const auto payload = readPayload(work.request.body, !work.query.columns);
  if (!payload) return std::unexpected(payload.error());
  const auto columns = writtenColumns(work, name, table, *payload);
  if (!columns) return std::unexpected(columns.error());

  const auto relation = "\"public\"." + identifier(name);
  auto applied = work.preferences;
  const auto target = work.query.onConflict.value_or(table.primaryKey);
  if (target.empty()) applied.resolution.reset();
  const bool merge = applied.resolution == "merge-duplicates";
  const auto counting = [](int step) {
    return fmt::format(
        " WHERE set_config('pgrst.inserted', (coalesce(nullif(current_setting('pgrst.inserted', true), '')::int, 0) "
        "{} 1)::text, true) IS NOT NULL",
        step > 0 ? '+' : '-');
  };
  Statement sql;
  sql << "WITH pgrst_source AS (INSERT INTO " << relation;
  if (!columns->empty()) sql << "(" << joined(*columns, identifier) << ")";
  sql << " SELECT " << joined(*columns, [](auto& column) { return "pgrst_body." + identifier(column); }) << " ";
  appendBody(sql, work, table, *columns, payload->isArray);
  if (merge) sql << counting(+1);
  if (applied.resolution) {
    sql << " ON CONFLICT(" << joined(target, identifier) << ") DO ";
    if (!merge || columns->empty()) {
      sql << "NOTHING";
    } else {
      sql << "UPDATE SET "
          << joined(*columns, [](auto& column) { return identifier(column) + " = EXCLUDED." + identifier(column); })
          << counting(-1);
    }
  }
  appendReturning(sql, work, relation);
  auto result = execute(session, work, sql);
  if (!result) return std::unexpected(result.error());
  const int status = merge && result->inserted <= 0 && !work.settings.olderErrors ? 200 : 201;
  return writeReply(work, *result, applied, {status, status});
}

Outcome<Response> updateRows(Session& session, const Work& work, const std::string& name, const TableFacts& table) {
  const auto payload = readPayload(work.request.body, !work.query.columns);
  if (!payload) return std::unexpected(payload.error());
  const auto columns = writtenColumns(work, name, table, *payload);
  if (!columns) return std::unexpected(columns.error());

  const auto relation = "\"public\"." + identifier(name);
  Statement sql;
  if (columns->empty()) {
    sql << "WITH pgrst_source AS (SELECT * FROM " << relation << " WHERE false) SELECT NULL::bigint, 0, '[]'"
        << kReplySettings;
  } else {
    sql << "WITH pgrst_source AS (UPDATE " << relation << " SET "
        << joined(*columns, [](auto& column) { return identifier(column) + " = pgrst_body." + identifier(column); })
        << " ";
    appendBody(sql, work, table, *columns, payload->isArray);
    appendWhere(sql, relation, work.query.where);
    appendReturning(sql, work, relation);
  }
  auto result = execute(session, work, sql);
  if (!result) return std::unexpected(result.error());
  auto applied = work.preferences;
  applied.resolution.reset();
  return writeReply(work, *result, applied, {204, 200});
}

Outcome<Response> deleteRows(Session& session, const Work& work, const std::string& name) {
  const auto relation = "\"public\"." + identifier(name);
  Statement sql;
  sql << "WITH pgrst_source AS (DELETE FROM " << relation;
  appendWhere(sql, relation, work.query.where);
  appendReturning(sql, work, relation);
  auto result = execute(session, work, sql);
  if (!result) return std::unexpected(result.error());
  auto applied = work.preferences;
  applied.resolution.reset();
  applied.missing.reset();
  return writeReply(work, *result, applied, {204, 200});
}

}  // namespace

Outcome<Response> serveTable(Session& session, const Work& work, const std::string& name, const TableFacts& table) {
  const auto& method = work.request.method;
  if (work.reads()) return readTable(session, work, name);
  if (method == "POST") return insertRows(session, work, name, table);
  const bool deletes = method == "DELETE";
  if (!deletes && method != "PATCH") {
    return std::unexpected(refusal(405, "PGRST117", "Unsupported HTTP method: " + method));
  }
  if (work.query.where.empty()) {
    return std::unexpected(
        restError({.sqlstate = "21000",
                   .message = fmt::format("{} requires a WHERE clause", deletes ? "DELETE" : "UPDATE"),
                   .detail = {},
                   .hint = {}},
                  work.signedIn()));
  }
  return deletes ? deleteRows(session, work, name) : updateRows(session, work, name, table);
}

}  // namespace thalvorn::devserver
