#include "store/local_cache_fold.h"

#include <gmock/gmock.h>

#include <random>
#include <thread>

#include "store/cache_testing.h"
#include "store/fault_vfs.h"
#include "store/local_cache_file.h"

namespace thalvorn {
namespace {

using namespace testing_tools;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;

/// Several segments with a journal before them that does everything a fold meets: replaces, enlarges until a segment
/// must be split, takes out whole segments, moves to the end, adds more than fits behind, in two entries and for two
/// users.
void prepare(const fs::path& file) {
  const auto cache = opened(file, quiet(512));
  std::vector<std::string> tasks;
  for (std::uint32_t n = 0; n < 60; ++n) tasks.push_back(record(n, "Task"));
  EXPECT_TRUE(awaited([&](const auto& done) {
    cache->replaceAll("user", {{"_tasks", tasks}, {"_logs", {record(900, "Log")}}}, done);
  }));
  EXPECT_TRUE(
      awaited([&](const auto& done) { cache->replaceAll("other", {{"_tasks", {record(1, "Theirs")}}}, done); }));
  mustAppend(*cache, {renamed(3, "Task", "Renamed"), change(900, "", record(900, "Corrected"), "_logs")});
  mustAppend(*cache, {renamed(20, "Task", std::string(2500, 'g')), renamed(21, "Task", std::string(400, 'h'))});
  std::vector<EntryChange> gone;
  for (std::uint32_t n = 30; n < 50; ++n) gone.push_back(deleted(n, "Task"));
  mustAppend(*cache, gone);
  mustAppend(*cache, {deleted(5, "Task")});
  mustAppend(*cache, {added(70, "Before the moved")});
  mustAppend(*cache, {added(5, "Moved"), deleted(59, "Task")});
  mustAppend(*cache, {added(59, "Moved too"), deleted(70, "Before the moved")});
  for (std::uint32_t n = 100; n < 130; ++n)
    mustAppend(*cache, {added(n, "Added"), change(n, "", record(n, "A"), "_logs")});
  mustAppend(*cache, {renamed(110, "Added", "Added and renamed")});
  mustAppend(*cache, {renamed(1, "Theirs", "Theirs, renamed")}, "other");
}

TEST(Folding, MayStopAfterAnyStep) {
  const FaultVfs disk;  // never armed: spares the waits for the real one
  const ScratchFolder folder;
  prepare(folder / "prepared.db");
  const auto tasks = entryOf(*opened(folder / "prepared.db"));
  const auto logs = entryOf(*opened(folder / "prepared.db"), "user", "_logs");
  ASSERT_THAT(tasks, SizeIs(60 - 20 + 30));
  ASSERT_EQ(tasks.at(38), record(5, "Moved"));

  const auto expectUnchanged = [&](const LocalCache& cache) {
    ASSERT_EQ(entryOf(cache), tasks);
    ASSERT_EQ(entryOf(cache, "user", "_logs"), logs);
    ASSERT_THAT(entryOf(cache, "other"), ElementsAre(record(1, "Theirs, renamed")));
    ASSERT_TRUE(cache.check().sound) << testing::PrintToString(cache.check().findings);
  };
  bool more = true;
  int steps = 0;
  for (; more; ++steps) {
    SCOPED_TRACE(steps);
    const auto file = folder / "stopped.db";
    fs::copy_file(folder / "prepared.db", file, fs::copy_options::overwrite_existing);
    {
      auto raw = cache_detail::openCacheFile(file, false);
      ASSERT_TRUE(raw);
      const LocalCache::Options options = quiet(512);
      cache_detail::JournalFold fold(*raw->writer, options);
      for (int step = 0; step < steps && more; ++step) more = fold.step();
    }
    const auto cache = opened(file, quiet(512));
    expectUnchanged(*cache);
    ASSERT_TRUE(fold(*cache));
    expectUnchanged(*cache);
    const auto state = cache->load("user");
    ASSERT_THAT(state->journal, IsEmpty());
    for (const std::string& segment : state->segments.at("_tasks"))
      ASSERT_TRUE(segment.size() <= 4 * 512 || splitJsonList(segment)->size() == 1) << segment.size();
  }
  EXPECT_GT(steps, 20);
}

TEST(Folding, LetsEditsInBetween) {
  const FaultVfs disk;
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  auto cache = opened(file, quiet(256));
  std::vector<std::string> tasks;
  for (std::uint32_t n = 0; n < 300; ++n) tasks.push_back(record(n, "Task"));
  EXPECT_TRUE(awaited([&](const auto& done) { cache->replaceAll("user", {{"_tasks", tasks}}, done); }));
  StoredState expected{.segments = {{"_tasks", {"[]"}}}, .journal = {}, .unsent = {}};
  std::vector<EntryChange> initial;
  for (std::uint32_t n = 0; n < 300; ++n) initial.push_back(added(n, "Task"));
  expected.journal.push_back({.prefix = "user", .at = {}, .label = "", .changes = initial});

  std::mt19937 random(5);
  int version = 0;
  const auto edit = [&] {
    const std::uint32_t n = random() % 320;
    std::vector<EntryChange> changes{random() % 4 == 0 ? deleted(n, "")
                                                       : added(n, "Version " + std::to_string(++version))};
    expected.journal.push_back({.prefix = "user", .at = {}, .label = "", .changes = changes});
    ASSERT_TRUE(append(*cache, std::move(changes)));
  };
  for (int n = 0; n < 200; ++n) edit();
  int between = 0;
  for (int round = 0; round < 3; ++round) {
    const auto folded = std::make_shared<std::promise<Outcome>>();
    auto result = folded->get_future();
    cache->foldNow([folded](Outcome outcome) { folded->set_value(std::move(outcome)); });
    while (result.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
      edit();
      ++between;
    }
    ASSERT_TRUE(result.get());
    ASSERT_EQ(entryOf(*cache), entryOf(expected));
  }
  EXPECT_GT(between, 10);  // how many more depends on how busy the machine is
  cache.reset();
  cache = opened(file);
  EXPECT_EQ(entryOf(*cache), entryOf(expected));
  EXPECT_TRUE(cache->check().sound);
}

TEST(Folding, BeginsByItselfWhenTheJournalHasGrown) {
  const ScratchFolder folder;
  LocalCache::Options options = quiet();
  options.foldAfterEdits = 10;
  const auto cache = opened(folder / "store.db", options);
  for (std::uint32_t n = 0; n < 25; ++n) mustAppend(*cache, {added(n, "Task")});
  EXPECT_THAT(cache->load("user")->journal, SizeIs(testing::Lt(25)));
  EXPECT_EQ(entryOf(*cache).size(), 25U);
}

TEST(Folding, ReplacingEverythingMeanwhileWins) {
  const ScratchFolder folder;
  const auto cache = opened(folder / "store.db", quiet(128));
  for (std::uint32_t n = 0; n < 100; ++n) mustAppend(*cache, {added(n, "Task")});
  const auto folded = std::make_shared<std::promise<Outcome>>();
  auto result = folded->get_future();
  cache->foldNow([folded](Outcome outcome) { folded->set_value(std::move(outcome)); });
  for (std::uint32_t n = 0; n < 5; ++n) mustAppend(*cache, {renamed(n, "Task", "Renamed")});
  const auto replaced =
      awaited([&](const auto& done) { cache->replaceAll("user", {{"_tasks", {record(7, "Only")}}}, done); });
  ASSERT_TRUE(replaced);
  ASSERT_TRUE(result.get());
  ASSERT_TRUE(fold(*cache));
  EXPECT_THAT(entryOf(*cache), ElementsAre(record(7, "Only")));
  EXPECT_EQ(append(*cache, {added(8, "Next")}), *replaced + 1);
}

TEST(Folding, ASegmentThatIsNoListIsKeptAsItIs) {
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  EXPECT_TRUE(awaited(
      [cache = opened(file)](const auto& done) { cache->replaceAll("user", {{"_tasks", {record(1, "Oil")}}}, done); }));
  {
    auto raw = cache_detail::openCacheFile(file, false);
    raw->writer->exec("UPDATE segment SET json = '[{\"id\":\"half' WHERE key = 'user_tasks'");
  }
  const auto cache = opened(file);
  mustAppend(*cache, {renamed(1, "Oil", "Engine oil"), added(2, "Belts")});
  ASSERT_TRUE(fold(*cache));
  EXPECT_THAT(cache->load("user")->segments.at("_tasks"),
              ElementsAre("[{\"id\":\"half", "[" + record(1, "Engine oil") + "," + record(2, "Belts") + "]"));
  const CacheReport report = cache->check();
  EXPECT_FALSE(report.sound);
  EXPECT_THAT(report.findings, testing::Contains(testing::HasSubstr("user_tasks: the segment at")));
}

TEST(Folding, TwoProgramsOnOneFileLoseNothing) {
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  const auto first = opened(file, quiet(256));
  const auto second = opened(file, quiet(256));
  const auto work = [](LocalCache& cache, std::uint32_t begin) {
    for (std::uint32_t n = begin; n < begin + 60; ++n) {
      ASSERT_TRUE(append(cache, {added(n, "Task")}));
      if (n % 10 == 0) ASSERT_TRUE(fold(cache));
    }
  };
  {
    const std::jthread other([&] { work(*second, 1000); });
    work(*first, 1);
  }
  EXPECT_THAT(entryOf(*first), SizeIs(120));
  ASSERT_TRUE(fold(*second));
  EXPECT_THAT(entryOf(*first), SizeIs(120));
  EXPECT_TRUE(first->check().sound) << testing::PrintToString(first->check().findings);
}

TEST(Uploading, EditsWaitUntilEachOfTheirRecordsHasBeenSent) {
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  auto cache = opened(file);
  EntryChange downloaded = added(9, "From another device");
  downloaded.sent = true;
  mustAppend(*cache, {added(1, "Oil"), added(2, "Belts"), downloaded});
  mustAppend(*cache, {renamed(1, "Oil", "Engine oil")});
  const auto unsent = [&] {
    std::vector<std::pair<Revision, Uuid>> waiting;
    for (const JournalEntry& entry : cache->load("user")->unsent)
      for (const EntryChange& one : entry.changes) waiting.emplace_back(entry.revision, one.id);
    return waiting;
  };
  ASSERT_TRUE(fold(*cache));
  EXPECT_THAT(unsent(), ElementsAre(std::pair(1, numbered(1)), std::pair(1, numbered(2)), std::pair(2, numbered(1))));
  // Sent as of the first edit: the second still waits, over a restart too.
  ASSERT_TRUE(awaited([&](const auto& done) { cache->markSent("user", "_tasks", numbered(1), 1, done); }));
  cache.reset();
  cache = opened(file);
  EXPECT_THAT(unsent(), ElementsAre(std::pair(1, numbered(2)), std::pair(2, numbered(1))));
  mustAppend(*cache, {renamed(2, "Belts", "V-belts")});
  ASSERT_TRUE(awaited([&](const auto& done) {
    cache->markSent("user", {{"_tasks", numbered(1), 2}, {"_tasks", numbered(2), 1}}, done);
  }));
  EXPECT_THAT(unsent(), IsEmpty());
  ASSERT_TRUE(fold(*cache));
  EXPECT_THAT(unsent(), ElementsAre(std::pair(3, numbered(2))));
  EXPECT_THAT(cache->check().findings, testing::Contains("1 edit in the journal"));
  // Nothing of the demonstration is ever uploaded.
  mustAppend(*cache, {added(1, "Demo")}, "demo");
  ASSERT_TRUE(fold(*cache));
  EXPECT_THAT(cache->load("demo")->unsent, IsEmpty());
  EXPECT_THAT(entryOf(*cache, "demo"), ElementsAre(record(1, "Demo")));
}

}  // namespace
}  // namespace thalvorn
