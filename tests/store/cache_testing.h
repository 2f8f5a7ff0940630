#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/json.h"
#include "store/local_cache.h"

namespace thalvorn::testing_tools {

/// A folder of its own for one test, removed with everything in it.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "thalvorn-test-XXXXXX").string();
    path_ = ::mkdtemp(name.data());
  }
  ~ScratchFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// Never folds by itself; small segments.
inline LocalCache::Options quiet(std::size_t segment_bytes = 1024) {
  LocalCache::Options options;
  options.segmentBytes = segment_bytes;
  options.foldAfterEdits = 1'000'000'000;
  options.foldAfterBytes = 1'000'000'000'000;
  options.foldIdle = std::chrono::hours(24);
  return options;
}

inline std::unique_ptr<LocalCache> opened(const std::filesystem::path& file, LocalCache::Options options = quiet()) {
  auto cache = LocalCache::open(file, std::move(options));
  EXPECT_TRUE(cache) << cache.error().message;
  return cache ? std::move(*cache) : nullptr;
}

/// The n-th identifier of a fixed series.
inline Uuid numbered(std::uint32_t n) { return Uuid::named(Uuid{}, std::to_string(n)); }

inline std::string record(std::uint32_t n, const std::string& title) {
  return "{\"id\":\"" + numbered(n).toString() + "\",\"title\":\"" + title + "\"}";
}

inline EntryChange change(std::uint32_t n, std::string before, std::string after, std::string suffix = "_tasks") {
  return {.suffix = std::move(suffix), .id = numbered(n), .before = std::move(before), .after = std::move(after)};
}
inline EntryChange added(std::uint32_t n, const std::string& title) { return change(n, "", record(n, title)); }
inline EntryChange renamed(std::uint32_t n, const std::string& from, const std::string& to) {
  return change(n, record(n, from), record(n, to));
}
inline EntryChange deleted(std::uint32_t n, const std::string& title) { return change(n, record(n, title), ""); }

using Outcome = std::expected<Revision, CacheError>;

/// Calls an operation that ends in `done` and waits for it.
template <class Operation>
Outcome awaited(Operation operation) {
  const auto promise = std::make_shared<std::promise<Outcome>>();
  operation([promise](Outcome outcome) { promise->set_value(std::move(outcome)); });
  return promise->get_future().get();
}

inline Outcome append(LocalCache& cache, std::vector<EntryChange> changes, std::string prefix = "user") {
  JournalEntry entry{.prefix = std::move(prefix), .at = {}, .label = "Edit", .changes = std::move(changes)};
  return awaited([&](const auto& done) { cache.append(std::move(entry), done); });
}

/// As `append`, where nothing stands in the way.
inline void mustAppend(LocalCache& cache, std::vector<EntryChange> changes, std::string prefix = "user") {
  const Outcome outcome = append(cache, std::move(changes), std::move(prefix));
  EXPECT_TRUE(outcome) << outcome.error().message;
}

inline Outcome fold(LocalCache& cache) {
  return awaited([&](const auto& done) { cache.foldNow(done); });
}

/// An entry as the user would see it: the records of its segments with the journal replayed over them, in list order.
inline std::vector<std::string> entryOf(const StoredState& state, const std::string& suffix = "_tasks") {
  std::vector<std::pair<std::string, std::string>> list;
  const auto segments = state.segments.find(suffix);
  if (segments != state.segments.end())
    for (const std::string& segment : segments->second)
      if (const auto elements = splitJsonList(segment))
        for (const RawElement& element : *elements) list.emplace_back(element.id, element.bytes);
  for (const JournalEntry& entry : state.journal)
    for (const EntryChange& one : entry.changes) {
      if (one.suffix != suffix) continue;
      const auto found = std::ranges::find(list, one.id.toString(), &std::pair<std::string, std::string>::first);
      if (one.after.empty()) {
        if (found != list.end()) list.erase(found);
      } else if (found != list.end()) {
        found->second = one.after;
      } else {
        list.emplace_back(one.id.toString(), one.after);
      }
    }
  std::vector<std::string> records;
  records.reserve(list.size());
  for (auto& [id, bytes] : list) records.push_back(std::move(bytes));
  return records;
}

inline std::vector<std::string> entryOf(const LocalCache& cache, const std::string& prefix = "user",
                                        const std::string& suffix = "_tasks") {
  const auto state = cache.load(prefix);
  EXPECT_TRUE(state) << state.error().message;
  return state ? entryOf(*state, suffix) : std::vector<std::string>{};
}

}  // namespace thalvorn::testing_tools
