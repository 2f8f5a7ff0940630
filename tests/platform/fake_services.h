#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QObject>
#include <QVariantMap>
#include <vector>

/// The desktop's side of the conversations, on a bus of the test's own. Methods and signals are named as on the bus.
// NOLINTBEGIN(readability-identifier-naming)
namespace thalvorn::test {

/// A notification service that remembers what it was asked and lets the test play the user.
class FakeNotificationService : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

 public:
  struct Shown {
    QString application;
    uint replaces;
    QString icon;
    QString summary;
    QString body;
    QStringList actions;
    QVariantMap hints;
    uint number;
  };

  FakeNotificationService(QDBusConnection bus, QStringList capabilities)
      : bus_(std::move(bus)), capabilities_(std::move(capabilities)) {
    bus_.registerObject(kPath, this, QDBusConnection::ExportScriptableContents);
    bus_.registerService(kName);
  }
  ~FakeNotificationService() override {
    bus_.unregisterService(kName);
    bus_.unregisterObject(kPath);
  }

  std::vector<Shown> shown;
  std::vector<uint> closed;
  bool refuses = false;

 public Q_SLOTS:
  Q_SCRIPTABLE QStringList GetCapabilities() { return capabilities_; }

  Q_SCRIPTABLE uint Notify(const QString& application, uint replaces, const QString& icon, const QString& summary,
                           const QString& body, const QStringList& actions, const QVariantMap& hints, int,
                           const QDBusMessage& message) {
    if (refuses) {
      message.setDelayedReply(true);
      bus_.send(message.createErrorReply(QDBusError::LimitsExceeded, QStringLiteral("too many")));
      return 0;
    }
    const uint number = replaces != 0 ? replaces : ++last_;
    shown.push_back({application, replaces, icon, summary, body, actions, hints, number});
    return number;
  }

  Q_SCRIPTABLE void CloseNotification(uint number) {
    closed.push_back(number);
    Q_EMIT NotificationClosed(number, 3);
  }

 Q_SIGNALS:
  Q_SCRIPTABLE void ActionInvoked(uint number, const QString& key);
  Q_SCRIPTABLE void ActivationToken(uint number, const QString& token);
  Q_SCRIPTABLE void NotificationClosed(uint number, uint reason);

 private:
  static inline const QString kName = QStringLiteral("org.freedesktop.Notifications");
  static inline const QString kPath = QStringLiteral("/org/freedesktop/Notifications");

  QDBusConnection bus_;
  QStringList capabilities_;
  uint last_ = 100;
};

/// The settings portal.
class FakePortal : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

 public:
  explicit FakePortal(QDBusConnection bus) : bus_(std::move(bus)) {
    bus_.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), this,
                        QDBusConnection::ExportScriptableContents);
    bus_.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
  }

 public Q_SLOTS:
  Q_SCRIPTABLE QDBusVariant Read(const QString&, const QString& key) {
    const QVariant value = key == QStringLiteral("color-scheme") ? QVariant::fromValue(1U) : QVariant(false);
    return QDBusVariant(QVariant::fromValue(QDBusVariant(value)));
  }

 Q_SIGNALS:
  Q_SCRIPTABLE void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  QDBusConnection bus_;
};

/// The one property of NetworkManager that is asked for.
class FakeNetworkManager : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.NetworkManager")
  Q_PROPERTY(uint Metered MEMBER metered_)
  Q_PROPERTY(uint State MEMBER state_)

 public:
  explicit FakeNetworkManager(QDBusConnection bus) : bus_(std::move(bus)) {
    bus_.registerObject(kPath, this, QDBusConnection::ExportAllProperties);
    bus_.registerService(QStringLiteral("org.freedesktop.NetworkManager"));
  }

  void change(uint metered) { tell(QStringLiteral("Metered"), metered); }
  void changeState(uint state) { tell(QStringLiteral("State"), state); }

 private:
  void tell(const QString& property, uint value) {
    QDBusMessage signal = QDBusMessage::createSignal(kPath, QStringLiteral("org.freedesktop.DBus.Properties"),
                                                     QStringLiteral("PropertiesChanged"));
    signal << QStringLiteral("org.freedesktop.NetworkManager") << QVariantMap{{property, QVariant::fromValue(value)}}
           << QStringList();
    bus_.send(signal);
  }

  static inline const QString kPath = QStringLiteral("/org/freedesktop/NetworkManager");

  QDBusConnection bus_;
  uint metered_ = 3;
  uint state_ = 70;
};

/// The login manager, as far as it tells of sleep.
class FakeLoginManager {
 public:
  explicit FakeLoginManager(QDBusConnection bus) : bus_(std::move(bus)) {
    bus_.registerService(QStringLiteral("org.freedesktop.login1"));
  }
  void prepareForSleep(bool goesToSleep) {
    QDBusMessage signal =
        QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
                                   QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"));
    bus_.send(signal << goesToSleep);
  }

 private:
  QDBusConnection bus_;
};

}  // namespace thalvorn::test
// NOLINTEND(readability-identifier-naming)
