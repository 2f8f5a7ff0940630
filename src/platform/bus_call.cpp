#include "platform/bus_call.h"

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <utility>

namespace thalvorn {

void callBus(const QDBusConnection& bus, const BusMethod& method, const QVariantList& arguments, QObject* context,
             std::function<void(const QDBusMessage&)> onReply) {
  QDBusMessage message = QDBusMessage::createMethodCall(method.service, method.path, method.interface, method.name);
  message.setArguments(arguments);
  auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), context);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                   [onReply = std::move(onReply)](QDBusPendingCallWatcher* finished) {
                     finished->deleteLater();
                     onReply(finished->reply());
                   });
}

}  // namespace thalvorn
