#include "store/local_cache_writer.h"

#include <sqlite3.h>

#include <future>

#include "store/local_cache_journal.h"

namespace thalvorn::cache_detail {
namespace {

/// From this size on, the log is moved into the file without waiting for an idle moment; pages of 4 KiB.
constexpr int kCheckpointPages = 1000;

constexpr const char* kLastRevision =
    "SELECT max(coalesce((SELECT max(revision) FROM journal), 0), coalesce((SELECT max(revision) FROM fold), 0))";
const std::string kInsert = std::string("INSERT INTO journal(revision, prefix, at, label, changes) VALUES((") +
                            kLastRevision + ") + 1, ?, ?, ?, ?)";

void countWaiting(SQLite::Database& database, std::size_t& edits, std::size_t& bytes) {
  SQLite::Statement query(database,
                          "SELECT count(*), coalesce(sum(length(changes)), 0) FROM journal LEFT JOIN fold USING(prefix)"
                          " WHERE journal.revision > coalesce(fold.revision, 0)");
  query.executeStep();
  edits = static_cast<std::size_t>(query.getColumn(0).getInt64());
  bytes = static_cast<std::size_t>(query.getColumn(1).getInt64());
}

}  // namespace

Revision lastRevision(SQLite::Database& database) { return database.execAndGet(kLastRevision).getInt64(); }

CacheWriter::CacheWriter(CacheFile& file, LocalCache::Options options)
    : file_(file), options_(std::move(options)), lastWrite_(std::chrono::steady_clock::now()) {
  if (file_.writer) {
    insert_ = std::make_unique<SQLite::Statement>(*file_.writer, kInsert);
    countWaiting(*file_.writer, waitingEdits_, waitingBytes_);
    checkpointer_ = std::make_unique<Checkpointer>(file_.path);
    // The hook takes the place of SQLite's own checkpoints, which would run inside an edit.
    sqlite3_wal_hook(
        file_.writer->getHandle(),
        [](void* checkpointer, sqlite3*, const char*, int pages) {
          if (pages >= kCheckpointPages) static_cast<Checkpointer*>(checkpointer)->request();
          return SQLITE_OK;
        },
        checkpointer_.get());
  }
  thread_ = std::jthread([this] { run(); });
}

CacheWriter::~CacheWriter() {
  {
    const std::lock_guard lock(mutex_);
    closing_ = true;
  }
  wake_.notify_one();
  thread_.join();
  checkpointer_.reset();
}

std::unexpected<CacheError> CacheWriter::refused(const SQLite::Exception& error) {
  return std::unexpected(cacheError(error, file_.writer.get(), file_.path));
}

void CacheWriter::write(Work work, Done done) {
  {
    const std::lock_guard lock(mutex_);
    queue_.emplace_back([this, work = std::move(work), done = std::move(done)] {
      std::expected<Revision, CacheError> result;
      if (!file_.writer) {
        result = std::unexpected(CacheError{CacheError::Kind::readOnly, file_.readOnlyReason});
      } else {
        try {
          SQLite::Transaction transaction(*file_.writer, SQLite::TransactionBehavior::IMMEDIATE);
          result = work(*file_.writer);
          transaction.commit();
        } catch (const SQLite::Exception& error) {
          result = refused(error);
        }
        lastWrite_ = std::chrono::steady_clock::now();
      }
      if (done) done(result);
    });
  }
  wake_.notify_one();
}

Revision CacheWriter::insertEdit(const JournalEntry& entry, const std::string& changes) {
  // One statement outside BEGIN and COMMIT is a transaction of its own: it is there as a whole or not at all.
  try {
    insert_->bind(1, entry.prefix);
    insert_->bind(2, static_cast<std::int64_t>(entry.at.time_since_epoch().count()));
    insert_->bind(3, entry.label);
    insert_->bindNoCopy(4, changes);
    insert_->exec();
  } catch (const SQLite::Exception&) {
    insert_->tryReset();
    throw;
  }
  insert_->reset();
  return file_.writer->getLastInsertRowid();
}

void CacheWriter::append(std::shared_ptr<const JournalEntry> entry, Done done) {
  {
    const std::lock_guard lock(mutex_);
    queue_.emplace_back([this, entry = std::move(entry), done = std::move(done)] {
      std::expected<Revision, CacheError> result;
      if (!file_.writer) {
        result = std::unexpected(CacheError{CacheError::Kind::readOnly, file_.readOnlyReason});
      } else if (const std::string changes = encodeChanges(entry->changes); !decodeChanges(changes)) {
        result =
            std::unexpected(cacheError(CacheError::Kind::other, file_.path,
                                       "a record of “" + entry->label + "” is not well-formed, it was not written"));
      } else {
        try {
          result = insertEdit(*entry, changes);
          ++waitingEdits_;
          waitingBytes_ += changes.size();
          foldHeldBack_ = false;
        } catch (const SQLite::Exception& error) {
          result = refused(error);
        }
        lastWrite_ = std::chrono::steady_clock::now();
      }
      if (done) done(result);
    });
  }
  wake_.notify_one();
}

void CacheWriter::fold(Done done) {
  {
    const std::lock_guard lock(mutex_);
    queue_.emplace_back([this, done = std::move(done)] {
      if (!file_.writer) {
        if (done) done(std::unexpected(CacheError{CacheError::Kind::readOnly, file_.readOnlyReason}));
        return;
      }
      // A fold that has begun does not know the latest edits; the one that follows it does.
      waitingForFold_.push_back(done ? done : [](const auto&) {});
      if (fold_) fold_->again();
      foldHeldBack_ = false;
    });
  }
  wake_.notify_one();
}

void CacheWriter::flush() {
  const auto reached = std::make_shared<std::promise<void>>();
  {
    const std::lock_guard lock(mutex_);
    queue_.emplace_back([reached] { reached->set_value(); });
  }
  wake_.notify_one();
  reached->get_future().wait();
}

bool CacheWriter::foldIsDue() const {
  if (!file_.writer) return false;
  if (fold_ || !waitingForFold_.empty()) return true;
  if (foldHeldBack_) return false;
  if (waitingEdits_ >= options_.foldAfterEdits || waitingBytes_ >= options_.foldAfterBytes) return true;
  return (waitingEdits_ > 0 || purgeWanted_) && std::chrono::steady_clock::now() - lastWrite_ >= options_.foldIdle;
}

void CacheWriter::foldStep() {
  try {
    if (!fold_) {
      fold_ = std::make_unique<JournalFold>(*file_.writer, options_);
      folding_ = true;
      waitingEdits_ = 0;
      waitingBytes_ = 0;
      purgeWanted_ = false;
    }
    if (fold_->step()) return;
    finishFold(fold_->reached());
  } catch (const SQLite::Exception& error) {
    // The edits are still in the journal; what was folded of them already is folded again, which changes nothing.
    foldHeldBack_ = true;
    finishFold(refused(error));
  }
}

void CacheWriter::finishFold(const std::expected<Revision, CacheError>& result) {
  fold_.reset();
  folding_ = false;
  for (const Done& done : std::exchange(waitingForFold_, {})) done(result);
  lastWrite_ = std::chrono::steady_clock::now();
  checkpointer_->request();
}

void CacheWriter::run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    // Only what is there now, so that callers who answer one edit with the next do not starve the fold.
    for (std::size_t count = queue_.size(); count > 0; --count) {
      std::function<void()> task = std::move(queue_.front());
      queue_.pop_front();
      lock.unlock();
      task();
      task = nullptr;
      lock.lock();
    }
    if (closing_ && queue_.empty()) break;
    if (!closing_ && foldIsDue()) {
      lock.unlock();
      foldStep();
      lock.lock();
    } else if (!queue_.empty()) {
      continue;
    } else if (file_.writer && !foldHeldBack_ && (waitingEdits_ > 0 || purgeWanted_)) {
      wake_.wait_until(lock, lastWrite_ + options_.foldIdle);
    } else {
      wake_.wait(lock, [this] { return closing_ || !queue_.empty(); });
    }
  }
  lock.unlock();
  if (!waitingForFold_.empty())
    finishFold(std::unexpected(cacheError(CacheError::Kind::other, file_.path, "it was closed before it was tidied")));
}

}  // namespace thalvorn::cache_detail
