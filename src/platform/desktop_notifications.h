#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <memory>
#include <vector>

namespace thalvorn {

enum class NotificationUrgency { low = 0, normal = 1, critical = 2 };

/// A button on a notification.
struct NotificationAction {
  QString key;    ///< what `actionInvoked` reports, e.g. "open", "snooze"
  QString label;  ///< what the button says, e.g. "Open"
};

/// What the desktop is asked to show. All texts are plain text.
struct Notification {
  QString id;  ///< the program's own name for it; showing the same id again updates the one on the screen
  QString title;
  QString body;
  QString category;  ///< for the desktop's own sorting, e.g. "x-thalvorn.maintenance"; may be empty
  NotificationUrgency urgency = NotificationUrgency::normal;
  std::vector<NotificationAction> actions;  ///< the first one is also what a click on the notification does
};

/// Why a notification left the screen.
enum class NotificationEnd { expired = 1, dismissed = 2, withdrawn = 3, unknown = 4 };

/// Notifications on the user's desktop. Nothing here waits for the desktop: results come as signals.
class DesktopNotifications : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// True once the desktop has answered that it shows notifications.
  virtual bool available() const = 0;

  /// Shows a notification, or updates the shown one with the same id.
  virtual void show(const Notification& notification) = 0;

  /// Takes a notification off the screen; nothing happens when it is not there.
  virtual void withdraw(const QString& id) = 0;

 Q_SIGNALS:
  /// The user pressed a button, or clicked the notification (then `action` is the first one). The token lets the
  /// window come to the front; empty on desktops that give none.
  void actionInvoked(const QString& id, const QString& action, const QString& activationToken);

  /// The notification is gone; `id` may be shown anew.
  void ended(const QString& id, thalvorn::NotificationEnd reason);

  /// The desktop could not show it.
  void failed(const QString& id, const QString& message);

  void availableChanged();
};

/// The notifications of the desktop on this bus, or ones that fail harmlessly where there is no bus.
std::unique_ptr<DesktopNotifications> makeDesktopNotifications(
    const QDBusConnection& bus = QDBusConnection::sessionBus());

}  // namespace thalvorn
