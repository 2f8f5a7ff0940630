#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <cstdint>
#include <expected>
#include <optional>

#include "backend/sb_error.h"

namespace thalvorn {

/// The user in a reply of the auth service.
struct SBUser {
  std::optional<QString> id;
  std::optional<QString> email;
  std::optional<QString> aud;
  bool passwordChangeRequired = false;  ///< of "user_metadata": an administrator made the user and gave the password
};

/// Tokens below the key "session", where some replies to a sign-up carry them.
struct SBSession {
  std::optional<QString> accessToken;
  std::optional<QString> refreshToken;
  std::optional<SBUser> user;
};

/// A reply of the auth service. Every field is optional; a value of another type counts as absent.
struct AuthResponse {
  std::optional<QString> accessToken;
  std::optional<QString> refreshToken;
  std::optional<QString> tokenType;
  std::optional<std::int64_t> expiresIn;  ///< lifetime of the access token, seconds
  std::optional<std::int64_t> expiresAt;  ///< its expiry by the server's clock, Unix seconds
  std::optional<SBUser> user;             ///< also a user that stands alone in the reply
  std::optional<SBSession> session;
  std::optional<QJsonObject> weakPassword;

  /// Fails when the text is no JSON object.
  static std::optional<AuthResponse> parse(const QByteArray& body);

  /// At the top level or under "session"; empty when there is none.
  QString anyAccessToken() const;
  QString anyRefreshToken() const;
  std::optional<SBUser> anyUser() const;
};

/// What a link of the auth service carries into the program, e.g. "thalvorn://reset-password#access_token=…".
struct AuthLink {
  QString accessToken;
  QString refreshToken;
  std::int64_t expiresIn = 0;
  bool isRecovery = false;

  /// Reads the fragment (or query); the error carries the service's own words, e.g. of an expired link.
  static std::expected<AuthLink, SBError> parse(const QString& link);
  /// For the user, of a link that the service does not take any more.
  static QString expiredText();
};

}  // namespace thalvorn
