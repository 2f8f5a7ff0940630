#include "store/local_cache_upkeep.h"

#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <set>

#include "base/json.h"
#include "store/local_cache_file.h"
#include "store/local_cache_journal.h"

namespace thalvorn::cache_detail {
namespace {

namespace fs = std::filesystem;
using Kind = CacheError::Kind;
using SQLite::Statement;

/// Collects findings; what is wrong makes the file unsound.
struct Findings {
  CacheReport report{.sound = true, .findings = {}};
  void fine(std::string line) { report.findings.push_back(std::move(line)); }
  void wrong(std::string line) {
    report.findings.push_back(std::move(line));
    report.sound = false;
  }
};

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

void checkPages(SQLite::Database& reader, Findings& findings) {
  Statement query(reader, "PRAGMA integrity_check(20)");
  bool fine = true;
  while (query.executeStep()) {
    const std::string line = query.getColumn(0).getString();
    if (line == "ok") continue;
    fine = false;
    findings.wrong("The file is damaged: " + line);
  }
  if (fine) findings.fine("The file is intact");
}

/// One entry at a time: its segments follow each other in the query.
class EntryCheck {
 public:
  EntryCheck(std::string key, Findings& findings) : key_(std::move(key)), findings_(findings) {}
  void take(std::int64_t position, const std::string& json) {
    ++segments_;
    const auto elements = splitJsonList(json);
    if (!elements) {
      findings_.wrong(
          fmt::format("{}: the segment at {} ({} bytes) {}", key_, position, json.size(), elements.error().message()));
      return;
    }
    for (const RawElement& element : *elements) {
      ++records_;
      if (!Uuid::parse(element.id))
        findings_.wrong(fmt::format("{}: a record of {} bytes has no identifier", key_, element.bytes.size()));
      else if (!ids_.insert(element.id).second)
        findings_.wrong(fmt::format("{}: the identifier {} is there twice", key_, element.id));
    }
  }
  const std::string& key() const { return key_; }
  void finish() const {
    findings_.fine(fmt::format("{}: {} in {}", key_, counted(records_, "record", "records"),
                               counted(segments_, "segment", "segments")));
  }

 private:
  std::string key_;
  Findings& findings_;
  std::size_t segments_ = 0;
  std::size_t records_ = 0;
  std::set<std::string> ids_;
};

void checkEntries(SQLite::Database& reader, Findings& findings) {
  Statement query(reader,
                  "SELECT key, position, json FROM segment LEFT JOIN fold USING(prefix)"
                  " WHERE pending <= coalesce(fold.revision, 0) ORDER BY segment.prefix, suffix, position");
  std::optional<EntryCheck> entry;
  while (query.executeStep()) {
    const std::string key = query.getColumn(0).getString();
    if (!entry || entry->key() != key) {
      if (entry) entry->finish();
      entry.emplace(key, findings);
    }
    entry->take(query.getColumn(1).getInt64(), query.getColumn(2).getString());
  }
  if (entry) entry->finish();
}

void checkJournal(SQLite::Database& reader, Findings& findings) {
  Statement query(reader, "SELECT revision, changes FROM journal ORDER BY revision");
  std::size_t edits = 0;
  while (query.executeStep()) {
    ++edits;
    if (!decodeChanges(query.getColumn(1).getString()))
      findings.wrong(fmt::format("The edit {} cannot be read", query.getColumn(0).getInt64()));
  }
  findings.fine(fmt::format("{} in the journal", counted(edits, "edit", "edits")));
  const int aside = reader.execAndGet("SELECT count(*) FROM corrupt").getInt();
  if (aside > 0)
    findings.fine(fmt::format("{} that could not be read, set aside for support",
                              counted(static_cast<std::size_t>(aside), "text", "texts")));
}

void checkModes(const fs::path& file, Findings& findings) {
  for (const char* ending : {"", "-wal", "-shm"}) {
    struct stat status{};
    if (::stat(beside(file, ending).c_str(), &status) == 0 && (status.st_mode & 077) != 0)
      findings.wrong(fmt::format("Other users of this computer may read {}", beside(file, ending).string()));
  }
}

std::string timeStamp() {
  const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
  std::string text = formatTimestamp(now);
  std::erase_if(text, [](char c) { return c == ':'; });
  return text;
}

/// A file of this program, of a version it can read, intact.
std::expected<void, CacheError> validate(const fs::path& file) {
  std::error_code error;
  if (!fs::exists(file, error)) return std::unexpected(cacheError(Kind::notFound, file));
  if (!fs::is_regular_file(file, error)) return std::unexpected(cacheError(Kind::other, file, "it is not a file"));
  const FileHeader header = readHeader(file);
  if (!header.isSqlite || header.applicationId != kApplicationId)
    return std::unexpected(cacheError(Kind::damaged, file));
  if (header.userVersion > kSchemaVersion) return std::unexpected(cacheError(Kind::newerVersion, file));
  try {
    const auto database = connectImmutable(file);
    if (database->execAndGet("PRAGMA integrity_check(1)").getString() != "ok")
      return std::unexpected(cacheError(Kind::damaged, file));
  } catch (const SQLite::Exception& failed) {
    return std::unexpected(cacheError(failed, nullptr, file));
  }
  return {};
}

/// Lets the reading connection write for a while: SQLite takes copying the file elsewhere for writing.
class Writing {
 public:
  explicit Writing(SQLite::Database& reader) : reader_(reader) { reader_.exec("PRAGMA query_only=0"); }
  ~Writing() { reader_.tryExec("PRAGMA query_only=1"); }
  Writing(const Writing&) = delete;
  Writing& operator=(const Writing&) = delete;

 private:
  SQLite::Database& reader_;
};

/// Takes the session keys out so that their bytes are gone, not only their rows.
void removeSessionKeys(const fs::path& file) {
  const auto database = connect(file);
  database->execAndGet("PRAGMA journal_mode=MEMORY");
  database->execAndGet("PRAGMA secure_delete=ON");
  database->exec("DELETE FROM preference WHERE substr(key, 1, 3) = 'sb_'");
}

std::unexpected<CacheError> failedCopy(const fs::path& file, const std::error_code& error) {
  return std::unexpected(error == std::errc::no_space_on_device ? cacheError(Kind::diskFull, file)
                                                                : cacheError(Kind::other, file, error.message()));
}

/// Moves the log of a closed file into it, so that the file alone is all there is. A damaged file stays as it is.
std::expected<void, CacheError> settle(const fs::path& file) {
  try {
    const auto database = connect(file);
    database->setBusyTimeout(0);
    database->execAndGet("PRAGMA journal_mode=DELETE");
  } catch (const SQLite::Exception& error) {
    const CacheError failed = cacheError(error, nullptr, file);
    if (failed.kind != Kind::damaged) return std::unexpected(failed);
  }
  return {};
}

}  // namespace

CacheReport checkFile(SQLite::Database& reader, const fs::path& file) {
  Findings findings;
  try {
    const SQLite::Transaction snapshot(reader);
    checkPages(reader, findings);
    checkEntries(reader, findings);
    checkJournal(reader, findings);
  } catch (const SQLite::Exception& error) {
    findings.wrong(cacheError(error, &reader, file).message);
  }
  checkModes(file, findings);
  return std::move(findings.report);
}

std::expected<void, CacheError> backupFile(SQLite::Database& reader, const fs::path& file, const fs::path& to) {
  std::error_code error;
  if (fs::is_directory(to, error))
    return std::unexpected(cacheError(Kind::other, to, "there is a folder of that name"));
  for (const char* ending : {"", "-wal", "-shm"})
    if (fs::weakly_canonical(to, error) == fs::weakly_canonical(beside(file, ending), error))
      return std::unexpected(cacheError(Kind::other, to, "a backup needs a file of its own"));
  const fs::path part = beside(to, ".part");
  fs::remove(part, error);
  if (auto made = createPrivateFile(part); !made) return made;
  std::expected<void, CacheError> result;
  try {
    const Writing writing(reader);
    Statement copy(reader, "VACUUM INTO ?");
    copy.bind(1, part.string());
    copy.exec();
    removeSessionKeys(part);
    result = validate(part);
  } catch (const SQLite::Exception& failed) {
    result = std::unexpected(cacheError(failed, &reader, to));
  }
  if (result) {
    syncFile(part);
    fs::rename(part, to, error);
    if (error) result = failedCopy(to, error);
    syncFolder(to.parent_path());
  }
  if (!result) fs::remove(part, error);
  return result;
}

std::expected<fs::path, CacheError> restoreFile(const fs::path& backup, const fs::path& file) {
  if (auto valid = validate(backup); !valid) return std::unexpected(valid.error());
  std::error_code error;
  if (fs::is_directory(file, error))
    return std::unexpected(cacheError(Kind::other, file, "there is a folder of that name"));
  const fs::path fresh = beside(file, ".restoring");
  fs::remove(fresh, error);
  if (auto made = createPrivateFile(fresh); !made) return std::unexpected(made.error());
  fs::copy_file(backup, fresh, fs::copy_options::overwrite_existing, error);
  if (error) {
    std::error_code ignored;
    fs::remove(fresh, ignored);
    return failedCopy(file, error);
  }
  ::chmod(fresh.c_str(), 0600);
  syncFile(fresh);

  fs::path kept;
  if (fs::exists(file, error)) {
    if (auto settled = settle(file); !settled) {
      fs::remove(fresh, error);
      return std::unexpected(settled.error());
    }
    kept = beside(file, ".before-restore-" + timeStamp());
    for (int again = 2; fs::exists(kept, error); ++again)
      kept = beside(file, fmt::format(".before-restore-{}-{}", timeStamp(), again));
    // A second name for the old file, then the new one takes the first: at no moment is there none.
    for (const char* ending : {"-wal", ""}) {
      if (!fs::exists(beside(file, ending), error)) continue;
      fs::create_hard_link(beside(file, ending), beside(kept, ending), error);
      if (error) fs::copy_file(beside(file, ending), beside(kept, ending), error);
      if (error) return failedCopy(kept, error);
    }
    syncFolder(file.parent_path());
    for (const char* ending : {"-wal", "-shm"}) fs::remove(beside(file, ending), error);
  }
  fs::rename(fresh, file, error);
  if (error) return failedCopy(file, error);
  syncFolder(file.parent_path());
  return kept;
}

}  // namespace thalvorn::cache_detail
