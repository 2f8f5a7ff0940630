#include "app/restart.h"

#include <QCoreApplication>
#include <QProcess>

#include "store/local_cache.h"

namespace thalvorn::app {

namespace {

constexpr const char* kMessage = "THALVORN_RESTART_MESSAGE";

}  // namespace

void restoreAndRestart(const QString& backup, const QString& storeFile) {
  const auto kept =
      LocalCache::restore(std::filesystem::path(backup.toStdString()), std::filesystem::path(storeFile.toStdString()));
  const QString message = kept ? QStringLiteral("The backup is restored. The file before it is %1")
                                     .arg(QString::fromStdString(kept->string()))
                               : QString::fromStdString(kept.error().message);
  qputenv(kMessage, message.toUtf8());
  QProcess::startDetached(QCoreApplication::applicationFilePath(), QCoreApplication::arguments().mid(1));
}

QString messageOfRestart() {
  const QString message = qEnvironmentVariable(kMessage);
  qunsetenv(kMessage);
  return message;
}

}  // namespace thalvorn::app
