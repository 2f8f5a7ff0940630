#include "platform/desktop_notifications.h"

#include <QTimer>

#include "platform/freedesktop_notifications.h"

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;

/// Where there is no desktop to show them.
class NoNotifications : public DesktopNotifications {
 public:
  bool available() const override { return false; }
  void show(const Notification& notification) override {
    QTimer::singleShot(0, this,
                       [this, id = notification.id] { Q_EMIT failed(id, u"This desktop shows no notifications."_s); });
  }
  void withdraw(const QString&) override {}
};

}  // namespace

std::unique_ptr<DesktopNotifications> makeDesktopNotifications(const QDBusConnection& bus) {
  if (!bus.isConnected()) return std::make_unique<NoNotifications>();
  return std::make_unique<FreedesktopNotifications>(bus);
}

}  // namespace thalvorn
