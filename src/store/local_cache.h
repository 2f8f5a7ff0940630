#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// Why the file could not be read or written.
struct CacheError {
  enum class Kind { diskFull, readOnly, locked, damaged, newerVersion, notFound, other };
  Kind kind = Kind::other;
  std::string message;  ///< for the user: what happened, what was kept, what to do
};

/// One record of one entry before and after an edit, each in the entry's JSON form; empty = not there.
/// An added record has no `before`, a deleted one no `after`.
struct EntryChange {
  std::string suffix;  ///< of the entry, e.g. "_tasks" or the side entry "_tasks_extra"
  Uuid id;
  std::string before;
  std::string after;
  bool sent = false;     ///< needs no upload: downloaded itself, or uploaded since
  bool revived = false;  ///< a deletion taken back: the record returns even where the deletion has arrived already
};

/// The position of an edit in the journal; later edits have higher revisions.
using Revision = std::int64_t;

/// One edit as the journal keeps it.
struct JournalEntry {
  Revision revision = 0;  ///< given by the journal
  std::string prefix;     ///< whose edit
  Timestamp at;
  std::string label;  ///< what the user did, e.g. "Complete “Engine coolant check”"
  std::vector<EntryChange> changes;
};

/// A record's edits up to `revision` have reached the backend.
struct SentRecord {
  std::string suffix;
  Uuid id;
  Revision revision = 0;
};

/// Entries of one prefix as they stand in the file: ordered segments of each list, and the edits not folded into them
/// yet. The records are those of the segments, then every change of `journal` in turn: a change with an `after` puts
/// the record in the place of the one with its id, or at the end when there is none; one without takes it out.
struct StoredState {
  std::map<std::string, std::vector<std::string>, std::less<>> segments;  ///< by suffix; each a JSON list
  std::vector<JournalEntry> journal;                                      ///< not folded, oldest first
  std::vector<JournalEntry> unsent;                                       ///< folded but not yet uploaded, oldest first
};

/// What `LocalCache::check` found.
struct CacheReport {
  bool sound = false;
  std::vector<std::string> findings;  ///< one line each; also what is fine ("103 tasks in 1 segment")
};

/// The file that holds everything a user of this computer has: entries (JSON lists by key = prefix + suffix), the
/// journal of edits in front of them, preferences and set-aside bytes. SQLite in WAL mode with synchronous=FULL; mode
/// 0600.
///
/// All writing goes through one thread in the order it was asked for. Reading may happen on any thread.
class LocalCache {
 public:
  struct Options {
    bool create = true;
    std::size_t segmentBytes = 16'384;       ///< target size of a segment; never four times that, unless one record is
    std::size_t foldAfterEdits = 4096;       ///< fold when the journal holds this many edits…
    std::size_t foldAfterBytes = 8'388'608;  ///< …or this many bytes
    std::chrono::milliseconds foldIdle{2000};  ///< …or when nothing was written for this long and edits are waiting
    std::vector<std::string> neverUploaded{"demo", "local"};  ///< prefixes whose folded edits are dropped at once
  };
  /// Runs on the writer thread; it must not wait for the cache.
  using Done = std::function<void(std::expected<Revision, CacheError>)>;

  /// Opens or creates the file. A file of a newer program opens read-only; a damaged one gives `damaged` and is left
  /// alone.
  static std::expected<std::unique_ptr<LocalCache>, CacheError> open(const std::filesystem::path& file,
                                                                     Options options);
  static std::expected<std::unique_ptr<LocalCache>, CacheError> open(const std::filesystem::path& file) {
    return open(file, Options{});
  }
  /// Waits for everything asked for, folds nothing more, closes.
  ~LocalCache();
  LocalCache(const LocalCache&) = delete;
  LocalCache& operator=(const LocalCache&) = delete;

  const std::filesystem::path& file() const;
  bool isReadOnly() const;
  /// Why it is read-only, for the user; empty otherwise.
  std::string readOnlyReason() const;

  /// Everything stored under a prefix. Segments that are not a JSON list come as they are; decoding decides.
  std::expected<StoredState, CacheError> load(std::string_view prefix) const;
  /// The prefixes that have entries or edits.
  std::vector<std::string> prefixes() const;

  /// Makes an edit durable: one journal row in one transaction. `done` runs on the writer thread once it is on disk, or
  /// with the error, in which case nothing was written and the caller may ask again.
  void append(std::shared_ptr<const JournalEntry> entry, Done done);
  void append(JournalEntry entry, Done done) {
    append(std::make_shared<const JournalEntry>(std::move(entry)), std::move(done));
  }

  /// Replaces everything stored under a prefix in one transaction: entries that are not named are removed, and its
  /// journal is dropped with the edits that still wait for upload (demo fleet, computer-only fleet, "clear cache").
  /// Each value is a list of records in JSON form.
  void replaceAll(std::string prefix, std::map<std::string, std::vector<std::string>> records, Done done);

  /// Puts everything stored under `prefix` aside under another prefix, and in its place what is stored under `instead`
  /// (which may be nothing), all in one transaction with the preference. Edits that wait for upload wait on where they
  /// go. Fails without change when something is stored under `aside`.
  void setAside(std::string prefix, std::string aside, std::string instead,
                std::pair<std::string, std::string> preference, Done done);

  /// Keeps a copy of bytes that could not be read, so that support can recover them. Equal bytes are kept once.
  void keepCorrupt(std::string key, std::string bytes, std::string reason, Done done = {});

  /// Forgets that the records' edits wait for upload, in one transaction. A journal row goes once each of its changes
  /// is covered, so name the side entries ("_tasks_extra") too.
  void markSent(std::string prefix, std::vector<SentRecord> records, Done done);
  void markSent(std::string prefix, std::string suffix, Uuid id, Revision revision, Done done) {
    markSent(std::move(prefix), {{std::move(suffix), id, revision}}, std::move(done));
  }

  /// Folds the journal into the segments now; for tests, benchmarks and closing. Edits asked for meanwhile go in
  /// between.
  void foldNow(Done done);
  bool isFolding() const;

  /// Blocks until everything asked for so far is done.
  void flush();
  /// Tells on the writer thread when everything asked for so far is done; an error when the file cannot be written.
  void whenWritten(Done done);

  // ---- preferences -------------------------------------------------------------------------------------------------
  std::optional<std::string> preference(std::string_view key) const;
  std::map<std::string, std::string> preferences() const;
  /// Seen by `preference` at once, on disk soon after. An empty optional removes the key.
  void setPreference(std::string key, std::optional<std::string> value);

  // ---- upkeep -----------------------------------------------------------------------------------------------------
  /// SQLite's own integrity check, every segment a readable list, every journal row readable, no identifier twice.
  CacheReport check() const;
  /// Writes a consistent copy while in use: mode 0600, without session keys (preferences starting with "sb_").
  std::expected<void, CacheError> backup(const std::filesystem::path& to) const;
  /// Puts a backup in the place of `file`, keeping the old one beside it; returns where. No cache may be open on
  /// `file`.
  static std::expected<std::filesystem::path, CacheError> restore(const std::filesystem::path& backup,
                                                                  const std::filesystem::path& file);

 private:
  class Impl;
  explicit LocalCache(std::unique_ptr<Impl> implementation);
  std::unique_ptr<Impl> impl_;
};

}  // namespace thalvorn
