#pragma once

#include <QString>
#include <chrono>
#include <expected>
#include <optional>

namespace thalvorn {

/// What kind of process works on a store file.
enum class StoreRole {
  window,   ///< the desktop program: holds the store as long as it runs and takes commands over its socket
  command,  ///< the command line: holds the store for one command
};

/// Who holds a store, as the holder itself has written it into the lock file.
struct StoreHolder {
  StoreRole role = StoreRole::command;
  qint64 process = 0;
  QString socketPath;  ///< where a window listens; empty for a command
};

/// Why a store could not be had, or the window that holds it could not be asked.
enum class InstanceProblem {
  unavailable,  ///< the lock file or the socket cannot be made: permissions, read-only disk, missing folder
  busy,         ///< someone else still held the store when the wait was over
  unreachable,  ///< the window holds the store but cannot be connected to, or went away before it answered
  silent,       ///< the window was asked and has said nothing for too long
  refused,      ///< the window answered that it cannot do what was asked (the message is its own)
};

struct InstanceError {
  InstanceProblem problem = InstanceProblem::unavailable;
  QString message;  ///< for the user: what happened and what to do
};

/// The exclusive right to write a store file, among all processes of this computer.
///
/// It is a kernel lock on the file `<store>.lock` beside the store, so that it works however the store is named and
/// whatever environment the processes run in. The kernel drops it when its holder dies, by SIGKILL too: there is no
/// stale lock to clean up, and the next process simply gets it. The file itself stays; while the lock is held it
/// tells who holds it.
class StoreLock {
 public:
  /// Takes the lock at once or fails with `busy` (or `unavailable`).
  static std::expected<StoreLock, InstanceError> tryAcquire(const QString& storePath, StoreRole role);

  /// Takes the lock, waiting for its holder up to `wait`. Blocks the calling thread.
  static std::expected<StoreLock, InstanceError> acquire(const QString& storePath, StoreRole role,
                                                         std::chrono::milliseconds wait);

  /// What the lock file says of its holder. Nothing when it is free, or being taken or released right now.
  static std::optional<StoreHolder> holder(const QString& storePath);

  /// The path of the lock file of a store.
  static QString lockFilePath(const QString& storePath);

  StoreLock(StoreLock&& other) noexcept;
  StoreLock& operator=(StoreLock&& other) noexcept;
  StoreLock(const StoreLock&) = delete;
  StoreLock& operator=(const StoreLock&) = delete;
  ~StoreLock();

  /// Tells other processes who holds the store. False when the disk does not take it: the lock holds all the same, and
  /// a window is still found at `instanceSocketPath`.
  bool publish(const StoreHolder& holder);

 private:
  explicit StoreLock(int descriptor) : descriptor_(descriptor) {}
  void release();

  int descriptor_ = -1;
};

/// "the Thalvorn window (process 4711)" or "another thalvorn-cli command (process 4711)".
QString describe(const StoreHolder& holder);

/// The error of a store that stayed taken while we waited.
InstanceError stillHeld(const QString& storePath, const std::optional<StoreHolder>& holder,
                        std::chrono::milliseconds waited);

}  // namespace thalvorn
