#include "store/local_cache.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QLoggingCategory>
#include <mutex>

#include "base/json.h"
#include "store/local_cache_file.h"
#include "store/local_cache_fold.h"
#include "store/local_cache_journal.h"
#include "store/local_cache_upkeep.h"
#include "store/local_cache_writer.h"

namespace thalvorn {
namespace {

Q_LOGGING_CATEGORY(logCache, "thalvorn.store.cache")

using SQLite::Statement;
using namespace cache_detail;

std::string digestOf(const std::string& bytes) {
  const QByteArray view = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  return QCryptographicHash::hash(view, QCryptographicHash::Sha256).toHex().toStdString();
}

std::int64_t secondsNow() {
  return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

/// What the records' edits waiting for upload have been answered up to.
std::map<std::pair<std::string, std::string>, Revision> sentMarks(SQLite::Database& reader, const std::string& prefix) {
  std::map<std::pair<std::string, std::string>, Revision> marks;
  Statement query(reader, "SELECT suffix, id, revision FROM sent WHERE prefix = ?");
  query.bind(1, prefix);
  while (query.executeStep())
    marks[{query.getColumn(0).getString(), query.getColumn(1).getString()}] = query.getColumn(2).getInt64();
  return marks;
}

void savePreference(SQLite::Database& database, const std::string& key, const std::optional<std::string>& value) {
  Statement statement(database, value ? "INSERT INTO preference(key, value) VALUES(?1, ?2)"
                                        " ON CONFLICT(key) DO UPDATE SET value = excluded.value"
                                      : "DELETE FROM preference WHERE key = ?1");
  statement.bind(1, key);
  if (value) statement.bind(2, *value);
  statement.exec();
}

}  // namespace

class LocalCache::Impl {
 public:
  Impl(CacheFile opened, Options options)
      : file(std::move(opened)), stored(readPreferences()), writer(file, std::move(options)) {}
  ~Impl() { savePreferences(); }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  std::map<std::string, std::string, std::less<>> readPreferences() const {
    std::map<std::string, std::string, std::less<>> all;
    Statement query(*file.reader, "SELECT key, value FROM preference");
    while (query.executeStep()) all[query.getColumn(0).getString()] = query.getColumn(1).getString();
    return all;
  }

  /// Writes what has not been written yet; what fails is tried again with the next edit or preference, and on closing.
  void savePreferences() {
    {
      const std::lock_guard lock(preferencesMutex);
      if (unsaved.empty() || !file.writer) return;
    }
    const auto written = std::make_shared<std::map<std::string, std::optional<std::string>>>();
    writer.write(
        [this, written](SQLite::Database& database) {
          {
            const std::lock_guard lock(preferencesMutex);
            *written = unsaved;
          }
          for (const auto& [key, value] : *written) savePreference(database, key, value);
          return Revision{0};
        },
        [this, written](const std::expected<Revision, CacheError>& result) {
          if (!result) {
            qCWarning(logCache, "⚠️ preferences not saved: %s", result.error().message.c_str());
            return;
          }
          const std::lock_guard lock(preferencesMutex);
          for (const auto& [key, value] : *written)
            if (const auto waiting = unsaved.find(key); waiting != unsaved.end() && waiting->second == value)
              unsaved.erase(waiting);
        });
  }

  CacheFile file;
  mutable std::mutex readerMutex;
  mutable std::mutex preferencesMutex;
  std::map<std::string, std::string, std::less<>> stored;
  std::map<std::string, std::optional<std::string>> unsaved;
  CacheWriter writer;  // last, so that it stops before anything it uses goes
};

LocalCache::LocalCache(std::unique_ptr<Impl> implementation) : impl_(std::move(implementation)) {}

LocalCache::~LocalCache() = default;

std::expected<std::unique_ptr<LocalCache>, CacheError> LocalCache::open(const std::filesystem::path& file,
                                                                        Options options) {
  auto opened = openCacheFile(file, options.create);
  if (!opened) return std::unexpected(opened.error());
  try {
    return std::unique_ptr<LocalCache>(new LocalCache(std::make_unique<Impl>(std::move(*opened), std::move(options))));
  } catch (const SQLite::Exception& error) {
    return std::unexpected(cacheError(error, nullptr, file));
  }
}

const std::filesystem::path& LocalCache::file() const { return impl_->file.path; }
bool LocalCache::isReadOnly() const { return !impl_->file.writer; }
std::string LocalCache::readOnlyReason() const { return impl_->file.readOnlyReason; }

std::expected<StoredState, CacheError> LocalCache::load(std::string_view prefix) const {
  const std::lock_guard lock(impl_->readerMutex);
  SQLite::Database& reader = *impl_->file.reader;
  const std::string name(prefix);
  StoredState state;
  try {
    const SQLite::Transaction snapshot(reader);
    Statement mark(reader, "SELECT revision FROM fold WHERE prefix = ?");
    mark.bind(1, name);
    const Revision folded = mark.executeStep() ? mark.getColumn(0).getInt64() : 0;

    Statement segments(reader,
                       "SELECT suffix, json FROM segment WHERE prefix = ? AND pending <= ? ORDER BY suffix, position");
    SQLite::bind(segments, name, folded);
    while (segments.executeStep())
      state.segments[segments.getColumn(0).getString()].push_back(segments.getColumn(1).getString());

    const auto marks = sentMarks(reader, name);
    Statement journal(reader, "SELECT revision, at, label, changes FROM journal WHERE prefix = ? ORDER BY revision");
    journal.bind(1, name);
    while (journal.executeStep()) {
      JournalEntry entry{.revision = journal.getColumn(0).getInt64(),
                         .prefix = name,
                         .at = Timestamp(std::chrono::seconds(journal.getColumn(1).getInt64())),
                         .label = journal.getColumn(2).getString(),
                         .changes = {}};
      const std::string changes = journal.getColumn(3).getString();
      auto decoded = decodeChanges(changes);
      if (!decoded) {
        qCWarning(logCache, "❌ edit %lld cannot be read, bytes=%zu", static_cast<long long>(entry.revision),
                  changes.size());
        continue;
      }
      for (EntryChange& change : *decoded) {
        const auto sent = marks.find({change.suffix, change.id.toString()});
        change.sent = change.sent || (sent != marks.end() && sent->second >= entry.revision);
        if (entry.revision > folded || !change.sent) entry.changes.push_back(std::move(change));
      }
      if (entry.revision > folded)
        state.journal.push_back(std::move(entry));
      else if (!entry.changes.empty())
        state.unsent.push_back(std::move(entry));
    }
  } catch (const SQLite::Exception& error) {
    return std::unexpected(cacheError(error, &reader, impl_->file.path));
  }
  return state;
}

std::vector<std::string> LocalCache::prefixes() const {
  const std::lock_guard lock(impl_->readerMutex);
  std::vector<std::string> all;
  try {
    Statement query(*impl_->file.reader, "SELECT prefix FROM segment UNION SELECT prefix FROM journal ORDER BY prefix");
    while (query.executeStep()) all.push_back(query.getColumn(0).getString());
  } catch (const SQLite::Exception& error) {
    qCWarning(logCache, "❌ the prefixes cannot be read: %s", error.what());
  }
  return all;
}

void LocalCache::append(std::shared_ptr<const JournalEntry> entry, Done done) {
  impl_->writer.append(std::move(entry), std::move(done));
  impl_->savePreferences();
}

void LocalCache::replaceAll(std::string prefix, std::map<std::string, std::vector<std::string>> records, Done done) {
  const std::size_t bytes = impl_->writer.options().segmentBytes;
  impl_->writer.write(
      [prefix = std::move(prefix), records = std::move(records), bytes](SQLite::Database& database) {
        Statement mark(database,
                       "INSERT INTO fold(prefix, revision, token) VALUES(?, ?, 0) ON CONFLICT(prefix)"
                       " DO UPDATE SET revision = excluded.revision, token = 0");
        SQLite::bind(mark, prefix, lastRevision(database));
        mark.exec();
        for (const char* table : {"segment", "journal", "sent"}) {
          Statement statement(database, std::string("DELETE FROM ") + table + " WHERE prefix = ?");
          statement.bind(1, prefix);
          statement.exec();
        }
        Statement insert(database, "INSERT INTO segment(prefix, suffix, position, json) VALUES(?, ?, ?, ?)");
        for (const auto& [suffix, list] : records) {
          std::int64_t position = 0;
          for (const std::string& segment : cutIntoSegments(list, bytes)) {
            if (!splitJsonList(segment)) throw SQLite::Exception("a record of " + suffix + " is not well-formed");
            SQLite::bind(insert, prefix, suffix, position += kPositionGap, segment);
            insert.exec();
            insert.reset();
          }
        }
        return lastRevision(database);
      },
      std::move(done));
}

void LocalCache::setAside(std::string prefix, std::string aside, std::string instead,
                          std::pair<std::string, std::string> preference, Done done) {
  impl_->writer.write(
      [this, prefix = std::move(prefix), aside = std::move(aside), instead = std::move(instead),
       preference](SQLite::Database& database) {
        Statement taken(database,
                        "SELECT 1 FROM segment WHERE prefix = ?1 UNION ALL SELECT 1 FROM journal WHERE prefix = ?1");
        taken.bind(1, aside);
        if (taken.executeStep()) throw SQLite::Exception("records are set aside as " + aside + " already");
        for (const std::string& moved : {prefix, instead}) impl_->writer.leaveOff(moved);
        for (const auto& [from, to] : {std::pair(prefix, aside), std::pair(instead, prefix)}) {
          for (const char* table : {"segment", "journal", "sent", "fold"}) {
            Statement move(database, std::string("UPDATE OR REPLACE ") + table + " SET prefix = ? WHERE prefix = ?");
            SQLite::bind(move, to, from);
            move.exec();
          }
        }
        savePreference(database, preference.first, preference.second);
        return lastRevision(database);
      },
      [this, preference, done = std::move(done)](const std::expected<Revision, CacheError>& result) {
        if (result) {
          const std::lock_guard lock(impl_->preferencesMutex);
          impl_->stored.insert_or_assign(preference.first, preference.second);
          impl_->unsaved.erase(preference.first);
        }
        if (done) done(result);
      });
}

void LocalCache::keepCorrupt(std::string key, std::string bytes, std::string reason, Done done) {
  impl_->writer.write(
      [key, bytes = std::move(bytes), reason = std::move(reason)](SQLite::Database& database) {
        Statement insert(database,
                         "INSERT OR IGNORE INTO corrupt(key, digest, at, reason, bytes) VALUES(?, ?, ?, ?, ?)");
        insert.bind(1, key);
        insert.bind(2, digestOf(bytes));
        insert.bind(3, secondsNow());
        insert.bind(4, reason);
        insert.bind(5, bytes.data(), static_cast<int>(bytes.size()));
        insert.exec();
        return Revision{0};
      },
      [key = std::move(key), done = std::move(done)](const std::expected<Revision, CacheError>& result) {
        if (!result)
          qCWarning(logCache, "⚠️ unreadable bytes of %s not set aside: %s", key.c_str(),
                    result.error().message.c_str());
        if (done) done(result);
      });
}

void LocalCache::markSent(std::string prefix, std::vector<SentRecord> records, Done done) {
  impl_->writer.write(
      [this, prefix = std::move(prefix), records = std::move(records)](SQLite::Database& database) {
        Statement upsert(
            database,
            "INSERT INTO sent(prefix, suffix, id, revision) VALUES(?, ?, ?, ?) ON CONFLICT(prefix, suffix, id)"
            " DO UPDATE SET revision = max(revision, excluded.revision)");
        for (const SentRecord& record : records) {
          SQLite::bind(upsert, prefix, record.suffix, record.id.toString(), record.revision);
          upsert.exec();
          upsert.reset();
        }
        impl_->writer.wantPurge();
        return lastRevision(database);
      },
      std::move(done));
}

void LocalCache::foldNow(Done done) { impl_->writer.fold(std::move(done)); }
bool LocalCache::isFolding() const { return impl_->writer.isFolding(); }
void LocalCache::flush() { impl_->writer.flush(); }
void LocalCache::whenWritten(Done done) {
  impl_->writer.write([](SQLite::Database& database) { return lastRevision(database); }, std::move(done));
}

std::optional<std::string> LocalCache::preference(std::string_view key) const {
  const std::lock_guard lock(impl_->preferencesMutex);
  const auto found = impl_->stored.find(key);
  return found == impl_->stored.end() ? std::nullopt : std::optional(found->second);
}

std::map<std::string, std::string> LocalCache::preferences() const {
  const std::lock_guard lock(impl_->preferencesMutex);
  return {impl_->stored.begin(), impl_->stored.end()};
}

void LocalCache::setPreference(std::string key, std::optional<std::string> value) {
  {
    const std::lock_guard lock(impl_->preferencesMutex);
    const auto found = impl_->stored.find(key);
    if (value ? found != impl_->stored.end() && found->second == *value : found == impl_->stored.end()) return;
    if (value)
      impl_->stored.insert_or_assign(key, *value);
    else
      impl_->stored.erase(found);
    impl_->unsaved.insert_or_assign(std::move(key), std::move(value));
  }
  impl_->savePreferences();
}

CacheReport LocalCache::check() const {
  const std::lock_guard lock(impl_->readerMutex);
  return checkFile(*impl_->file.reader, impl_->file.path);
}

std::expected<void, CacheError> LocalCache::backup(const std::filesystem::path& to) const {
  const std::lock_guard lock(impl_->readerMutex);
  return backupFile(*impl_->file.reader, impl_->file.path, to);
}

std::expected<std::filesystem::path, CacheError> LocalCache::restore(const std::filesystem::path& backup,
                                                                     const std::filesystem::path& file) {
  return restoreFile(backup, file);
}

}  // namespace thalvorn
