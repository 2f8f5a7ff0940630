#pragma once

#include <QCoroTask>
#include <QLocalServer>
#include <QObject>
#include <chrono>
#include <expected>
#include <functional>
#include <memory>
#include <vector>

#include "platform/instance_protocol.h"
#include "platform/store_lock.h"

namespace thalvorn {

class InstanceConnection;

/// The one window of a store file: holds the store's lock and listens for other processes of the same user.
///
/// A second start asks it to come to the front (`raiseRequested`); the command line hands it its commands, which run
/// in the injected handler. Commands that come before the handler is set wait for it. Whatever else comes over the
/// socket is answered with an error and the connection closed. Get one by `claimForWindow` (store_access.h).
class SingleInstance : public QObject {
  Q_OBJECT

 public:
  /// Carries out one command and returns what the command line prints. Several may run at a time. An exception that
  /// leaves it becomes exit status 1 with its text on standard error.
  using CommandHandler = std::function<QCoro::Task<CommandReply>(CommandRequest)>;

  struct Timings {
    std::chrono::milliseconds idle = std::chrono::seconds(30);      ///< longest pause within a message
    std::chrono::milliseconds heartbeat = std::chrono::seconds(2);  ///< how often a running command says "working"
  };

  /// Starts to listen for the store whose lock this process holds, and publishes where.
  static std::expected<std::unique_ptr<SingleInstance>, InstanceError> listen(StoreLock lock, const QString& storePath,
                                                                              Timings timings);

  /// Stops listening, then gives the store free. Commands still running lose their connection: wait for `idle` first.
  ~SingleInstance() override;

  void setCommandHandler(CommandHandler handler);

  /// How many commands run or wait at this moment.
  int runningCommands() const { return running_; }

 Q_SIGNALS:
  /// Someone started the program again, or opened a link.
  void raiseRequested(const thalvorn::RaiseRequest& request);

  /// The last running command has ended.
  void idle();

 private:
  friend class InstanceConnection;

  SingleInstance(StoreLock lock, Timings timings);
  void accept();
  void begin(InstanceConnection* connection, CommandRequest request);
  void dispatch(InstanceConnection* connection, CommandRequest request);

  struct Waiting;

  StoreLock lock_;
  Timings timings_;
  CommandHandler handler_;
  std::vector<Waiting> waiting_;
  int running_ = 0;
  QLocalServer server_;
};

/// Where the window of a store listens: named after a hash of the store's canonical path.
std::expected<QString, QString> instanceSocketPath(const QString& storePath);

}  // namespace thalvorn
