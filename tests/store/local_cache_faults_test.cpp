// Every call to the disk fails once, or fails from then on, or is the last one before the power goes.

#include <gmock/gmock.h>

#include "store/cache_testing.h"
#include "store/fault_vfs.h"

namespace thalvorn {
namespace {

using namespace testing_tools;

constexpr std::uint32_t kEdits = 12;

/// The n-th edit of the scenario: adds a record; every third also renames the first and every fifth moves the second to
/// the end.
std::vector<EntryChange> editOf(std::uint32_t n) {
  std::vector<EntryChange> changes{added(100 + n, "Task " + std::to_string(n) + std::string(200, '.'))};
  if (n % 3 == 0) changes.push_back(change(101, "", record(101, "Renamed " + std::to_string(n))));
  if (n % 5 == 0) {
    changes.push_back(deleted(102, "Task 2"));
    changes.push_back(added(102, "Moved " + std::to_string(n)));
  }
  return changes;
}

/// What the user sees after the first `count` edits.
std::vector<std::string> after(std::uint32_t count) {
  StoredState state;
  for (std::uint32_t n = 1; n <= count; ++n)
    state.journal.push_back({.prefix = "user", .at = {}, .label = "", .changes = editOf(n)});
  return entryOf(state);
}

/// Opens, edits, folds in the middle and at the end, closes. Tries a refused edit `attempts` times before it gives up.
/// Gives how many edits were acknowledged.
std::uint32_t runScenario(const std::filesystem::path& file, int attempts) {
  std::unique_ptr<LocalCache> cache;
  for (int attempt = 0; attempt < attempts && !cache; ++attempt)
    if (auto result = LocalCache::open(file, quiet(512))) cache = std::move(*result);
  if (!cache) return 0;
  std::uint32_t acknowledged = 0;
  for (std::uint32_t n = 1; n <= kEdits; ++n) {
    bool written = false;
    for (int attempt = 0; attempt < attempts && !written; ++attempt) written = append(*cache, editOf(n)).has_value();
    if (!written) break;
    acknowledged = n;
    if (n % 4 == 0)
      for (int attempt = 0; attempt < attempts && !fold(*cache); ++attempt) continue;
  }
  return acknowledged;
}

class LocalCacheFaults : public testing::TestWithParam<FaultVfs::Fault> {};

TEST_P(LocalCacheFaults, LoseNothingThatWasAcknowledged) {
  FaultVfs disk;
  const bool passing = GetParam() == FaultVfs::Fault::once;
  for (int nth = 1;; ++nth) {
    SCOPED_TRACE(nth);
    const ScratchFolder folder;
    const auto file = folder / "store.db";
    disk.arm(nth, GetParam());
    const std::uint32_t acknowledged = runScenario(file, passing ? 3 : 1);
    const bool fired = disk.fired();
    disk.disarm();

    if (passing) ASSERT_EQ(acknowledged, kEdits);
    for (int start = 1; start <= 2; ++start) {
      const auto cache = opened(file);
      ASSERT_TRUE(cache);
      // The edit that was refused last may be there, if the fault came after it had reached the disk.
      const auto list = entryOf(*cache);
      const bool next = list == after(acknowledged + 1);
      ASSERT_TRUE(list == after(acknowledged) || (next && fired)) << acknowledged << " acknowledged";
      ASSERT_TRUE(cache->check().sound) << testing::PrintToString(cache->check().findings);
      if (start == 2) continue;
      ASSERT_TRUE(fold(*cache));
      ASSERT_EQ(entryOf(*cache), list);
    }
    if (!fired) break;
  }
}

std::string faultName(const testing::TestParamInfo<FaultVfs::Fault>& instance) {
  switch (instance.param) {
    case FaultVfs::Fault::once:
      return "FailsOnce";
    case FaultVfs::Fault::lasting:
      return "FailsFromThenOn";
    case FaultVfs::Fault::powerCut:
      break;
  }
  return "LosesPower";
}

INSTANTIATE_TEST_SUITE_P(Disk, LocalCacheFaults,
                         testing::Values(FaultVfs::Fault::once, FaultVfs::Fault::lasting, FaultVfs::Fault::powerCut),
                         faultName);

}  // namespace
}  // namespace thalvorn
