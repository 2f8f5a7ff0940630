#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QHash>
#include <QStringList>
#include <functional>
#include <optional>

#include "platform/desktop_notifications.h"

namespace thalvorn {

/// Notifications through the D-Bus service org.freedesktop.Notifications.
///
/// The service's own numbers stay inside: an entry per notification on the screen maps ours to its. While a Notify call
/// is under way a newer form of the same notification waits in the entry, so that it replaces the first and never
/// stands beside it.
class FreedesktopNotifications : public DesktopNotifications {
  Q_OBJECT

 public:
  explicit FreedesktopNotifications(const QDBusConnection& bus);

  bool available() const override { return capabilities_.has_value(); }
  void show(const Notification& notification) override;
  void withdraw(const QString& id) override;

 private Q_SLOTS:
  void onActivationToken(uint number, const QString& token);
  void onActionInvoked(uint number, const QString& key);
  void onClosed(uint number, uint reason);

 private:
  struct Entry {
    uint number = 0;  ///< the service's; 0 until it has answered
    bool sending = false;
    bool withdrawn = false;
    std::optional<Notification> next;
    QString firstAction;
    QString activationToken;
  };

  void call(const QString& method, const QVariantList& arguments, std::function<void(const QDBusMessage&)> onReply);
  void askCapabilities();
  void send(const QString& id);
  void sent(const QString& id, const QDBusMessage& reply);
  void serviceChanged(const QString& newOwner);
  QString idOf(uint number) const;
  bool can(QLatin1StringView capability) const { return capabilities_ && capabilities_->contains(capability); }

  QDBusConnection bus_;
  std::optional<QStringList> capabilities_;
  bool asking_ = false;
  QHash<QString, Entry> entries_;
};

}  // namespace thalvorn
