#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>

namespace thalvorn::cache_detail {

/// Moves the write-ahead log into the file on a thread and a connection of its own, so that no edit waits for it.
class Checkpointer {
 public:
  explicit Checkpointer(std::filesystem::path file);
  /// Asks for a checkpoint soon; asking again before it began changes nothing.
  void request();

 private:
  void run(const std::stop_token& stop);

  std::filesystem::path file_;
  std::unique_ptr<SQLite::Database> database_;
  std::mutex mutex_;
  std::condition_variable_any wake_;
  bool requested_ = false;
  std::jthread thread_;
};

}  // namespace thalvorn::cache_detail
