#pragma once

#include <QLocalSocket>
#include <QObject>
#include <QTimer>

#include "platform/instance_protocol.h"
#include "platform/single_instance.h"

namespace thalvorn {

/// The window's side of one connection: takes one request, answers it, and closes.
class InstanceConnection : public QObject {
  Q_OBJECT

 public:
  /// Takes over the socket. Deletes itself when the other side has gone.
  InstanceConnection(QLocalSocket* socket, SingleInstance* owner);

  void answer(const CommandReply& reply);

 private:
  enum class State { receiving, running, answered, refused };

  void read();
  void take(const Frame& frame);
  void refuse(const QString& message);
  void close(const Frame& last);
  void timeOut();

  SingleInstance* owner_;
  QLocalSocket* socket_;
  FrameReader reader_;
  QTimer patience_;
  QTimer heartbeat_;
  State state_ = State::receiving;
};

}  // namespace thalvorn
