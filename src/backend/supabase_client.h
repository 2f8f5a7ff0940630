#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QFuture>
#include <QJsonObject>
#include <QJsonValue>
#include <QObject>
#include <QString>
#include <QTimer>
#include <expected>
#include <memory>
#include <optional>

#include "backend/auth_reply.h"
#include "backend/backend_config.h"
#include "backend/http_transport.h"
#include "backend/sb_error.h"
#include "backend/table_query.h"
#include "backend/timing.h"
#include "backend/token_store.h"
#include "base/calendar.h"

namespace thalvorn {

/// One JSON value of any kind, to send in mixed dictionaries and to read from replies.
using AnyCodable = QJsonValue;

/// The arguments of a procedure that takes none: "{}".
struct RPCEmptyParams {
  operator QJsonObject() const { return {}; }
};

/// Who has signed in.
struct SignedIn {
  QString userID;
  QString email;
  bool passwordChangeRequired = false;  ///< ask for a new password before anything else
};

enum class SignUpOutcome : std::uint8_t {
  signedIn,
  checkEmail  ///< the address must be confirmed first: tell the user to look into the mailbox
};

/// The answer to a read.
struct TableReply {
  QByteArray rows;                    ///< a JSON list
  std::optional<std::int64_t> total;  ///< rows that the filters allow, when the count was asked for
  std::optional<Timestamp> date;      ///< by the server's clock
};

template <class T>
using SBTask = QCoro::Task<std::expected<T, SBError>>;

/// The one way to the backend: signs in and out, keeps and refreshes the tokens, sends every request with its headers,
/// repeats what is worth repeating, and tells why the rest failed.
///
/// Lives on the window's thread; nothing blocks. A token is refreshed once at a time, across the processes that share
/// the token store; whoever needs it meanwhile awaits the same refresh. A request whose token has expired is sent once
/// more with a fresh one. Destroying the client ends what is under way with a network error.
class SupabaseClient : public QObject {
  Q_OBJECT

 public:
  SupabaseClient(BackendConfig config, TokenStore& tokens, const Clock& clock, Timing& timing,
                 QObject* parent = nullptr);
  ~SupabaseClient() override;

  // ---- session -----------------------------------------------------------------------------------------------------
  bool isAuthenticated() const { return tokens_.session().isAuthenticated(); }
  /// The signed-in user; also after an expired session, when the fleet stays open without the server.
  QString userID() const;
  QString userEmail() const;

  SBTask<SignedIn> signIn(QString email, QString password);
  SBTask<SignUpOutcome> signUp(QString email, QString password);
  /// Sends the mail with the link back into the program. An unknown address succeeds too.
  SBTask<void> resetPassword(QString email);
  /// Signs in with the link of such a mail ("thalvorn://reset-password#…").
  SBTask<SignedIn> openLink(QString link);
  /// Replaces the signed-in user's login. A new address is stored once the server calls it the current one.
  SBTask<void> setCredentials(const QString& email, const QString& password);
  SBTask<void> changePassword(const QString& password);
  /// Forgets the session at once and tells the server, whose answer does not matter. Other devices stay signed in.
  QCoro::Task<void> signOut();

  /// Gets a new access token. When the stored token is no longer `rejected` (another process or request has refreshed
  /// meanwhile), it is taken as it stands.
  SBTask<void> refreshToken(std::string rejected = {});
  /// Refreshes when the token expires within 90 s, with growing pauses after failures. Called by the timer.
  void refreshIfDue();
  /// The same at once, whatever failed before: call it on wake-up and when the network returns.
  void networkReturned();
  bool isRefreshing() const { return refreshing_.has_value(); }
  bool isRefreshTimerRunning() const { return refreshTimer_ != nullptr; }

  // ---- tables ------------------------------------------------------------------------------------------------------
  // Each needs a stored token and is sent as the signed-in user; without one nothing is sent.
  /// With `count` the reply carries the exact total.
  SBTask<TableReply> read(TableQuery query, bool count = false, int attempts = 3);
  /// Inserts rows, merging those whose primary key (or `onConflict`) exists. `rows` is a JSON list whose objects have
  /// the same keys and no identity twice; an empty one sends nothing.
  SBTask<void> upsert(TableQuery target, QByteArray rows, int attempts = 3);
  /// One row, as a JSON object, of a table whose key is not `id`, e.g. "user_settings" by "user_id".
  SBTask<void> upsertOne(TableQuery target, QByteArray row, int attempts = 3);
  /// Inserts and gives the rows as stored.
  SBTask<TableReply> insert(TableQuery target, QByteArray rows, int attempts = 3);
  /// Changes the columns of `changes` in the rows that match; gives how many they were. Refuses without a filter.
  SBTask<std::int64_t> update(TableQuery target, QByteArray changes, int attempts = 3);
  /// Deletes the rows that match; none is no failure. Refuses without a filter.
  SBTask<void> remove(TableQuery target, int attempts = 3);
  /// Calls a procedure; null when it returns nothing.
  SBTask<AnyCodable> call(QString procedure, QJsonObject arguments, int attempts = 3);

  // ---- for file storage ---------------------------------------------------------------------------------------------
  const BackendConfig& config() const { return config_; }
  /// Sends a request as the signed-in user: adds the key and the bearer, refreshes an expired token once, waits out a
  /// token judged to be from the future. A reply of any status in `accepted` is no error.
  SBTask<HttpReply> sendAuthorized(HttpRequest request, QString what, int accepted = 0);

  /// The server's time: this computer's, corrected by the last reply.
  Timestamp serverNow() const { return clock_.now() + clockOffset_.value_or(std::chrono::seconds(0)); }
  /// By how much the server's clock is ahead; empty before the first reply.
  std::optional<std::chrono::seconds> clockOffset() const { return clockOffset_; }

 Q_SIGNALS:
  /// The server no longer takes the session; `text` is for the user. Local data and pending changes are untouched, and
  /// the user's identity stays known.
  void sessionExpired(const QString& text);
  /// Signed in, refreshed or signed out.
  void sessionChanged();

 private:
  using RefreshResult = std::expected<void, SBError>;

  void addIdentity(HttpRequest& request, const std::string& token) const;
  HttpRequest authRequest(QByteArray method, const QByteArray& path, const QJsonObject& body) const;
  HttpRequest restRequest(QByteArray method, const QByteArray& path, QByteArray body, int attempts) const;
  SBTask<HttpReply> auth(HttpRequest request, std::string token);
  SBTask<SignedIn> enterAnew(AuthResponse reply, QString email);
  SBTask<SignedIn> enter(AuthResponse reply, StoredSession session);
  SBTask<void> setUser(QJsonObject change);
  SBTask<HttpReply> write(QByteArray method, const TableQuery& target, QByteArray body, const QByteArray& prefer,
                          QString what, int attempts);
  QCoro::Task<void> runRefresh(std::shared_ptr<QPromise<RefreshResult>> promise, std::string rejected);
  SBTask<void> refreshUnderLock(std::string rejected);
  QCoro::Task<void> expire();
  void noteDate(const HttpReply& reply);
  void noteExpiry(const StoredSession& session, std::optional<std::chrono::seconds> lifetime = {});
  void startRefreshTimer();
  void stopRefreshTimer();
  std::optional<std::chrono::milliseconds> untilRefresh() const;

  BackendConfig config_;
  TokenStore& tokens_;
  const Clock& clock_;
  Timing& timing_;
  std::unique_ptr<HttpTransport> session_;
  std::unique_ptr<QTimer> refreshTimer_;  ///< while signed in
  std::optional<QFuture<RefreshResult>> refreshing_;
  std::optional<std::chrono::milliseconds> expiry_;  ///< of the access token, in `Timing` time
  int refreshFailures_ = 0;                          ///< in a row
  std::chrono::milliseconds refreshNotBefore_{0};    ///< after a failure
  std::chrono::milliseconds lead_{90'000};           ///< ahead of expiry; less for a short-lived token
  std::optional<std::chrono::seconds> clockOffset_;
  int generation_ = 0;  ///< goes up with every sign-in and sign-out
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace thalvorn
