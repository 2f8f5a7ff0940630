#include "devserver/auth.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "base/uuid.h"
#include "devserver/auth_exchange.h"

namespace thalvorn::devserver {
namespace auth {
namespace {

constexpr std::string_view kNewerForm = "2024-01-01";
constexpr std::size_t kShortestPassword = 6;
constexpr std::size_t kLongestPassword = 72;
constexpr std::size_t kShortestRefreshToken = 12;

std::string lowered(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
  return text;
}

constexpr auto* kUserColumns = R"(
  u.id, u.email, u.encrypted_password, u.email_confirmed_at is not null, coalesce(u.banned_until > now(), false),
  u.raw_app_meta_data, u.raw_user_meta_data, coalesce(u.email_change, ''), coalesce(u.role, ''),
  jsonb_strip_nulls(jsonb_build_object('id', u.id, 'aud', u.aud, 'role', u.role, 'email', u.email,
    'email_confirmed_at', auth_time(u.email_confirmed_at), 'phone', coalesce(u.phone, ''),
    'confirmation_sent_at', auth_time(u.confirmation_sent_at), 'confirmed_at', auth_time(u.confirmed_at),
    'recovery_sent_at', auth_time(u.recovery_sent_at), 'new_email', nullif(u.email_change, ''),
    'email_change_sent_at', auth_time(u.email_change_sent_at), 'last_sign_in_at', auth_time(u.last_sign_in_at),
    'created_at', auth_time(u.created_at), 'updated_at', auth_time(u.updated_at), 'is_anonymous', u.is_anonymous)) ||
  jsonb_build_object('app_metadata', u.raw_app_meta_data, 'user_metadata', u.raw_user_meta_data, 'identities',
    (select coalesce(jsonb_agg(jsonb_build_object('identity_id', i.id, 'id', i.provider_id, 'user_id', i.user_id,
       'identity_data', i.identity_data, 'provider', i.provider, 'email', i.email,
       'last_sign_in_at', auth_time(i.last_sign_in_at), 'created_at', auth_time(i.created_at),
       'updated_at', auth_time(i.updated_at))), '[]') from auth.identities i where i.user_id = u.id)))";

/// `auth_time(x)` in an SQL text becomes the expression that writes x in UTC as the service does.
std::string withTimes(std::string sql) {
  static constexpr std::string_view kCall = "auth_time(";
  for (auto at = sql.find(kCall); at != std::string::npos; at = sql.find(kCall, at)) {
    const auto end = sql.find(')', at);
    const auto value = sql.substr(at + kCall.size(), end - at - kCall.size());
    sql.replace(at, end - at + 1,
                fmt::format(R"(to_char({} at time zone 'utc', 'YYYY-MM-DD"T"HH24:MI:SS.US"Z"'))", value));
  }
  return sql;
}

}  // namespace

Rows Exchange::query(const std::string& sql, const Parameters& parameters) {
  auto rows = session_.query(sql, parameters);
  if (!rows) {
    if (rows.error().sqlstate == "23505") refuse(422, "user_already_exists", "User already registered");
    if (rows.error().sqlstate == "40001" || rows.error().sqlstate == "40P01") {
      refuse(409, "conflict", "Too many concurrent token refresh requests on the same session or refresh token");
    }
    fmt::print(stderr, "thalvorn-devserver: sign-in service: {}\n", rows.error().message);
    refuse(500, "unexpected_failure", "Database error");
  }
  return std::move(*rows);
}

const json::object& Exchange::body() {
  if (body_.is_null()) {
    boost::system::error_code bad;
    body_ = json::parse(request_.body, bad);
    if (bad || !body_.is_object()) refuse(400, "bad_json", "Could not parse request body as JSON");
  }
  return body_.get_object();
}

std::string Exchange::bodyEmail() {
  auto email = lowered(bodyText("email"));
  const auto at = email.find('@');
  if (at == std::string::npos || at == 0 || at + 1 == email.size() || email.size() > 255 ||
      email.find_first_of(" \t\r\n") != std::string::npos) {
    refuse(400, "validation_failed", "Unable to validate email address: invalid format");
  }
  return email;
}

std::optional<User> Exchange::findUser(std::string_view condition, const std::string& value) {
  static const std::string kSelect = withTimes(fmt::format("select {} from auth.users u where ", kUserColumns));
  const auto rows = query(kSelect + std::string(condition), {value});
  if (rows.size() == 0) return std::nullopt;
  return User{.id = std::string(rows.text(0, 0)),
              .email = std::string(rows.text(0, 1)),
              .passwordHash = std::string(rows.text(0, 2)),
              .confirmed = rows.text(0, 3) == "t",
              .banned = rows.text(0, 4) == "t",
              .appMetadata = std::string(rows.text(0, 5)),
              .userMetadata = std::string(rows.text(0, 6)),
              .newEmail = std::string(rows.text(0, 7)),
              .role = std::string(rows.text(0, 8)),
              .reply = std::string(rows.text(0, 9))};
}

Exchange::Bearer Exchange::bearer() {
  const auto header = request_.headerOr("Authorization", "");
  if (header.size() < 8 || !sameToken(header.substr(0, 7), "Bearer ")) {
    refuse(401, "no_authorization", "This endpoint requires a valid Bearer token");
  }
  const auto claims = verifyToken(trimmed(header.substr(7)), site_.secret, site_.settings.now(), {});
  if (!claims) {
    const bool expired = claims.error() == TokenFault::expired;
    refuse(403, "bad_jwt",
           std::string("invalid JWT: unable to parse or verify signature, ") +
               (expired ? "token has invalid claims: token is expired" : "token signature is invalid"));
  }
  const auto subject = textMember(*claims, "sub");
  if (subject.empty()) refuse(403, "bad_jwt", "invalid claim: missing sub claim");
  if (!Uuid::parse(subject)) refuse(403, "bad_jwt", "invalid claim: sub claim must be a UUID");
  auto user = findUser("u.id = $1", subject);
  if (!user) refuse(403, "user_not_found", "User from sub claim in JWT does not exist");
  const auto session = textMember(*claims, "session_id");
  if (Uuid::parse(session) && query("select 1 from auth.sessions where id = $1", {session}).size() == 0) {
    refuse(403, "session_not_found", "Session from session_id claim in JWT does not exist");
  }
  return {.user = std::move(*user), .sessionId = session};
}

void Exchange::checkPassword(const std::string& password) const {
  if (password.size() > kLongestPassword) {
    refuse(400, "validation_failed", fmt::format("Password cannot be longer than {} characters", kLongestPassword));
  }
  if (password.size() < kShortestPassword) {
    throw Refusal{.status = 422,
                  .code = "weak_password",
                  .message = fmt::format("Password should be at least {} characters.", kShortestPassword),
                  .weaknesses = {"length"}};
  }
}

std::string Exchange::addRefreshToken(const std::string& userId, const std::string& sessionId,
                                      const Parameter& parent) {
  const auto token = randomText(9);
  query(
      "insert into auth.refresh_tokens (token, user_id, session_id, parent, revoked, created_at, updated_at) "
      "values ($1, $2, $3, $4, false, clock_timestamp(), clock_timestamp())",
      {token, userId, sessionId, parent});
  return token;
}

Exchange::Grant Exchange::openSession(const User& user, std::string_view method) {
  const auto id = Uuid::random().toString();
  query(
      "insert into auth.sessions (id, user_id, created_at, updated_at, aal, user_agent, ip) "
      "values ($1, $2, now(), now(), 'aal1', $3, '127.0.0.1')",
      {id, user.id, std::string(request_.headerOr("User-Agent", ""))});
  query(
      "insert into auth.mfa_amr_claims (id, session_id, created_at, updated_at, authentication_method) "
      "values ($1, $2, now(), now(), $3)",
      {Uuid::random().toString(), id, std::string(method)});
  query("update auth.users set last_sign_in_at = now() where id = $1", {user.id});
  return {.sessionId = id, .refreshToken = addRefreshToken(user.id, id, {})};
}

std::string Exchange::tokenReply(const std::string& userId, const Grant& grant) {
  const auto user = userById(userId);
  const auto method = query(
      "select authentication_method, extract(epoch from created_at)::bigint from auth.mfa_amr_claims "
      "where session_id = $1",
      {grant.sessionId});
  json::array methods;
  for (int row = 0; row < method.size(); ++row) {
    methods.push_back({{"method", method.text(row, 0)}, {"timestamp", method.number(row, 1)}});
  }
  const auto now = site_.settings.now();
  const auto lifetime = settings_.tokenLifetime.count();
  const json::object claims{{"iss", site_.url + "/auth/v1"},
                            {"sub", user.id},
                            {"aud", "authenticated"},
                            {"exp", now + lifetime},
                            {"iat", now},
                            {"email", user.email},
                            {"phone", ""},
                            {"app_metadata", json::parse(user.appMetadata)},
                            {"user_metadata", json::parse(user.userMetadata)},
                            {"role", user.role},
                            {"aal", "aal1"},
                            {"amr", methods},
                            {"session_id", grant.sessionId},
                            {"is_anonymous", false}};
  return json::serialize(json::object{{"access_token", signToken(claims, site_.secret)},
                                      {"token_type", "bearer"},
                                      {"expires_in", lifetime},
                                      {"expires_at", now + lifetime},
                                      {"refresh_token", grant.refreshToken},
                                      {"user", json::parse(user.reply)}});
}

Response Exchange::signUp() {
  const auto password = bodyText("password");
  if (password.empty()) refuse(400, "validation_failed", "Signup requires a valid password");
  const auto email = bodyEmail();
  checkPassword(password);
  auto user = findUser("u.email = $1", email);
  if (user && !settings_.confirmEmail) refuse(422, "user_already_exists", "User already registered");
  if (user && user->confirmed) {
    // Whether an address has an account is not told: the reply looks as if it were new.
    auto reply = json::parse(user->reply).get_object();
    const auto now = query(withTimes("select auth_time(current_timestamp)"));
    for (const auto* name : {"confirmation_sent_at", "created_at", "updated_at"}) reply[name] = now.text(0, 0);
    for (const auto* name : {"confirmed_at", "email_confirmed_at", "last_sign_in_at", "recovery_sent_at"})
      reply.erase(name);
    reply["id"] = Uuid::random().toString();
    reply["role"] = "";
    reply["user_metadata"] = json::object();
    reply["identities"] = json::array();
    return jsonResponse(200, json::serialize(reply));
  }
  if (!user) {
    const auto id = Uuid::random().toString();
    const auto* metadata = body().if_contains("data");
    query(
        "insert into auth.users (instance_id, id, aud, role, email, encrypted_password, email_confirmed_at, "
        "raw_app_meta_data, raw_user_meta_data) values ('00000000-0000-0000-0000-000000000000', $1, 'authenticated', "
        "'authenticated', $2, $3, case when $4::bool then now() end, '{\"provider\": \"email\", \"providers\": "
        "[\"email\"]}', $5)",
        {id, email, hashPassword(password), settings_.confirmEmail ? "f" : "t",
         metadata && metadata->is_object() ? json::serialize(*metadata) : "{}"});
    query(
        "insert into auth.identities (provider_id, user_id, identity_data, provider, last_sign_in_at, created_at, "
        "updated_at) values ($1::text, $1::text::uuid, jsonb_build_object('sub', $1::text, 'email', $2::text, "
        "'email_verified', "
        "false, 'phone_verified', false), 'email', now(), now(), now())",
        {id, email});
    user = userById(id);
  }
  if (!settings_.confirmEmail) return jsonResponse(200, tokenReply(user->id, openSession(*user, "password")));
  waitForMail(*user, "confirmation_sent_at");
  sendMail(*user, email, "signup", "confirmation_token");
  return jsonResponse(200, userById(user->id).reply);
}

Response Exchange::token() {
  const auto grant = queryValue(request_.query, "grant_type").value_or("");
  if (grant == "refresh_token") {
    const auto token = bodyText("refresh_token");
    if (token.empty()) refuse(400, "validation_failed", "refresh_token required");
    if (token.size() < kShortestRefreshToken) refuse(400, "validation_failed", "Refresh token is not valid");
    const auto next = exchange(token);
    const auto owner = query("select user_id from auth.sessions where id = $1", {next.sessionId});
    return jsonResponse(200, tokenReply(std::string(owner.text(0, 0)), next));
  }
  if (grant != "password") refuse(400, "unsupported_grant_type", "unsupported_grant_type");
  const auto user = findUser("u.email = $1", lowered(bodyText("email")));
  if (!user) refuse(400, "invalid_credentials", "Invalid login credentials");
  if (user->banned) refuse(400, "user_banned", "User is banned");
  if (!passwordMatches(bodyText("password"), user->passwordHash)) {
    refuse(400, "invalid_credentials", "Invalid login credentials");
  }
  if (!user->confirmed) refuse(400, "email_not_confirmed", "Email not confirmed");
  return jsonResponse(200, tokenReply(user->id, openSession(*user, "password")));
}

Exchange::Grant Exchange::exchange(const std::string& refreshToken) {
  const auto known = query("select session_id from auth.refresh_tokens where token = $1", {refreshToken});
  if (known.size() == 0) {
    refuse(400, "refresh_token_not_found", "Invalid Refresh Token: Refresh Token Not Found");
  }
  // Whoever holds the session's row is the only one to rotate its tokens.
  const auto session = query(
      "select s.id, s.user_id, s.not_after < now(), coalesce(u.banned_until > now(), false) "
      "from auth.sessions s join auth.users u on u.id = s.user_id where s.id = $1 for update of s",
      {std::string(known.text(0, 0))});
  if (session.size() == 0) refuse(400, "session_not_found", "Invalid Refresh Token: No Valid Session Found");
  if (session.text(0, 3) == "t") refuse(400, "user_banned", "Invalid Refresh Token: User Banned");
  if (session.text(0, 2) == "t") refuse(400, "session_expired", "Invalid Refresh Token: Session Expired");
  const std::string sessionId(session.text(0, 0));

  const auto spent = query(
      "select revoked, updated_at + make_interval(secs => $2) < clock_timestamp() "
      "from auth.refresh_tokens where token = $1",
      {refreshToken, std::to_string(settings_.reuseInterval.count())});
  if (spent.text(0, 0) == "t") {
    const auto active = query(
        "select token, parent from auth.refresh_tokens where session_id = $1 and not revoked "
        "order by id desc limit 1",
        {sessionId});
    if (active.size() == 1 && active.text(0, 1) == refreshToken) {
      return {.sessionId = sessionId, .refreshToken = std::string(active.text(0, 0))};
    }
    if (spent.text(0, 1) == "t") {
      query("update auth.refresh_tokens set revoked = true, updated_at = clock_timestamp() where session_id = $1",
            {sessionId});
      // This stays in force although the request is refused.
      if (!session_.commit()) refuse(500, "unexpected_failure", "Database error committing transaction");
      refuse(400, "refresh_token_already_used", "Invalid Refresh Token: Already Used");
    }
  }
  query(
      "update auth.refresh_tokens set revoked = true, updated_at = clock_timestamp() "
      "where session_id = $1 and not revoked",
      {sessionId});
  query("update auth.sessions set refreshed_at = now() at time zone 'utc', updated_at = now() where id = $1",
        {sessionId});
  return {.sessionId = sessionId,
          .refreshToken = addRefreshToken(std::string(session.text(0, 1)), sessionId, refreshToken)};
}

Response Exchange::user() { return jsonResponse(200, bearer().user.reply); }

Response Exchange::updateUser() {
  const auto [user, sessionId] = bearer();
  if (const auto password = bodyText("password"); !password.empty()) {
    checkPassword(password);
    if (passwordMatches(password, user.passwordHash)) {
      refuse(422, "same_password", "New password should be different from the old password.");
    }
    query("update auth.users set encrypted_password = $2, updated_at = now() where id = $1",
          {user.id, hashPassword(password)});
    query("delete from auth.sessions where user_id = $1 and id <> $2", {user.id, sessionId});
  }
  if (const auto* data = body().if_contains("data"); data && data->is_object()) {
    query(
        "update auth.users set raw_user_meta_data = jsonb_strip_nulls(coalesce(raw_user_meta_data, '{}') || $2), "
        "updated_at = now() where id = $1",
        {user.id, json::serialize(*data)});
  }
  if (const auto wanted = bodyText("email"); !wanted.empty()) {
    const auto email = bodyEmail();
    if (email != user.email) {
      if (findUser("u.email = $1", email)) {
        refuse(422, "email_exists", "A user with this email address has already been registered");
      }
      if (settings_.confirmEmail) waitForMail(user, "email_change_sent_at");
      query("update auth.users set email_change = $2, updated_at = now() where id = $1", {user.id, email});
      if (settings_.confirmEmail) {
        sendMail(user, user.email, "email_change", "email_change_token_current");
        sendMail(user, email, "email_change", "email_change_token_new");
      } else {
        changeEmail(userById(user.id));
      }
    }
  }
  return jsonResponse(200, userById(user.id).reply);
}

Response Exchange::logout() {
  const auto [user, sessionId] = bearer();
  const auto scope = queryValue(request_.query, "scope").value_or("global");
  if (scope == "global") {
    query("delete from auth.sessions where user_id = $1", {user.id});
  } else if (scope == "local") {
    query("delete from auth.sessions where id = $1", {sessionId});
  } else if (scope == "others") {
    query("delete from auth.sessions where user_id = $1 and id <> $2", {user.id, sessionId});
  } else {
    refuse(400, "validation_failed", fmt::format("Unsupported logout scope \"{}\"", scope));
  }
  return {.status = 204, .headers = {}, .body = {}};
}

namespace {

struct Route {
  std::string_view method;
  std::string_view path;
  Response (Exchange::*serve)();
};

constexpr std::array kRoutes{
    Route{"POST", "/signup", &Exchange::signUp},
    Route{"POST", "/token", &Exchange::token},
    Route{"GET", "/user", &Exchange::user},
    Route{"PUT", "/user", &Exchange::updateUser},
    Route{"POST", "/logout", &Exchange::logout},
    Route{"POST", "/recover", &Exchange::recover},
    Route{"POST", "/resend", &Exchange::resend},
    Route{"GET", "/verify", &Exchange::verifyByLink},
    Route{"POST", "/verify", &Exchange::verifyByCode},
};

Response refusalReply(const Refusal& refusal, const Request& request, bool olderForm) {
  const bool newer = request.headerOr("X-Supabase-Api-Version", "") == kNewerForm;
  json::object body;
  if (newer) {
    body = {{"code", refusal.code}, {"message", refusal.message}};
  } else if (olderForm && request.path == "/token" && refusal.status == 400) {
    body = {{"error", "invalid_grant"}, {"error_description", refusal.message}};
  } else {
    body = {{"code", refusal.status}, {"error_code", refusal.code}, {"msg", refusal.message}};
    if (olderForm) body.erase("error_code");
  }
  if (!refusal.weaknesses.empty()) {
    body["weak_password"] = {{"reasons", json::array(refusal.weaknesses.begin(), refusal.weaknesses.end())}};
  }
  auto response = jsonResponse(refusal.status, json::serialize(body));
  if (newer) response.with("X-Supabase-Api-Version", std::string(kNewerForm));
  if (!olderForm) response.with("x-sb-error-code", refusal.code);
  return response;
}

}  // namespace
}  // namespace auth

Response AuthService::handle(const Request& request) {
  const auto settings = site_.settings.get();
  if (request.path == "/health") {
    return jsonResponse(
        200,
        R"({"version":"v2.189.0","name":"GoTrue","description":"GoTrue is a user registration and authentication API"})");
  }
  if (request.path == "/settings") {
    return jsonResponse(200, json::serialize(json::object{{"external", {{"email", true}, {"phone", false}}},
                                                          {"disable_signup", false},
                                                          {"mailer_autoconfirm", !settings.confirmEmail},
                                                          {"phone_autoconfirm", false},
                                                          {"sms_provider", ""},
                                                          {"saml_enabled", false}}));
  }
  const auto route = std::ranges::find_if(auth::kRoutes, [&](const auth::Route& candidate) {
    return candidate.method == request.method && candidate.path == request.path;
  });
  try {
    if (route == auth::kRoutes.end()) {
      const bool known = std::ranges::find(auth::kRoutes, request.path, &auth::Route::path) != auth::kRoutes.end();
      if (known) return {.status = 405, .headers = {{"Content-Type", "text/plain"}}, .body = {}};
      return {.status = 404, .headers = {{"Content-Type", "text/plain"}}, .body = "404 page not found\n"};
    }
    auto session = pool_.borrow();
    if (!session || !session->run("begin")) auth::refuse(500, "unexpected_failure", "Database error");
    auth::Exchange exchange(request, *session, site_);
    auto response = (exchange.*route->serve)();
    if (!session->commit()) auth::refuse(500, "unexpected_failure", "Database error committing transaction");
    return response;
  } catch (const auth::Refusal& refusal) {
    return auth::refusalReply(refusal, request, settings.olderErrors);
  }
}

}  // namespace thalvorn::devserver
