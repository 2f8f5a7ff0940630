#include "backend/auth_reply.h"

#include <QJsonDocument>
#include <QUrl>
#include <QUrlQuery>

namespace thalvorn {
namespace {

std::optional<QString> textIn(const QJsonObject& object, QLatin1String key) {
  const QString text = object.value(key).toString();
  return text.isEmpty() ? std::nullopt : std::optional(text);
}

std::optional<std::int64_t> integerIn(const QJsonObject& object, QLatin1String key) {
  const QJsonValue value = object.value(key);
  return value.isDouble() ? std::optional<std::int64_t>(value.toInteger()) : std::nullopt;
}

std::optional<SBUser> userFrom(const QJsonObject& object) {
  if (object.isEmpty()) return std::nullopt;
  SBUser user{textIn(object, QLatin1String("id")), textIn(object, QLatin1String("email")),
              textIn(object, QLatin1String("aud"))};
  user.passwordChangeRequired =
      object.value(QLatin1String("user_metadata")).toObject().value(QLatin1String("password_change_required")).toBool();
  return user;
}

}  // namespace

std::optional<AuthResponse> AuthResponse::parse(const QByteArray& body) {
  const QJsonDocument document = QJsonDocument::fromJson(body);
  if (!document.isObject()) return std::nullopt;
  const QJsonObject object = document.object();
  AuthResponse reply;
  reply.accessToken = textIn(object, QLatin1String("access_token"));
  reply.refreshToken = textIn(object, QLatin1String("refresh_token"));
  reply.tokenType = textIn(object, QLatin1String("token_type"));
  reply.expiresIn = integerIn(object, QLatin1String("expires_in"));
  reply.expiresAt = integerIn(object, QLatin1String("expires_at"));
  reply.user = userFrom(object.value(QLatin1String("user")).toObject());
  // With the address still to be confirmed, the whole reply is the user.
  if (!reply.user && object.contains(QLatin1String("id"))) reply.user = userFrom(object);
  if (const QJsonObject nested = object.value(QLatin1String("session")).toObject(); !nested.isEmpty()) {
    reply.session =
        SBSession{textIn(nested, QLatin1String("access_token")), textIn(nested, QLatin1String("refresh_token")),
                  userFrom(nested.value(QLatin1String("user")).toObject())};
    if (!reply.expiresIn) reply.expiresIn = integerIn(nested, QLatin1String("expires_in"));
    if (!reply.expiresAt) reply.expiresAt = integerIn(nested, QLatin1String("expires_at"));
  }
  if (const QJsonValue weak = object.value(QLatin1String("weak_password")); weak.isObject())
    reply.weakPassword = weak.toObject();
  return reply;
}

QString AuthResponse::anyAccessToken() const {
  return accessToken.value_or(session ? session->accessToken.value_or(QString()) : QString());
}

QString AuthResponse::anyRefreshToken() const {
  return refreshToken.value_or(session ? session->refreshToken.value_or(QString()) : QString());
}

std::optional<SBUser> AuthResponse::anyUser() const { return user || !session ? user : session->user; }

QString AuthLink::expiredText() { return QStringLiteral("This link is no longer valid. Ask for a new one."); }

std::expected<AuthLink, SBError> AuthLink::parse(const QString& link) {
  const QUrl url(link);
  const QUrlQuery values(url.hasFragment() ? url.fragment(QUrl::FullyEncoded) : url.query(QUrl::FullyEncoded));
  const auto value = [&](const char* key) {
    return values.queryItemValue(QLatin1String(key), QUrl::FullyDecoded).replace(u'+', u' ');
  };
  if (const QString error = value("error"); !error.isEmpty()) {
    SBError failure = SBError::refused(value("error_description"), expiredText());
    failure.code = value("error_code");
    return std::unexpected(std::move(failure));
  }
  AuthLink parsed{value("access_token"), value("refresh_token"), value("expires_in").toLongLong(),
                  value("type") == u"recovery"};
  if (parsed.accessToken.isEmpty()) {
    return std::unexpected(SBError::refused(QStringLiteral("The link carries no session"),
                                            QStringLiteral("This link cannot be used here. Ask for a new one.")));
  }
  return parsed;
}

}  // namespace thalvorn
