#include "computer.h"
#include "store/preferences.h"
#include "store/user_preferences.h"
#include "sync/settings_step.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;

UserPreferences settingsOf(Computer& computer) { return {*computer.cache, computer.model->prefix()}; }

std::string weatherOf(Computer& computer) {
  return settingsOf(computer).value(preference_keys::weatherLocation).value_or("");
}

void chooseWeather(Computer& computer, const char* place, std::chrono::seconds ago) {
  settingsOf(computer).change(preference_keys::weatherLocation, place, computer.clock.now() - ago);
}

TEST(Settings, OfOneUserAreNotThoseOfTheNextOnTheSameComputer) {
  Computer shared;
  ASSERT_TRUE(shared.signUp("anna"));
  shared.model->setDisplayName("Anna");
  chooseWeather(shared, "Antibes", 0s);
  ASSERT_EQ(shared.sync(), SyncOutcome::complete) << shared.problems();
  const QString anna = shared.email;
  finished(shared.cloud->signOut());
  EXPECT_EQ(shared.model->displayName(), "");
  ASSERT_TRUE(shared.signUp("bo"));
  ASSERT_EQ(shared.sync(), SyncOutcome::complete) << shared.problems();
  EXPECT_EQ(shared.model->displayName(), "");

  Computer second;
  ASSERT_TRUE(second.signIn(shared.email, Computer::kPassword));
  EXPECT_EQ(weatherOf(second), "");
  EXPECT_EQ(second.model->displayName(), "");
  finished(shared.cloud->signOut());
  ASSERT_TRUE(shared.signIn(anna, Computer::kPassword));
  EXPECT_EQ(shared.model->displayName(), "Anna");
}

TEST(Settings, ChangedOnTwoComputersAreMergedByFieldAndTime) {
  Computer first;
  ASSERT_TRUE(first.signUp("captain"));
  chooseWeather(first, "Antibes", 3h);
  ASSERT_EQ(first.sync(), SyncOutcome::complete) << first.problems();
  Computer second;
  ASSERT_TRUE(second.signIn(first.email, Computer::kPassword));
  ASSERT_EQ(weatherOf(second), "Antibes");
  // A computer on which nothing was chosen yet resets nothing.
  ASSERT_EQ(first.sync(), SyncOutcome::complete);
  ASSERT_EQ(weatherOf(first), "Antibes");

  // Each something else: both stand, though the second is ahead.
  first.model->setDisplayName("Anna");
  chooseWeather(second, "Nice", 2h);
  EXPECT_EQ(settingsWaiting(*second.model), 1);
  ASSERT_EQ(second.sync(), SyncOutcome::complete) << second.problems();
  ASSERT_EQ(first.sync(), SyncOutcome::complete) << first.problems();
  ASSERT_EQ(second.sync(), SyncOutcome::complete) << second.problems();
  for (Computer* computer : {&first, &second}) {
    EXPECT_EQ(weatherOf(*computer), "Nice");
    EXPECT_EQ(computer->model->displayName(), "Anna");
    EXPECT_EQ(settingsWaiting(*computer->model), 0);
  }
}

TEST(Settings, BothChangedGoToTheLaterWhoeverIsFirstAtTheServer) {
  for (const auto& [ofFirst, ofSecond, stands] : {std::tuple(1h, 2h, "Genoa"), std::tuple(2h, 1h, "Nice")}) {
    Computer first;
    ASSERT_TRUE(first.signUp("captain"));
    chooseWeather(first, "Antibes", 3h);
    ASSERT_EQ(first.sync(), SyncOutcome::complete) << first.problems();
    Computer second;
    ASSERT_TRUE(second.signIn(first.email, Computer::kPassword));
    chooseWeather(first, "Genoa", ofFirst);
    chooseWeather(second, "Nice", ofSecond);
    for (Computer* computer : {&second, &first, &second})
      ASSERT_EQ(computer->sync(), SyncOutcome::complete) << computer->problems();
    EXPECT_EQ(weatherOf(first), stands);
    EXPECT_EQ(weatherOf(second), stands);
  }
}

TEST(Settings, ChosenWhileTheyAreSentWaitForTheNextRun) {
  Computer here;
  ASSERT_TRUE(here.signUp("captain"));
  ASSERT_EQ(here.sync(), SyncOutcome::complete);
  chooseWeather(here, "Antibes", 1h);
  // The line is said when the server has taken the row, before it is read back.
  QObject::connect(&here.cloud->log(), &SyncLog::added, [&] {
    if (here.said().back() == "upsert user_settings [1]" && weatherOf(here) == "Antibes")
      chooseWeather(here, "Nice", 0s);
  });
  ASSERT_EQ(here.sync(), SyncOutcome::complete) << here.problems();
  EXPECT_EQ(weatherOf(here), "Nice");
  EXPECT_EQ(settingsWaiting(*here.model), 1);
  ASSERT_EQ(here.sync(), SyncOutcome::complete) << here.problems();
  EXPECT_EQ(settingsWaiting(*here.model), 0);
  Computer second;
  ASSERT_TRUE(second.signIn(here.email, Computer::kPassword));
  EXPECT_EQ(weatherOf(second), "Nice");
}

}  // namespace
}  // namespace thalvorn
