#include "devserver/rest.h"

#include <fmt/format.h>

#include <algorithm>

#include "devserver/rest_work.h"

namespace thalvorn::devserver {
namespace {

// A statement without parameters cannot be mixed with others in one message, so these are literals.
std::string opening(const Session& session, const Work& work, const Schema& schema) {
  std::string sql = work.reads() ? "begin read only; select " : "begin; select ";
  const auto set = [&](std::string_view name, std::string_view value) {
    sql += fmt::format("set_config({}, {}, true), ", session.quoted(name), session.quoted(value));
  };
  set("search_path", "public, extensions");
  set("timezone", work.preferences.timezone.value_or(work.settings.timeZone));
  if (const auto found = schema.roleSettings.find(work.role); found != schema.roleSettings.end()) {
    for (const auto& [name, value] : found->second) set(name, value);
  }
  json::object headers;
  for (const auto& [name, value] : work.request.headers) {
    std::string lower = name;
    std::ranges::transform(lower, lower.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
    headers[lower] = value;
  }
  set("request.jwt.claims", json::serialize(work.claims));
  set("request.method", work.request.method);
  set("request.path", work.request.path);
  set("request.headers", json::serialize(headers));
  sql += fmt::format("set_config('role', {}, true)", session.quoted(work.role));
  return sql;
}

/// The form of reply that the request's Accept headers allow; PGRST107 when we have none of them.
Outcome<bool> wantsSingleObject(const Request& request) {
  const auto accept = request.header("Accept");
  if (!accept) return false;
  for (const auto part : split(*accept, ',')) {
    const auto type = trimmed(part.substr(0, part.find(';')));
    if (type == kObjectType) return true;
    for (const std::string_view known :
         {"*/*", "application/*", "application/json", "application/vnd.pgrst.array+json"}) {
      if (type == known) return false;
    }
  }
  return std::unexpected(refusal(406, "PGRST107", fmt::format("None of these media types are available: {}", *accept)));
}

std::optional<RestError> refuseForm(const Work& work) {
  for (const auto* header : {"Accept-Profile", "Content-Profile"}) {
    if (const auto profile = work.request.headerOr(header, "public"); profile != "public") {
      return refusal(406, "PGRST106", fmt::format("Invalid schema: {}", profile), {},
                     "Only the following schemas are exposed: public");
    }
  }
  const auto type = work.request.headerOr("Content-Type", kJsonType);
  const bool carriesBody = work.request.method == "POST" || work.request.method == "PATCH";
  if (carriesBody && trimmed(type.substr(0, type.find(';'))) != kJsonType) {
    return refusal(400, "PGRST102", fmt::format("Content-Type not acceptable: {}", type));
  }
  if (work.preferences.strict() && !work.preferences.unknown.empty()) {
    return refusal(400, "PGRST122", "Invalid preferences given with handling=strict",
                   "Invalid preferences: " + joined(work.preferences.unknown, [](auto& text) { return text; }));
  }
  return std::nullopt;
}

RestError unknownTable(const std::string& name, bool olderForm) {
  if (olderForm) return refusal(404, "42P01", fmt::format("relation \"public.{}\" does not exist", name));
  return refusal(404, "PGRST205", fmt::format("Could not find the table 'public.{}' in the schema cache", name));
}

}  // namespace

Response RestService::handle(const Request& request, const json::object& claims) {
  const auto serve = [&]() -> Outcome<Response> {
    Work work{.request = request,
              .claims = claims,
              .settings = settings_.get(),
              .role = textMember(claims, "role"),
              .preferences = Preferences::read(request),
              .query = {}};
    if (work.role.empty()) work.role = "anon";
    std::string path = percentDecoded(request.path, false);
    const bool isCall = path.starts_with("/rpc/");
    const auto name = path.substr(isCall ? 5 : 1);
    if (name.empty()) return std::unexpected(refusal(404, "PGRST126", "Root endpoint metadata is disabled"));
    if (name.find('/') != std::string::npos) {
      return std::unexpected(refusal(404, "PGRST125", "Invalid path specified in request URL"));
    }
    if (isCall && !work.reads() && request.method != "POST") {
      return std::unexpected(refusal(405, "PGRST101", fmt::format("Cannot use the {} method on RPC", request.method)));
    }
    auto query = parseRestQuery(request.query, isCall && work.reads());
    if (!query) return std::unexpected(query.error());
    work.query = std::move(*query);
    const auto single = wantsSingleObject(request);
    if (!single) return std::unexpected(single.error());
    work.singleObject = *single;
    if (auto fault = refuseForm(work)) return std::unexpected(std::move(*fault));

    auto schema = schema_.current();
    const auto attempt = [&]() -> Outcome<Response> {
      if (!schema) return std::unexpected(restError(schema.error(), work.signedIn()));
      const auto* table = isCall ? nullptr : (*schema)->table(name);
      if (!isCall && !table) return std::unexpected(unknownTable(name, work.settings.olderErrors));
      auto session = pool_.borrow();
      if (!session) return std::unexpected(restError(session.error(), work.signedIn()));
      if (work.preferences.timezone) {
        const auto zone =
            session->query("select 1 from pg_timezone_names where name = $1", {work.preferences.timezone});
        if (!zone || zone->size() == 0) work.preferences.timezone.reset();
      }
      const auto begun = session->run(opening(*session, work, **schema));
      if (!begun) return std::unexpected(restError(begun.error(), work.signedIn()));
      auto response = isCall ? serveCall(*session, work, name, **schema) : serveTable(*session, work, name, *table);
      if (!response) return response;
      if (const auto done = session->commit(); !done) {
        return std::unexpected(restError(done.error(), work.signedIn()));
      }
      return response;
    };
    auto response = attempt();
    // The schema may have grown since it was read.
    if (!response && (response.error().code.starts_with("PGRST20") || response.error().code == "42P01")) {
      schema = schema_.reread();
      response = attempt();
    }
    return response;
  };
  auto response = serve();
  return response ? std::move(*response) : restResponse(response.error());
}

}  // namespace thalvorn::devserver
