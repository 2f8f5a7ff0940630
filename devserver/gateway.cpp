#include "devserver/gateway.h"

#include <algorithm>
#include <array>
#include <fstream>

#include "devserver/rest_error.h"

namespace thalvorn::devserver {
namespace {

constexpr std::chrono::seconds kRestLeeway{30};

bool takePrefix(std::string& path, std::string_view prefix) {
  if (!path.starts_with(prefix) || (path.size() > prefix.size() && path[prefix.size()] != '/')) return false;
  path.erase(0, prefix.size());
  return true;
}

/// Paths that links in mails and in pages lead to: nobody can add a key to those.
bool needsNoKey(const Request& request) {
  return (request.path == "/auth/v1/verify" && request.method == "GET") ||
         request.path.starts_with("/storage/v1/object/public/");
}

/// What a browser of the services' error pages would see for a missing or foreign key.
std::optional<Response> refuseKey(const Request& request, const Site& site) {
  const auto parameter = queryValue(request.query, "apikey");
  const auto key = request.headerOr("apikey", parameter ? std::string_view(*parameter) : std::string_view());
  if (key.empty()) {
    return jsonResponse(
        401,
        R"({"message":"No API key found in request","hint":"No `apikey` request header or url param was found."})");
  }
  for (const auto* known : {&site.anonKey, &site.serviceKey, &site.publishableKey}) {
    if (key == *known) return std::nullopt;
  }
  return jsonResponse(
      401, R"({"message":"Invalid API key","hint":"Double check your Supabase `anon` or `service_role` API key."})");
}

/// Whoever has not signed in acts with the key's own role; an opaque key stands for its token.
void completeAuthorization(Request& request, const Site& site) {
  const auto given = request.headerOr("Authorization", "");
  if (!given.empty() && !given.starts_with("Bearer sb_")) return;
  const auto key = std::string(request.headerOr("apikey", site.anonKey));
  std::erase_if(request.headers, [](const auto& header) { return sameToken(header.first, "Authorization"); });
  request.headers.emplace_back("Authorization", "Bearer " + (key == site.publishableKey ? site.anonKey : key));
}

std::expected<json::object, TokenFault> callerOf(const Request& request, const Site& site,
                                                 std::chrono::seconds leeway) {
  auto header = request.headerOr("Authorization", "");
  if (header.size() < 7 || !sameToken(header.substr(0, 7), "Bearer ")) return std::unexpected(TokenFault::malformed);
  return verifyToken(trimmed(header.substr(7)), site.secret, site.settings.now(), leeway);
}

void dropParameter(std::string& query, std::string_view name) {
  std::string kept;
  for (const auto part : split(query, '&')) {
    if (part.substr(0, part.find('=')) == name) continue;
    kept += (kept.empty() ? "" : "&") + std::string(part);
  }
  query = std::move(kept);
}

std::string settingsText(const Settings& settings, const Faults& faults, const Site& site) {
  const auto names = faults.names();
  return json::serialize(json::object{{"maxRows", settings.maxRows},
                                      {"tokenLifetime", settings.tokenLifetime.count()},
                                      {"reuseInterval", settings.reuseInterval.count()},
                                      {"mailInterval", settings.mailInterval.count()},
                                      {"clockOffset", settings.clockOffset.count()},
                                      {"confirmEmail", settings.confirmEmail},
                                      {"olderErrors", settings.olderErrors},
                                      {"timeZone", settings.timeZone},
                                      {"faults", json::array(names.begin(), names.end())},
                                      {"publishableKey", site.publishableKey},
                                      {"serviceKey", site.serviceKey},
                                      {"databaseFolder", site.databaseFolder}});
}

}  // namespace

std::expected<DatabaseAddresses, std::string> DatabaseAddresses::read(const std::filesystem::path& file) {
  std::ifstream in(file);
  const std::string text((std::istreambuf_iterator<char>(in)), {});
  boost::system::error_code bad;
  const auto value = json::parse(text, bad);
  if (bad || !value.is_object()) return std::unexpected(file.string() + " names no running database");
  const auto& object = value.get_object();
  return DatabaseAddresses{.authenticator = textMember(object, "authenticator"),
                           .authAdmin = textMember(object, "authAdmin"),
                           .storageAdmin = textMember(object, "storageAdmin"),
                           .superuser = textMember(object, "superuser")};
}

Gateway::Gateway(Site& site, const DatabaseAddresses& database, int connections, std::filesystem::path files)
    : site_(site),
      authPool_(database.authAdmin, connections),
      restPool_(database.authenticator, connections),
      storagePool_(database.storageAdmin, connections),
      auth_(authPool_, site),
      rest_(restPool_, site.settings),
      storage_(storagePool_, site.settings, std::move(files)) {}

Response Gateway::handle(Request request) {
  if (takePrefix(request.path, "/dev")) return serveDevelopment(request);
  Response response;
  const auto struck = faults_.strike(request);
  const auto has = [&](Fault::Kind kind) { return std::ranges::find(struck, kind, &Fault::kind) != struck.end(); };
  const auto status = std::ranges::find(struck, Fault::Kind::status, &Fault::kind);
  if (has(Fault::Kind::dropRequest)) {
    response.delivery = Delivery::dropped;
  } else if (status != struck.end()) {
    response = faultyReply(*status, request);
  } else {
    if (has(Fault::Kind::duplicate)) serve(request);
    response = serve(std::move(request));
  }
  if (has(Fault::Kind::cutReply)) response.delivery = Delivery::cut;
  if (has(Fault::Kind::dropReply)) response.delivery = Delivery::dropped;
  for (const auto& fault : struck) {
    if (fault.kind == Fault::Kind::delay) response.delay += std::chrono::milliseconds(fault.value);
  }
  return response;
}

Response Gateway::serve(Request request) {
  if (!needsNoKey(request)) {
    if (auto refusal = refuseKey(request, site_)) return std::move(*refusal);
  }
  dropParameter(request.query, "apikey");
  if (takePrefix(request.path, "/auth/v1")) return auth_.handle(request);
  completeAuthorization(request, site_);
  if (takePrefix(request.path, "/rest/v1")) {
    if (request.path.empty()) request.path = "/";
    const auto caller = callerOf(request, site_, kRestLeeway);
    if (!caller) return restResponse(restError(caller.error(), site_.settings.get().olderErrors));
    return rest_.handle(request, *caller);
  }
  if (takePrefix(request.path, "/storage/v1")) return storage_.handle(request, callerOf(request, site_, {}));
  return jsonResponse(404, R"({"message":"no Route matched with those values"})");
}

Response Gateway::changeSettings(const json::object& changes) {
  auto settings = site_.settings.get();
  const auto number = [&](std::string_view name, auto assign) {
    if (const auto* value = changes.if_contains(name); value && value->is_int64()) assign(value->get_int64());
  };
  const auto flag = [&](std::string_view name, bool& target) {
    if (const auto* value = changes.if_contains(name); value && value->is_bool()) target = value->get_bool();
  };
  number("maxRows", [&](auto value) { settings.maxRows = value; });
  number("tokenLifetime", [&](auto value) { settings.tokenLifetime = std::chrono::seconds(value); });
  number("reuseInterval", [&](auto value) { settings.reuseInterval = std::chrono::seconds(value); });
  number("mailInterval", [&](auto value) { settings.mailInterval = std::chrono::seconds(value); });
  number("clockOffset", [&](auto value) { settings.clockOffset = std::chrono::seconds(value); });
  flag("confirmEmail", settings.confirmEmail);
  flag("olderErrors", settings.olderErrors);
  if (const auto zone = textMember(changes, "timeZone"); !zone.empty()) settings.timeZone = zone;
  if (const auto* list = changes.if_contains("faults"); list && list->is_array()) {
    std::vector<Fault> faults;
    for (const auto& text : list->get_array()) {
      const auto ordered = orderFault(text.is_string() ? std::string_view(text.get_string()) : "", settings, faults);
      if (!ordered) return jsonResponse(400, json::serialize(json::object{{"message", ordered.error()}}));
    }
    faults_.set(std::move(faults));
  }
  site_.settings.set(std::move(settings));
  return jsonResponse(200, settingsText(site_.settings.get(), faults_, site_));
}

Response Gateway::serveDevelopment(const Request& request) {
  if (request.path == "/settings" && request.method == "GET") {
    return jsonResponse(200, settingsText(site_.settings.get(), faults_, site_));
  }
  if (request.path == "/settings" && request.method == "PATCH") {
    boost::system::error_code bad;
    const auto changes = json::parse(request.body, bad);
    if (bad || !changes.is_object()) return jsonResponse(400, R"({"message":"The body is no JSON object."})");
    return changeSettings(changes.get_object());
  }
  if (request.path == "/mails" && request.method == "GET") {
    const auto to = queryValue(request.query, "to");
    json::array mails;
    for (const auto& mail : site_.mailbox.all()) {
      if (to && *to != mail.to) continue;
      mails.push_back({{"to", mail.to},
                       {"type", mail.kind},
                       {"code", mail.code},
                       {"token_hash", mail.tokenHash},
                       {"link", mail.link}});
    }
    return jsonResponse(200, json::serialize(mails));
  }
  return jsonResponse(404, R"({"message":"There are /dev/settings (GET, PATCH) and /dev/mails (GET)."})");
}

}  // namespace thalvorn::devserver
