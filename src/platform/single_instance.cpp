#include "platform/single_instance.h"

#include <QCryptographicHash>
#include <QLoggingCategory>
#include <QPointer>
#include <exception>
#include <utility>

#include "platform/instance_connection.h"
#include "platform/user_folders.h"

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(logInstance, "thalvorn.platform.instance")

constexpr qsizetype kHashLength = 32;
constexpr QLatin1StringView kSuffix = ".socket"_L1;

QCoro::Task<CommandReply> guarded(SingleInstance::CommandHandler handler, CommandRequest request) {
  try {
    co_return co_await handler(std::move(request));
  } catch (const std::exception& error) {
    co_return CommandReply{1, {}, QByteArray("The window could not carry out the command: ") + error.what() + '\n'};
  }
}

}  // namespace

struct SingleInstance::Waiting {
  QPointer<InstanceConnection> connection;
  CommandRequest request;
};

std::expected<QString, QString> instanceSocketPath(const QString& storePath) {
  auto folder = runtimeFolder(kHashLength + kSuffix.size());
  if (!folder) return folder;
  const QByteArray hash = QCryptographicHash::hash(canonicalStorePath(storePath).toUtf8(), QCryptographicHash::Sha256);
  return *folder + u'/' + QLatin1StringView(hash.toHex().first(kHashLength)) + kSuffix;
}

std::expected<std::unique_ptr<SingleInstance>, InstanceError> SingleInstance::listen(StoreLock lock,
                                                                                     const QString& storePath,
                                                                                     Timings timings) {
  const auto path = instanceSocketPath(storePath);
  if (!path) return std::unexpected(InstanceError{InstanceProblem::unavailable, path.error()});

  std::unique_ptr<SingleInstance> instance(new SingleInstance(std::move(lock), timings));
  // The lock is ours, so a socket file that is still there belongs to a window that was killed.
  QLocalServer::removeServer(*path);
  if (!instance->server_.listen(*path)) {
    return std::unexpected(InstanceError{
        InstanceProblem::unavailable, u"The socket %1 cannot be made: %2. Check that its folder can be written."_s.arg(
                                          *path, instance->server_.errorString())});
  }
  if (!instance->lock_.publish({StoreRole::window, QCoreApplication::applicationPid(), *path})) {
    qCWarning(logInstance, "⚠️ the lock file of the store cannot be written; the disk may be full");
  }
  return instance;
}

SingleInstance::SingleInstance(StoreLock lock, Timings timings) : lock_(std::move(lock)), timings_(timings) {
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  connect(&server_, &QLocalServer::newConnection, this, &SingleInstance::accept);
}

SingleInstance::~SingleInstance() {
  server_.close();
  qDeleteAll(findChildren<InstanceConnection*>(Qt::FindDirectChildrenOnly));
}

void SingleInstance::setCommandHandler(CommandHandler handler) {
  handler_ = std::move(handler);
  for (Waiting& each : std::exchange(waiting_, {})) dispatch(each.connection, std::move(each.request));
}

void SingleInstance::accept() {
  while (QLocalSocket* socket = server_.nextPendingConnection()) new InstanceConnection(socket, this);
}

void SingleInstance::begin(InstanceConnection* connection, CommandRequest request) {
  ++running_;
  if (handler_) {
    dispatch(connection, std::move(request));
  } else {
    waiting_.push_back({connection, std::move(request)});
  }
}

void SingleInstance::dispatch(InstanceConnection* connection, CommandRequest request) {
  QCoro::connect(guarded(handler_, std::move(request)), this,
                 [this, target = QPointer(connection)](const CommandReply& reply) {
                   if (target) target->answer(reply);
                   if (--running_ == 0) Q_EMIT idle();
                 });
}

}  // namespace thalvorn
