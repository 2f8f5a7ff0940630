#include "devserver/rest_work.h"

#include <fmt/format.h>

#include <algorithm>

namespace thalvorn::devserver {

RestError refusal(int status, std::string code, std::string message, std::optional<std::string> details,
                  std::optional<std::string> hint) {
  return {.status = status,
          .code = std::move(code),
          .message = std::move(message),
          .details = std::move(details),
          .hint = std::move(hint),
          .headers = {}};
}

Outcome<ResultSet> execute(Session& session, const Work& work, const Statement& statement) {
  const auto rows = session.query(statement.text(), statement.parameters());
  if (!rows) return std::unexpected(restError(rows.error(), work.signedIn()));
  ResultSet out;
  if (!rows->isNull(0, 0)) out.total = rows->number(0, 0);
  out.count = rows->number(0, 1);
  out.body = rows->text(0, 2);
  if (!rows->isNull(0, 3)) out.headers = rows->text(0, 3);
  if (!rows->isNull(0, 4)) out.status = rows->text(0, 4);
  out.inserted = rows->number(0, 5);
  if (work.singleObject && out.count != 1) {
    return std::unexpected(refusal(406, "PGRST116", "Cannot coerce the result to a single JSON object",
                                   fmt::format("The result contains {} rows", out.count)));
  }
  const auto most = work.preferences.maxAffected;
  if (work.preferences.strict() && most && !work.reads() && out.count > *most) {
    return std::unexpected(refusal(400, "PGRST124", "Query result exceeds max-affected preference constraint",
                                   fmt::format("The query affects {} rows", out.count)));
  }
  return out;
}

std::string bodyOf(const Work& work, std::string_view aggregated, std::string_view empty) {
  return work.singleObject ? fmt::format("coalesce({}->0, 'null')::text", aggregated)
                           : fmt::format("coalesce({}, '{}')::text", aggregated, empty);
}

Outcome<std::pair<int, std::string>> pageStatus(long long offset, const ResultSet& result) {
  const auto total = result.total ? std::to_string(*result.total) : "*";
  if (result.total && offset > *result.total) {
    return std::unexpected(
        refusal(416, "PGRST103", "Requested range not satisfiable",
                fmt::format("An offset of {} was requested, but there are only {} rows.", offset, total)));
  }
  const int status = result.total && result.count < *result.total ? 206 : 200;
  const auto range = result.count > 0 ? fmt::format("{}-{}", offset, offset + result.count - 1) : std::string("*");
  return std::pair(status, range + "/" + total);
}

std::optional<RestError> applyChosenReply(const ResultSet& result, Response& response) {
  if (result.status) {
    const bool number =
        result.status->size() == 3 && result.status->find_first_not_of("0123456789") == std::string::npos;
    if (!number) return refusal(500, "PGRST112", "response.status guc must be a valid status code");
    response.status = std::stoi(*result.status);
  }
  if (!result.headers) return std::nullopt;
  boost::system::error_code bad;
  const auto list = json::parse(*result.headers, bad);
  if (bad || !list.is_array()) {
    return refusal(
        500, "PGRST111",
        "response.headers guc must be a JSON array composed of objects with a single key and a string value");
  }
  for (const auto& entry : list.get_array()) {
    if (!entry.is_object()) continue;
    for (const auto& [name, value] : entry.get_object()) {
      if (!value.is_string()) continue;
      std::erase_if(response.headers, [&](const auto& header) { return sameToken(header.first, name); });
      response.with(name, std::string(value.get_string()));
    }
  }
  return std::nullopt;
}

void addContentType(const Work& work, Response& response) {
  response.with("Content-Type", fmt::format("{}; charset=utf-8", work.singleObject ? kObjectType : kJsonType));
  if (work.request.header("Accept-Profile") || work.request.header("Content-Profile")) {
    response.with("Content-Profile", "public");
  }
}

void addApplied(const Preferences& preferences, Response& response) {
  if (auto applied = preferences.applied(); !applied.empty()) {
    response.with("Preference-Applied", std::move(applied));
  }
}

void appendLimit(Statement& sql, const Work& work, const RowRange& range) {
  const auto limit = std::min(range.limit.value_or(work.settings.maxRows), work.settings.maxRows);
  sql << fmt::format(" LIMIT {} OFFSET {}", limit, range.offset);
}

}  // namespace thalvorn::devserver
