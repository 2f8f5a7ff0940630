#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace thalvorn::testing_tools {

/// Stands between SQLite and the disk. Counts every call that changes something and can let one fail, let all fail from
/// one on, or cut the power: then all fail from that one on, and what was written but not synced is taken back.
class FaultVfs {
 public:
  enum class Fault { once, lasting, powerCut };

  /// Registers itself as the default for databases opened while it lives.
  FaultVfs();
  ~FaultVfs();
  FaultVfs(const FaultVfs&) = delete;
  FaultVfs& operator=(const FaultVfs&) = delete;

  /// The `nth` changing call from now on fails, counted from 1.
  void arm(int nth, Fault fault);
  /// Whether the armed call came.
  bool fired() const;
  /// No more faults; after a power cut the files are as the disk would have them. All databases must be closed.
  void disarm();

 private:
  struct Methods;
  /// What takes the unsynced writes of a file back.
  struct Unsynced {
    std::int64_t size = 0;
    std::vector<std::pair<std::int64_t, std::string>> overwritten;
  };

  /// True when the call about to be made must fail.
  bool counts();

  mutable std::mutex mutex_;
  std::map<std::string, Unsynced> unsynced_;
  Fault fault_ = Fault::once;
  int calls_ = 0;
  int nth_ = 0;
};

}  // namespace thalvorn::testing_tools
