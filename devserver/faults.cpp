#include "devserver/faults.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace thalvorn::devserver {
namespace {

struct FaultName {
  std::string_view name;
  Fault::Kind kind;
  long long value;
  std::string_view effect;
};

constexpr std::array kFaults{
    FaultName{"delay", Fault::Kind::delay, 2000, "the reply comes VALUE milliseconds late (2000)"},
    FaultName{"drop-request", Fault::Kind::dropRequest, 0, "the connection closes and nothing is done"},
    FaultName{"drop-reply", Fault::Kind::dropReply, 0, "the work is done, then the connection closes"},
    FaultName{"cut-reply", Fault::Kind::cutReply, 0, "the work is done, the connection closes within the reply's body"},
    FaultName{"duplicate", Fault::Kind::duplicate, 0, "the request arrives twice; the second reply is sent"},
    FaultName{"401", Fault::Kind::status, 401, "the token is taken for expired"},
    FaultName{"402", Fault::Kind::status, 402, "the project is restricted"},
    FaultName{"409", Fault::Kind::status, 409, "a conflict"},
    FaultName{"429", Fault::Kind::status, 429, "too many requests"},
    FaultName{"500", Fault::Kind::status, 500, "two transactions were in each other's way (40001)"},
    FaultName{"503", Fault::Kind::status, 503, "no database; with Retry-After for tables"},
    FaultName{"504", Fault::Kind::status, 504, "the service gave up waiting"},
    FaultName{"540", Fault::Kind::status, 540, "the project is paused"},
    FaultName{"544", Fault::Kind::status, 544, "the database took too long"},
    FaultName{"html-520", Fault::Kind::status, 520, "an HTML page from the network's edge"},
};

constexpr std::string_view kClockOffset = "clock-offset";
constexpr std::string_view kNonUtcZone = "non-utc-zone";
constexpr std::string_view kOldErrors = "old-errors";

std::string_view takeNumber(std::string_view text, long long& number) {
  const auto end = std::from_chars(text.data(), text.data() + text.size(), number).ptr;
  return text.substr(static_cast<std::size_t>(end - text.data()));
}

Response authReply(int status, std::string_view code, std::string_view text) {
  return jsonResponse(status, fmt::format(R"({{"code":{},"error_code":"{}","msg":"{}"}})", status, code, text))
      .with("x-sb-error-code", std::string(code));
}

Response restReply(int status, std::string_view code, std::string_view text) {
  return jsonResponse(status, fmt::format(R"({{"code":"{}","details":null,"hint":null,"message":"{}"}})", code, text),
                      "application/json; charset=utf-8");
}

Response storageReply(int status, int told, std::string_view error, std::string_view text) {
  return jsonResponse(status, fmt::format(R"({{"statusCode":"{}","error":"{}","message":"{}"}})", told, error, text));
}

}  // namespace

std::expected<Fault, std::string> Fault::parse(std::string_view text) {
  std::string compact;
  std::ranges::copy_if(text, std::back_inserter(compact), [](char c) { return c != ' '; });
  std::string_view rest = compact;
  const FaultName* known = nullptr;
  for (const auto& candidate : kFaults) {
    if (rest.starts_with(candidate.name) && (!known || candidate.name.size() > known->name.size())) known = &candidate;
  }
  if (!known) return std::unexpected(fmt::format("there is no fault \"{}\"", text));
  Fault fault{.kind = known->kind,
              .name = std::string(known->name),
              .value = known->value,
              .times = {},
              .method = {},
              .path = {}};
  rest.remove_prefix(known->name.size());
  while (!rest.empty()) {
    const char mark = rest.front();
    const auto before = rest;
    rest.remove_prefix(1);
    if (mark == '=') {
      rest = takeNumber(rest, fault.value);
    } else if (mark == 'x') {
      rest = takeNumber(rest, fault.times.emplace());
    } else if (mark == '@') {
      const auto end = std::min(rest.find('@'), rest.size());
      (rest.starts_with('/') ? fault.path : fault.method) = rest.substr(0, end);
      rest.remove_prefix(end);
    } else {
      return std::unexpected(fmt::format("\"{}\" in the fault \"{}\" is not understood", before, text));
    }
  }
  return fault;
}

std::expected<void, std::string> orderFault(std::string_view text, Settings& settings, std::vector<Fault>& faults) {
  const auto equals = std::min(text.find('='), text.size());
  const auto name = trimmed(text.substr(0, equals));
  const auto value = trimmed(text.substr(std::min(equals + 1, text.size())));
  if (name == kClockOffset) {
    long long seconds = 0;
    if (value.empty() || !takeNumber(value, seconds).empty()) {
      return std::unexpected("clock-offset takes a number of seconds, as clock-offset=-300");
    }
    settings.clockOffset = std::chrono::seconds(seconds);
  } else if (name == kNonUtcZone) {
    settings.timeZone = value.empty() ? "Asia/Kolkata" : value;
  } else if (name == kOldErrors) {
    settings.olderErrors = true;
  } else {
    auto fault = Fault::parse(text);
    if (!fault) return std::unexpected(std::move(fault.error()));
    faults.push_back(std::move(*fault));
  }
  return {};
}

std::string describeFaults() {
  std::string out;
  const auto add = [&](std::string_view name, std::string_view effect) {
    out += fmt::format("  {:<14}{}\n", name, effect);
  };
  for (const auto& fault : kFaults) add(fault.name, fault.effect);
  add(kClockOffset, "this server's clock is VALUE seconds ahead: tokens, Date");
  add(kNonUtcZone, "times of rows are written in the zone VALUE (Asia/Kolkata)");
  add(kOldErrors, "error forms and codes of earlier versions of the services");
  return out;
}

Response faultyReply(const Fault& fault, const Request& request) {
  const bool auth = request.path.starts_with("/auth/");
  const bool storage = request.path.starts_with("/storage/");
  switch (fault.value) {
    case 401:
      if (auth)
        return authReply(
            403, "bad_jwt",
            "invalid JWT: unable to parse or verify signature, token has invalid claims: token is expired");
      if (storage) return storageReply(400, 403, "Unauthorized", R"(\"exp\" claim timestamp check failed)");
      return restReply(401, "PGRST303", "JWT expired")
          .with("WWW-Authenticate", R"(Bearer error="invalid_token", error_description="JWT expired")");
    case 402:
      return jsonResponse(402, R"({"message":"Service for this project is restricted"})");
    case 409:
      if (auth)
        return authReply(409, "conflict",
                         "Too many concurrent token refresh requests on the same session or refresh token");
      if (storage) return storageReply(400, 409, "Duplicate", "The resource already exists");
      return restReply(409, "23505", "duplicate key value violates unique constraint");
    case 429:
      if (auth) return authReply(429, "over_request_rate_limit", "Request rate limit reached");
      if (storage) return storageReply(429, 429, "too_many_connections", "Too many connections issued to the database");
      return jsonResponse(429, R"({"message":"API rate limit exceeded"})");
    case 500:
      if (auth)
        return authReply(500, "unexpected_failure",
                         "Unexpected failure, please check server logs for more information");
      if (storage) return storageReply(500, 500, "InternalError", "Internal server error");
      return restReply(500, "40001", "could not serialize access due to concurrent update");
    case 503:
      if (auth || storage) return jsonResponse(503, R"({"message":"name resolution failed"})");
      return restReply(503, "PGRST002", "Could not query the database for the schema cache. Retrying.")
          .with("Retry-After", "1");
    case 504:
      if (auth)
        return authReply(504, "request_timeout", "Processing this request timed out, please retry after a moment.");
      return jsonResponse(504, R"({"message":"The upstream server is timing out"})");
    case 540:
      return jsonResponse(540, R"({"message":"Project paused"})");
    case 544:
      return storageReply(544, 544, "DatabaseTimeout", "The connection to the database timed out");
    default: {
      Response page{.status = static_cast<int>(fault.value), .headers = {}, .body = {}};
      page.with("Content-Type", "text/html; charset=UTF-8");
      page.body = fmt::format(
          "<!DOCTYPE html><html><head><title>Web server is returning an unknown error</title></head>"
          "<body><h1>Error code {}</h1></body></html>\n",
          fault.value);
      return page;
    }
  }
}

void Faults::set(std::vector<Fault> faults) {
  const std::lock_guard lock(mutex_);
  faults_ = std::move(faults);
}

std::vector<std::string> Faults::names() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> names;
  names.reserve(faults_.size());
  for (const auto& fault : faults_) names.push_back(fault.name);
  return names;
}

std::vector<Fault> Faults::strike(const Request& request) {
  const std::lock_guard lock(mutex_);
  std::vector<Fault> struck;
  for (auto& fault : faults_) {
    if (!fault.method.empty() && fault.method != request.method) continue;
    if (!request.path.starts_with(fault.path)) continue;
    struck.push_back(fault);
    if (fault.times) --*fault.times;
  }
  std::erase_if(faults_, [](const Fault& fault) { return fault.times && *fault.times <= 0; });
  return struck;
}

}  // namespace thalvorn::devserver
