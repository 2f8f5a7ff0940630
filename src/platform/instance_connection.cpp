#include "platform/instance_connection.h"

namespace thalvorn {

using namespace Qt::StringLiterals;

InstanceConnection::InstanceConnection(QLocalSocket* socket, SingleInstance* owner)
    : QObject(owner), owner_(owner), socket_(socket) {
  socket_->setParent(this);
  patience_.setSingleShot(true);
  patience_.setInterval(owner_->timings_.idle);
  heartbeat_.setInterval(owner_->timings_.heartbeat);
  connect(&patience_, &QTimer::timeout, this, &InstanceConnection::timeOut);
  connect(&heartbeat_, &QTimer::timeout, this, [this] { socket_->write(encode(workingFrame())); });
  connect(socket_, &QLocalSocket::readyRead, this, &InstanceConnection::read);
  connect(socket_, &QLocalSocket::bytesWritten, this, [this] {
    if (state_ == State::answered) patience_.start();
  });
  connect(socket_, &QLocalSocket::disconnected, this, [this] {
    heartbeat_.stop();
    patience_.stop();
    deleteLater();
  });
  patience_.start();
}

void InstanceConnection::read() {
  const QByteArray bytes = socket_->readAll();
  if (state_ != State::receiving) return;
  patience_.start();
  reader_.feed(bytes);
  auto frame = reader_.next();
  if (!frame) return refuse(frame.error());
  if (const std::optional<Frame>& whole = *frame; whole) take(*whole);
}

void InstanceConnection::take(const Frame& frame) {
  if (frame.type() == "raise"_L1) {
    auto request = toRaiseRequest(frame);
    if (!request) return refuse(request.error());
    close(replyFrame({}));
    Q_EMIT owner_->raiseRequested(*request);
    return;
  }
  if (frame.type() == "command"_L1) {
    auto request = toCommandRequest(frame);
    if (!request) return refuse(request.error());
    state_ = State::running;
    patience_.stop();
    reader_ = {};
    socket_->write(encode(workingFrame()));
    heartbeat_.start();
    owner_->begin(this, std::move(*request));
    return;
  }
  refuse(u"The window does not know messages of the type \"%1\"."_s.arg(frame.type().left(40)));
}

void InstanceConnection::answer(const CommandReply& reply) {
  heartbeat_.stop();
  close(replyFrame(reply));
}

void InstanceConnection::close(const Frame& last) {
  state_ = State::answered;
  patience_.start();
  socket_->write(encode(last));
  socket_->disconnectFromServer();
}

void InstanceConnection::refuse(const QString& message) {
  state_ = State::refused;
  reader_ = {};
  // The rest of what the other side is writing is read and dropped for a while: closing at once could cost it the
  // message.
  patience_.start(owner_->timings_.heartbeat);
  socket_->write(encode(errorFrame(message)));
}

void InstanceConnection::timeOut() {
  if (state_ == State::receiving && reader_.waiting()) return refuse(u"The message was not completed in time."_s);
  socket_->abort();
}

}  // namespace thalvorn
