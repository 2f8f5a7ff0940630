#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>
#include <thread>

#include "store/cache_testing.h"
#include "store/local_cache_file.h"

namespace thalvorn {
namespace {

using namespace testing_tools;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void execute(const fs::path& file, const std::string& sql) {
  auto raw = cache_detail::openCacheFile(file, false);
  ASSERT_TRUE(raw) << raw.error().message;
  raw->writer->exec(sql);
}

TEST(Backup, IsConsistentWhileInUseAndHoldsNoSessionKeys) {
  const ScratchFolder folder;
  const auto cache = opened(folder / "store.db");
  const std::string token = "a-session-key-that-must-not-leave";
  cache->setPreference("sb_access_token", token);
  cache->setPreference("thalvorn.appearance", "dark");
  mustAppend(*cache, {added(0, "Task")});
  std::jthread busy([&](const std::stop_token& stop) {
    // Both records change in one edit, so a torn copy would show them unequal.
    for (int n = 0; !stop.stop_requested(); ++n)
      mustAppend(*cache, {added(1, std::to_string(n)), added(2, std::to_string(n))});
  });
  for (int round = 0; round < 5; ++round) {
    const auto written = cache->backup(folder / "copy.db");
    ASSERT_TRUE(written) << written.error().message;
    EXPECT_FALSE(fs::exists(folder / "copy.db.part"));
    const auto copy = opened(folder / "copy.db");
    const auto list = entryOf(*copy);
    ASSERT_FALSE(list.empty());
    if (list.size() == 3) EXPECT_EQ(list[1].substr(list[1].find("title")), list[2].substr(list[2].find("title")));
    EXPECT_TRUE(copy->check().sound);
    EXPECT_EQ(copy->preference("sb_access_token"), std::nullopt);
    EXPECT_EQ(copy->preference("thalvorn.appearance"), "dark");
  }
  busy.request_stop();
  busy.join();
  EXPECT_THAT(contentOf(folder / "copy.db"), testing::Not(HasSubstr(token)));
  struct stat status{};
  ASSERT_EQ(::stat((folder / "copy.db").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST(Backup, RefusesPlacesThatAreTaken) {
  const ScratchFolder folder;
  const auto cache = opened(folder / "store.db");
  mustAppend(*cache, {added(1, "Oil")});
  fs::create_directory(folder / "folder");
  EXPECT_FALSE(cache->backup(folder / "folder"));
  EXPECT_FALSE(cache->backup(folder / "store.db"));
  EXPECT_FALSE(cache->backup(folder / "store.db-wal"));
  EXPECT_FALSE(cache->backup(folder / "missing/copy.db"));
  EXPECT_THAT(entryOf(*cache), ElementsAre(record(1, "Oil")));
}

TEST(Restore, BringsTheBackupBackAndKeepsTheOldFile) {
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  {
    const auto cache = opened(file);
    mustAppend(*cache, {added(1, "Oil")});
    ASSERT_TRUE(cache->backup(folder / "copy.db"));
    mustAppend(*cache, {added(2, "Belts")});
    // The program still has it open.
    EXPECT_EQ(LocalCache::restore(folder / "copy.db", file).error().kind, CacheError::Kind::locked);
  }
  const auto kept = LocalCache::restore(folder / "copy.db", file);
  ASSERT_TRUE(kept) << kept.error().message;
  EXPECT_THAT(kept->filename().string(), testing::StartsWith("store.db.before-restore-"));
  EXPECT_THAT(entryOf(*opened(file)), ElementsAre(record(1, "Oil")));
  EXPECT_THAT(entryOf(*opened(*kept)), ElementsAre(record(1, "Oil"), record(2, "Belts")));
  // Back to where it was; to a place where nothing was; and never from something else.
  ASSERT_TRUE(LocalCache::restore(*kept, file));
  EXPECT_THAT(entryOf(*opened(file)), ElementsAre(record(1, "Oil"), record(2, "Belts")));
  EXPECT_EQ(LocalCache::restore(folder / "copy.db", folder / "new.db"), fs::path());
  EXPECT_THAT(entryOf(*opened(folder / "new.db")), ElementsAre(record(1, "Oil")));
}

TEST(Restore, TakesNothingThatIsNoSoundBackup) {
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  mustAppend(*opened(file), {added(1, "Oil")});
  const std::string before = contentOf(file);
  std::ofstream(folder / "text.db") << std::string(4096, 't');
  std::string torn = before;
  torn.resize(torn.size() / 2);
  std::ofstream(folder / "torn.db", std::ios::binary) << torn;
  fs::copy_file(file, folder / "newer.db");
  execute(folder / "newer.db", "PRAGMA user_version=99");
  for (const char* name : {"text.db", "torn.db", "newer.db", "missing.db"})
    EXPECT_FALSE(LocalCache::restore(folder / name, file)) << name;
  EXPECT_EQ(contentOf(file), before);
  EXPECT_EQ(LocalCache::restore(folder / "newer.db", file).error().kind, CacheError::Kind::newerVersion);
}

TEST(Restore, KeepsADamagedFileWithItsLog) {
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  {
    const auto cache = opened(folder / "good.db");
    mustAppend(*cache, {added(1, "Oil")});
    ASSERT_TRUE(cache->backup(folder / "copy.db"));
  }
  std::ofstream(file) << std::string(9000, 'd');
  std::ofstream(file.string() + "-wal") << "log";
  const auto kept = LocalCache::restore(folder / "copy.db", file);
  ASSERT_TRUE(kept) << kept.error().message;
  EXPECT_EQ(contentOf(*kept), std::string(9000, 'd'));
  EXPECT_THAT(entryOf(*opened(file)), ElementsAre(record(1, "Oil")));
}

TEST(Check, TellsWhatIsThereAndWhatIsWrong) {
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  {
    const auto cache = opened(file);
    EXPECT_TRUE(awaited([&](const auto& done) {
      cache->replaceAll("user", {{"_tasks", {record(1, "Oil"), record(2, "Belts")}}}, done);
    }));
    mustAppend(*cache, {added(3, "Anodes")});
    for (int twice = 0; twice < 2; ++twice) cache->keepCorrupt("user_logs", "{\"id\":", "is not a list");
    cache->flush();
    const CacheReport report = cache->check();
    EXPECT_TRUE(report.sound);
    EXPECT_THAT(report.findings,
                ElementsAre("The file is intact", "user_tasks: 2 records in 1 segment", "1 edit in the journal",
                            "1 text that could not be read, set aside for support"));
  }
  execute(file,
          "INSERT INTO segment(prefix, suffix, position, json) SELECT prefix, suffix, position + 1, json FROM segment");
  execute(file, "UPDATE journal SET changes = '[{\"id\":7}]'");
  const auto cache = opened(file);
  const CacheReport report = cache->check();
  EXPECT_FALSE(report.sound);
  EXPECT_THAT(report.findings, Contains("user_tasks: the identifier " + numbered(1).toString() + " is there twice"));
  EXPECT_THAT(report.findings, Contains("The edit 1 cannot be read"));
  // An edit that cannot be read stays where it is, whatever is folded after it.
  mustAppend(*cache, {added(4, "Filters")});
  ASSERT_TRUE(fold(*cache));
  EXPECT_THAT(cache->check().findings, Contains("The edit 1 cannot be read"));
}

}  // namespace
}  // namespace thalvorn
