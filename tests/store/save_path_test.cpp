// The steps of docs/save-path.md, each with the power going at every call to the disk that it makes.

#include <gmock/gmock.h>

#include <fstream>

#include "store/cache_testing.h"
#include "store/fault_vfs.h"

namespace thalvorn {
namespace {

using namespace testing_tools;
using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

const std::string kOil = record(1, "Oil");
const std::string kRenamed = record(1, "Engine oil");
const std::string kBelts = record(2, "Belts");

/// Does `step` on a copy of a prepared folder once for each call to the disk that it makes, and lets the power go at
/// that call; then looks at what two starts find. `found` gets the store and whether the step had come to its end.
class SavePath : public testing::Test {
 protected:
  template <class Step, class Found>
  void cutPowerThroughout(Step step, Found found) {
    for (int nth = 1;; ++nth) {
      SCOPED_TRACE(nth);
      const ScratchFolder run;
      for (const auto& entry : fs::directory_iterator(prepared.path()))
        fs::copy(entry.path(), run / entry.path().filename().string());
      disk.arm(nth, FaultVfs::Fault::powerCut);
      const bool ended = step(run / "store.db");
      const bool fired = disk.fired();
      disk.disarm();
      for (int start = 1; start <= 2; ++start) {
        const auto cache = opened(run / "store.db");
        ASSERT_TRUE(cache);
        found(*cache, ended);
        ASSERT_TRUE(cache->check().sound) << testing::PrintToString(cache->check().findings);
      }
      if (HasFailure() || !fired) break;
      calls = nth;
    }
  }

  FaultVfs disk;
  ScratchFolder prepared;
  int calls = 0;  ///< at which the power went
};

TEST_F(SavePath, CreatingTheFile) {
  std::ofstream(prepared / "store.db").flush();
  cutPowerThroughout([](const fs::path& file) { return LocalCache::open(file).has_value(); },
                     [](LocalCache& cache, bool) {
                       EXPECT_FALSE(cache.isReadOnly());
                       EXPECT_THAT(cache.prefixes(), IsEmpty());
                     });
  EXPECT_GT(calls, 5);
}

TEST_F(SavePath, WritingTheEdit) {
  mustAppend(*opened(prepared / "store.db"), {added(1, "Oil")});
  cutPowerThroughout(
      [](const fs::path& file) {
        const auto cache = LocalCache::open(file, quiet());
        return cache && append(**cache, {renamed(1, "Oil", "Engine oil"), added(2, "Belts")});
      },
      [](LocalCache& cache, bool acknowledged) {
        const auto list = entryOf(cache);
        if (acknowledged)
          EXPECT_THAT(list, ElementsAre(kRenamed, kBelts));
        else
          EXPECT_THAT(list, AnyOf(ElementsAre(kOil), ElementsAre(kRenamed, kBelts)));
      });
  EXPECT_GT(calls, 2);
}

TEST_F(SavePath, AcknowledgedEditsNeedNoCheckpoint) {
  const auto cache = opened(prepared / "store.db");
  mustAppend(*cache, {added(1, "Oil")});
  mustAppend(*cache, {renamed(1, "Oil", "Engine oil")});
  // What the disk holds at this moment, without anything that closing adds.
  const ScratchFolder image;
  for (const char* ending : {"", "-wal"})
    fs::copy_file((prepared / "store.db").string() + ending, (image / "store.db").string() + ending);
  EXPECT_THAT(entryOf(*opened(image / "store.db")), ElementsAre(kRenamed));
}

TEST_F(SavePath, MovingTheLogIntoTheFile) {
  {
    const auto cache = opened(prepared / "work.db");
    mustAppend(*cache, {added(1, "Oil")});
    mustAppend(*cache, {renamed(1, "Oil", "Engine oil"), added(2, "Belts")});
    for (const char* ending : {"", "-wal"})
      fs::copy_file((prepared / "work.db").string() + ending, (prepared / "store.db").string() + ending);
  }
  // Opening finds the log, closing moves it.
  cutPowerThroughout([](const fs::path& file) { return LocalCache::open(file, quiet()).has_value(); },
                     [](LocalCache& cache, bool) { EXPECT_THAT(entryOf(cache), ElementsAre(kRenamed, kBelts)); });
  EXPECT_GT(calls, 2);
}

TEST_F(SavePath, FoldingTheJournal) {
  std::vector<std::string> expected;
  {
    const auto cache = opened(prepared / "store.db", quiet(256));
    for (std::uint32_t n = 1; n <= 12; ++n) mustAppend(*cache, {added(n, "Task")});
    ASSERT_TRUE(fold(*cache));
    mustAppend(*cache, {renamed(2, "Task", "Renamed"), deleted(7, "Task")});
    mustAppend(*cache, {deleted(3, "Task"), added(20, "Added")});
    mustAppend(*cache, {added(3, "Moved"), added(21, std::string(300, 'l')), added(22, "Last")});
    expected = entryOf(*cache);
  }
  cutPowerThroughout(
      [](const fs::path& file) {
        const auto cache = LocalCache::open(file, quiet(256));
        return cache && fold(**cache);
      },
      [&](LocalCache& cache, bool) { EXPECT_EQ(entryOf(cache), expected); });
  EXPECT_GT(calls, 15);
}

TEST_F(SavePath, ForgettingWhatHasBeenUploaded) {
  {
    const auto cache = opened(prepared / "store.db");
    mustAppend(*cache, {added(1, "Oil")});
    mustAppend(*cache, {added(2, "Belts")});
    ASSERT_TRUE(fold(*cache));
  }
  cutPowerThroughout(
      [](const fs::path& file) {
        const auto cache = LocalCache::open(file, quiet());
        const auto sent = [&](const auto& done) { (*cache)->markSent("user", "_tasks", numbered(1), 1, done); };
        return cache && awaited(sent) && fold(**cache);
      },
      [](LocalCache& cache, bool) {
        EXPECT_THAT(entryOf(cache), ElementsAre(kOil, kBelts));
        const auto unsent = cache.load("user")->unsent;
        ASSERT_THAT(unsent, testing::Not(IsEmpty()));
        EXPECT_EQ(unsent.back().revision, 2);
      });
  EXPECT_GT(calls, 3);
}

TEST_F(SavePath, Preferences) {
  opened(prepared / "store.db")->setPreference("thalvorn.appearance", "light");
  cutPowerThroughout(
      [](const fs::path& file) {
        const auto cache = LocalCache::open(file, quiet());
        if (!cache) return false;
        (*cache)->setPreference("thalvorn.appearance", "dark");
        (*cache)->setPreference("weather_location", "Antibes");
        (*cache)->flush();
        return true;
      },
      [](LocalCache& cache, bool) {
        EXPECT_THAT(cache.preference("thalvorn.appearance"), testing::Optional(AnyOf("light", "dark")));
      });
  EXPECT_GT(calls, 2);
}

TEST_F(SavePath, WritingABackup) {
  {
    const auto cache = opened(prepared / "store.db");
    mustAppend(*cache, {added(1, "Oil")});
    ASSERT_TRUE(cache->backup(prepared / "copy.db"));
    mustAppend(*cache, {renamed(1, "Oil", "Engine oil"), added(2, "Belts")});
  }
  fs::path folder;
  cutPowerThroughout(
      [&](const fs::path& file) {
        folder = file.parent_path();
        const auto cache = LocalCache::open(file, quiet());
        return cache && (*cache)->backup(folder / "copy.db");
      },
      [&](LocalCache& cache, bool ended) {
        EXPECT_THAT(entryOf(cache), ElementsAre(kRenamed, kBelts));
        const auto copy = entryOf(*opened(folder / "copy.db"));
        if (ended)
          EXPECT_THAT(copy, ElementsAre(kRenamed, kBelts));
        else
          EXPECT_THAT(copy, AnyOf(ElementsAre(kOil), ElementsAre(kRenamed, kBelts)));
      });
  EXPECT_GT(calls, 5);
}

TEST_F(SavePath, RestoringABackup) {
  {
    const auto cache = opened(prepared / "store.db");
    mustAppend(*cache, {added(1, "Oil")});
    ASSERT_TRUE(cache->backup(prepared / "copy.db"));
    mustAppend(*cache, {renamed(1, "Oil", "Engine oil"), added(2, "Belts")});
  }
  // Remains of a restore that was interrupted before.
  std::ofstream(prepared / "store.db.restoring") << "half";
  cutPowerThroughout(
      [](const fs::path& file) { return LocalCache::restore(file.parent_path() / "copy.db", file).has_value(); },
      [](LocalCache& cache, bool ended) {
        if (ended)
          EXPECT_THAT(entryOf(cache), ElementsAre(kOil));
        else
          EXPECT_THAT(entryOf(cache), ElementsAre(kRenamed, kBelts));
      });
}

}  // namespace
}  // namespace thalvorn
