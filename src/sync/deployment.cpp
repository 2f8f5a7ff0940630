#include "sync/deployment.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

namespace thalvorn {
namespace {

std::expected<std::optional<BackendConfig>, QString> configured(const QString& url, const QString& key,
                                                                const QString& source) {
  if (url.isEmpty() && key.isEmpty()) return std::nullopt;
  if (url.isEmpty() || key.isEmpty())
    return std::unexpected(QStringLiteral("%1 gives %2 of the fleet server but not %3; both are needed.")
                               .arg(source, url.isEmpty() ? QStringLiteral("the key") : QStringLiteral("the address"),
                                    url.isEmpty() ? QStringLiteral("the address") : QStringLiteral("the key")));
  auto config = BackendConfig::from(url, key);
  if (!config) return std::unexpected(source + QStringLiteral(": ") + config.error());
  return *std::move(config);
}

}  // namespace

std::expected<std::optional<BackendConfig>, QString> deployedBackend(const BackendChoice& told) {
  if (auto config = configured(told.url, told.key, QStringLiteral("The command line")); !config || *config)
    return config;
  if (auto config = configured(qEnvironmentVariable("THALVORN_BACKEND_URL"),
                               qEnvironmentVariable("THALVORN_BACKEND_KEY"), QStringLiteral("The environment"));
      !config || *config)
    return config;
  const QString name =
      QStandardPaths::locate(QStandardPaths::GenericConfigLocation, QStringLiteral("thalvorn/backend.json"));
  if (name.isEmpty()) return std::nullopt;
  QFile file(name);
  if (!file.open(QIODevice::ReadOnly))
    return std::unexpected(QStringLiteral("%1 cannot be read: %2").arg(name, file.errorString()));
  const QJsonObject values = QJsonDocument::fromJson(file.readAll()).object();
  return configured(values.value(QStringLiteral("url")).toString(), values.value(QStringLiteral("anonKey")).toString(),
                    name);
}

}  // namespace thalvorn
