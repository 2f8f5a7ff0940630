#include "platform/store_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>
#include <utility>

#include "platform/user_folders.h"

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A holder's own description is a few hundred bytes; anything longer is not ours.
constexpr int kHolderLimit = 4096;

InstanceError unavailable(const QString& lockPath, int code) {
  return {InstanceProblem::unavailable,
          u"The store cannot be locked: %1: %2. Check that its folder exists and can be written."_s.arg(
              lockPath, QString::fromLocal8Bit(std::strerror(code)))};
}

}  // namespace

QString StoreLock::lockFilePath(const QString& storePath) { return canonicalStorePath(storePath) + ".lock"_L1; }

std::expected<StoreLock, InstanceError> StoreLock::tryAcquire(const QString& storePath, StoreRole role) {
  const QString path = lockFilePath(storePath);
  const int descriptor =
      ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
  if (descriptor < 0) return std::unexpected(unavailable(path, errno));

  int result = 0;
  do {
    result = ::flock(descriptor, LOCK_EX | LOCK_NB);
  } while (result != 0 && errno == EINTR);
  if (result != 0) {
    const int code = errno;
    ::close(descriptor);
    if (code == EWOULDBLOCK) return std::unexpected(stillHeld(storePath, holder(storePath), 0ms));
    return std::unexpected(unavailable(path, code));
  }

  StoreLock lock(descriptor);
  lock.publish({role, QCoreApplication::applicationPid(), {}});
  return lock;
}

std::expected<StoreLock, InstanceError> StoreLock::acquire(const QString& storePath, StoreRole role,
                                                           std::chrono::milliseconds wait) {
  const auto start = std::chrono::steady_clock::now();
  auto pause = 2ms;
  for (;;) {
    auto lock = tryAcquire(storePath, role);
    if (lock || lock.error().problem != InstanceProblem::busy) return lock;
    if (std::chrono::steady_clock::now() - start >= wait) {
      return std::unexpected(stillHeld(storePath, holder(storePath), wait));
    }
    std::this_thread::sleep_for(pause);
    pause = std::min(pause * 2, 50ms);
  }
}

std::optional<StoreHolder> StoreLock::holder(const QString& storePath) {
  QFile file(lockFilePath(storePath));
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QJsonObject text = QJsonDocument::fromJson(file.read(kHolderLimit)).object();
  if (!text.contains("role"_L1)) return std::nullopt;
  return StoreHolder{text.value("role"_L1).toString() == "window"_L1 ? StoreRole::window : StoreRole::command,
                     text.value("process"_L1).toInteger(), text.value("socket"_L1).toString()};
}

StoreLock::StoreLock(StoreLock&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

StoreLock& StoreLock::operator=(StoreLock&& other) noexcept {
  if (this != &other) {
    release();
    descriptor_ = std::exchange(other.descriptor_, -1);
  }
  return *this;
}

StoreLock::~StoreLock() { release(); }

void StoreLock::release() {
  if (descriptor_ < 0) return;
  // Emptied before the lock is dropped, so that nobody takes this holder for the next one. Should that fail, the next
  // holder overwrites it.
  [[maybe_unused]] const int emptied = ::ftruncate(descriptor_, 0);
  ::close(descriptor_);
  descriptor_ = -1;
}

bool StoreLock::publish(const StoreHolder& holder) {
  const QByteArray text =
      QJsonDocument(QJsonObject{{u"role"_s, holder.role == StoreRole::window ? u"window"_s : u"command"_s},
                                {u"process"_s, holder.process},
                                {u"socket"_s, holder.socketPath}})
          .toJson(QJsonDocument::Compact);
  return ::ftruncate(descriptor_, 0) == 0 && ::pwrite(descriptor_, text.constData(), text.size(), 0) == text.size();
}

QString describe(const StoreHolder& holder) {
  const QString who = holder.role == StoreRole::window ? u"the Thalvorn window (process %1)"_s
                                                       : u"another thalvorn-cli command (process %1)"_s;
  return who.arg(holder.process);
}

InstanceError stillHeld(const QString& storePath, const std::optional<StoreHolder>& holder,
                        std::chrono::milliseconds waited) {
  const QString who = holder ? describe(*holder) : u"another program"_s;
  const QString howLong = waited > 0ms ? u" after waiting %1 s"_s.arg(double(waited.count()) / 1000.0) : QString();
  return {InstanceProblem::busy, u"The store %1 is still in use by %2%3. Try again when it has finished."_s.arg(
                                     canonicalStorePath(storePath), who, howLong)};
}

}  // namespace thalvorn
