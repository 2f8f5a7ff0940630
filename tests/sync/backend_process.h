#pragma once

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QStringList>
#include <string>

#include "backend/backend_config.h"

namespace thalvorn {

/// A backend of its own on this computer (scripts/backend), for as long as the object lives.
class BackendProcess {
 public:
  explicit BackendProcess(const QStringList& options = {}) {
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(QStringLiteral(THALVORN_SOURCE_DIR "/scripts/backend"),
                   QStringList{QStringLiteral("--program"), QStringLiteral(THALVORN_DEVSERVER)} + options);
    while (!process_.canReadLine() && process_.waitForReadyRead(120'000)) {
    }
    facts_ = QJsonDocument::fromJson(process_.readLine()).object();
  }
  ~BackendProcess() {
    process_.terminate();
    if (!process_.waitForFinished(20'000)) process_.kill();
    process_.waitForFinished();
  }
  BackendProcess(const BackendProcess&) = delete;
  BackendProcess& operator=(const BackendProcess&) = delete;

  bool isRunning() const { return !facts_.isEmpty(); }
  QUrl url() const { return QUrl(facts_[QStringLiteral("url")].toString()); }
  QString key() const { return facts_[QStringLiteral("anonKey")].toString(); }
  BackendConfig config() const { return BackendConfig::from(url().toString(), key()).value(); }
  QString email(int account) const { return owner(account)[QStringLiteral("email")].toString(); }
  QString password(int account) const { return owner(account)[QStringLiteral("password")].toString(); }
  /// Gives an account a plan, which is bought and not set.
  bool setPlan(const std::string& account, const char* plan) const {
    return execute(QStringLiteral("update public.accounts set plan = '%1' where id = '%2'")
                       .arg(QLatin1String(plan), QString::fromStdString(account)));
  }
  /// Runs a statement in the database itself, above all policies.
  bool execute(const QString& statement) const {
    return QProcess::execute(QStringLiteral("psql"), {facts_[QStringLiteral("databaseUrl")].toString(),
                                                      QStringLiteral("-Atqc"), statement}) == 0;
  }
  /// Orders what goes wrong from now on, as `scripts/backend --help` names it; an empty list ends it.
  bool setFaults(const QStringList& faults) const {
    QNetworkAccessManager network;
    QNetworkRequest request(url().resolved(QUrl(QStringLiteral("/dev/settings"))));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    const QJsonObject settings{{QStringLiteral("faults"), QJsonArray::fromStringList(faults)}};
    QNetworkReply* reply = network.sendCustomRequest(request, "PATCH", QJsonDocument(settings).toJson());
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply->isFinished()) loop.exec();
    return reply->error() == QNetworkReply::NoError;
  }
  /// Runs a file of statements likewise.
  bool executeFile(const QString& file) const {
    return QProcess::execute(QStringLiteral("psql"),
                             {facts_[QStringLiteral("databaseUrl")].toString(), QStringLiteral("-v"),
                              QStringLiteral("ON_ERROR_STOP=1"), QStringLiteral("-qf"), file}) == 0;
  }

 private:
  QJsonValue owner(int account) const { return facts_[QStringLiteral("accounts")][account]; }

  QProcess process_;
  QJsonObject facts_;
};

}  // namespace thalvorn
