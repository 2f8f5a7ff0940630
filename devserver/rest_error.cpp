#include "devserver/rest_error.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace thalvorn::devserver {
namespace {

struct StateRule {
  std::string_view prefix;
  int status;
};

// The first match counts. What is not listed is a fault in the request: 400.
constexpr std::array kStateRules{
    StateRule{"08", 503},    StateRule{"09", 500},    StateRule{"0L", 403},    StateRule{"0P", 403},
    StateRule{"21000", 500}, StateRule{"22023", 400}, StateRule{"23503", 409}, StateRule{"23505", 409},
    StateRule{"25006", 405}, StateRule{"25", 500},    StateRule{"28", 403},    StateRule{"2D", 500},
    StateRule{"38", 500},    StateRule{"39", 500},    StateRule{"3B", 500},    StateRule{"40", 500},
    StateRule{"42883", 404}, StateRule{"42P01", 404}, StateRule{"42P17", 500}, StateRule{"53400", 500},
    StateRule{"53", 503},    StateRule{"54", 500},    StateRule{"55", 500},    StateRule{"57P01", 503},
    StateRule{"57", 500},    StateRule{"58", 500},    StateRule{"F0", 500},    StateRule{"HV", 500},
    StateRule{"P0001", 400}, StateRule{"P0", 500},    StateRule{"XX", 500},
};

std::optional<int> statusIn(std::string_view digits) {
  if (digits.size() != 3 || !std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; })) {
    return std::nullopt;
  }
  return std::stoi(std::string(digits));
}

std::optional<std::string> optionalText(const json::object& object, std::string_view name) {
  const auto* value = object.if_contains(name);
  if (!value || !value->is_string()) return std::nullopt;
  return std::string(value->get_string());
}

// raise sqlstate 'PGRST' using message = '{"code", "message", "details", "hint"}', detail = '{"status", "headers"}'
RestError chosenReply(const DatabaseError& error) {
  boost::system::error_code bad;
  const auto body = json::parse(error.message, bad);
  const auto reply = bad ? json::value() : json::parse(error.detail.value_or(""), bad);
  const auto* status = !bad && reply.is_object() ? reply.get_object().if_contains("status") : nullptr;
  if (!status || !status->is_int64() || !body.is_object()) {
    return {.status = 500,
            .code = "PGRST121",
            .message = "Could not parse JSON in the \"RAISE SQLSTATE 'PGRST'\" error",
            .details = "Invalid JSON value for MESSAGE or DETAIL",
            .hint = {},
            .headers = {}};
  }
  RestError out{.status = static_cast<int>(status->get_int64()),
                .code = textMember(body.get_object(), "code"),
                .message = textMember(body.get_object(), "message"),
                .details = optionalText(body.get_object(), "details"),
                .hint = optionalText(body.get_object(), "hint"),
                .headers = {}};
  if (const auto* headers = reply.get_object().if_contains("headers"); headers && headers->is_object()) {
    for (const auto& [name, value] : headers->get_object()) {
      if (value.is_string()) out.headers.emplace_back(name, value.get_string());
    }
  }
  return out;
}

void append(json::object& object, std::string_view name, const std::optional<std::string>& text) {
  object[name] = text ? json::value(*text) : json::value();
}

}  // namespace

int statusOfSqlState(std::string_view sqlstate, std::string_view message, bool signedIn) {
  if (sqlstate == "42501") return signedIn ? 403 : 401;
  if (sqlstate == "21000" && message.ends_with("requires a WHERE clause")) return 400;
  if (sqlstate == "22023" && message.starts_with("role \"") && message.ends_with("does not exist")) return 401;
  if (sqlstate.starts_with("PT")) return statusIn(sqlstate.substr(2)).value_or(400);
  const auto rule = std::ranges::find_if(
      kStateRules, [&](const StateRule& candidate) { return sqlstate.starts_with(candidate.prefix); });
  return rule == kStateRules.end() ? 400 : rule->status;
}

RestError restError(const DatabaseError& error, bool signedIn) {
  if (error.sqlstate == "PGRST") return chosenReply(error);
  RestError out{.status = statusOfSqlState(error.sqlstate, error.message, signedIn),
                .code = error.sqlstate,
                .message = error.message,
                .details = error.detail,
                .hint = error.hint,
                .headers = {}};
  if (error.sqlstate == "08006") {
    out.code = "PGRST001";
    out.message = "Database client error. Retrying the connection.";
    out.details = error.message;
  }
  if (out.status == 401) out.headers.emplace_back("WWW-Authenticate", "Bearer");
  if (out.status == 503) out.headers.emplace_back("Retry-After", "1");
  return out;
}

RestError restError(TokenFault fault, bool olderForm) {
  RestError out{.status = 401, .code = "PGRST303", .message = {}, .details = {}, .hint = {}, .headers = {}};
  switch (fault) {
    case TokenFault::malformed:
      out.code = "PGRST301";
      out.message = "Expected 3 parts in JWT";
      break;
    case TokenFault::wrongKey:
      out.code = "PGRST301";
      out.message = "No suitable key or wrong key type";
      out.details = "None of the keys was able to decode the JWT";
      break;
    case TokenFault::unreadableClaims:
      out.message = "Parsing claims failed";
      break;
    case TokenFault::expired:
      out.message = "JWT expired";
      break;
    case TokenFault::notYetValid:
      out.message = "JWT not yet valid";
      break;
    case TokenFault::issuedInFuture:
      out.message = "JWT issued at future";
      break;
    case TokenFault::wrongAudience:
      out.message = "JWT not in audience";
      break;
  }
  if (olderForm) out.code = "PGRST301";
  out.headers.emplace_back("WWW-Authenticate",
                           "Bearer error=\"invalid_token\", error_description=\"" + out.message + "\"");
  return out;
}

Response restResponse(const RestError& error) {
  json::object body{{"code", error.code}};
  append(body, "details", error.details);
  append(body, "hint", error.hint);
  body["message"] = error.message;
  auto response = jsonResponse(error.status, json::serialize(body), "application/json; charset=utf-8");
  response.with("Proxy-Status", "PostgREST; error=" + error.code);
  response.headers.insert(response.headers.end(), error.headers.begin(), error.headers.end());
  return response;
}

}  // namespace thalvorn::devserver
