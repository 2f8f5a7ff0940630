#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "store/local_cache.h"
#include "store/local_cache_checkpoint.h"
#include "store/local_cache_file.h"
#include "store/local_cache_fold.h"

namespace thalvorn::cache_detail {

/// The last revision ever given.
Revision lastRevision(SQLite::Database& database);

/// The one thread that writes. It does what it is asked for in that order; between the steps of a fold it looks whether
/// something has been asked for meanwhile.
class CacheWriter {
 public:
  using Done = LocalCache::Done;
  /// What a task writes; gives the revision that the caller is told.
  using Work = std::function<Revision(SQLite::Database&)>;

  /// `file` must outlive the writer; without a writing connection every task fails as read-only.
  CacheWriter(CacheFile& file, LocalCache::Options options);
  ~CacheWriter();
  CacheWriter(const CacheWriter&) = delete;
  CacheWriter& operator=(const CacheWriter&) = delete;

  /// Runs `work` in a transaction of its own and tells `done`.
  void write(Work work, Done done);
  /// One journal row.
  void append(std::shared_ptr<const JournalEntry> entry, Done done);
  void fold(Done done);
  bool isFolding() const { return folding_; }
  /// Has the folded rows looked through at the next idle moment, for some may not be needed any more. On the writer
  /// thread only.
  void wantPurge() { purgeWanted_ = true; }
  /// A fold under way leaves this prefix, which holds other records from now on; a later one takes it up. On the writer
  /// thread only.
  void leaveOff(const std::string& prefix) {
    if (fold_) fold_->leaveOff(prefix);
    purgeWanted_ = true;
  }
  void flush();
  const LocalCache::Options& options() const { return options_; }

 private:
  void run();
  /// True when there is a fold step to do now.
  bool foldIsDue() const;
  void foldStep();
  void finishFold(const std::expected<Revision, CacheError>& result);
  Revision insertEdit(const JournalEntry& entry, const std::string& changes);
  std::unexpected<CacheError> refused(const SQLite::Exception& error);

  CacheFile& file_;
  const LocalCache::Options options_;
  std::unique_ptr<SQLite::Statement> insert_;
  std::unique_ptr<Checkpointer> checkpointer_;

  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<std::function<void()>> queue_;
  bool closing_ = false;

  // What follows belongs to the writer thread alone.
  std::unique_ptr<JournalFold> fold_;
  std::vector<Done> waitingForFold_;
  std::size_t waitingEdits_ = 0;
  std::size_t waitingBytes_ = 0;
  bool foldHeldBack_ = false;  ///< after a fold failed, until an edit succeeds
  bool purgeWanted_ = false;
  std::chrono::steady_clock::time_point lastWrite_;

  std::atomic<bool> folding_ = false;
  std::jthread thread_;
};

}  // namespace thalvorn::cache_detail
