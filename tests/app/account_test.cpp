#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

#include "app/account/account_controller.h"
#include "app/account/sync_controller.h"
#include "app/account/team_controller.h"
#include "app/maintenance_fleet.h"
#include "app/page_access.h"
#include "app/search_model.h"
#include "app/store_session.h"
#include "store/preferences.h"

namespace thalvorn::app {
namespace {

constexpr const char* kUser = "11111111-1111-4111-8111-111111111111";
constexpr const char* kAccount = "22222222-2222-4222-8222-222222222222";

/// A port of this computer on which nobody answers.
QString deadAddress() {
  QTcpServer server;
  server.listen(QHostAddress::LocalHost);
  const QString address = QStringLiteral("http://127.0.0.1:%1").arg(server.serverPort());
  server.close();
  return address;
}

AccountMember member(const char* id, const char* name, TeamRole role, bool owner = false) {
  AccountMember made;
  made.id = *Uuid::parse(id);
  made.accountId = *Uuid::parse(kAccount);
  made.name = name;
  made.role = role;
  made.isOwner = owner;
  return made;
}

/// The fleet of a user who was signed in on this computer, whose server cannot be reached now.
class AtSea : public ::testing::Test {
 protected:
  AtSea() {
    session_ = *StoreSession::open(folder_.filePath(QStringLiteral("fleet.sqlite")), clock_);
    Preferences preferences(session_->cache());
    preferences.setText(preference_keys::userID, kUser);
    preferences.setText(preference_keys::userEmail, "mate@example.com");
    preferences.setText(AppViewModel::accountKey(kUser), kAccount);
  }
  void signedIn() {
    Preferences(session_->cache()).setText(preference_keys::accessToken, "token");
    Preferences(session_->cache()).setText(preference_keys::refreshToken, "refresh");
  }
  /// The program starts with the fleet open.
  void start(bool withServer = true) {
    if (withServer)
      cloud_ = std::make_unique<CloudSession>(model(), *BackendConfig::from(deadAddress(), QStringLiteral("sb_key")),
                                              clock_, timing_);
    session_->openFleetNow(kUser);
    account_ = std::make_unique<AccountController>(*session_, cloud_.get(), QString(), app_);
    team_ = std::make_unique<TeamController>(*session_, cloud_.get(), app_);
    sync_ = std::make_unique<SyncController>(model(), cloud_.get(), app_);
    app_.setPhase(QStringLiteral("ready"));
  }
  AppViewModel& model() { return session_->model(); }
  /// The members that the server told of when it last could.
  void team(std::vector<AccountMember> members) {
    std::vector<FromBackend<AccountMember>> told;
    for (AccountMember& each : members) {
      if (each.userId && each.userId->toString() == kUser) {
        model().setAccountID(kAccount);
        model().setMembership(each);
      }
      told.push_back({.id = each.id, .theirs = each, .merged = each});
    }
    ASSERT_TRUE(saved(model().takeFromBackend<AccountMember>(std::move(told))));
  }
  AccountMember own(TeamRole role, bool owner = false) {
    AccountMember made = member("33333333-3333-4333-8333-333333333333", "Mate", role, owner);
    made.userId = Uuid::parse(kUser);
    return made;
  }
  void addVessel(const char* name) {
    Vessel vessel;
    vessel.name = name;
    ASSERT_TRUE(saved(model().add(vessel)));
  }
  static bool saved(const Saving& saving) {
    return QTest::qWaitFor([&] { return saving.isFinished(); }) && saving.result().has_value();
  }
  bool waitUntilIdle() {
    return QTest::qWaitFor([this] { return account_->work().isEmpty() && !team_->busy(); }, 20'000);
  }

  SystemClock clock_;
  SystemTiming timing_;
  QTemporaryDir folder_;
  KeptPreferences preferences_;
  AppController app_{preferences_};
  std::unique_ptr<StoreSession> session_;
  std::unique_ptr<CloudSession> cloud_;
  std::unique_ptr<AccountController> account_;
  std::unique_ptr<TeamController> team_;
  std::unique_ptr<SyncController> sync_;
};

TEST_F(AtSea, AnExpiredSessionLeadsToTheSignInAndTheFleetGoesOnOffline) {
  start();
  EXPECT_EQ(account_->state(), QStringLiteral("expired"));
  EXPECT_TRUE(account_->mustSignIn());
  account_->resume();
  EXPECT_EQ(app_.phase(), QStringLiteral("welcome"));
  EXPECT_EQ(account_->step(), QStringLiteral("signIn"));
  EXPECT_EQ(account_->notice(), QStringLiteral("Your session has expired for security. Please sign in again to "
                                               "continue syncing your data."));
  EXPECT_EQ(account_->name(), QStringLiteral("mate@example.com"));
  account_->workOffline();
  EXPECT_EQ(app_.phase(), QStringLiteral("ready"));
  EXPECT_FALSE(account_->mustSignIn()) << "the next start does not ask again";
  addVessel("Aurora");
  EXPECT_EQ(sync_->text(), QStringLiteral("Sign in again"));
  sync_->setWatched(true);
  const QVariantMap vessels{{QStringLiteral("text"), QStringLiteral("Vessels")}, {QStringLiteral("count"), 1}};
  EXPECT_EQ(sync_->waiting().value(0).toMap(), vessels);
  EXPECT_EQ(sync_->waitingCount(), 2) << "the choice of a vessel is a setting that follows the user, and waits too";
}

TEST_F(AtSea, SigningOutWithUnsentChangesAsksFirst) {
  signedIn();
  start();
  addVessel("Aurora");
  QSignalSpy asked(account_.get(), &AccountController::signOutQuestion);
  account_->requestSignOut();
  ASSERT_EQ(asked.count(), 1);
  EXPECT_TRUE(asked.first().first().toString().startsWith(QStringLiteral("2 changes have not been sent")))
      << "the choice of a vessel waits too";
  EXPECT_EQ(model().vessels().size(), 1) << "nothing was closed yet";
  account_->signOut();
  EXPECT_EQ(app_.phase(), QStringLiteral("welcome"));
  EXPECT_EQ(model().vessels().size(), 0);
  EXPECT_TRUE(account_->email().isEmpty());
  session_->openFleetNow(kUser);
  EXPECT_EQ(model().vessels().size(), 1) << "it waits for the next sign-in";
  EXPECT_EQ(model().dirtyCount(), 1);
}

TEST_F(AtSea, TheFormSaysWhatIsMissingBesideTheFieldAndWhenTheServerIsAway) {
  start();
  account_->signIn(QStringLiteral("mate"), QString());
  EXPECT_FALSE(account_->emailError().isEmpty());
  EXPECT_FALSE(account_->passwordError().isEmpty());
  EXPECT_TRUE(account_->work().isEmpty()) << "nothing was sent";
  account_->signUp(QStringLiteral("mate@example.com"), QStringLiteral("short"));
  EXPECT_EQ(account_->passwordError(), QStringLiteral("Use at least 8 characters."));
  EXPECT_TRUE(account_->emailError().isEmpty());
  account_->changePassword(QStringLiteral("long enough"), QStringLiteral("long enuff"));
  EXPECT_FALSE(account_->againError().isEmpty());
  account_->signIn(QStringLiteral("mate@example.com"), QStringLiteral("a password"));
  EXPECT_FALSE(account_->work().isEmpty());
  account_->signIn(QStringLiteral("mate@example.com"), QStringLiteral("a password"));
  ASSERT_TRUE(waitUntilIdle());
  EXPECT_TRUE(account_->error().contains(QStringLiteral("cannot be reached"))) << account_->error().toStdString();
  EXPECT_TRUE(account_->passwordError().isEmpty());
  account_->setStep(QStringLiteral("forgot"));
  EXPECT_TRUE(account_->error().isEmpty()) << "another form begins clean";
  account_->sendReset(QStringLiteral("mate@example.com"));
  ASSERT_TRUE(waitUntilIdle());
  EXPECT_TRUE(account_->outcome().isEmpty());
  EXPECT_FALSE(account_->error().isEmpty());
}

TEST_F(AtSea, WithoutAServerTheFormTellsHowOneIsSetUp) {
  start(false);
  EXPECT_EQ(account_->state(), QStringLiteral("none"));
  account_->showSignIn();
  EXPECT_EQ(account_->step(), QStringLiteral("choice"));
  EXPECT_TRUE(account_->error().contains(QStringLiteral("--backend URL --key KEY")));
  EXPECT_FALSE(sync_->shown());
  QSignalSpy told(&app_, &AppController::toastRequested);
  sync_->syncNow();
  EXPECT_EQ(told.count(), 1);
}

TEST_F(AtSea, TheTeamIsSeenByWhoMayManageIt) {
  signedIn();
  start();
  AccountMember invited = member("44444444-4444-4444-8444-444444444444", "Anna", TeamRole::viewOnly);
  invited.invitedEmail = "anna@example.com";
  invited.moduleOverrides[AppTabPermissionKey::crew] = ModuleAccess::hidden;
  AccountMember left = member("55555555-5555-4555-8555-555555555555", "Bo", TeamRole::editor);
  left.userId = Uuid::random();
  left.isActive = false;
  const AccountMember owner = member("66666666-6666-4666-8666-666666666666", "Zoe", TeamRole::admin, true);
  team({left, own(TeamRole::admin), invited, owner});

  ASSERT_TRUE(team_->mayManage());
  QStringList shown;
  for (const QVariant& entry : team_->members()) {
    const QVariantMap each = entry.toMap();
    shown << each[QStringLiteral("name")].toString() + u' ' + each[QStringLiteral("state")].toString();
  }
  EXPECT_EQ(shown, (QStringList{QStringLiteral("Zoe Owner"), QStringLiteral("Anna Invited"),
                                QStringLiteral("Bo Inactive"), QStringLiteral("Mate Active")}));
  const QVariantList modules = team_->modules(QString::fromStdString(invited.id.toString()));
  ASSERT_EQ(modules.size(), 19);
  EXPECT_EQ(modules.first().toMap()[QStringLiteral("key")], QStringLiteral("crew"));
  EXPECT_EQ(modules.first().toMap()[QStringLiteral("access")], QStringLiteral("hidden"));
  EXPECT_EQ(modules.last().toMap()[QStringLiteral("key")], QStringLiteral("gmdss"));

  team_->invite(QStringLiteral("ANNA@example.com"), QStringLiteral("Anna"), QStringLiteral("editor"));
  EXPECT_FALSE(team_->emailError().isEmpty()) << "she is invited already";
  EXPECT_FALSE(team_->busy());
  team_->invite(QStringLiteral("carl@example.com"), QStringLiteral("Carl"), QStringLiteral("editor"));
  ASSERT_TRUE(waitUntilIdle());
  EXPECT_FALSE(team_->error().isEmpty()) << "the plan has no seat left, and the server is away";

  team({own(TeamRole::editor)});
  EXPECT_FALSE(team_->mayManage());
  EXPECT_TRUE(team_->members().isEmpty());
}

TEST_F(AtSea, ARoleClosesPagesAndStopsWhatWouldChangeRecords) {
  signedIn();
  start();
  const auto take = [this] { app_.setAccess(pageAccess(model())); };
  team({own(TeamRole::viewOnly)});
  take();
  app_.open(QStringLiteral("maintenance"));
  EXPECT_TRUE(app_.readOnly());
  QSignalSpy sheets(&app_, &AppController::sheetRequested);
  QSignalSpy told(&app_, &AppController::toastRequested);
  app_.openSheet(QStringLiteral("maintenance/TaskSheet.qml"));
  app_.openSheet(QStringLiteral("fleet/VesselSheet.qml"));
  app_.openSheet(QStringLiteral("history/CorrectServiceSheet.qml"));
  EXPECT_EQ(sheets.count(), 0);
  EXPECT_EQ(told.count(), 3);
  app_.openSheet(QStringLiteral("account/ChangePasswordSheet.qml"));
  EXPECT_EQ(sheets.count(), 1) << "the own password is everyone's";
  app_.open(QStringLiteral("account"));
  EXPECT_FALSE(app_.readOnly());

  app_.open(QStringLiteral("maintenance"));
  AccountMember shutOut = own(TeamRole::editor);
  shutOut.moduleOverrides[AppTabPermissionKey::tasks] = ModuleAccess::hidden;
  team({shutOut});
  take();
  EXPECT_EQ(app_.page(), QStringLiteral("home")) << "the page in view is closed";
  EXPECT_FALSE(app_.canGoBack() && app_.closedPages().isEmpty());
  app_.open(QStringLiteral("vessels"));
  app_.post(QStringLiteral("openTemplateLibrary"));
  EXPECT_EQ(app_.page(), QStringLiteral("home"));
  QStringList lines;
  for (const QVariant& menu : app_.menus())
    for (const QVariant& item : menu.toMap()[QStringLiteral("items")].toList())
      lines << item.toMap()[QStringLiteral("notification")].toString();
  EXPECT_FALSE(lines.contains(QStringLiteral("openTemplateLibrary")));
  EXPECT_FALSE(lines.contains(QStringLiteral("openHoursEditor")));
  EXPECT_TRUE(lines.contains(QStringLiteral("openManageAccount")));
  EXPECT_FALSE(app_.isClosed(QStringLiteral("report"))) << "registers print there too";

  AccountMember engineer = own(TeamRole::editor);
  engineer.moduleOverrides[AppTabPermissionKey::shipslog] = ModuleAccess::readOnly;
  team({engineer});
  take();
  app_.openSheet(QStringLiteral("registers/ShipsLogSheet.qml"));
  EXPECT_EQ(sheets.count(), 1);
  app_.openSheet(QStringLiteral("registers/BunkeringSheet.qml"));
  EXPECT_EQ(sheets.count(), 2) << "a form goes by the rights of its own page";

  session_->openFleetNow(std::string(AppViewModel::demoPrefix));
  take();
  EXPECT_TRUE(app_.closedPages().isEmpty()) << "in the demo fleet everything is allowed";
}

TEST_F(AtSea, AccessThatWasSwitchedOffIsToldAndLeavesTheFleetToRead) {
  signedIn();
  start();
  team({own(TeamRole::editor)});
  addVessel("M/Y Meridian");
  const QString why = QStringLiteral("Your access has been switched off. Ask the owner of the account.");
  AccountMember inactive = own(TeamRole::editor);
  inactive.isActive = false;
  model().setAccessRefusal(why.toStdString());
  model().setAccountID({});
  model().setMembership(inactive);
  EXPECT_EQ(account_->refusal(), why);
  EXPECT_EQ(team_->role(), QStringLiteral("Inactive"));
  EXPECT_EQ(team_->seatsText(), QString());
  EXPECT_EQ(sync_->state(), QStringLiteral("problem"));
  EXPECT_TRUE(sync_->detail().startsWith(why)) << sync_->detail().toStdString();
  const PageAccess access = pageAccess(model());
  EXPECT_FALSE(access.closed.contains(QStringLiteral("maintenance")));
  EXPECT_TRUE(access.readOnly.contains(QStringLiteral("maintenance")));
  session_->openFleetNow(std::string(AppViewModel::demoPrefix));
  EXPECT_EQ(account_->refusal(), QString());
  EXPECT_TRUE(pageAccess(model()).readOnly.isEmpty());
}

TEST_F(AtSea, AConflictIsShownAndSettledEitherWay) {
  signedIn();
  start();
  team({own(TeamRole::editor)});
  Vessel vessel;
  vessel.id = Uuid::random();
  vessel.name = "Aurora";
  vessel.type = "Motor yacht";
  Vessel theirs = vessel;
  theirs.type = "Sailing yacht";
  ConflictNote note;
  note.id = Uuid::random();
  note.tableName = RecordKind<Vessel>::facts.table;
  note.recordID = vessel.id;
  note.recordName = vessel.name;
  note.fields = {"type"};
  note.keptBy = kUser;
  note.other = toJson(theirs, JsonFields::full);
  ConflictNote second = note;
  second.id = Uuid::random();
  for (const Saving& saving : {model().add(vessel), model().add(note), model().add(second)}) ASSERT_TRUE(saved(saving));

  sync_->setWatched(true);
  EXPECT_EQ(sync_->openConflicts(), 2);
  const QVariantMap shown = sync_->conflicts().first().toMap();
  EXPECT_EQ(shown[QStringLiteral("kept")], QStringLiteral("You"));
  const QVariantMap line = shown[QStringLiteral("lines")].toList().first().toMap();
  EXPECT_EQ(line[QStringLiteral("now")], QStringLiteral("Motor yacht"));
  EXPECT_EQ(line[QStringLiteral("other")], QStringLiteral("Sailing yacht"));

  sync_->keep(QString::fromStdString(note.id.toString()));
  EXPECT_EQ(model().vessels().find(vessel.id)->type, "Motor yacht");
  EXPECT_EQ(sync_->openConflicts(), 1);
  sync_->takeBack(QString::fromStdString(second.id.toString()));
  EXPECT_EQ(model().vessels().find(vessel.id)->type, "Sailing yacht");
  EXPECT_EQ(sync_->openConflicts(), 0);
}

TEST_F(AtSea, ARunThatFindsNoServerSaysOfflineAndWhatWaits) {
  signedIn();
  start();
  team({own(TeamRole::editor)});
  addVessel("Aurora");
  sync_->syncNow();
  EXPECT_EQ(sync_->text(), QStringLiteral("Syncing…"));
  ASSERT_TRUE(QTest::qWaitFor([this] { return sync_->state() != u"syncing"; }, 20'000));
  EXPECT_EQ(sync_->text(), QStringLiteral("Offline · 2 waiting"));
  EXPECT_FALSE(sync_->lastRun().isValid());
  EXPECT_FALSE(sync_->logText().isEmpty());
}

}  // namespace
}  // namespace thalvorn::app
