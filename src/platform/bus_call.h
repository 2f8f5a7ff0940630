#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>

namespace thalvorn {

/// One method of a D-Bus service's object.
struct BusMethod {
  QString service;
  QString path;
  QString interface;
  QString name;
};

/// Calls a method without waiting. The reply, or the error that stands for it, is handed to `onReply` from the event
/// loop, unless `context` has gone by then.
void callBus(const QDBusConnection& bus, const BusMethod& method, const QVariantList& arguments, QObject* context,
             std::function<void(const QDBusMessage&)> onReply);

}  // namespace thalvorn
