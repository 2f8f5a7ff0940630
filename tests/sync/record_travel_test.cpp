// Records of every kind on their way from one computer through the database to another.

#include <gmock/gmock.h>

#include "backend/filler.h"
#include "computer.h"
#include "store/preferences.h"
#include "store/user_preferences.h"

namespace thalvorn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A record with a value in every field that travels, belonging to `vessel`.
template <class T>
T filled(const Uuid& vessel, const std::string& userID) {
  T record{};
  Filler(vessel).fill(record);
  record.id = Uuid::named(vessel, RecordKind<T>::facts.table);
  if constexpr (requires { record.vesselID = vessel; }) record.vesselID = vessel;
  // Bytes that older programs kept in the record move to a file before anything travels.
  if constexpr (requires { record.photoData; }) record.photoData = {};
  if constexpr (requires { record.fileData; }) record.fileData = {};
  if constexpr (std::is_same_v<T, CrewBoardPost>) {
    record.userID = userID;
    record.acknowledgments = {userID};
  }
  if constexpr (std::is_same_v<T, YardPeriod>) {
    const auto belong = [&](auto& parts) {
      for (auto& part : parts) {
        part.vesselID = vessel;
        part.yardPeriodID = record.id;
      }
    };
    belong(record.workOrders);
    belong(record.punchList);
    belong(record.logEntries);
  }
  return record;
}

/// The kinds whose record differs from `wanted`, with the fields that do.
std::vector<std::string> differences(const AppViewModel& model, const Uuid& vessel, const std::string& userID) {
  std::vector<std::string> found;
  forEachKind([&]<class T>(std::type_identity<T>) {
    if constexpr (!std::is_same_v<T, AccountMember>) {
      T wanted = filled<T>(vessel, userID);
      if constexpr (std::is_same_v<T, Vessel>) wanted.id = vessel;
      const T* record = model.collection<T>().find(wanted.id);
      if (!record) {
        found.push_back(std::string(RecordKind<T>::facts.table) + " is not there");
        return;
      }
      const FieldSet differing = changedFields(wanted, *record);
      for (std::size_t i = 0; i < fieldCount<T>; ++i)
        if (differing >> i & 1)
          found.push_back(std::string(RecordKind<T>::facts.table) + '.' + std::string(fieldNames<T>[i]));
    }
  });
  return found;
}

TEST(Records, OfEveryKindArriveAsTheyWere) {
  Computer first;
  ASSERT_TRUE(first.signUp("captain"));
  const std::string user = first.cloud->userID().toStdString();
  const Uuid vessel = Uuid::random();
  Edit edit{.label = "Everything"};
  forEachKind([&]<class T>(std::type_identity<T>) {
    if constexpr (!std::is_same_v<T, AccountMember>) {
      T record = filled<T>(vessel, user);
      if constexpr (std::is_same_v<T, Vessel>) record.id = vessel;
      edit.add(std::move(record));
    }
  });
  ASSERT_TRUE(finished(Computer::saved(first.model->apply(std::move(edit)))));
  const UserPreferences chosen(*first.cache, user);
  chosen.change(preference_keys::weatherLocation, "43.55,7.02", first.clock.now());
  chosen.change(preference_keys::tideStationID, "8724580", first.clock.now());
  chosen.change(preference_keys::tideStationName, "Key West", first.clock.now());
  EXPECT_EQ(first.sync(), SyncOutcome::complete) << first.problems();
  EXPECT_EQ(first.model->dirtyCount(), 0) << "each was read back as it was sent";
  EXPECT_THAT(differences(*first.model, vessel, user), IsEmpty());

  Computer second;
  ASSERT_TRUE(second.signIn(first.email, Computer::kPassword));
  EXPECT_EQ(second.sync(), SyncOutcome::complete) << second.problems();
  EXPECT_THAT(differences(*second.model, vessel, user), IsEmpty());
  EXPECT_EQ(second.model->dirtyCount(), 0);
  const UserPreferences preferences(*second.cache, user);
  EXPECT_EQ(preferences.value(preference_keys::weatherLocation), "43.55,7.02");
  EXPECT_EQ(preferences.value(preference_keys::tideStationID), "8724580");
  EXPECT_EQ(preferences.value(preference_keys::tideStationName), "Key West");
}

TEST(Records, ArePostsAcknowledgedByEachForHimself) {
  Computer captain;
  ASSERT_TRUE(captain.signUp("captain"));
  ASSERT_TRUE(sharedBackend().setPlan(captain.model->accountID(), "fleet"));
  ASSERT_TRUE(finished(captain.cloud->refreshAccount()));
  Computer guest;
  guest.email = QStringLiteral("guest-%1@example.com").arg(captain.cloud->userID());
  ASSERT_TRUE(finished(captain.cloud->inviteTeamMember(guest.email, QStringLiteral("Guest"), TeamRole::viewOnly)));
  ASSERT_TRUE(finished(guest.cloud->signUp(guest.email, Computer::kPassword)));
  ASSERT_EQ(guest.model->accountID(), captain.model->accountID());
  const std::string captainID = captain.cloud->userID().toStdString();
  const std::string guestID = guest.cloud->userID().toStdString();

  CrewBoardPost post;
  post.id = Uuid::random();
  post.userID = captainID;
  post.title = "Fire drill at 10";
  post.requiresAcknowledgment = true;
  ASSERT_TRUE(captain.add(post));
  ASSERT_EQ(captain.sync(), SyncOutcome::complete) << captain.problems();
  ASSERT_EQ(guest.sync(), SyncOutcome::complete) << guest.problems();
  ASSERT_TRUE(guest.model->crewBoardPosts().find(post.id));

  // Both at once; the guest may do nothing else to the post.
  CrewBoardPost seen = *guest.model->crewBoardPosts().find(post.id);
  seen.acknowledgments = {guestID};
  ASSERT_TRUE(guest.update(seen));
  seen.body = "Not now";
  EXPECT_FALSE(guest.update(seen));
  post.acknowledgments = {captainID};
  ASSERT_TRUE(captain.update(post));
  EXPECT_EQ(guest.sync(), SyncOutcome::complete) << guest.problems();
  EXPECT_EQ(guest.model->dirtyCount(), 0);
  EXPECT_EQ(captain.sync(), SyncOutcome::complete) << captain.problems();
  EXPECT_EQ(captain.model->dirtyCount(), 0);
  EXPECT_EQ(guest.sync(), SyncOutcome::complete);
  for (const Computer* computer : {&captain, &guest})
    EXPECT_EQ(computer->model->crewBoardPosts().find(post.id)->acknowledgments.size(), 2);
  EXPECT_EQ(captain.model->conflicts().size(), 0);

  // Taken back, the other's stays.
  seen = *guest.model->crewBoardPosts().find(post.id);
  std::erase(seen.acknowledgments, guestID);
  ASSERT_TRUE(guest.update(seen));
  EXPECT_EQ(guest.sync(), SyncOutcome::complete) << guest.problems();
  EXPECT_EQ(captain.sync(), SyncOutcome::complete);
  for (const Computer* computer : {&captain, &guest})
    EXPECT_THAT(computer->model->crewBoardPosts().find(post.id)->acknowledgments, ElementsAre(captainID));
}

}  // namespace
}  // namespace thalvorn
