#include "platform/deep_link.h"

#include <QRegularExpression>
#include <QUrl>
#include <QUrlQuery>

#include "platform/desktop_identity.h"

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;

/// No link of the program comes near this; a longer one is not looked at.
constexpr qsizetype kLongestAddress = 16'384;

/// The parameters behind `?` and `#`. Both are forms, where "+" stands for a space.
QUrlQuery parametersOf(const QUrl& url) {
  QString text = url.query(QUrl::FullyEncoded);
  if (const QString fragment = url.fragment(QUrl::FullyEncoded); !fragment.isEmpty()) {
    if (!text.isEmpty()) text += u'&';
    text += fragment;
  }
  return QUrlQuery(text.replace(u'+', "%20"_L1));
}

ResetPasswordLink resetPasswordLink(const QUrl& url) {
  const QUrlQuery parameters = parametersOf(url);
  const auto value = [&parameters](QLatin1StringView name) {
    return parameters.queryItemValue(name, QUrl::FullyDecoded);
  };
  ResetPasswordLink link{value("access_token"_L1), value("refresh_token"_L1),    value("code"_L1), std::nullopt,
                         value("error_code"_L1),   value("error_description"_L1)};
  if (link.errorCode.isEmpty()) link.errorCode = value("error"_L1);
  bool isNumber = false;
  const qint64 seconds = value("expires_at"_L1).toLongLong(&isNumber);
  if (isNumber && seconds > 0) link.expires = std::chrono::sys_seconds(std::chrono::seconds(seconds));
  return link;
}

std::expected<DeepLink, QString> openRecordLink(const QString& path) {
  static const QRegularExpression form(
      u"^/([A-Za-z][A-Za-z0-9]{0,63})/([0-9A-Fa-f]{8}(?:-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12})/?$"_s);
  const QRegularExpressionMatch match = form.match(path);
  if (!match.hasMatch()) {
    return std::unexpected(u"This link does not name a record. Copy it again from where it came from."_s);
  }
  return OpenRecordLink{match.captured(1), QUuid::fromString(match.captured(2))};
}

}  // namespace

std::expected<DeepLink, QString> parseDeepLink(const QString& address) {
  const QUrl url = address.size() <= kLongestAddress ? QUrl(address.trimmed(), QUrl::StrictMode) : QUrl();
  if (!url.isValid() || url.scheme() != kLinkScheme) {
    return std::unexpected(u"This is not a link of %1."_s.arg(kProductName));
  }
  if (url.host() == "reset-password"_L1) return resetPasswordLink(url);
  if (url.host() == "open"_L1) return openRecordLink(url.path());
  return std::unexpected(
      u"This link asks for something that this version does not know. Update the program and try again."_s);
}

QString recordAddress(const OpenRecordLink& link) {
  return u"%1://open/%2/%3"_s.arg(kLinkScheme, link.kind, link.id.toString(QUuid::WithoutBraces));
}

QString forLog(const DeepLink& link) {
  if (const auto* record = std::get_if<OpenRecordLink>(&link)) return recordAddress(*record);
  return u"%1://reset-password (contents withheld)"_s.arg(kLinkScheme);
}

QDebug operator<<(QDebug debug, const ResetPasswordLink& link) { return debug.noquote() << forLog(link); }

}  // namespace thalvorn
