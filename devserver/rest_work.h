#pragma once

#include <expected>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "devserver/preferences.h"
#include "devserver/rest_query.h"
#include "devserver/schema_cache.h"
#include "devserver/settings.h"
#include "devserver/token.h"

// What the parts of the table interface share; only they include it.
namespace thalvorn::devserver {

template <class T>
using Outcome = std::expected<T, RestError>;

constexpr std::string_view kJsonType = "application/json";
constexpr std::string_view kObjectType = "application/vnd.pgrst.object+json";

RestError refusal(int status, std::string code, std::string message, std::optional<std::string> details = {},
                  std::optional<std::string> hint = {});

/// One request while it is worked on.
struct Work {
  const Request& request;
  const json::object& claims;
  Settings settings;
  std::string role;
  Preferences preferences;
  RestQuery query;
  bool singleObject = false;

  bool reads() const { return request.method == "GET" || request.isHead(); }
  bool signedIn() const { return role != "anon"; }
};

/// What the statement of every request answers, in the order of its columns.
struct ResultSet {
  std::optional<long long> total;
  long long count = 0;
  std::string body;
  std::optional<std::string> headers;
  std::optional<std::string> status;
  long long inserted = 0;
};

/// The last columns of every statement: what `ResultSet` holds after `body`.
inline constexpr auto* kReplySettings =
    ", nullif(current_setting('response.headers', true), ''), nullif(current_setting('response.status', true), '')"
    ", nullif(current_setting('pgrst.inserted', true), '')";

/// Runs a statement with the columns of `ResultSet`. Also refuses what the request says it cannot use: other than one
/// row for a single object, more rows than `max-affected`.
Outcome<ResultSet> execute(Session& session, const Work& work, const Statement& statement);

/// The expression for the body: a list, or one object when the request asks for that.
std::string bodyOf(const Work& work, std::string_view aggregated, std::string_view empty);

/// The status and Content-Range of a page that begins at `offset`.
Outcome<std::pair<int, std::string>> pageStatus(long long offset, const ResultSet& result);

/// Status and headers that a function or trigger chose by the settings response.status and response.headers.
std::optional<RestError> applyChosenReply(const ResultSet& result, Response& response);

void addContentType(const Work& work, Response& response);
void addApplied(const Preferences& preferences, Response& response);
void appendLimit(Statement& sql, const Work& work, const RowRange& range);

/// The texts that `form` makes of `parts`, with commas between.
std::string joined(const auto& parts, auto form) {
  std::string out;
  for (const auto& part : parts) out += (out.empty() ? "" : ", ") + form(part);
  return out;
}

/// Serve a request in the transaction that `session` is in.
Outcome<Response> serveTable(Session& session, const Work& work, const std::string& name, const TableFacts& table);
Outcome<Response> serveCall(Session& session, const Work& work, const std::string& name, const Schema& schema);

}  // namespace thalvorn::devserver
