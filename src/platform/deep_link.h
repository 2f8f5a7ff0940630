#pragma once

#include <QDebug>
#include <QString>
#include <QUuid>
#include <chrono>
#include <expected>
#include <optional>
#include <variant>

/// Addresses that open the program: `thalvorn://reset-password…` from an e-mail, `thalvorn://open/<kind>/<uuid>` from
/// anywhere.
namespace thalvorn {

/// The link of a password-reset e-mail. The service appends what it grants, or why it refuses, behind `#` or `?`.
/// Whoever has these texts can sign in: they are for the sign-in service only, never for a log or a file.
struct ResetPasswordLink {
  QString accessToken;
  QString refreshToken;
  QString code;  ///< instead of tokens, when they are still to be exchanged for it
  std::optional<std::chrono::sys_seconds> expires;
  QString errorCode;         ///< e.g. "otp_expired" when the link was opened too late; empty when all is well
  QString errorDescription;  ///< the service's own sentence

  /// True when the link can be used to set a new password.
  bool grants() const { return errorCode.isEmpty() && (!accessToken.isEmpty() || !code.isEmpty()); }

  bool operator==(const ResetPasswordLink&) const = default;
};

/// Opens one record.
struct OpenRecordLink {
  QString kind;  ///< the collection's name, e.g. "tasks"
  QUuid id;

  bool operator==(const OpenRecordLink&) const = default;
};

using DeepLink = std::variant<ResetPasswordLink, OpenRecordLink>;

/// Reads an address. The error is a sentence for the user that never repeats the address.
std::expected<DeepLink, QString> parseDeepLink(const QString& address);

/// `thalvorn://open/<kind>/<uuid>`.
QString recordAddress(const OpenRecordLink& link);

/// What a log may say of a link: nothing of a reset link's contents.
QString forLog(const DeepLink& link);

QDebug operator<<(QDebug debug, const ResetPasswordLink& link);

}  // namespace thalvorn
