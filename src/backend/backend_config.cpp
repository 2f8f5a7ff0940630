#include "backend/backend_config.h"

#include <QHostAddress>

namespace thalvorn {
namespace {

bool isThisComputer(const QString& host) { return host == u"localhost" || QHostAddress(host).isLoopback(); }

}  // namespace

std::expected<BackendConfig, QString> BackendConfig::from(const QString& url, const QString& public_key) {
  const QUrl parsed(url.trimmed(), QUrl::StrictMode);
  if (!parsed.isValid() || parsed.host().isEmpty())
    return std::unexpected(QStringLiteral("The backend's address is not a web address: %1").arg(url));
  const bool plain = parsed.scheme() == u"http" && isThisComputer(parsed.host());
  if (parsed.scheme() != u"https" && !plain)
    return std::unexpected(QStringLiteral("The backend's address must begin with https://."));
  if (!parsed.userInfo().isEmpty() || parsed.hasQuery() || parsed.hasFragment())
    return std::unexpected(QStringLiteral("The backend's address must hold neither a name nor a query."));
  const QByteArray key = public_key.trimmed().toLatin1();
  for (const char c : key)
    if (c <= ' ' || c == '\x7f') return std::unexpected(QStringLiteral("The backend's public key holds a blank."));
  if (key.isEmpty()) return std::unexpected(QStringLiteral("The backend's public key is missing."));
  if (key.startsWith("sb_secret_"))
    return std::unexpected(QStringLiteral("This is the backend's secret key; the program takes the public one."));
  return BackendConfig(parsed.toEncoded(QUrl::StripTrailingSlash), key);
}

QUrl BackendConfig::address(const QByteArray& path) const { return QUrl::fromEncoded(base_ + path, QUrl::StrictMode); }

}  // namespace thalvorn
