#include "backend/sb_error.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <algorithm>
#include <array>
#include <string_view>

#include "backend/http_transport.h"

namespace thalvorn {
namespace {

using Remedy = SBError::Remedy;

struct KnownCode {
  std::string_view code;
  Remedy remedy;
  std::string_view text;  ///< for the user; empty: the remedy's own
};

constexpr std::string_view kSignInAgain =
    "Your session has expired for security. Please sign in again to continue syncing your data.";

constexpr auto kKnownCodes = std::to_array<KnownCode>({
    // Signing in and up.
    {"invalid_credentials", Remedy::mendRecord, "The e-mail address or the password is wrong."},
    {"invalid_grant", Remedy::mendRecord, "The e-mail address or the password is wrong."},
    {"email_not_confirmed", Remedy::mendRecord,
     "This e-mail address is not confirmed yet. Follow the link in the mail that was sent to it, then sign in."},
    {"user_banned", Remedy::signIn, "This user has been blocked. Ask the owner of the account."},
    {"email_provider_disabled", Remedy::mendRecord, "The server does not allow signing in by e-mail and password."},
    {"signup_disabled", Remedy::mendRecord, "The server does not take new users. Ask for an invitation."},
    {"user_already_exists", Remedy::mendRecord, "There is a user with this e-mail address already. Sign in instead."},
    {"email_exists", Remedy::mendRecord, "Another user has this e-mail address already."},
    {"weak_password", Remedy::mendRecord,
     "This password is too weak. Use a longer one with letters, digits and signs."},
    {"same_password", Remedy::mendRecord, "The new password must differ from the old one."},
    {"email_address_invalid", Remedy::mendRecord, "This is not an e-mail address that the server accepts."},
    {"reauthentication_needed", Remedy::mendRecord, "Sign out, sign in again, then change the password."},
    {"current_password_required", Remedy::mendRecord, "Sign out, sign in again, then change the password."},
    {"otp_expired", Remedy::mendRecord, "This link is no longer valid. Ask for a new one."},
    {"over_email_send_rate_limit", Remedy::retryLater,
     "Mail was sent to this address a moment ago. Wait a minute and try again."},
    {"over_request_rate_limit", Remedy::retryLater,
     "Too many attempts from this connection. Try again in a few minutes."},
    // Sessions.
    {"bad_jwt", Remedy::refreshToken, {}},
    {"session_not_found", Remedy::signIn, kSignInAgain},
    {"session_expired", Remedy::signIn, kSignInAgain},
    {"user_not_found", Remedy::signIn, kSignInAgain},
    {"refresh_token_not_found", Remedy::signIn, kSignInAgain},
    {"refresh_token_already_used", Remedy::signIn, kSignInAgain},
    {"request_timeout", Remedy::retryLater, {}},
    // The table interface and its database.
    {"PGRST000", Remedy::retryLater, {}},
    {"PGRST001", Remedy::retryLater, {}},
    {"PGRST002", Remedy::retryLater, {}},
    {"PGRST003", Remedy::retryLater, {}},
    {"PGRST202", Remedy::updateSchema, {}},
    {"PGRST203", Remedy::updateSchema, {}},
    {"PGRST204", Remedy::updateSchema, {}},
    {"PGRST205", Remedy::updateSchema, {}},
    {"PGRST302", Remedy::signIn, kSignInAgain},
    {"40001", Remedy::retryLater, {}},
    {"40P01", Remedy::retryLater, {}},
    {"55P03", Remedy::retryLater, {}},
    {"57P01", Remedy::retryLater, {}},
    {"57014", Remedy::smallerBatch, {}},
    {"42501", Remedy::askPermission, {}},
    {"42P01", Remedy::updateSchema, {}},
    {"42703", Remedy::updateSchema, {}},
    {"42883", Remedy::updateSchema, {}},
    {"21000", Remedy::mendRecord, {}},
    {"23505", Remedy::mendRecord, "Another record with the same identity is on the server already."},
    {"23503", Remedy::mendRecord, "A record that this one belongs to is no longer on the server."},
    // Object storage.
    {"AccessDenied", Remedy::askPermission, {}},
    {"EntityTooLarge", Remedy::mendRecord, "The file is too large for the server."},
    {"InvalidMimeType", Remedy::mendRecord, "The server does not take files of this kind."},
    {"InvalidKey", Remedy::mendRecord, {}},
    {"NoSuchKey", Remedy::mendRecord, {}},
    {"NoSuchBucket", Remedy::updateSchema, {}},
    {"ResourceLocked", Remedy::retryLater, {}},
    {"SlowDown", Remedy::retryLater, {}},
    {"DatabaseTimeout", Remedy::retryLater, {}},
});

QString textOf(Remedy remedy) {
  switch (remedy) {
    case Remedy::retryLater:
      return QStringLiteral("The server cannot be reached at the moment. Nothing is lost.");
    case Remedy::refreshToken:
    case Remedy::signIn:
      return QString::fromUtf8(kSignInAgain.data(), static_cast<qsizetype>(kSignInAgain.size()));
    case Remedy::waitForClock:
      return QStringLiteral("The server's clocks disagree. Try again in a moment.");
    case Remedy::smallerBatch:
      return QStringLiteral("This was too much for the server at once. It is tried again; nothing is lost.");
    case Remedy::updateSchema:
      return QStringLiteral("The server is older than this program. What it does not know stays on this computer.");
    case Remedy::askPermission:
      return QStringLiteral("You do not have permission for this. Ask an administrator of the account.");
    case Remedy::mendRecord:
      return QStringLiteral("The server did not accept this. It stays on this computer.");
  }
  return {};
}

QString firstText(const QJsonObject& body, std::initializer_list<QLatin1String> keys) {
  for (const QLatin1String key : keys)
    if (const QString text = body.value(key).toString(); !text.isEmpty()) return text;
  return {};
}

/// Codes come as texts, as "error_code" beside a numeric "code", and in a header.
QString codeOf(const QJsonObject& body, const HttpReply& reply) {
  QString code = firstText(body, {QLatin1String("error_code"), QLatin1String("code")});
  if (!code.isEmpty()) return code;
  if (const QByteArray header = reply.header("x-sb-error-code"); !header.isEmpty()) return QString::fromLatin1(header);
  const QString error = body.value(QLatin1String("error")).toString();
  return error.contains(u' ') ? QString() : error;
}

bool isTokenExpiry(const QString& reason, const HttpReply& reply) {
  return reason.contains(QLatin1String("jwt expired"), Qt::CaseInsensitive) ||
         reason.contains(QLatin1String("\"exp\" claim timestamp check failed")) ||
         reply.header("www-authenticate").contains("JWT expired");
}

Remedy remedyOf(const SBError& error, const HttpReply& reply) {
  const QString& code = error.code;
  if (isTokenExpiry(error.reason, reply)) return Remedy::refreshToken;
  if (error.reason.startsWith(QLatin1String("JWT issued at future")) ||
      error.reason.startsWith(QLatin1String("JWT not yet valid")))
    return Remedy::waitForClock;
  if (error.isUserGone()) return Remedy::signIn;
  const auto* known = std::ranges::find_if(kKnownCodes, [&](const KnownCode& entry) {
    return code == QLatin1String(entry.code.data(), static_cast<qsizetype>(entry.code.size()));
  });
  if (known != kKnownCodes.end()) return known->remedy;
  if (code.startsWith(u"53") || code.startsWith(u"08")) return Remedy::retryLater;
  if (code.size() == 5 && (code.startsWith(u"22") || code.startsWith(u"23") || code.startsWith(u"42") ||
                           code.startsWith(u"P0") || code.startsWith(u"25")))
    return Remedy::mendRecord;
  if (code.startsWith(QLatin1String("PGRST1"))) return Remedy::mendRecord;
  switch (error.status) {
    case 401:
      // The edge answers without any code when it does not know the public key.
      return code.isEmpty() && error.reason.contains(QLatin1String("API key"), Qt::CaseInsensitive)
                 ? Remedy::signIn
                 : Remedy::refreshToken;
    case 403:
      return Remedy::askPermission;
    case 413:
      return Remedy::smallerBatch;
    case 408:
    case 409:
    case 423:
    case 425:
    case 429:
      return Remedy::retryLater;
    case 402:
      return Remedy::askPermission;
    default:
      return error.status >= 500 || error.status < 400 ? Remedy::retryLater : Remedy::mendRecord;
  }
}

/// The networks of marinas and hotels answer in the server's place until somebody signs in to them.
QString portalText() {
  return QStringLiteral(
      "The answer did not come from the server. If this network asks for a sign-in of its own, open a web page first.");
}

QString userText(const SBError& error) {
  if (error.status >= 300 && error.status < 400) return portalText();
  if (error.isUserGone()) return QStringLiteral("Your user no longer exists on the server. Please sign in again.");
  for (const KnownCode& known : kKnownCodes)
    if (!known.text.empty() &&
        error.code == QLatin1String(known.code.data(), static_cast<qsizetype>(known.code.size())))
      return QString::fromUtf8(known.text.data(), static_cast<qsizetype>(known.text.size()));
  switch (error.status) {
    case 402:
      return QStringLiteral("The server's plan does not allow this at the moment. Ask whoever runs the server.");
    case 429:
      return QStringLiteral("The server is busy. Try again in a while; nothing is lost.");
    case 540:
      return QStringLiteral("The server is paused. Ask whoever runs it to start it again.");
    default:
      break;
  }
  if (error.remedy == SBError::Remedy::signIn && error.reason.contains(QLatin1String("API key"), Qt::CaseInsensitive))
    return QStringLiteral("The server does not know this program's public key. Check the backend settings.");
  return textOf(error.remedy);
}

/// Seconds, or a date to be measured from the reply's own.
std::optional<std::chrono::seconds> retryAfterOf(const HttpReply& reply) {
  const QByteArray value = reply.header("retry-after").trimmed();
  if (value.isEmpty()) return std::nullopt;
  bool isNumber = false;
  const qlonglong seconds = value.toLongLong(&isNumber);
  if (isNumber) return std::chrono::seconds(std::clamp(seconds, 0LL, 86'400LL));
  const auto until = httpDate(value);
  const auto now = httpDate(reply.header("date"));
  if (!until || !now) return std::nullopt;
  return std::clamp(*until - *now, std::chrono::seconds(0), std::chrono::seconds(86'400));
}

}  // namespace

std::optional<Timestamp> httpDate(const QByteArray& value) {
  const QDateTime time =
      QLocale::c().toDateTime(QString::fromLatin1(value.trimmed()), QStringLiteral("ddd, dd MMM yyyy HH:mm:ss 'GMT'"));
  if (!time.isValid()) return std::nullopt;
  return Timestamp(std::chrono::seconds(QDateTime(time.date(), time.time(), Qt::UTC).toSecsSinceEpoch()));
}

SBError SBError::fromReply(const HttpReply& reply) {
  const QJsonObject body = QJsonDocument::fromJson(reply.body).object();
  SBError error;
  error.status = reply.status;
  // Object storage answers nearly every refusal with 400 and tells the status in the body.
  if (const int inner = body.value(QLatin1String("statusCode")).toVariant().toInt(); inner >= 400) error.status = inner;
  error.code = codeOf(body, reply);
  error.body = QString::fromUtf8(reply.body);
  error.reason = firstText(body, {QLatin1String("msg"), QLatin1String("message"), QLatin1String("error_description"),
                                  QLatin1String("error")});
  if (const QString described = body.value(QLatin1String("error_description")).toString(); !described.isEmpty())
    error.message = described;
  else
    error.message = error.body.isEmpty() ? QStringLiteral("Unknown error") : error.body;
  error.remedy = remedyOf(error, reply);
  error.text = userText(error);
  error.retryAfter = retryAfterOf(reply);
  return error;
}

SBError SBError::server(int status, const QString& message) {
  SBError error;
  error.status = status;
  error.message = message;
  error.reason = message;
  error.text = portalText();
  return error;
}

SBError SBError::refused(const QString& message, const QString& text) {
  SBError error;
  error.message = message;
  error.reason = message;
  error.remedy = Remedy::mendRecord;
  error.text = text;
  return error;
}

SBError SBError::notAuthenticated() {
  SBError error;
  error.kind = Case::notAuthenticated;
  error.message = QStringLiteral("Not authenticated");
  error.reason = error.message;
  error.remedy = Remedy::signIn;
  error.text = QStringLiteral("Please sign in first.");
  return error;
}

SBError SBError::network(const QString& description) {
  SBError error;
  error.kind = Case::networkError;
  error.message = description;
  error.reason = description;
  error.text = textOf(error.remedy);
  return error;
}

bool SBError::isUserGone() const {
  return code == u"23503" && message.contains(QLatin1String("user_id_fkey")) &&
         message.contains(QLatin1String("not present in table"));
}

QString SBError::logLine() const {
  QString line = status != 0 ? QStringLiteral("[%1] ").arg(status) : QString();
  if (!code.isEmpty()) line += code + QStringLiteral(": ");
  return line + (reason.isEmpty() ? QStringLiteral("Unknown error") : reason.left(300));
}

}  // namespace thalvorn
