#pragma once

#include <QFuture>
#include <QObject>
#include <QPromise>
#include <QTimer>
#include <chrono>
#include <memory>

namespace thalvorn {

/// To be awaited: true when `object` emits the signal next, false after `timeout` or when it is destroyed first. Unlike
/// QCoro's own awaiter it bears signals that are emitted several times before the event loop turns.
template <class T, class Signal>
QFuture<bool> nextEmission(T* object, Signal signal, std::chrono::milliseconds timeout) {
  const auto promise = std::make_shared<QPromise<bool>>();
  promise->start();
  const auto finish = [promise](bool emitted) {
    if (promise->future().isFinished()) return;
    promise->addResult(emitted);
    promise->finish();
  };
  auto* context = new QObject(object);
  QObject::connect(object, signal, context, [finish, context] {
    finish(true);
    context->deleteLater();
  });
  QObject::connect(context, &QObject::destroyed, context, [finish] { finish(false); });
  QTimer::singleShot(timeout, context, [context] { delete context; });
  return promise->future();
}

}  // namespace thalvorn
