#pragma once

#include <QEventLoop>
#include <QFutureWatcher>
#include <QTimer>
#include <future>
#include <string>

#include "message_catcher.h"
#include "store/app_view_model.h"

namespace thalvorn {

/// Runs the event loop until the edit is on disk or refused; fails the program when nothing answers.
inline SaveResult waitFor(Saving saving) {
  if (!saving.isFinished()) {
    QFutureWatcher<SaveResult> watcher;
    QEventLoop loop;
    QObject::connect(&watcher, &QFutureWatcher<SaveResult>::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(std::chrono::seconds(20), &loop, [] { qFatal("an edit was never saved"); });
    watcher.setFuture(saving);
    if (!saving.isFinished()) loop.exec();
  }
  return saving.result();
}

/// Waits for a cache operation, which answers on the writer thread.
template <class Ask>
std::expected<Revision, CacheError> waitForDone(Ask&& ask) {
  std::promise<std::expected<Revision, CacheError>> promise;
  auto future = promise.get_future();
  ask([&](std::expected<Revision, CacheError> result) { promise.set_value(std::move(result)); });
  return future.get();
}

}  // namespace thalvorn
