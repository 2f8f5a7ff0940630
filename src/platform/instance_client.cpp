#include "platform/instance_client.h"

#include <QCoroSignal>
#include <QLocalSocket>
#include <memory>
#include <utility>

#include "platform/instance_exchange.h"

namespace thalvorn {
namespace {

/// Deleted from the event loop: an exchange must outlive the signal that resumes its awaiter.
struct DeleteLater {
  void operator()(QObject* object) const { object->deleteLater(); }
};

QCoro::Task<std::expected<Frame, InstanceError>> exchange(StoreHolder window, Frame request,
                                                          std::chrono::milliseconds patience) {
  const std::unique_ptr<InstanceExchange, DeleteLater> one(new InstanceExchange(std::move(window), patience));
  one->start(request);
  co_await qCoro(one.get(), &InstanceExchange::finished);
  co_return one->result();
}

QCoro::Task<std::expected<CommandReply, InstanceError>> runCommand(StoreHolder window, CommandRequest request,
                                                                   std::chrono::milliseconds patience) {
  const auto answer = co_await exchange(std::move(window), commandFrame(request), patience);
  if (!answer) co_return std::unexpected(answer.error());
  auto reply = toCommandReply(*answer);
  if (!reply) co_return std::unexpected(InstanceError{InstanceProblem::refused, reply.error()});
  co_return std::move(*reply);
}

QCoro::Task<std::expected<void, InstanceError>> raiseWindow(StoreHolder window, RaiseRequest request,
                                                            std::chrono::milliseconds patience) {
  const auto answer = co_await exchange(std::move(window), raiseFrame(request), patience);
  if (!answer) co_return std::unexpected(answer.error());
  co_return std::expected<void, InstanceError>();
}

}  // namespace

bool InstanceClient::reachable() const {
  QLocalSocket socket;
  socket.connectToServer(window_.socketPath);
  return socket.waitForConnected(int(kPatience.count()));
}

QCoro::Task<std::expected<void, InstanceError>> InstanceClient::raise(RaiseRequest request,
                                                                      std::chrono::milliseconds patience) const {
  return raiseWindow(window_, std::move(request), patience);
}

QCoro::Task<std::expected<CommandReply, InstanceError>> InstanceClient::run(CommandRequest request,
                                                                            std::chrono::milliseconds patience) const {
  return runCommand(window_, std::move(request), patience);
}

std::expected<void, InstanceError> InstanceClient::raiseAndWait(RaiseRequest request,
                                                                std::chrono::milliseconds patience) const {
  return QCoro::waitFor(raise(std::move(request), patience));
}

std::expected<CommandReply, InstanceError> InstanceClient::runAndWait(CommandRequest request,
                                                                      std::chrono::milliseconds patience) const {
  return QCoro::waitFor(run(std::move(request), patience));
}

RaiseRequest raiseRequestFromEnvironment(const QString& deepLink) {
  QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
  if (token.isEmpty()) token = qEnvironmentVariable("DESKTOP_STARTUP_ID");
  return {token, deepLink};
}

}  // namespace thalvorn
