#include "platform/instance_exchange.h"

#include <utility>

namespace thalvorn {

using namespace Qt::StringLiterals;

InstanceExchange::InstanceExchange(StoreHolder window, std::chrono::milliseconds patience)
    : window_(std::move(window)), result_(std::unexpected(InstanceError{InstanceProblem::unreachable, {}})) {
  silence_.setSingleShot(true);
  silence_.setInterval(patience);
  connect(&silence_, &QTimer::timeout, this, &InstanceExchange::gaveUp);
  connect(&socket_, &QLocalSocket::connected, this, [this] { connected_ = true; });
  connect(&socket_, &QLocalSocket::bytesWritten, &silence_, [this] { silence_.start(); });
  connect(&socket_, &QLocalSocket::readyRead, this, &InstanceExchange::read);
  connect(&socket_, &QLocalSocket::disconnected, this, &InstanceExchange::lost);
  connect(&socket_, &QLocalSocket::errorOccurred, this, &InstanceExchange::lost);
}

void InstanceExchange::start(const Frame& request) {
  silence_.start();
  socket_.connectToServer(window_.socketPath);
  if (!over_) socket_.write(encode(request));
}

void InstanceExchange::read() {
  silence_.start();
  if (socket_.isOpen()) reader_.feed(socket_.readAll());
  while (!over_) {
    auto frame = reader_.next();
    if (!frame) return finish(std::unexpected(InstanceError{InstanceProblem::refused, frame.error()}));
    std::optional<Frame> answer = std::move(*frame);
    if (!answer) return;
    if (answer->type() == "working"_L1) continue;
    if (answer->type() == "error"_L1) {
      return finish(
          std::unexpected(InstanceError{InstanceProblem::refused, answer->head.value("message"_L1).toString()}));
    }
    return finish(std::move(*answer));
  }
}

void InstanceExchange::lost() {
  if (over_) return;
  read();
  if (over_) return;
  finish(std::unexpected(InstanceError{
      InstanceProblem::unreachable,
      connected_
          ? u"%1 closed before it answered. Look whether the change was made, then try again."_s.arg(describe(window_))
          : u"%1 holds the store but cannot be reached. Close it and try again."_s.arg(describe(window_))}));
}

void InstanceExchange::gaveUp() {
  finish(std::unexpected(
      InstanceError{InstanceProblem::silent,
                    u"%1 holds the store but has not answered for %2 s. Look whether it shows a question, or close it; "
                    "then look whether the change was made, and try again."_s.arg(
                        describe(window_), QString::number(double(silence_.interval()) / 1000.0))}));
}

void InstanceExchange::finish(std::expected<Frame, InstanceError> result) {
  if (over_) return;
  over_ = true;
  silence_.stop();
  result_ = std::move(result);
  socket_.abort();
  QTimer::singleShot(0, this, &InstanceExchange::finished);
}

}  // namespace thalvorn
