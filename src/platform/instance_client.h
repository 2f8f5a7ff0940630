#pragma once

#include <QCoroTask>
#include <QString>
#include <chrono>
#include <expected>

#include "platform/instance_protocol.h"
#include "platform/store_lock.h"

namespace thalvorn {

/// Talks to the window that holds a store. Each call is one connection with one request.
///
/// A call fails with `unreachable` when the window cannot be connected to or goes away before it has answered, with
/// `silent` when it says nothing for `patience` (a window that carries out a long command says "working" every few
/// seconds, so a slow command never fails by time), with `refused` when it answers with an error.
class InstanceClient {
 public:
  static constexpr std::chrono::milliseconds kPatience = std::chrono::seconds(15);

  explicit InstanceClient(StoreHolder window) : window_(std::move(window)) {}

  const StoreHolder& window() const { return window_; }

  /// True when something listens on the window's socket at this moment. Blocks for as long as connecting takes.
  bool reachable() const;

  /// Asks the window to come to the front.
  QCoro::Task<std::expected<void, InstanceError>> raise(RaiseRequest request,
                                                        std::chrono::milliseconds patience = kPatience) const;

  /// Has the window carry out a command.
  QCoro::Task<std::expected<CommandReply, InstanceError>> run(CommandRequest request,
                                                              std::chrono::milliseconds patience = kPatience) const;

  /// The same for a process without an event loop of its own running (the command line, a second start of the window):
  /// return when the answer is there. They need a QCoreApplication object.
  std::expected<void, InstanceError> raiseAndWait(RaiseRequest request,
                                                  std::chrono::milliseconds patience = kPatience) const;
  std::expected<CommandReply, InstanceError> runAndWait(CommandRequest request,
                                                        std::chrono::milliseconds patience = kPatience) const;

 private:
  StoreHolder window_;
};

/// What a second start of the window passes on: the activation token that the desktop gave it by its environment, and
/// the link it was started with.
RaiseRequest raiseRequestFromEnvironment(const QString& deepLink);

}  // namespace thalvorn
