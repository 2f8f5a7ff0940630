#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>
#include <cstdint>
#include <optional>

#include "base/timestamp.h"

namespace thalvorn {

struct HttpReply;

/// Why a request to the backend failed.
struct SBError {
  enum class Case : std::uint8_t {
    serverError,       ///< a reply outside 200–299, one that is not HTTP (status 0), or not the JSON expected
    notAuthenticated,  ///< an operation that needs a token found none stored
    networkError       ///< no whole reply came
  };

  /// What helps. Decided by the error's code rather than by its status, which several causes share.
  enum class Remedy : std::uint8_t {
    retryLater,     ///< it passes: network, overload, rate limit, a serialization failure
    refreshToken,   ///< the access token has expired
    waitForClock,   ///< the token was judged to be from the future: wait a second or three, do not refresh
    signIn,         ///< session, user or key is gone: sign in again; local data and pending changes stay
    smallerBatch,   ///< the request was too large or took the server too long
    updateSchema,   ///< the server does not know a table, column or procedure: ask again on another day
    askPermission,  ///< refused by policy
    mendRecord      ///< permanent: what was sent cannot be taken as it is
  };

  Case kind = Case::serverError;
  int status = 0;   ///< HTTP status, or the one that object storage gives in the body; 0 without a reply
  QString message;  ///< "error_description" of the reply, else its body, else "Unknown error"
  QString body;     ///< of the reply, as it came
  QString code;     ///< e.g. "23503", "PGRST204", "invalid_credentials", "NoSuchKey"; empty when none was given
  QString reason;   ///< the reply's own words without its frame; for the log, never with row contents
  QString text;     ///< for the user: what happened and what to do
  Remedy remedy = Remedy::retryLater;
  std::optional<std::chrono::seconds> retryAfter;  ///< the server's wish

  /// From a reply outside 200–299.
  static SBError fromReply(const HttpReply& reply);
  /// A reply that is not the backend's, with a message of the client's own: "Invalid JSON response".
  static SBError server(int status, const QString& message);
  /// Refused by the client itself; trying again would not help.
  static SBError refused(const QString& message, const QString& text);
  static SBError notAuthenticated();
  static SBError network(const QString& description);

  /// The signed-in user no longer exists on the server.
  bool isUserGone() const;
  /// One line for the log: status, code and reason.
  QString logLine() const;

  friend bool operator==(const SBError&, const SBError&) = default;
};

/// The date of an HTTP header, e.g. "Sun, 06 Nov 1994 08:49:37 GMT"; empty for anything else.
std::optional<Timestamp> httpDate(const QByteArray& value);

}  // namespace thalvorn
