#include "platform/freedesktop_notifications.h"

#include <QDBusServiceWatcher>
#include <utility>

#include "platform/bus_call.h"
#include "platform/desktop_identity.h"

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;

const QString kService = u"org.freedesktop.Notifications"_s;
const QString kPath = u"/org/freedesktop/Notifications"_s;
const QString kDefaultAction = u"default"_s;

/// Lets the service decide how long it shows a notification.
constexpr int kServicesOwnTime = -1;

QStringList actionsOnTheWire(const std::vector<NotificationAction>& actions) {
  QStringList wire;
  if (!actions.empty()) wire << kDefaultAction << actions.front().label;
  for (const NotificationAction& action : actions) wire << action.key << action.label;
  return wire;
}

QVariantMap hintsOf(const Notification& notification) {
  QVariantMap hints{{u"desktop-entry"_s, QString(kApplicationId)},
                    {u"urgency"_s, QVariant::fromValue(uchar(notification.urgency))}};
  if (!notification.category.isEmpty()) hints.insert(u"category"_s, notification.category);
  return hints;
}

}  // namespace

FreedesktopNotifications::FreedesktopNotifications(const QDBusConnection& bus) : bus_(bus) {
  bus_.connect(kService, kPath, kService, u"ActivationToken"_s, this, SLOT(onActivationToken(uint, QString)));
  bus_.connect(kService, kPath, kService, u"ActionInvoked"_s, this, SLOT(onActionInvoked(uint, QString)));
  bus_.connect(kService, kPath, kService, u"NotificationClosed"_s, this, SLOT(onClosed(uint, uint)));
  auto* watcher = new QDBusServiceWatcher(kService, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
  connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString&, const QString&, const QString& newOwner) { serviceChanged(newOwner); });
  askCapabilities();
}

void FreedesktopNotifications::show(const Notification& notification) {
  Entry& entry = entries_[notification.id];
  entry.next = notification;
  entry.withdrawn = false;
  if (!capabilities_) {
    askCapabilities();
  } else if (!entry.sending) {
    send(notification.id);
  }
}

void FreedesktopNotifications::withdraw(const QString& id) {
  const auto entry = entries_.find(id);
  if (entry == entries_.end()) return;
  entry->next.reset();
  if (entry->sending) {
    entry->withdrawn = true;
  } else if (entry->number != 0) {
    call(u"CloseNotification"_s, {entry->number}, [](const QDBusMessage&) {});
  } else {
    entries_.erase(entry);
  }
}

void FreedesktopNotifications::call(const QString& method, const QVariantList& arguments,
                                    std::function<void(const QDBusMessage&)> onReply) {
  callBus(bus_, {kService, kPath, kService, method}, arguments, this, std::move(onReply));
}

void FreedesktopNotifications::askCapabilities() {
  if (std::exchange(asking_, true)) return;
  call(u"GetCapabilities"_s, {}, [this](const QDBusMessage& reply) {
    asking_ = false;
    const QStringList waiting = entries_.keys();
    if (reply.type() != QDBusMessage::ReplyMessage) {
      entries_.clear();
      for (const QString& id : waiting) Q_EMIT failed(id, reply.errorMessage());
      return;
    }
    capabilities_ = reply.arguments().value(0).toStringList();
    Q_EMIT availableChanged();
    for (const QString& id : waiting) {
      if (entries_.contains(id) && entries_[id].next && !entries_[id].sending) send(id);
    }
  });
}

void FreedesktopNotifications::send(const QString& id) {
  Entry& entry = entries_[id];
  const std::optional<Notification> next = std::exchange(entry.next, std::nullopt);
  if (!next) return;
  const Notification& notification = *next;
  entry.sending = true;
  entry.firstAction = notification.actions.empty() ? QString() : notification.actions.front().key;
  const QString body = can("body-markup"_L1) ? notification.body.toHtmlEscaped() : notification.body;
  const QStringList actions = can("actions"_L1) ? actionsOnTheWire(notification.actions) : QStringList();
  call(u"Notify"_s,
       {QString(kProductName), entry.number, QString(kApplicationId), notification.title, body, actions,
        hintsOf(notification), kServicesOwnTime},
       [this, id](const QDBusMessage& reply) { sent(id, reply); });
}

void FreedesktopNotifications::sent(const QString& id, const QDBusMessage& reply) {
  const auto entry = entries_.find(id);
  if (entry == entries_.end()) return;
  entry->sending = false;
  if (reply.type() != QDBusMessage::ReplyMessage) {
    entries_.erase(entry);
    Q_EMIT failed(id, reply.errorMessage());
    return;
  }
  entry->number = reply.arguments().value(0).toUInt();
  if (entry->next) {
    send(id);
  } else if (entry->withdrawn) {
    withdraw(id);
  }
}

void FreedesktopNotifications::serviceChanged(const QString& newOwner) {
  const bool was = available();
  capabilities_.reset();
  // What a service showed goes with it; what waits or is under way is shown by the next one.
  QStringList gone;
  for (auto entry = entries_.begin(); entry != entries_.end();) {
    entry->number = 0;
    if (entry->sending || entry->next) {
      ++entry;
      continue;
    }
    gone << entry.key();
    entry = entries_.erase(entry);
  }
  for (const QString& id : gone) Q_EMIT ended(id, NotificationEnd::unknown);
  if (was) Q_EMIT availableChanged();
  if (!newOwner.isEmpty()) askCapabilities();
}

QString FreedesktopNotifications::idOf(uint number) const {
  // The service tells every program of every notification, so most numbers are not ours.
  for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
    if (number != 0 && entry->number == number) return entry.key();
  }
  return {};
}

void FreedesktopNotifications::onActivationToken(uint number, const QString& token) {
  const QString id = idOf(number);
  if (!id.isNull()) entries_[id].activationToken = token;
}

void FreedesktopNotifications::onActionInvoked(uint number, const QString& key) {
  const QString id = idOf(number);
  if (id.isNull()) return;
  Entry& entry = entries_[id];
  const QString token = std::exchange(entry.activationToken, {});
  const QString action = key == kDefaultAction ? entry.firstAction : key;
  Q_EMIT actionInvoked(id, action, token);
}

void FreedesktopNotifications::onClosed(uint number, uint reason) {
  const QString id = idOf(number);
  if (id.isNull()) return;
  Entry& entry = entries_[id];
  entry.number = 0;
  if (!entry.sending && !entry.next) entries_.remove(id);
  Q_EMIT ended(id, reason >= 1 && reason <= 3 ? NotificationEnd(reason) : NotificationEnd::unknown);
}

}  // namespace thalvorn
