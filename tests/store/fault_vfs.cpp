#include "store/fault_vfs.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <new>
#include <ranges>

namespace thalvorn::testing_tools {
namespace {

FaultVfs* current = nullptr;
sqlite3_vfs* system_vfs = nullptr;
sqlite3_vfs shim{};

/// The system's file follows in memory.
struct ShimFile {
  sqlite3_file base;
  const char* name;
};
sqlite3_file* under(sqlite3_file* file) {
  return reinterpret_cast<sqlite3_file*>(reinterpret_cast<ShimFile*>(file) + 1);
}

template <auto Method>
struct Forward;
template <class... Rest, int (*sqlite3_io_methods::*Method)(sqlite3_file*, Rest...)>
struct Forward<Method> {
  static int call(sqlite3_file* file, Rest... rest) { return (under(file)->pMethods->*Method)(under(file), rest...); }
};

}  // namespace

struct FaultVfs::Methods {
  static std::string nameOf(sqlite3_file* file) {
    const char* name = reinterpret_cast<ShimFile*>(file)->name;
    return name ? name : "";
  }

  /// Remembers what a change is going to overwrite.
  static void remember(sqlite3_file* file, std::int64_t offset, std::int64_t length) {
    sqlite3_int64 size = 0;
    under(file)->pMethods->xFileSize(under(file), &size);
    const auto [log, is_new] = current->unsynced_.try_emplace(nameOf(file));
    if (is_new) log->second.size = size;
    const std::int64_t there = std::min<std::int64_t>(length, size - offset);
    if (there <= 0) return;
    std::string bytes(static_cast<std::size_t>(there), '\0');
    under(file)->pMethods->xRead(under(file), bytes.data(), static_cast<int>(there), offset);
    log->second.overwritten.emplace_back(offset, std::move(bytes));
  }

  static int write(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset) {
    const std::lock_guard lock(current->mutex_);
    if (current->counts()) return SQLITE_IOERR_WRITE;
    remember(file, offset, count);
    return under(file)->pMethods->xWrite(under(file), bytes, count, offset);
  }
  static int truncate(sqlite3_file* file, sqlite3_int64 size) {
    const std::lock_guard lock(current->mutex_);
    if (current->counts()) return SQLITE_IOERR_TRUNCATE;
    remember(file, size, INT64_MAX);
    return under(file)->pMethods->xTruncate(under(file), size);
  }
  /// What the system holds counts as on the disk from here on; waiting for the real disk would only be slow.
  static int sync(sqlite3_file* file, int) {
    const std::lock_guard lock(current->mutex_);
    if (current->counts()) return SQLITE_IOERR_FSYNC;
    current->unsynced_.erase(nameOf(file));
    return SQLITE_OK;
  }
  static int remove(sqlite3_vfs*, const char* name, int) {
    const std::lock_guard lock(current->mutex_);
    if (current->counts()) return SQLITE_IOERR_DELETE;
    current->unsynced_.erase(name);
    return system_vfs->xDelete(system_vfs, name, 0);
  }
  static int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* out_flags) {
    auto* mine = new (file) ShimFile{};
    mine->name = name;
    if (flags & SQLITE_OPEN_CREATE) {
      const std::lock_guard lock(current->mutex_);
      if (current->counts()) return SQLITE_CANTOPEN;
    }
    const int result = system_vfs->xOpen(system_vfs, name, under(file), flags, out_flags);
    if (under(file)->pMethods) mine->base.pMethods = &table();
    return result;
  }
  static void shmBarrier(sqlite3_file* file) { under(file)->pMethods->xShmBarrier(under(file)); }

  static const sqlite3_io_methods& table() {
    using M = sqlite3_io_methods;
    static const sqlite3_io_methods methods{.iVersion = 3,
                                            .xClose = Forward<&M::xClose>::call,
                                            .xRead = Forward<&M::xRead>::call,
                                            .xWrite = write,
                                            .xTruncate = truncate,
                                            .xSync = sync,
                                            .xFileSize = Forward<&M::xFileSize>::call,
                                            .xLock = Forward<&M::xLock>::call,
                                            .xUnlock = Forward<&M::xUnlock>::call,
                                            .xCheckReservedLock = Forward<&M::xCheckReservedLock>::call,
                                            .xFileControl = Forward<&M::xFileControl>::call,
                                            .xSectorSize = Forward<&M::xSectorSize>::call,
                                            .xDeviceCharacteristics = Forward<&M::xDeviceCharacteristics>::call,
                                            .xShmMap = Forward<&M::xShmMap>::call,
                                            .xShmLock = Forward<&M::xShmLock>::call,
                                            .xShmBarrier = shmBarrier,
                                            .xShmUnmap = Forward<&M::xShmUnmap>::call,
                                            .xFetch = Forward<&M::xFetch>::call,
                                            .xUnfetch = Forward<&M::xUnfetch>::call};
    return methods;
  }
};

FaultVfs::FaultVfs() {
  current = this;
  system_vfs = sqlite3_vfs_find("unix");
  shim = *system_vfs;
  shim.pNext = nullptr;
  shim.zName = "fault";
  shim.szOsFile = static_cast<int>(sizeof(ShimFile)) + system_vfs->szOsFile;
  shim.xOpen = Methods::open;
  shim.xDelete = Methods::remove;
  sqlite3_vfs_register(&shim, 1);
}

FaultVfs::~FaultVfs() {
  sqlite3_vfs_unregister(&shim);
  sqlite3_vfs_register(system_vfs, 1);
  current = nullptr;
}

bool FaultVfs::counts() {
  ++calls_;
  return nth_ > 0 && (fault_ == Fault::once ? calls_ == nth_ : calls_ >= nth_);
}

void FaultVfs::arm(int nth, Fault fault) {
  const std::lock_guard lock(mutex_);
  calls_ = 0;
  nth_ = nth;
  fault_ = fault;
  unsynced_.clear();
}

bool FaultVfs::fired() const {
  const std::lock_guard lock(mutex_);
  return nth_ > 0 && calls_ >= nth_;
}

void FaultVfs::disarm() {
  const bool cut = fault_ == Fault::powerCut && fired();
  const std::lock_guard lock(mutex_);
  nth_ = 0;
  if (!cut) return;
  for (const auto& [name, log] : unsynced_) {
    const int file = ::open(name.c_str(), O_RDWR | O_CLOEXEC);
    if (file < 0) continue;
    for (const auto& [offset, bytes] : log.overwritten | std::views::reverse)
      if (::pwrite(file, bytes.data(), bytes.size(), offset) < 0) continue;
    if (::ftruncate(file, log.size) == 0) ::fsync(file);
    ::close(file);
  }
  unsynced_.clear();
}

}  // namespace thalvorn::testing_tools
