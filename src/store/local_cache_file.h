#pragma once

#include <SQLiteCpp/SQLiteCpp.h>
#include <SQLiteCpp/VariadicBind.h>

#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "store/local_cache.h"

namespace thalvorn::cache_detail {

/// "THLV": says that an SQLite file is ours.
inline constexpr int kApplicationId = 0x54484C56;
/// The newest layout this program writes.
inline constexpr int kSchemaVersion = 1;

/// A folder for a private copy, mode 0700, removed with its content at the end of its life.
class TemporaryFolder {
 public:
  static std::optional<TemporaryFolder> make();
  TemporaryFolder(TemporaryFolder&& other) noexcept : path_(std::exchange(other.path_, {})) {}
  TemporaryFolder& operator=(TemporaryFolder&& other) noexcept {
    std::swap(path_, other.path_);
    return *this;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();
  const std::filesystem::path& path() const { return path_; }

 private:
  explicit TemporaryFolder(std::filesystem::path path) : path_(std::move(path)) {}
  std::filesystem::path path_;
};

/// An opened file: one connection that writes (absent when the file is read-only) and one that only reads.
struct CacheFile {
  std::filesystem::path path;       ///< as asked for
  std::filesystem::path opened;     ///< where the connections read: `path`, or a private copy of it
  std::string readOnlyReason = {};  ///< for the user; empty when it can be written
  std::optional<TemporaryFolder> copy = std::nullopt;
  std::unique_ptr<SQLite::Database> writer = nullptr;
  std::unique_ptr<SQLite::Database> reader = nullptr;
};

/// What the first bytes of a file say.
struct FileHeader {
  bool isSqlite = false;
  int userVersion = 0;
  int applicationId = 0;
};
FileHeader readHeader(const std::filesystem::path& file);

std::expected<CacheFile, CacheError> openCacheFile(const std::filesystem::path& file, bool create);

/// A further connection with the settings that every connection has: waits for locks, synchronous=FULL.
std::unique_ptr<SQLite::Database> connect(const std::filesystem::path& file, int flags = SQLite::OPEN_READWRITE);
/// A connection that reads the bytes as they lie there and touches nothing, not even locks.
std::unique_ptr<SQLite::Database> connectImmutable(const std::filesystem::path& file);

/// The library's error in the user's words. `database` tells what the system said, where it is known.
CacheError cacheError(const SQLite::Exception& error, const SQLite::Database* database,
                      const std::filesystem::path& file);
CacheError cacheError(CacheError::Kind kind, const std::filesystem::path& file, const std::string& detail = {});

/// `file` with more behind its name: "store.db" + "-wal".
std::filesystem::path beside(const std::filesystem::path& file, std::string_view ending);

/// Makes an empty file of mode 0600 that was not there, and its name durable.
std::expected<void, CacheError> createPrivateFile(const std::filesystem::path& file);
/// Makes what was renamed, linked or removed in a folder durable.
void syncFolder(const std::filesystem::path& folder);
void syncFile(const std::filesystem::path& file);

}  // namespace thalvorn::cache_detail
