#pragma once

#include <QLocalSocket>
#include <QObject>
#include <QTimer>
#include <chrono>
#include <expected>

#include "platform/instance_protocol.h"
#include "platform/store_lock.h"

namespace thalvorn {

/// One request to a window and its answer: connects, writes, waits, reports once.
class InstanceExchange : public QObject {
  Q_OBJECT

 public:
  InstanceExchange(StoreHolder window, std::chrono::milliseconds patience);

  /// Begins; `finished` follows, never from within this call.
  void start(const Frame& request);

  /// The answering frame (never a `working` one). Valid once `finished` has been emitted.
  const std::expected<Frame, InstanceError>& result() const { return result_; }

 Q_SIGNALS:
  void finished();

 private:
  void read();
  void lost();
  void gaveUp();
  void finish(std::expected<Frame, InstanceError> result);

  StoreHolder window_;
  QLocalSocket socket_;
  QTimer silence_;
  FrameReader reader_;
  bool connected_ = false;
  bool over_ = false;
  std::expected<Frame, InstanceError> result_;
};

}  // namespace thalvorn
