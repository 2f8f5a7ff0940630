// What a run has to know of the account: which one it is, and how far its tables are known here.

#include <QCoroTask>
#include <QJsonDocument>
#include <QJsonObject>

#include "sync/sync_manager.h"

namespace thalvorn {
namespace {

constexpr std::string_view kTableVersions = "_tableVersions";

}  // namespace

QCoro::Task<bool> SyncManager::findAccount() {
  if (!model_.accountID().empty()) co_return true;
  syncingSince_ = timing_.elapsed();
  token_ = RunToken();
  const RunToken token = token_;
  Q_EMIT stateChanged();
  const auto resolved = co_await resolver_.resolveAccountAndMembership();
  if (token.isOver()) co_return false;
  syncingSince_.reset();
  offline_ = !resolved && resolved.error().kind == SBError::Case::networkError;
  Q_EMIT stateChanged();
  if (token.isOver()) co_return false;
  if (!model_.accountID().empty()) co_return true;
  log_.say("❌ syncAll skipped — no resolved accountID yet");
  // That the access was switched off is told once, not every five minutes.
  if (const QString why = whyNoAccount(); model_.accessRefusal().empty() || why != toldRefusal_) {
    toldRefusal_ = model_.accessRefusal().empty() ? QString() : why;
    Q_EMIT messageForUser(why);
  }
  co_return false;
}

QString SyncManager::whyNoAccount() const {
  if (!model_.accessRefusal().empty()) return QString::fromStdString(model_.accessRefusal());
  return tr("Couldn't determine your account — try Sync Now again, or sign out and back in.");
}

SyncManager::Versions SyncManager::knownVersions() const {
  Versions versions;
  const auto stored = model_.cache().preference(key(kTableVersions));
  if (!stored) return versions;
  const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(*stored)).object();
  if (object.value(QStringLiteral("account")).toString().toStdString() != model_.accountID()) return versions;
  const QJsonObject tables = object.value(QStringLiteral("tables")).toObject();
  for (auto table = tables.begin(); table != tables.end(); ++table)
    versions[table.key().toStdString()] = table.value().toInteger();
  return versions;
}

void SyncManager::keepVersions(const Versions& versions) {
  QJsonObject tables;
  for (const auto& [table, version] : versions) tables[QString::fromStdString(table)] = static_cast<qint64>(version);
  const QJsonObject object{{QStringLiteral("account"), QString::fromStdString(model_.accountID())},
                           {QStringLiteral("tables"), tables}};
  model_.cache().setPreference(key(kTableVersions), QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString());
}

}  // namespace thalvorn
