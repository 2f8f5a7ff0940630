// Mails with links and codes, and what they are good for: confirming an address, changing it, a new password.
#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "base/uuid.h"
#include "devserver/auth_exchange.h"

namespace thalvorn::devserver::auth {
namespace {

constexpr std::string_view kSiteUrl = "http://127.0.0.1:3000";
constexpr std::array<std::string_view, 3> kAllowedRedirects{"thalvorn://", "http://127.0.0.1", "http://localhost"};

constexpr std::string_view kOtherAddress =
    "Confirmation link accepted. Please proceed to confirm link sent to the other email";

}  // namespace

void Exchange::changeEmail(const User& user) {
  query(
      "update auth.users set email = email_change, email_change = '', email_confirmed_at = now(), "
      "updated_at = now() where id = $1",
      {user.id});
  query(
      "update auth.identities set identity_data = identity_data || jsonb_build_object('email', $2::text), "
      "updated_at = now() where user_id = $1",
      {user.id, user.newEmail});
}

void Exchange::waitForMail(const User& user, std::string_view column) {
  const auto wait =
      query(fmt::format("select ceil(extract(epoch from {} + make_interval(secs => $2) - now()))::int from auth.users "
                        "where id = $1",
                        column),
            {user.id, std::to_string(settings_.mailInterval.count())});
  if (!wait.isNull(0, 0) && wait.number(0, 0) > 0) {
    refuse(429, "over_email_send_rate_limit",
           fmt::format("For security purposes, you can only request this after {} seconds.", wait.number(0, 0)));
  }
}

std::string Exchange::redirect() const {
  auto wanted = queryValue(request_.query, "redirect_to").value_or("");
  if (wanted.empty()) wanted = request_.headerOr("redirect_to", "");
  const bool allowed =
      std::ranges::any_of(kAllowedRedirects, [&](std::string_view beginning) { return wanted.starts_with(beginning); });
  return allowed ? wanted : std::string(kSiteUrl);
}

void Exchange::sendMail(const User& user, const std::string& to, std::string_view kind, std::string_view tokenType) {
  const auto code = randomDigits();
  const auto hash = sha224(to + code);
  query(
      "insert into auth.one_time_tokens (id, user_id, token_type, token_hash, relates_to) "
      "values ($1, $2, $3::auth.one_time_token_type, $4, $5) on conflict (user_id, token_type) do update set "
      "token_hash = excluded.token_hash, relates_to = excluded.relates_to, created_at = now(), updated_at = now()",
      {Uuid::random().toString(), user.id, std::string(tokenType), hash, to});
  const std::string_view sent = kind == "signup"     ? "confirmation_sent_at"
                                : kind == "recovery" ? "recovery_sent_at"
                                                     : "email_change_sent_at";
  query(fmt::format("update auth.users set {} = $2, {} = now() where id = $1", tokenType, sent), {user.id, hash});
  site_.mailbox.add({.to = to,
                     .kind = std::string(kind),
                     .code = code,
                     .tokenHash = hash,
                     .link = fmt::format("{}/auth/v1/verify?token={}&type={}&redirect_to={}", site_.url, hash, kind,
                                         percentEncoded(redirect()))});
}

Response Exchange::recover() {
  if (bodyText("email").empty()) refuse(400, "validation_failed", "Password recovery requires an email");
  if (const auto user = findUser("u.email = $1", bodyEmail())) {
    waitForMail(*user, "recovery_sent_at");
    sendMail(*user, user->email, "recovery", "recovery_token");
  }
  return jsonResponse(200, "{}");
}

Response Exchange::resend() {
  const auto kind = bodyText("type");
  if (kind != "signup" && kind != "email_change") {
    refuse(400, "validation_failed", "Missing one of these types: signup, email_change, sms, phone_change");
  }
  const auto user = findUser("u.email = $1", bodyEmail());
  if (user && kind == "signup" && !user->confirmed) {
    waitForMail(*user, "confirmation_sent_at");
    sendMail(*user, user->email, "signup", "confirmation_token");
  } else if (user && kind == "email_change" && !user->newEmail.empty()) {
    waitForMail(*user, "email_change_sent_at");
    sendMail(*user, user->newEmail, "email_change", "email_change_token_new");
  }
  return jsonResponse(200, "{}");
}

Rows Exchange::findMailToken(const std::string& hash, const std::string& kind) {
  const auto* types = kind == "recovery"                    ? "{recovery_token}"
                      : kind == "email_change"              ? "{email_change_token_new,email_change_token_current}"
                      : kind == "signup" || kind == "email" ? "{confirmation_token}"
                                                            : "{}";
  return query(
      "delete from auth.one_time_tokens where token_hash = $1 and token_type::text = any($2::text[]) "
      "and created_at > (now() at time zone 'utc') - interval '1 hour' returning user_id, token_type",
      {hash, types});
}

Exchange::Grant Exchange::redeem(const std::string& userId, const std::string& tokenType) {
  const auto user = userById(userId);
  query(fmt::format("update auth.users set {} = '' where id = $1", tokenType), {userId});
  if (tokenType.starts_with("email_change")) {
    const auto other = query(
        "select 1 from auth.one_time_tokens where user_id = $1 and token_type in "
        "('email_change_token_new', 'email_change_token_current')",
        {userId});
    if (other.size() > 0) return {};
    changeEmail(user);
  } else {
    query(
        "update auth.users set email_confirmed_at = coalesce(email_confirmed_at, now()), updated_at = now() "
        "where id = $1",
        {userId});
  }
  return openSession(user, tokenType == "recovery_token" ? "recovery" : "otp");
}

Response Exchange::verifyByLink() {
  const auto kind = queryValue(request_.query, "type").value_or("");
  const auto found = findMailToken(queryValue(request_.query, "token").value_or(""), kind);
  Response response{.status = 303, .headers = {}, .body = {}};
  if (found.size() == 0) {
    return response.with("Location", redirect() +
                                         "#error=access_denied&error_code=otp_expired&error_description="
                                         "Email+link+is+invalid+or+has+expired&sb=");
  }
  const auto userId = std::string(found.text(0, 0));
  const auto grant = redeem(userId, std::string(found.text(0, 1)));
  if (grant.sessionId.empty()) {
    return response.with("Location", fmt::format("{}#message={}&sb=", redirect(), percentEncoded(kOtherAddress)));
  }
  const auto reply = json::parse(tokenReply(userId, grant)).get_object();
  return response.with(
      "Location",
      fmt::format("{}#access_token={}&expires_at={}&expires_in={}&refresh_token={}&sb=&token_type=bearer&type={}",
                  redirect(), textMember(reply, "access_token"), reply.at("expires_at").to_number<long long>(),
                  reply.at("expires_in").to_number<long long>(), grant.refreshToken, percentEncoded(kind)));
}

Response Exchange::verifyByCode() {
  auto hash = bodyText("token_hash");
  if (hash.empty()) hash = sha224(bodyEmail() + bodyText("token"));
  const auto found = findMailToken(hash, bodyText("type"));
  if (found.size() == 0) refuse(403, "otp_expired", "Token has expired or is invalid");
  const auto userId = std::string(found.text(0, 0));
  const auto grant = redeem(userId, std::string(found.text(0, 1)));
  if (grant.sessionId.empty())
    return jsonResponse(200, json::serialize(json::object{{"msg", kOtherAddress}, {"code", "200"}}));
  return jsonResponse(200, tokenReply(userId, grant));
}

}  // namespace thalvorn::devserver::auth
