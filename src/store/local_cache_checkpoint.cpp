#include "store/local_cache_checkpoint.h"

#include <sqlite3.h>

#include "store/local_cache_file.h"

namespace thalvorn::cache_detail {

Checkpointer::Checkpointer(std::filesystem::path file)
    : file_(std::move(file)), thread_([this](const std::stop_token& stop) { run(stop); }) {}

void Checkpointer::request() {
  {
    const std::lock_guard lock(mutex_);
    requested_ = true;
  }
  wake_.notify_one();
}

void Checkpointer::run(const std::stop_token& stop) {
  std::unique_lock lock(mutex_);
  while (wake_.wait(lock, stop, [this] { return requested_; })) {
    requested_ = false;
    lock.unlock();
    try {
      if (!database_) database_ = connect(file_);
      // A failed checkpoint loses nothing: the log keeps everything, and the next one tries again.
      sqlite3_wal_checkpoint_v2(database_->getHandle(), nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
    } catch (const SQLite::Exception&) {
      database_.reset();
    }
    lock.lock();
  }
  database_.reset();
}

}  // namespace thalvorn::cache_detail
