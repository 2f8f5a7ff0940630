#pragma once

#include <QCoro/QCoroTask>
#include <QString>
#include <optional>
#include <string>

#include "base/timestamp.h"

namespace thalvorn {

/// Who is signed in, and the tokens that show it. Never logged.
struct StoredSession {
  std::string accessToken;             ///< "sb_access_token"
  std::string refreshToken;            ///< "sb_refresh_token"
  std::string userID;                  ///< "sb_user_id"
  std::string userEmail;               ///< "sb_user_email"
  std::optional<Timestamp> expiresAt;  ///< of the access token, by the server's clock

  bool isAuthenticated() const { return !accessToken.empty(); }
  friend bool operator==(const StoredSession&, const StoredSession&) = default;
};

/// Where the session is kept between runs. The store keeps it among the preferences.
class TokenStore {
 public:
  virtual ~TokenStore() = default;

  /// What is stored now; read afresh when another process may have written.
  virtual StoredSession session() const = 0;
  /// Seen by `session()` at once; the task finishes when it is on disk, false when it could not be put there. Empty
  /// texts remove their keys.
  virtual QCoro::Task<bool> keep(StoredSession session) = 0;
  /// The file that processes sharing this store lock while one of them refreshes; empty when no other can.
  virtual QString lockFile() const = 0;
};

}  // namespace thalvorn
