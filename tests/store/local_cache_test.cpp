#include "store/local_cache.h"

#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <fstream>

#include "store/cache_testing.h"
#include "store/preferences.h"
#include "store/user_preferences.h"

namespace thalvorn {
namespace {

using namespace testing_tools;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(LocalCache, KeepsEditsInOrderOverRestartsAndFolds) {
  const ScratchFolder folder;
  const auto file = folder / "data/fleet/store.db";
  {
    const auto cache = opened(file);
    EXPECT_EQ(append(*cache, {added(1, "Oil"), added(2, "Belts")}), 1);
    EXPECT_EQ(append(*cache, {renamed(1, "Oil", "Engine oil"), added(3, "Anodes")}), 2);
    EXPECT_EQ(append(*cache, {deleted(2, "Belts")}), 3);
    EXPECT_THAT(entryOf(*cache), ElementsAre(record(1, "Engine oil"), record(3, "Anodes")));
  }
  {
    const auto cache = opened(file);
    EXPECT_THAT(entryOf(*cache), ElementsAre(record(1, "Engine oil"), record(3, "Anodes")));
    EXPECT_EQ(fold(*cache), 3);
    EXPECT_THAT(cache->load("user")->journal, IsEmpty());
    EXPECT_THAT(cache->load("user")->unsent, SizeIs(3));
    // Deleted and added again, a record stands at the end.
    mustAppend(*cache, {deleted(1, "Engine oil")});
    mustAppend(*cache, {added(4, "Filters")});
    mustAppend(*cache, {added(1, "Engine oil")});
  }
  const auto cache = opened(file);
  const auto expected = ElementsAre(record(3, "Anodes"), record(4, "Filters"), record(1, "Engine oil"));
  EXPECT_THAT(entryOf(*cache), expected);
  EXPECT_EQ(fold(*cache), 6);
  EXPECT_THAT(entryOf(*cache), expected);
  EXPECT_EQ(append(*cache, {added(5, "Liferaft")}), 7);
  EXPECT_TRUE(cache->check().sound);
  EXPECT_THAT(cache->prefixes(), ElementsAre("user"));
}

TEST(LocalCache, SetsWhatIsUnderAPrefixAsideAlsoWhileItIsFolded) {
  const ScratchFolder folder;
  const auto file = folder / "store.db";
  const auto move = [](LocalCache& cache, const std::string& aside, const std::string& instead) {
    return awaited([&](const auto& done) { cache.setAside("user", aside, instead, {"whose", instead}, done); });
  };
  const auto expectFirst = [](const LocalCache& cache, const std::string& prefix) {
    EXPECT_THAT(entryOf(cache, prefix), SizeIs(201));
    const StoredState state = cache.load(prefix).value();
    std::size_t waiting = 0;
    for (const auto* edits : {&state.unsent, &state.journal})
      for (const JournalEntry& edit : *edits)
        waiting += static_cast<std::size_t>(std::ranges::count(edit.changes, false, &EntryChange::sent));
    EXPECT_EQ(waiting, 101U) << "what had not been sent waits on";
  };
  {
    const auto cache = opened(file);
    for (std::uint32_t n = 0; n < 200; ++n) mustAppend(*cache, {added(n, std::string(200, 'x'))});
    std::vector<SentRecord> sent;
    for (std::uint32_t n = 0; n < 100; ++n) sent.push_back({"_tasks", numbered(n), 200});
    ASSERT_TRUE(awaited([&](const auto& done) { cache->markSent("user", sent, done); }));
    cache->foldNow({});
    ASSERT_TRUE(move(*cache, "user@a", "user@b"));
    EXPECT_THAT(entryOf(*cache), IsEmpty());
    EXPECT_EQ(cache->preference("whose"), "user@b");
    mustAppend(*cache, {added(1, "Another fleet's")});
    mustAppend(*cache, {added(300, "One more")}, "user@a");
    ASSERT_TRUE(fold(*cache));
    expectFirst(*cache, "user@a");
    EXPECT_FALSE(move(*cache, "user@a", "user@b")) << "nothing is written over";
    EXPECT_THAT(entryOf(*cache), ElementsAre(record(1, "Another fleet's")));
  }
  const auto cache = opened(file);
  EXPECT_EQ(cache->preference("whose"), "user@b");
  cache->foldNow({});
  ASSERT_TRUE(move(*cache, "user@b", "user@a"));
  ASSERT_TRUE(fold(*cache));
  expectFirst(*cache, "user");
  EXPECT_THAT(entryOf(*cache, "user@b"), ElementsAre(record(1, "Another fleet's")));
  EXPECT_TRUE(cache->check().sound);
  EXPECT_THAT(cache->prefixes(), ElementsAre("user", "user@b"));
}

TEST(LocalCache, PreferencesAreSeenAtOnceAndAfterARestart) {
  const ScratchFolder folder;
  {
    const auto cache = opened(folder / "store.db");
    Preferences preferences(*cache);
    preferences.setText(preference_keys::appearance, "dark");
    preferences.setList(preference_keys::hiddenModules, {"marpol", "gmdss"});
    preferences.setId("user_selectedVesselID", numbered(7));
    preferences.setNumber("ratio", 0.1);
    preferences.setFlag("onboardingComplete_7", true);
    EXPECT_EQ(preferences.text(preference_keys::appearance), "dark");
    preferences.remove(preference_keys::appearance);
    EXPECT_EQ(preferences.value(preference_keys::appearance), std::nullopt);
  }
  const auto cache = opened(folder / "store.db");
  const Preferences preferences(*cache);
  EXPECT_EQ(preferences.text(preference_keys::appearance, "system"), "system");
  EXPECT_THAT(preferences.list(preference_keys::hiddenModules), ElementsAre("marpol", "gmdss"));
  EXPECT_EQ(preferences.id("user_selectedVesselID"), numbered(7));
  EXPECT_EQ(preferences.number("ratio"), 0.1);
  EXPECT_EQ(preferences.integer("ratio"), std::nullopt);
  EXPECT_TRUE(preferences.flag("onboardingComplete_7"));
}

TEST(UserPreferences, OnceSharedByAllGoToWhoeverWorkedWithThem) {
  const ScratchFolder folder;
  const auto cache = opened(folder / "store.db");
  const auto shared = [&] {
    cache->setPreference(std::string(preference_keys::userDisplayName), "Anna");
    cache->setPreference(std::string(preference_keys::weatherLocation), "Antibes");
  };
  const UserPreferences anna(*cache, "anna");
  const UserPreferences bo(*cache, "bo");
  const UserPreferences local(*cache, "local");
  shared();
  cache->setPreference(std::string(preference_keys::userID), "anna");
  for (const UserPreferences* each : {&bo, &local, &anna, &bo}) each->adoptShared("local");
  EXPECT_EQ(anna.value(preference_keys::userDisplayName), "Anna");
  EXPECT_EQ(bo.value(preference_keys::userDisplayName), std::nullopt);
  EXPECT_EQ(local.value(preference_keys::weatherLocation), std::nullopt);
  EXPECT_EQ(cache->preference(preference_keys::weatherLocation), std::nullopt);

  shared();
  cache->setPreference(std::string(preference_keys::userID), std::nullopt);
  anna.set(preference_keys::weatherLocation, "Nice");
  for (const UserPreferences* each : {&anna, &local}) each->adoptShared("local");
  EXPECT_EQ(anna.value(preference_keys::weatherLocation), "Nice");
  EXPECT_EQ(local.value(preference_keys::weatherLocation), "Antibes") << "nobody is signed in";
}

}  // namespace
}  // namespace thalvorn
