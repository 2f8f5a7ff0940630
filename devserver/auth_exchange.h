#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "devserver/database.h"
#include "devserver/message.h"
#include "devserver/site.h"
#include "devserver/token.h"

// What the parts of the sign-in service share; only they include it.
namespace thalvorn::devserver::auth {

/// Why the service refuses. Thrown by `Exchange`, caught by `AuthService`.
struct Refusal {
  int status;
  std::string code;
  std::string message;
  std::vector<std::string> weaknesses;
};

[[noreturn]] inline void refuse(int status, std::string code, std::string message) {
  throw Refusal{.status = status, .code = std::move(code), .message = std::move(message), .weaknesses = {}};
}

struct User {
  std::string id;
  std::string email;
  std::string passwordHash;
  bool confirmed = false;
  bool banned = false;
  std::string appMetadata;
  std::string userMetadata;
  std::string newEmail;
  std::string role;   ///< of the database, as which the person's requests run
  std::string reply;  ///< as JSON
};

/// One request, in one transaction.
class Exchange {
 public:
  Exchange(const Request& request, Session& session, Site& site)
      : request_(request), session_(session), site_(site), settings_(site.settings.get()) {}

  Response signUp();
  Response token();
  Response user();
  Response updateUser();
  Response logout();
  Response recover();
  Response resend();
  Response verifyByLink();
  Response verifyByCode();

 private:
  struct Grant {
    std::string sessionId;
    std::string refreshToken;
  };
  struct Bearer {
    User user;
    std::string sessionId;
  };

  Rows query(const std::string& sql, const Parameters& parameters = {});

  const json::object& body();
  std::string bodyText(std::string_view name) { return textMember(body(), name); }
  std::string bodyEmail();
  std::optional<User> findUser(std::string_view condition, const std::string& value);
  User userById(const std::string& id) {
    if (auto user = findUser("u.id = $1", id)) return std::move(*user);
    refuse(403, "user_not_found", "User from sub claim in JWT does not exist");
  }
  Bearer bearer();
  void checkPassword(const std::string& password) const;

  Grant openSession(const User& user, std::string_view method);
  std::string addRefreshToken(const std::string& userId, const std::string& sessionId, const Parameter& parent);
  Grant exchange(const std::string& refreshToken);
  std::string tokenReply(const std::string& userId, const Grant& grant);

  void sendMail(const User& user, const std::string& to, std::string_view kind, std::string_view tokenType);
  void waitForMail(const User& user, std::string_view column);
  std::string redirect() const;
  Grant redeem(const std::string& userId, const std::string& tokenType);
  void changeEmail(const User& user);
  Rows findMailToken(const std::string& hash, const std::string& kind);

  const Request& request_;
  Session& session_;
  Site& site_;
  Settings settings_;
  json::value body_;
};

}  // namespace thalvorn::devserver::auth
