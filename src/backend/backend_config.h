#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <expected>

namespace thalvorn {

/// Where the backend is and the public key that names the program to it. Deployment values, no secrets.
class BackendConfig {
 public:
  /// Takes https addresses, and http on this computer alone; a path (a self-hosted project below a prefix) is kept. The
  /// error is a sentence for the user.
  static std::expected<BackendConfig, QString> from(const QString& url, const QString& public_key);

  /// The project base followed by `path`, which begins with "/" and is percent-encoded.
  QUrl address(const QByteArray& path) const;
  QByteArray publicKey() const { return publicKey_; }
  /// An opaque key ("sb_publishable_…") is no JWT and does not stand in for a bearer token.
  bool keyIsToken() const { return !publicKey_.startsWith("sb_"); }

 private:
  BackendConfig(QByteArray base, QByteArray public_key) : base_(std::move(base)), publicKey_(std::move(public_key)) {}
  QByteArray base_;  ///< encoded, without a slash at the end
  QByteArray publicKey_;
};

}  // namespace thalvorn
