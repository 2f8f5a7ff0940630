#include "platform/search_provider.h"

#include <QDBusMessage>
#include <QDBusMetaType>

#include "platform/desktop_identity.h"

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;

/// RequestName: wait in line for the name rather than fail when another window has it.
constexpr uint kQueueForName = 0;

}  // namespace

SearchProvider::SearchProvider(const DesktopSearchIndex& index, const QDBusConnection& bus, QObject* parent)
    : QObject(parent), index_(index), bus_(bus) {
  qDBusRegisterMetaType<QList<QVariantMap>>();
  if (!bus_.isConnected()) return;
  bus_.registerObject(kSearchProviderPath, this, QDBusConnection::ExportScriptableSlots);
  askBus(u"RequestName"_s, {QString(kApplicationId), kQueueForName});
}

SearchProvider::~SearchProvider() {
  if (!bus_.isConnected()) return;
  askBus(u"ReleaseName"_s, {QString(kApplicationId)});
  bus_.unregisterObject(kSearchProviderPath);
}

void SearchProvider::askBus(const QString& method, const QVariantList& arguments) {
  const QString bus = u"org.freedesktop.DBus"_s;
  QDBusMessage message = QDBusMessage::createMethodCall(bus, u"/org/freedesktop/DBus"_s, bus, method);
  message.setArguments(arguments);
  bus_.send(message);
}

QStringList SearchProvider::GetInitialResultSet(const QStringList& terms) {
  return index_.find(terms, kMostResults).mid(0, kMostResults);
}

QStringList SearchProvider::GetSubsearchResultSet(const QStringList&, const QStringList& terms) {
  // Searched anew: the index answers from memory, and the first answer may have been cut at `kMostResults`.
  return GetInitialResultSet(terms);
}

QList<QVariantMap> SearchProvider::GetResultMetas(const QStringList& identifiers) {
  QList<QVariantMap> metas;
  for (const QString& id : identifiers) {
    const SearchMeta meta = index_.meta(id);
    if (meta.name.isEmpty()) continue;
    QVariantMap entry{{u"id"_s, id}, {u"name"_s, meta.name}, {u"description"_s, meta.description}};
    if (!meta.iconName.isEmpty()) entry.insert(u"gicon"_s, meta.iconName);
    if (!meta.clipboard.isEmpty()) entry.insert(u"clipboardText"_s, meta.clipboard);
    metas << entry;
  }
  return metas;
}

void SearchProvider::ActivateResult(const QString& identifier, const QStringList&, uint timestamp) {
  Q_EMIT activated(identifier, timestamp);
}

void SearchProvider::LaunchSearch(const QStringList& terms, uint timestamp) {
  Q_EMIT searchRequested(terms, timestamp);
}

}  // namespace thalvorn
