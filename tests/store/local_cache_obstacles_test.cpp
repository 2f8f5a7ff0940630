// What stands in the way of saving: other things in the file's place, files and folders that cannot be written, a full
// disk, a file of a newer program.

#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "store/cache_testing.h"
#include "store/full_disk.h"

namespace thalvorn {
namespace {

using namespace testing_tools;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
namespace fs = std::filesystem;
using Kind = CacheError::Kind;

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void write(const fs::path& file, const std::string& content) { std::ofstream(file, std::ios::binary) << content; }

/// Acts for an ordinary user while it lives, for whom permissions count; `folder` becomes that user's.
class OrdinaryUser {
 public:
  explicit OrdinaryUser(const fs::path& folder) {
    if (::geteuid() != 0) return;
    EXPECT_EQ(::chown(folder.c_str(), nobody, nobody), 0);
    EXPECT_EQ(::seteuid(nobody), 0);
    changed_ = true;
  }
  ~OrdinaryUser() {
    if (changed_) EXPECT_EQ(::seteuid(0), 0);
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  static constexpr uid_t nobody = 65534;
  bool changed_ = false;
};

void execute(const fs::path& file, const std::string& sql) {
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
  sqlite3_close(database);
}

int modeOf(const fs::path& file) {
  struct stat status{};
  return ::stat(file.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 0777) : -1;
}

TEST(CacheObstacles, FilesAndFoldersAreForTheUserAlone) {
  const ScratchFolder folder;
  const auto file = folder / "data/thalvorn/store.db";
  const mode_t before = ::umask(0);
  const auto cache = opened(file);
  mustAppend(*cache, {added(1, "Oil")});
  ::umask(before);
  EXPECT_EQ(modeOf(folder / "data/thalvorn"), 0700);
  for (const char* ending : {"", "-wal", "-shm"}) EXPECT_EQ(modeOf(file.string() + ending), 0600) << ending;
}

TEST(CacheObstacles, SomethingElseInTheFilesPlaceIsLeftAlone) {
  const ScratchFolder folder;
  fs::create_directory(folder / "folder.db");
  auto result = LocalCache::open(folder / "folder.db");
  ASSERT_FALSE(result);
  EXPECT_THAT(result.error().message, HasSubstr("there is a folder of that name"));

  const std::string garbage(5000, 'g');
  write(folder / "garbage.db", garbage);
  result = LocalCache::open(folder / "garbage.db");
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().kind, Kind::damaged);
  EXPECT_THAT(result.error().message, HasSubstr("left as it is"));
  EXPECT_EQ(contentOf(folder / "garbage.db"), garbage);

  execute(folder / "other.db", "CREATE TABLE music(title); INSERT INTO music VALUES('Sailing')");
  const std::string other = contentOf(folder / "other.db");
  EXPECT_FALSE(LocalCache::open(folder / "other.db"));
  EXPECT_EQ(contentOf(folder / "other.db"), other);

  EXPECT_EQ(LocalCache::open(folder / "none.db", {.create = false}).error().kind, Kind::notFound);
  EXPECT_FALSE(fs::exists(folder / "none.db"));
}

TEST(CacheObstacles, DamagedPagesAreReportedAndNothingIsOverwritten) {
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  {
    const auto cache = opened(file);
    for (std::uint32_t n = 0; n < 200; ++n) mustAppend(*cache, {added(n, std::string(300, 'x'))});
  }
  std::string bytes = contentOf(file);
  ASSERT_GT(bytes.size(), 16384U);
  bytes.replace(8192, bytes.size() - 8192, bytes.size() - 8192, '\xa5');
  write(file, bytes);
  const auto result = LocalCache::open(file, quiet());
  if (result) {
    const bool readable = (*result)->load("user").has_value();
    EXPECT_FALSE(readable && (*result)->check().sound);
  } else {
    EXPECT_EQ(result.error().kind, Kind::damaged);
  }
  EXPECT_EQ(contentOf(file), bytes);
}

TEST(CacheObstacles, WhatCannotBeWrittenIsShownAndNotChanged) {
  const ScratchFolder folder;
  const OrdinaryUser user(folder.path());
  const auto file = folder / "store.db";
  mustAppend(*opened(file), {added(1, "Oil")});
  const std::string before = contentOf(file);
  const auto expectReadOnly = [&] {
    const auto cache = opened(file);
    EXPECT_TRUE(cache->isReadOnly());
    EXPECT_THAT(cache->readOnlyReason(), HasSubstr("cannot be written"));
    EXPECT_THAT(entryOf(*cache), ElementsAre(record(1, "Oil")));
    EXPECT_EQ(append(*cache, {added(2, "Belts")}).error().kind, Kind::readOnly);
    EXPECT_EQ(fold(*cache).error().kind, Kind::readOnly);
  };
  fs::permissions(file, fs::perms::owner_read);
  expectReadOnly();
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
  fs::permissions(folder.path(), fs::perms::owner_read | fs::perms::owner_exec);
  expectReadOnly();
  fs::permissions(folder.path(), fs::perms::owner_all);
  EXPECT_EQ(contentOf(file), before);
  EXPECT_EQ(append(*opened(file), {added(2, "Belts")}), 2);

  fs::create_directory(folder / "closed");
  fs::permissions(folder / "closed", fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_EQ(LocalCache::open(folder / "closed/store.db").error().kind, Kind::readOnly);
}

TEST(CacheObstacles, AFullDiskRefusesTheEditWholeAndTakesItLater) {
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  const std::string large(300'000, 'l');
  {
    const auto cache = opened(file);
    mustAppend(*cache, {added(1, "Oil")});
    {
      const FullDisk full(fs::file_size(file.string() + "-wal") + 20'000);
      const auto refused = append(*cache, {renamed(1, "Oil", "Engine oil"), added(2, large)});
      ASSERT_FALSE(refused);
      EXPECT_EQ(refused.error().kind, Kind::diskFull);
      EXPECT_THAT(refused.error().message, HasSubstr("Free some space"));
      EXPECT_THAT(entryOf(*cache), ElementsAre(record(1, "Oil")));
      // What is small enough still fits.
      EXPECT_EQ(append(*cache, {added(3, "Belts")}), 2);
    }
    EXPECT_EQ(append(*cache, {renamed(1, "Oil", "Engine oil"), added(2, large)}), 3);
  }
  for (int start = 1; start <= 2; ++start)
    EXPECT_THAT(entryOf(*opened(file)), ElementsAre(record(1, "Engine oil"), record(3, "Belts"), record(2, large)));
}

TEST(CacheObstacles, AFoldOnAFullDiskLeavesTheEditsInTheJournal) {
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  const auto cache = opened(file);
  for (std::uint32_t n = 1; n <= 50; ++n) mustAppend(*cache, {added(n, std::string(2000, 'x'))});
  const auto list = entryOf(*cache);
  {
    const FullDisk full(fs::file_size(file.string() + "-wal") + 30'000);
    EXPECT_EQ(fold(*cache).error().kind, Kind::diskFull);
    EXPECT_FALSE(cache->isFolding());
    EXPECT_EQ(entryOf(*cache), list);
  }
  EXPECT_EQ(fold(*cache), 50);
  EXPECT_EQ(entryOf(*cache), list);
  EXPECT_TRUE(cache->check().sound);
}

TEST(CacheObstacles, ARecordThatIsNotWellFormedIsRefusedBeforeItIsWritten) {
  const ScratchFolder folder;
  const auto cache = opened(folder / "store.db");
  for (const char* broken : {"{\"id\":", "[]", "{} {}", "{\"title\":\"\xff\"}"})
    EXPECT_FALSE(append(*cache, {added(1, "Oil"), change(2, "", broken)})) << broken;
  EXPECT_FALSE(awaited([&](const auto& done) { cache->replaceAll("user", {{"_tasks", {"{\"id\":"}}}, done); }));
  EXPECT_THAT(entryOf(*cache), IsEmpty());
}

TEST(CacheObstacles, AFileOfANewerProgramIsShownAndNotTouched) {
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  mustAppend(*opened(file), {added(1, "Oil")});
  execute(file, "PRAGMA user_version=99; PRAGMA journal_mode=DELETE");
  const std::string settled = contentOf(file);
  const auto expectShown = [](const fs::path& path) {
    const auto cache = opened(path);
    EXPECT_TRUE(cache->isReadOnly());
    EXPECT_THAT(cache->readOnlyReason(), HasSubstr("newer version of this program"));
    EXPECT_THAT(entryOf(*cache), ElementsAre(record(1, "Oil")));
    EXPECT_FALSE(append(*cache, {added(2, "Belts")}));
    cache->setPreference("thalvorn.appearance", "dark");
  };
  expectShown(file);
  EXPECT_EQ(contentOf(file), settled);
  EXPECT_FALSE(fs::exists(file.string() + "-wal"));

  // Killed while its version stood in the log only.
  execute(file, "PRAGMA user_version=1");
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(database, "PRAGMA journal_mode=WAL; PRAGMA user_version=99", nullptr, nullptr, nullptr),
            SQLITE_OK);
  const auto killed = folder / "killed.db";
  fs::copy_file(file, killed);
  fs::copy_file(file.string() + "-wal", killed.string() + "-wal");
  sqlite3_close(database);
  const std::string body = contentOf(killed);
  const std::string log = contentOf(killed.string() + "-wal");
  expectShown(killed);
  EXPECT_EQ(contentOf(killed), body);
  EXPECT_EQ(contentOf(killed.string() + "-wal"), log);
}

}  // namespace
}  // namespace thalvorn
