#include <gmock/gmock.h>

#include "computer.h"

namespace thalvorn {
namespace {

using testing::Contains;

const QString kSwitchedOff = QStringLiteral("Your access has been switched off. Ask the owner of the account.");

class Accounts : public ::testing::Test {
 protected:
  /// The captain's account has seats for a crew.
  void SetUp() override {
    ASSERT_TRUE(captain.signUp("captain"));
    ASSERT_TRUE(sharedBackend().setPlan(account(), "fleet"));
    ASSERT_TRUE(finished(captain.cloud->refreshAccount()));
  }
  std::string account() const { return captain.model->accountID(); }
  /// A member of the captain's account, on a computer of his own.
  bool join(Computer& mate, TeamRole role) {
    mate.email = QStringLiteral("mate-%1@example.com").arg(QString::fromStdString(Uuid::random().toString()));
    return finished(captain.cloud->inviteTeamMember(mate.email, QStringLiteral("Mate"), role)) &&
           finished(mate.cloud->signUp(mate.email, Computer::kPassword)) && mate.sync() == SyncOutcome::complete &&
           mate.model->accountID() == account();
  }
  bool setActive(const Computer& mate, bool active) const {
    return sharedBackend().execute(
        QStringLiteral("update public.account_members set is_active = %1 where user_id = '%2'")
            .arg(active ? QStringLiteral("true") : QStringLiteral("false"), mate.cloud->userID()));
  }
  static bool signInAgain(Computer& computer) {
    finished(computer.cloud->signOut());
    return computer.signIn(computer.email, Computer::kPassword);
  }

  Computer captain;
};

TEST_F(Accounts, AreAskedForAgainByARunThatFindsNone) {
  Computer mate;
  mate.email = QStringLiteral("mate-%1@example.com").arg(captain.cloud->userID());
  QString told;
  QObject::connect(&mate.cloud->sync(), &SyncManager::messageForUser, [&](const QString& text) { told = text; });
  // At the sign-in itself, and in the run after it.
  ASSERT_TRUE(sharedBackend().setFaults({QStringLiteral("503 x2 @GET @/rest/v1/account_members")}));
  ASSERT_TRUE(finished(mate.cloud->signUp(mate.email, Computer::kPassword)));
  finished(untilIdle(mate.cloud.get()));
  ASSERT_TRUE(sharedBackend().setFaults({}));
  ASSERT_TRUE(mate.model->accountID().empty());
  EXPECT_THAT(mate.said(), Contains("❌ syncAll skipped — no resolved accountID yet"));
  EXPECT_EQ(told, QStringLiteral("Couldn't determine your account — try Sync Now again, or sign out and back in."));
  EXPECT_EQ(mate.sync(), SyncOutcome::complete) << mate.problems();
  EXPECT_FALSE(mate.model->accountID().empty());
}

TEST_F(Accounts, ThatShutAMemberOutLeaveHisFleetReadableAndWhatWaits) {
  Computer mate;
  ASSERT_TRUE(captain.add(Vessel{.id = Uuid::random(), .name = "M/Y Meridian"}));
  ASSERT_EQ(captain.sync(), SyncOutcome::complete);
  ASSERT_TRUE(join(mate, TeamRole::editor));
  ASSERT_TRUE(mate.add(Vessel{.id = Uuid::random(), .name = "Tender"}));
  ASSERT_TRUE(setActive(mate, false));
  EXPECT_NE(mate.sync(), SyncOutcome::complete);
  EXPECT_EQ(mate.sync(), SyncOutcome::skipped) << "a further run finds no account";
  const auto isShutOut = [&] {
    EXPECT_EQ(mate.model->accountID(), "");
    EXPECT_EQ(mate.model->accessRefusal(), kSwitchedOff.toStdString());
    EXPECT_EQ(mate.cloud->sync().whyNoAccount(), kSwitchedOff);
    ASSERT_TRUE(mate.model->membership());
    EXPECT_FALSE(mate.model->membership()->isActive);
    EXPECT_EQ(mate.model->vessels().size(), 2U);
    EXPECT_TRUE(mate.model->rights(AppTabPermissionKey::tasks).read);
    EXPECT_FALSE(mate.model->rights(AppTabPermissionKey::tasks).write);
    EXPECT_FALSE(mate.model->rights(AppTabPermissionKey::admin).read) << "no more than his role allowed";
    EXPECT_FALSE(mate.add(Vessel{.id = Uuid::random(), .name = "Second tender"}));
    EXPECT_EQ(mate.model->dirtyCount(), 1);
  };
  isShutOut();
  mate.model->reloadNow(mate.model->prefix());
  isShutOut();

  ASSERT_TRUE(setActive(mate, true));
  EXPECT_EQ(mate.sync(), SyncOutcome::complete) << mate.problems();
  EXPECT_EQ(mate.model->accessRefusal(), "");
  EXPECT_EQ(mate.model->dirtyCount(), 0);
  ASSERT_EQ(captain.sync(), SyncOutcome::complete);
  EXPECT_EQ(captain.model->vessels().size(), 2U);
}

TEST_F(Accounts, OfOthersAreJoinedBesideOnesOwnAndChangedBetween) {
  Computer mate;
  ASSERT_TRUE(mate.signUp("mate"));
  const std::string own = mate.model->accountID();
  ASSERT_TRUE(finished(captain.cloud->inviteTeamMember(mate.email, QStringLiteral("Mate"), TeamRole::admin)));
  ASSERT_TRUE(mate.add(Vessel{.id = Uuid::random(), .name = "Dinghy"}));
  ASSERT_EQ(mate.sync(), SyncOutcome::complete) << mate.problems();
  ASSERT_TRUE(signInAgain(mate));
  EXPECT_EQ(mate.model->accountID(), account());
  ASSERT_EQ(mate.cloud->account().accounts().size(), 2U);
  EXPECT_EQ(mate.cloud->account().accounts().front().id, own) << "his own stands first";

  // He invites into the account in view, whose seats count, and not into his own, which has none left.
  const auto invited = finished(mate.cloud->inviteTeamMember(QStringLiteral("deckhand@example.com"),
                                                             QStringLiteral("Deckhand"), TeamRole::viewOnly));
  EXPECT_TRUE(invited) << invited.error().toStdString();
  ASSERT_TRUE(finished(captain.cloud->refreshAccount()));
  EXPECT_EQ(captain.model->accountMembers().size(), 3U);

  ASSERT_TRUE(mate.add(Vessel{.id = Uuid::random(), .name = "M/Y Meridian"}));
  EXPECT_FALSE(finished(mate.cloud->openAccount(own))) << "what waits belongs to the account in view";
  ASSERT_EQ(mate.sync(), SyncOutcome::complete) << mate.problems();
  ASSERT_TRUE(finished(mate.cloud->openAccount(own)));
  EXPECT_EQ(mate.sync(), SyncOutcome::complete) << mate.problems();
  ASSERT_EQ(mate.model->vessels().size(), 1U);
  EXPECT_EQ(mate.model->vessels().records().front().name, "Dinghy");
  ASSERT_TRUE(signInAgain(mate));
  EXPECT_EQ(mate.model->accountID(), own) << "an invitation that was claimed long ago changes nothing";
  ASSERT_EQ(captain.sync(), SyncOutcome::complete) << captain.problems();
  ASSERT_EQ(captain.model->vessels().size(), 1U);
  EXPECT_EQ(captain.model->vessels().records().front().name, "M/Y Meridian");
}

TEST_F(Accounts, TellTheirSeatsToWhoSeesTheTeam) {
  Computer mate;
  ASSERT_TRUE(join(mate, TeamRole::viewOnly));
  EXPECT_EQ(mate.cloud->seatsText(), QString());
  ASSERT_TRUE(finished(captain.cloud->refreshAccount()));
  EXPECT_EQ(captain.cloud->seatsText(), QStringLiteral("2 of 10 seats used on your Fleet plan"));
  // What this computer knows is old: the server counts.
  ASSERT_TRUE(sharedBackend().setPlan(account(), "none"));
  const auto invited = finished(captain.cloud->inviteTeamMember(QStringLiteral("deckhand@example.com"),
                                                                QStringLiteral("Deckhand"), TeamRole::viewOnly));
  ASSERT_FALSE(invited);
  EXPECT_EQ(invited.error(), QStringLiteral("2 of 1 seats on your plan. Add a seat to invite another user."));
}

}  // namespace
}  // namespace thalvorn
