#include "store/local_cache_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace thalvorn::cache_detail {
namespace {

namespace fs = std::filesystem;
using Kind = CacheError::Kind;

constexpr int kBusyMilliseconds = 5000;

/// `key` is what one entry is called; `pending` segments belong to a fold that has not finished and are not seen before
/// the prefix's fold has reached that revision. Journal rows go only up to their prefix's fold mark, so journal and
/// marks together know the last revision ever given, and none is used twice.
constexpr const char* kSchema = R"sql(
  CREATE TABLE segment(
    prefix TEXT NOT NULL, suffix TEXT NOT NULL, position INTEGER NOT NULL, pending INTEGER NOT NULL DEFAULT 0,
    json TEXT NOT NULL, key TEXT GENERATED ALWAYS AS (prefix || suffix) VIRTUAL,
    PRIMARY KEY(prefix, suffix, position));
  CREATE TABLE journal(
    revision INTEGER PRIMARY KEY, prefix TEXT NOT NULL, at INTEGER NOT NULL, label TEXT NOT NULL,
    changes TEXT NOT NULL);
  CREATE TABLE fold(
    prefix TEXT PRIMARY KEY, revision INTEGER NOT NULL DEFAULT 0, token INTEGER NOT NULL DEFAULT 0) WITHOUT ROWID;
  CREATE TABLE sent(
    prefix TEXT NOT NULL, suffix TEXT NOT NULL, id TEXT NOT NULL, revision INTEGER NOT NULL,
    PRIMARY KEY(prefix, suffix, id)) WITHOUT ROWID;
  CREATE TABLE preference(key TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID;
  CREATE TABLE corrupt(
    key TEXT NOT NULL, digest TEXT NOT NULL, at INTEGER NOT NULL, reason TEXT NOT NULL, bytes BLOB NOT NULL,
    PRIMARY KEY(key, digest));
)sql";

int bigEndian(const char* bytes) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
  return static_cast<int>(value);
}

/// Creates the folders that are missing, for the user alone.
std::error_code makeFolders(const fs::path& folder) {
  std::error_code error;
  if (folder.empty() || fs::exists(folder, error)) return error;
  if (const auto above = makeFolders(folder.parent_path())) return above;
  if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) return {errno, std::generic_category()};
  return {};
}

CacheError systemError(const std::error_code& error, const fs::path& file) {
  if (error == std::errc::no_space_on_device || error.value() == EDQUOT) return cacheError(Kind::diskFull, file);
  if (error == std::errc::permission_denied || error == std::errc::read_only_file_system ||
      error == std::errc::operation_not_permitted)
    return cacheError(Kind::readOnly, file);
  return cacheError(Kind::other, file, error.message());
}

/// Whether the user that the program acts for may do this.
bool permitted(const fs::path& path, int mode) {
  return ::faccessat(AT_FDCWD, path.empty() ? "." : path.c_str(), mode, AT_EACCESS) == 0;
}

/// Opens without writing anything. A write-ahead log left by a program that was killed is read with it, from a private
/// copy of both, because reading it in place would write.
std::expected<CacheFile, CacheError> openReadOnly(const fs::path& file, std::string reason) {
  CacheFile result{.path = file, .opened = file, .readOnlyReason = std::move(reason)};
  std::error_code error;
  bool leftovers = false;
  for (const char* ending : {"-wal", "-journal"})
    leftovers =
        leftovers || (fs::exists(beside(file, ending), error) && fs::file_size(beside(file, ending), error) > 0);
  if (leftovers) {
    result.copy = TemporaryFolder::make();
    if (!result.copy) return std::unexpected(cacheError(Kind::other, file, "no temporary folder can be made"));
    result.opened = result.copy->path() / file.filename();
    for (const char* ending : {"", "-wal", "-journal"}) {
      if (!fs::exists(beside(file, ending), error)) continue;
      if (!fs::copy_file(beside(file, ending), beside(result.opened, ending), error))
        return std::unexpected(systemError(error, file));
      ::chmod(beside(result.opened, ending).c_str(), 0600);
    }
    result.reader = connect(result.opened);
  } else {
    result.reader = connectImmutable(file);
  }
  if (result.reader->execAndGet("SELECT count(*) FROM sqlite_master WHERE name IN ('segment', 'journal')").getInt() !=
      2)
    return std::unexpected(cacheError(Kind::damaged, file));
  return result;
}

/// Brings an empty file to the newest layout, in one transaction of the rollback journal, so that the first page of the
/// file itself says whose it is and of which version before the write-ahead log begins.
void createLayout(SQLite::Database& database) {
  SQLite::Transaction transaction(database, SQLite::TransactionBehavior::EXCLUSIVE);
  if (database.execAndGet("PRAGMA user_version").getInt() != 0) return;
  database.exec(kSchema);
  database.exec(fmt::format("PRAGMA application_id={}; PRAGMA user_version={}", kApplicationId, kSchemaVersion));
  transaction.commit();
}

/// The system's last error on the write-ahead log or the file. sqlite3_system_errno is no help: by the time it looks,
/// the rollback has overwritten it.
int systemErrorOf(sqlite3* database) {
  int result = 0;
  sqlite3_file* log = nullptr;
  sqlite3_file_control(database, "main", SQLITE_FCNTL_JOURNAL_POINTER, static_cast<void*>(&log));
  if (log && log->pMethods) log->pMethods->xFileControl(log, SQLITE_FCNTL_LAST_ERRNO, &result);
  if (result == 0) sqlite3_file_control(database, "main", SQLITE_FCNTL_LAST_ERRNO, &result);
  return result;
}

/// Whether the index of the write-ahead log, a file that even reading needs, could not be made.
bool lacksRoomForIndex(const SQLite::Exception& error) {
  const int code = error.getExtendedErrorCode();
  return code == SQLITE_IOERR_SHMSIZE || code == SQLITE_IOERR_SHMMAP || code == SQLITE_IOERR_SHMOPEN;
}

std::string newerVersionReason(const fs::path& file) { return cacheError(Kind::newerVersion, file).message; }

std::expected<CacheFile, CacheError> openWritable(const fs::path& file) {
  CacheFile result{.path = file, .opened = file};
  auto database = connect(file);
  // Until the file is known to be of our version, closing it must not move its log into it.
  sqlite3_db_config(database->getHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  const int version = database->execAndGet("PRAGMA user_version").getInt();
  const int application = database->execAndGet("PRAGMA application_id").getInt();
  const bool empty = database->execAndGet("SELECT count(*) FROM sqlite_master").getInt() == 0;
  if (application != kApplicationId && !(empty && application == 0))
    return std::unexpected(cacheError(Kind::damaged, file));
  if (version > kSchemaVersion) {
    database.reset();
    return openReadOnly(file, newerVersionReason(file));
  }
  sqlite3_db_config(database->getHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
  if (version == 0) createLayout(*database);
  database->execAndGet("PRAGMA journal_mode=WAL");
  database->exec("PRAGMA journal_size_limit=67108864");
  for (const char* ending : {"", "-wal", "-shm"}) ::chmod(beside(file, ending).c_str(), 0600);
  result.writer = std::move(database);
  result.reader = connect(file);
  result.reader->exec("PRAGMA query_only=1");
  return result;
}

}  // namespace

std::optional<TemporaryFolder> TemporaryFolder::make() {
  std::error_code error;
  std::string name = (fs::temp_directory_path(error) / "thalvorn-XXXXXX").string();
  if (error || !::mkdtemp(name.data())) return std::nullopt;
  return TemporaryFolder(name);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code error;
  if (!path_.empty()) fs::remove_all(path_, error);
}

fs::path beside(const fs::path& file, std::string_view ending) {
  fs::path result = file;
  result += ending;
  return result;
}

FileHeader readHeader(const fs::path& file) {
  constexpr std::string_view magic{"SQLite format 3\0", 16};
  std::array<char, 100> bytes{};
  std::ifstream stream(file, std::ios::binary);
  if (!stream.read(bytes.data(), bytes.size())) return {};
  return {.isSqlite = std::string_view(bytes.data(), magic.size()) == magic,
          .userVersion = bigEndian(bytes.data() + 60),
          .applicationId = bigEndian(bytes.data() + 68)};
}

std::unique_ptr<SQLite::Database> connect(const fs::path& file, int flags) {
  auto database = std::make_unique<SQLite::Database>(file.string(), flags, kBusyMilliseconds);
  database->exec("PRAGMA synchronous=FULL; PRAGMA temp_store=MEMORY; PRAGMA trusted_schema=0");
  return database;
}

std::unique_ptr<SQLite::Database> connectImmutable(const fs::path& file) {
  std::string uri = "file:";
  for (const char c : fs::absolute(file).string()) {
    const bool plain = std::isalnum(static_cast<unsigned char>(c)) || c == '/' || c == '.' || c == '-' || c == '_';
    uri += plain ? std::string(1, c) : fmt::format("%{:02X}", static_cast<unsigned char>(c));
  }
  return connect(uri + "?immutable=1", SQLite::OPEN_READONLY | SQLite::OPEN_URI);
}

std::expected<void, CacheError> createPrivateFile(const fs::path& file) {
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (descriptor < 0) return std::unexpected(systemError({errno, std::generic_category()}, file));
  ::close(descriptor);
  syncFolder(file.parent_path());
  return {};
}

void syncFolder(const fs::path& folder) { syncFile(folder.empty() ? fs::path(".") : folder); }

void syncFile(const fs::path& file) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

std::expected<CacheFile, CacheError> openCacheFile(const fs::path& file, bool create) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (fs::is_directory(status)) return std::unexpected(cacheError(Kind::other, file, "there is a folder of that name"));
  try {
    if (!fs::exists(status)) {
      if (error && error != std::errc::no_such_file_or_directory) return std::unexpected(systemError(error, file));
      if (!create) return std::unexpected(cacheError(Kind::notFound, file));
      if (const auto failed = makeFolders(file.parent_path())) return std::unexpected(systemError(failed, file));
      if (auto made = createPrivateFile(file); !made) return std::unexpected(made.error());
      return openWritable(file);
    }
    if (!fs::is_regular_file(status)) return std::unexpected(cacheError(Kind::other, file, "it is not a regular file"));
    const auto size = fs::file_size(file, error);
    const bool interrupted = fs::exists(beside(file, "-journal"), error);
    const FileHeader header = readHeader(file);
    if (size > 0 && !interrupted) {
      if (!permitted(file, R_OK)) return std::unexpected(cacheError(Kind::other, file, "you may not read it"));
      if (!header.isSqlite || (header.applicationId != kApplicationId && header.applicationId != 0))
        return std::unexpected(cacheError(Kind::damaged, file));
      if (header.userVersion > kSchemaVersion) return openReadOnly(file, newerVersionReason(file));
    }
    if (!permitted(file, W_OK) || !permitted(file.parent_path(), W_OK)) {
      if (size == 0) return std::unexpected(cacheError(Kind::readOnly, file));
      return openReadOnly(file, cacheError(Kind::readOnly, file).message);
    }
    try {
      return openWritable(file);
    } catch (const SQLite::Exception& failed) {
      if (size == 0 || !lacksRoomForIndex(failed)) throw;
      return openReadOnly(file,
                          "The disk is full, so the records can only be looked at. Free some space, then start "
                          "again.");
    }
  } catch (const SQLite::Exception& failed) {
    return std::unexpected(cacheError(failed, nullptr, file));
  }
}

CacheError cacheError(const SQLite::Exception& error, const SQLite::Database* database, const fs::path& file) {
  const int system = database ? systemErrorOf(database->getHandle()) : 0;
  switch (error.getErrorCode() & 0xff) {
    case SQLITE_FULL:
      return cacheError(Kind::diskFull, file);
    case SQLITE_IOERR:
      if (system == ENOSPC || system == EDQUOT || system == EFBIG) return cacheError(Kind::diskFull, file);
      return cacheError(Kind::other, file,
                        system != 0 ? std::generic_category().message(system) : std::string(error.getErrorStr()));
    case SQLITE_READONLY:
    case SQLITE_PERM:
      return cacheError(Kind::readOnly, file);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return cacheError(Kind::locked, file);
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return cacheError(Kind::damaged, file);
    default:
      return cacheError(Kind::other, file, error.what());
  }
}

CacheError cacheError(Kind kind, const fs::path& file, const std::string& detail) {
  const std::string name = file.string();
  switch (kind) {
    case Kind::diskFull:
      return {kind, "The disk is full. Nothing that was saved before is lost. Free some space, then save again."};
    case Kind::readOnly:
      return {kind,
              fmt::format("The data file “{}” or its folder cannot be written. Allow writing, then save again.", name)};
    case Kind::locked:
      return {kind, fmt::format("Another program holds the data file “{}”. Close it, then try again.", name)};
    case Kind::damaged:
      return {kind, fmt::format("“{}” is damaged or not a data file of this program. It was left as it is. Restore a "
                                "backup, or move the file away to start empty.",
                                name)};
    case Kind::newerVersion:
      return {kind, fmt::format("The data file “{}” was written by a newer version of this program. It is shown, but "
                                "nothing can be changed. Update the program to edit.",
                                name)};
    case Kind::notFound:
      return {kind, fmt::format("There is no data file “{}”.", name)};
    case Kind::other:
      break;
  }
  return {kind, fmt::format("The data file “{}” cannot be used: {}.", name, detail)};
}

}  // namespace thalvorn::cache_detail
