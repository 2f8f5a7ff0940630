#include "backend/supabase_client.h"

#include <QCoro/QCoroFuture>
#include <QJsonDocument>
#include <QLockFile>
#include <QStringList>
#include <algorithm>
#include <array>

#include "backend/logging.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;

constexpr auto kUserAgent = "Thalvorn/" THALVORN_VERSION;
constexpr auto kRedirect = "thalvorn://reset-password";
constexpr auto kCheckEvery = 30s;
constexpr auto kExpiredText =
    "Your session has expired for security. Please sign in again to continue syncing your data.";

std::expected<void, SBError> done() { return {}; }

SBError invalidReply(const HttpReply& reply) {
  return SBError::server(reply.status, QStringLiteral("Invalid JSON response"));
}

SBError givenUp() { return SBError::network(QStringLiteral("The request was given up.")); }

QString yesNo(bool value) { return value ? QStringLiteral("yes") : QStringLiteral("no"); }

bool isAuthRequest(const HttpRequest& request) { return request.url.path().contains(QLatin1String("/auth/v1/")); }

void logAuthRequest(const HttpRequest& request) {
  qCInfo(backendLog).noquote() << QStringLiteral("🔐 Auth request to: ") + request.url.toString();
}

/// Never the reply itself: it holds the tokens.
void logAuthReply(const HttpReply& reply) {
  const QJsonObject body = QJsonDocument::fromJson(reply.body).object();
  qCInfo(backendLog).noquote() << QStringLiteral("🔐 Auth response [%1]").arg(reply.status);
  qCInfo(backendLog).noquote() << QStringLiteral("🔐 Response keys: ") + body.keys().join(QStringLiteral(", "));
  qCInfo(backendLog).noquote() << QStringLiteral("🔐 Has access_token: ") +
                                      yesNo(body.contains(QLatin1String("access_token")));
  qCInfo(backendLog).noquote() << QStringLiteral("🔐 Has token: ") + yesNo(body.contains(QLatin1String("token")));
  qCInfo(backendLog).noquote() << QStringLiteral("🔐 Has session: ") + yesNo(body.contains(QLatin1String("session")));
}

/// The service refused the refresh token itself; anything else (network, overload, a lost race) leaves it good.
bool isRefusal(const SBError& error) {
  constexpr std::array codes{
      "refresh_token_not_found", "refresh_token_already_used", "session_not_found", "session_expired", "user_banned",
      "user_not_found",          "validation_failed",          "invalid_grant"};
  return error.kind == SBError::Case::serverError &&
         std::ranges::any_of(codes, [&](const char* code) { return error.code == QLatin1String(code); });
}

}  // namespace

SupabaseClient::SupabaseClient(BackendConfig config, TokenStore& tokens, const Clock& clock, Timing& timing,
                               QObject* parent)
    : QObject(parent),
      config_(std::move(config)),
      tokens_(tokens),
      clock_(clock),
      timing_(timing),
      session_(std::make_unique<HttpTransport>(timing)) {
  if (const StoredSession stored = tokens_.session(); stored.isAuthenticated()) {
    noteExpiry(stored);
    startRefreshTimer();
  }
}

SupabaseClient::~SupabaseClient() {
  *alive_ = false;
  session_.reset();
}

QString SupabaseClient::userID() const { return QString::fromStdString(tokens_.session().userID); }

QString SupabaseClient::userEmail() const { return QString::fromStdString(tokens_.session().userEmail); }

// ---- requests ---------------------------------------------------------------------------------------------------

void SupabaseClient::addIdentity(HttpRequest& request, const std::string& token) const {
  const QByteArray bearer = !token.empty()         ? QByteArray::fromStdString(token)
                            : config_.keyIsToken() ? config_.publicKey()
                                                   : QByteArray();
  std::erase_if(request.headers, [](const auto& header) { return header.first == "Authorization"; });
  if (!bearer.isEmpty()) request.headers.emplace_back("Authorization", "Bearer " + bearer);
  if (std::ranges::any_of(request.headers, [](const auto& header) { return header.first == "apikey"; })) return;
  request.headers.emplace_back("apikey", config_.publicKey());
  request.headers.emplace_back("User-Agent", kUserAgent);
}

HttpRequest SupabaseClient::authRequest(QByteArray method, const QByteArray& path, const QJsonObject& body) const {
  HttpRequest request;
  request.method = std::move(method);
  request.url = config_.address("/auth/v1" + path);
  request.headers = {{"Content-Type", "application/json"}};
  request.body = QJsonDocument(body).toJson(QJsonDocument::Compact);
  return request;
}

SBTask<HttpReply> SupabaseClient::auth(HttpRequest request, std::string token) {
  const auto alive = alive_;
  addIdentity(request, token);
  logAuthRequest(request);
  auto reply = co_await session_->exchange(std::move(request));
  if (!*alive) co_return std::unexpected(givenUp());
  if (!reply) co_return std::unexpected(std::move(reply.error()));
  noteDate(*reply);
  logAuthReply(*reply);
  if (!reply->isSuccess()) co_return std::unexpected(SBError::fromReply(*reply));
  co_return std::move(reply);
}

SBTask<HttpReply> SupabaseClient::sendAuthorized(HttpRequest request, QString what, int accepted) {
  const auto alive = alive_;
  bool refreshed = false;
  bool waited = false;
  while (true) {
    const std::string token = tokens_.session().accessToken;
    if (token.empty()) co_return std::unexpected(SBError::notAuthenticated());
    addIdentity(request, token);
    const bool isAuth = isAuthRequest(request);
    if (isAuth) logAuthRequest(request);
    auto reply = co_await session_->exchange(request);
    if (!*alive) co_return std::unexpected(givenUp());
    if (!reply) co_return std::unexpected(std::move(reply.error()));
    noteDate(*reply);
    if (isAuth) logAuthReply(*reply);
    if (reply->isSuccess() || reply->status == accepted) co_return std::move(reply);

    SBError error = SBError::fromReply(*reply);
    if (error.remedy == SBError::Remedy::waitForClock && !waited) {
      waited = true;
      co_await timing_.wait(2s);
      if (!*alive) co_return std::unexpected(givenUp());
      continue;
    }
    if (error.remedy != SBError::Remedy::refreshToken) co_return std::unexpected(std::move(error));
    if (refreshed) {
      // A fresh token refused as well: it is the server's clock or its keys, and refreshing again would go on for ever.
      error.remedy = SBError::Remedy::signIn;
      co_return std::unexpected(std::move(error));
    }
    refreshed = true;
    qCInfo(backendLog).noquote() << QStringLiteral("🔑 Token expired during %1 — refreshing...").arg(what);
    const auto fresh = co_await refreshToken(token);
    if (!*alive) co_return std::unexpected(givenUp());
    if (!fresh) co_return std::unexpected(fresh.error());
  }
}

// ---- signing in and out -----------------------------------------------------------------------------------------

SBTask<SignedIn> SupabaseClient::enter(AuthResponse reply, StoredSession session) {
  const auto alive = alive_;
  const int generation = generation_;
  session.accessToken = reply.anyAccessToken().toStdString();
  session.refreshToken = reply.anyRefreshToken().toStdString();
  session.expiresAt = reply.expiresIn   ? std::optional(serverNow() + std::chrono::seconds(*reply.expiresIn))
                      : reply.expiresAt ? std::optional(Timestamp(std::chrono::seconds(*reply.expiresAt)))
                                        : std::nullopt;
  const auto user = reply.anyUser();
  if (user && user->id) session.userID = user->id->toLower().toStdString();
  if (user && user->email) session.userEmail = user->email->toLower().toStdString();
  SignedIn result{QString::fromStdString(session.userID), QString::fromStdString(session.userEmail),
                  user && user->passwordChangeRequired};
  noteExpiry(session, reply.expiresIn ? std::optional(std::chrono::seconds(*reply.expiresIn)) : std::nullopt);
  // The new pair is on disk before anything uses it: the old refresh token is spent.
  const bool kept = co_await tokens_.keep(std::move(session));
  if (!*alive) co_return std::unexpected(givenUp());
  // Signed out meanwhile: that has been put on disk after this, and nothing is to be refreshed.
  if (generation != generation_) co_return std::unexpected(SBError::notAuthenticated());
  if (!kept) qCWarning(backendLog).noquote() << QStringLiteral("⚠️ The session could not be put on disk");
  startRefreshTimer();
  Q_EMIT sessionChanged();
  co_return result;
}

SBTask<SignedIn> SupabaseClient::enterAnew(AuthResponse reply, QString email) {
  const auto alive = alive_;
  ++generation_;
  StoredSession session;
  session.userEmail = email.trimmed().toLower().toStdString();
  auto signedIn = co_await enter(std::move(reply), std::move(session));
  if (*alive && signedIn) qCInfo(backendLog).noquote() << QStringLiteral("✅ Signed in — userID: ") + signedIn->userID;
  co_return std::move(signedIn);
}

SBTask<SignedIn> SupabaseClient::signIn(QString email, QString password) {
  const QJsonObject body{{QStringLiteral("email"), email.trimmed()}, {QStringLiteral("password"), password}};
  const int generation = generation_;
  auto reply = co_await auth(authRequest("POST", "/token?grant_type=password", body), tokens_.session().accessToken);
  if (!reply) co_return std::unexpected(std::move(reply.error()));
  const auto parsed = AuthResponse::parse(reply->body);
  if (!parsed || parsed->anyAccessToken().isEmpty()) co_return std::unexpected(invalidReply(*reply));
  if (generation != generation_) co_return std::unexpected(givenUp());
  co_return co_await enterAnew(*parsed, email);
}

SBTask<SignUpOutcome> SupabaseClient::signUp(QString email, QString password) {
  const QJsonObject body{{QStringLiteral("email"), email.trimmed()}, {QStringLiteral("password"), password}};
  const int generation = generation_;
  auto reply = co_await auth(authRequest("POST", "/signup", body), tokens_.session().accessToken);
  if (!reply) co_return std::unexpected(std::move(reply.error()));
  const auto parsed = AuthResponse::parse(reply->body);
  if (!parsed) co_return std::unexpected(invalidReply(*reply));
  if (parsed->anyAccessToken().isEmpty()) {
    const auto user = parsed->anyUser();
    if (user && user->id) co_return SignUpOutcome::checkEmail;
    co_return std::unexpected(invalidReply(*reply));
  }
  if (generation != generation_) co_return std::unexpected(givenUp());
  auto signedIn = co_await enterAnew(*parsed, email);
  if (!signedIn) co_return std::unexpected(std::move(signedIn.error()));
  co_return SignUpOutcome::signedIn;
}

SBTask<void> SupabaseClient::resetPassword(QString email) {
  const QByteArray redirect = QByteArray(kRedirect).toPercentEncoding();
  HttpRequest request =
      authRequest("POST", "/recover?redirect_to=" + redirect, {{QStringLiteral("email"), email.trimmed()}});
  auto reply = co_await auth(std::move(request), tokens_.session().accessToken);
  if (reply) co_return done();
  SBError error = std::move(reply.error());
  error.message = QStringLiteral("Failed to send reset email");
  co_return std::unexpected(std::move(error));
}

SBTask<SignedIn> SupabaseClient::openLink(QString link) {
  auto parsed = AuthLink::parse(link);
  if (!parsed) co_return std::unexpected(std::move(parsed.error()));
  const int generation = generation_;
  // The link tells no user: the service does, and so vouches for the token.
  HttpRequest request = authRequest("GET", "/user", {});
  request.body = QByteArray();
  auto reply = co_await auth(std::move(request), parsed->accessToken.toStdString());
  if (!reply) {
    SBError error = std::move(reply.error());
    if (error.remedy != SBError::Remedy::retryLater) error.text = AuthLink::expiredText();
    co_return std::unexpected(std::move(error));
  }
  auto user = AuthResponse::parse(reply->body);
  if (!user || !user->user || !user->user->id) co_return std::unexpected(invalidReply(*reply));
  if (generation != generation_) co_return std::unexpected(givenUp());
  user->accessToken = parsed->accessToken;
  user->refreshToken = parsed->refreshToken;
  if (parsed->expiresIn > 0) user->expiresIn = parsed->expiresIn;
  user->user->passwordChangeRequired |= parsed->isRecovery;
  co_return co_await enterAnew(*user, {});
}

SBTask<void> SupabaseClient::setCredentials(const QString& email, const QString& password) {
  return setUser({{QStringLiteral("email"), email.trimmed()}, {QStringLiteral("password"), password}});
}

SBTask<void> SupabaseClient::changePassword(const QString& password) {
  return setUser({{QStringLiteral("password"), password}});
}

SBTask<void> SupabaseClient::setUser(QJsonObject change) {
  const auto alive = alive_;
  if (!isAuthenticated()) {
    qCWarning(backendLog).noquote() << QStringLiteral("❌ setCredentials: no access token");
    co_return std::unexpected(SBError::notAuthenticated());
  }
  const int generation = generation_;
  HttpRequest request = authRequest("PUT", "/user", change);
  auto reply = co_await sendAuthorized(std::move(request), QStringLiteral("setCredentials"));
  if (!*alive) co_return std::unexpected(givenUp());
  if (!reply) {
    const SBError& error = reply.error();
    if (error.kind == SBError::Case::serverError)
      qCWarning(backendLog).noquote() << QStringLiteral("❌ setCredentials failed (%1): %2")
                                             .arg(error.status)
                                             .arg(error.body.isEmpty() ? QStringLiteral("(no body)") : error.body);
    else
      qCWarning(backendLog).noquote() << QStringLiteral("❌ setCredentials failed: ") + error.reason;
    co_return std::unexpected(error);
  }
  // Signed out or in as another meanwhile: this is not that session's.
  if (generation != generation_) co_return done();
  // An address that still waits for confirmation is not the current one; the reply's is.
  const auto parsed = AuthResponse::parse(reply->body);
  const auto user = parsed ? parsed->anyUser() : std::nullopt;
  StoredSession session = tokens_.session();
  if (user && user->email)
    session.userEmail = user->email->toLower().toStdString();
  else if (change.contains(QStringLiteral("email")))
    session.userEmail = change.value(QStringLiteral("email")).toString().toLower().toStdString();
  const bool required = user && user->passwordChangeRequired;
  if (session.isAuthenticated()) co_await tokens_.keep(std::move(session));
  if (!*alive) co_return std::unexpected(givenUp());
  if (required) {
    const QJsonObject settled{{QStringLiteral("password_change_required"), false}};
    const auto cleared = co_await sendAuthorized(authRequest("PUT", "/user", {{QStringLiteral("data"), settled}}),
                                                 QStringLiteral("setCredentials"));
    if (!cleared)
      qCWarning(backendLog).noquote() << QStringLiteral(
                                             "⚠️ The password is changed, but the server still asks for it: ") +
                                             cleared.error().logLine();
  }
  co_return done();
}

QCoro::Task<void> SupabaseClient::signOut() {
  const auto alive = alive_;
  const std::string token = tokens_.session().accessToken;
  ++generation_;
  stopRefreshTimer();
  co_await tokens_.keep({});
  if (!*alive) co_return;
  Q_EMIT sessionChanged();
  if (token.empty()) co_return;
  HttpRequest request = authRequest("POST", "/logout?scope=local", {});
  request.attempts = 1;
  const auto reply = co_await auth(std::move(request), token);
  // 401, 403 and 404 say that the session was over already.
  if (!reply && (reply.error().status < 401 || reply.error().status > 404))
    qCWarning(backendLog).noquote() << QStringLiteral("⚠️ The server was not told of the sign-out: ") +
                                           reply.error().logLine();
}

// ---- refreshing --------------------------------------------------------------------------------------------------

SBTask<void> SupabaseClient::refreshToken(std::string rejected) {
  QFuture<RefreshResult> shared;
  if (refreshing_) {
    shared = *refreshing_;
  } else {
    auto promise = std::make_shared<QPromise<RefreshResult>>();
    promise->start();
    shared = promise->future();
    refreshing_ = shared;
    if (rejected.empty()) rejected = tokens_.session().accessToken;
    runRefresh(std::move(promise), std::move(rejected));
  }
  co_return co_await shared;
}

QCoro::Task<void> SupabaseClient::runRefresh(std::shared_ptr<QPromise<RefreshResult>> promise, std::string rejected) {
  const auto alive = alive_;
  RefreshResult result = co_await refreshUnderLock(std::move(rejected));
  promise->addResult(std::move(result));
  promise->finish();
  if (*alive) refreshing_.reset();
}

SBTask<void> SupabaseClient::refreshUnderLock(std::string rejected) {
  const auto alive = alive_;
  std::unique_ptr<QLockFile> lock;
  if (const QString file = tokens_.lockFile(); !file.isEmpty()) {
    lock = std::make_unique<QLockFile>(file);
    lock->setStaleLockTime(120'000);
    for (int tries = 0; !lock->tryLock(0) && lock->error() == QLockFile::LockFailedError; ++tries) {
      if (tries == 300)
        co_return std::unexpected(SBError::network(QStringLiteral("Another window holds the session.")));
      co_await timing_.wait(100ms);
      if (!*alive) co_return std::unexpected(givenUp());
    }
  }
  const StoredSession before = tokens_.session();
  if (before.refreshToken.empty()) co_return std::unexpected(SBError::notAuthenticated());
  if (before.accessToken != rejected) {
    noteExpiry(before);
    co_return done();
  }
  const int generation = generation_;
  const QJsonObject body{{QStringLiteral("refresh_token"), QString::fromStdString(before.refreshToken)}};
  auto reply = co_await auth(authRequest("POST", "/token?grant_type=refresh_token", body), before.accessToken);
  if (!*alive) co_return std::unexpected(givenUp());
  // Signed out or in as another meanwhile: the old session must not come back.
  if (generation != generation_) co_return std::unexpected(SBError::notAuthenticated());
  std::optional<AuthResponse> parsed;
  if (reply) parsed = AuthResponse::parse(reply->body);
  if (parsed && !parsed->anyAccessToken().isEmpty()) {
    if (parsed->anyRefreshToken().isEmpty()) parsed->refreshToken = QString::fromStdString(before.refreshToken);
    const auto entered = co_await enter(*parsed, before);
    if (!entered) co_return std::unexpected(entered.error());
    qCInfo(backendLog).noquote()
        << QStringLiteral("🔑 Token refreshed, expires in %1").arg(parsed->expiresIn.value_or(0));
    co_return done();
  }

  SBError error = reply ? invalidReply(*reply) : std::move(reply.error());
  qCWarning(backendLog).noquote() << QStringLiteral("⚠️ Token refresh failed: ") + error.logLine();
  const std::chrono::seconds pause =
      std::min<std::chrono::seconds>(kCheckEvery * (1 << std::min(refreshFailures_++, 5)), 15min);
  refreshNotBefore_ = timing_.elapsed() + error.retryAfter.value_or(pause);
  if (!isRefusal(error)) co_return std::unexpected(std::move(error));
  if (const StoredSession now = tokens_.session(); now.refreshToken != before.refreshToken) {
    noteExpiry(now);
    co_return done();
  }
  error.message = QStringLiteral("Could not refresh token");
  error.text = QString::fromUtf8(kExpiredText);
  error.remedy = SBError::Remedy::signIn;
  co_await expire();
  co_return std::unexpected(std::move(error));
}

QCoro::Task<void> SupabaseClient::expire() {
  const auto alive = alive_;
  ++generation_;
  stopRefreshTimer();
  StoredSession left = tokens_.session();
  left.accessToken.clear();
  left.refreshToken.clear();
  left.expiresAt.reset();
  co_await tokens_.keep(std::move(left));
  if (!*alive) co_return;
  Q_EMIT sessionExpired(QString::fromUtf8(kExpiredText));
  if (*alive) Q_EMIT sessionChanged();
}

void SupabaseClient::refreshIfDue() {
  if (!refreshTimer_) return;
  const auto left = untilRefresh();
  if ((!left || left->count() <= 0) && !refreshing_ && timing_.elapsed() >= refreshNotBefore_) refreshToken();
  // Asked for by hand or by the timer: look again when it falls due, but never later than the next regular check.
  if (refreshTimer_)
    refreshTimer_->setInterval(std::clamp<std::chrono::milliseconds>(left.value_or(kCheckEvery), 1s, kCheckEvery));
}

void SupabaseClient::networkReturned() {
  refreshNotBefore_ = 0ms;
  refreshIfDue();
}

std::optional<std::chrono::milliseconds> SupabaseClient::untilRefresh() const {
  if (!expiry_) return std::nullopt;
  return *expiry_ - lead_ - timing_.elapsed();
}

void SupabaseClient::noteExpiry(const StoredSession& session, std::optional<std::chrono::seconds> lifetime) {
  // Measured from the moment of receipt where it can be: a computer whose clock is wrong would otherwise refresh for
  // ever or never.
  if (!lifetime && session.expiresAt) lifetime = *session.expiresAt - serverNow();
  expiry_ = lifetime ? std::optional(timing_.elapsed() + *lifetime) : std::nullopt;
  lead_ = lifetime ? std::clamp<std::chrono::milliseconds>(*lifetime / 4, 1s, 90s) : 90s;
  refreshNotBefore_ = 0ms;
  refreshFailures_ = 0;
}

void SupabaseClient::startRefreshTimer() {
  if (refreshTimer_) return;
  refreshTimer_ = std::make_unique<QTimer>();
  connect(refreshTimer_.get(), &QTimer::timeout, this, &SupabaseClient::refreshIfDue);
  refreshTimer_->start(kCheckEvery);
}

void SupabaseClient::stopRefreshTimer() {
  // It may be the timer itself that has led here.
  if (refreshTimer_) refreshTimer_.release()->deleteLater();
  expiry_.reset();
}

void SupabaseClient::noteDate(const HttpReply& reply) {
  if (const auto date = httpDate(reply.header("date"))) clockOffset_ = *date - clock_.now();
}

}  // namespace thalvorn
