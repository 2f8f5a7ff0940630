#include "sync/cloud_session.h"

#include <QCoroFuture>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>
#include <algorithm>

#include "store/list_loader.h"
#include "store/preferences.h"
#include "sync/settings_step.h"

namespace thalvorn {
namespace {

QByteArray json(const QJsonObject& object) { return QJsonDocument(object).toJson(QJsonDocument::Compact); }

const QString kAccountArgument = QStringLiteral("p_account_id");

QString text(std::string_view value) { return QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size())); }

}  // namespace

CloudSession::CloudSession(AppViewModel& model, BackendConfig config, const Clock& clock, Timing& timing,
                           SyncManager::Options options, QObject* parent)
    : QObject(parent),
      model_(model),
      tokens_(model.cache()),
      log_(clock),
      client_(std::make_unique<SupabaseClient>(std::move(config), tokens_, clock, timing)),
      resolver_(std::make_unique<AccountResolver>(model, *client_, log_)),
      sync_(std::make_unique<SyncManager>(model, *client_, *resolver_, log_, timing, options)),
      files_(std::make_unique<FileSync>(model, *client_, log_, clock, timing)) {
  model_.setSyncTrigger(sync_.get());
  connect(sync_.get(), &SyncManager::exchanged, files_.get(), [this] {
    if (sync_->problems().empty()) files_->deleteTakenOut();
    files_->goOn();
  });
  connect(resolver_.get(), &AccountResolver::fleetSetAside, this, [this](const QString& prefix) {
    setAside_ = prefix;
    log_.say("📦 no member any more; the fleet of the former account is kept as " + prefix.toStdString());
    Q_EMIT fleetSetAside(prefix);
    // The run that found it ended with the former fleet.
    QTimer::singleShot(0, sync_.get(), &SyncManager::fullSync);
  });
  connect(client_.get(), &SupabaseClient::sessionExpired, this, [this](const QString& why) {
    model_.setAuthenticated(false);
    Q_EMIT changed();
    Q_EMIT sessionExpired(why);
  });
}

CloudSession::~CloudSession() {
  *alive_ = false;
  model_.setSyncTrigger(nullptr);
  model_.setAuthenticated(false);
  // Requests under way end when the client goes; those who await them find their run over.
  files_.reset();
  sync_.reset();
  client_.reset();
  resolver_.reset();
}

// ---- in and out
// ------------------------------------------------------------------------------------------------------------

void CloudSession::restore() {
  if (userID().isEmpty() || model_.prefix() != userID().toStdString()) return;
  resolver_->restore();
  model_.setAuthenticated(client_->isAuthenticated());
}

QCoro::Task<bool> CloudSession::resume() {
  const std::string user = client_->userID().toStdString();
  if (user.empty()) co_return false;
  const auto alive = alive_;
  if (model_.prefix() != user) co_await model_.reloadForUser(user);
  if (!*alive || model_.prefix() != user) co_return false;
  co_await opened(false);
  co_return true;
}

QCoro::Task<void> CloudSession::opened(bool changePassword) {
  const auto alive = alive_;
  restore();
  Q_EMIT changed();
  if (changePassword) Q_EMIT passwordChangeRequired();
  if (!client_->isAuthenticated()) co_return;
  resolver_->expectInvitations();
  co_await resolver_->resolveAccountAndMembership();
  if (!*alive) co_return;
  log_.say("🚀 Launch force-sync (post-login sweep)");
  sync_->fullSync();
  files_->start();
}

SBTask<SignedIn> CloudSession::signIn(QString email, QString password) {
  const auto alive = alive_;
  const auto signedIn = co_await client_->signIn(std::move(email), std::move(password));
  if (!signedIn || !*alive) co_return signedIn;
  co_await model_.reloadForUser(signedIn->userID.toStdString());
  if (*alive) co_await opened(signedIn->passwordChangeRequired);
  co_return signedIn;
}

SBTask<SignUpOutcome> CloudSession::signUp(QString email, QString password) {
  const auto alive = alive_;
  const auto outcome = co_await client_->signUp(std::move(email), std::move(password));
  if (!outcome || !*alive || *outcome != SignUpOutcome::signedIn) co_return outcome;
  co_await model_.reloadForUser(client_->userID().toStdString());
  if (*alive) co_await opened(false);
  co_return outcome;
}

SBTask<SignedIn> CloudSession::openLink(QString link) {
  const auto alive = alive_;
  const auto signedIn = co_await client_->openLink(std::move(link));
  if (!signedIn || !*alive) co_return signedIn;
  co_await model_.reloadForUser(signedIn->userID.toStdString());
  if (*alive) co_await opened(true);
  co_return signedIn;
}

void CloudSession::networkReturned() {
  if (needsSignIn()) return;
  client_->networkReturned();
  if (model_.prefix() != userID().toStdString()) return;
  files_->start();
  sync_->periodicSync();
}

int CloudSession::unsentCount() const {
  return model_.dirtyCount() + model_.unsavedCount() + settingsWaiting(model_) + files_->waitingCount() +
         files_->failedCount();
}

QCoro::Task<void> CloudSession::signOut() {
  const auto alive = alive_;
  model_.setAuthenticated(false);
  model_.clear();
  model_.setAccountID({});
  model_.setMembership(std::nullopt);
  files_->forgetDownloads();
  co_await client_->signOut();
  if (*alive) Q_EMIT changed();
}

// ---- the team
// --------------------------------------------------------------------------------------------------------------

QCoro::Task<bool> CloudSession::refreshAccount() {
  const auto resolved = co_await resolver_->resolveAccountAndMembership();
  co_return resolved.has_value();
}

QCoro::Task<CloudSession::Done> CloudSession::openAccount(std::string account) {
  const auto alive = alive_;
  if (account == model_.accountID()) co_return {};
  const auto waits = [this] {
    return model_.dirtyCount() + model_.unsavedCount() + files_->waitingCount() + files_->failedCount() > 0;
  };
  const QString first =
      QStringLiteral("Changes made here wait to be sent to the account in view. Sync first, then change over.");
  if (waits()) co_return std::unexpected(first);
  resolver_->prefer(account);
  const auto resolved = co_await resolver_->resolveAccountAndMembership();
  if (!*alive) co_return {};
  if (!resolved) co_return std::unexpected(resolved.error().text);
  if (model_.accountID() != account && waits()) co_return std::unexpected(first);
  if (model_.accountID() != account)
    co_return std::unexpected(QStringLiteral("You are no longer a member of this account."));
  sync_->fullSync();
  co_return {};
}

int CloudSession::seatsUsed() const {
  const auto members = model_.accountMembers().records();
  return static_cast<int>(std::ranges::count_if(members, [](const AccountMember& member) { return member.isActive; }));
}

bool CloudSession::seesTeam() const { return model_.membership() && model_.rights(AppTabPermissionKey::admin).read; }

QString CloudSession::seatsText() const {
  if (!seesTeam()) return {};
  const AccountFacts& facts = resolver_->facts();
  const QString count = QStringLiteral("%1 of %2 ").arg(seatsUsed()).arg(facts.seats());
  if (facts.plan == "none") return count + QStringLiteral("seats used — no plan");
  return count + QStringLiteral("seats used on your %1 plan").arg(text(planName(facts.plan)));
}

QCoro::Task<CloudSession::Done> CloudSession::inviteTeamMember(QString email, QString name, TeamRole role) {
  const auto alive = alive_;
  const int seats = resolver_->facts().seats();
  if (seesTeam() && seatsUsed() >= seats)
    co_return std::unexpected(
        QStringLiteral("%1 of %2 seats on your plan. Add a seat to invite another user.").arg(seatsUsed()).arg(seats));
  const QString procedure = QStringLiteral("invite_team_member");
  QJsonObject arguments{{QStringLiteral("p_email"), email},
                        {QStringLiteral("p_name"), name},
                        {QStringLiteral("p_role"), text(rawText(role))},
                        {kAccountArgument, QString::fromStdString(model_.accountID())}};
  auto invited = co_await client_->call(procedure, arguments);
  if (!*alive) co_return {};
  // An older server chooses the account itself; a member of one has nothing to choose.
  if (!invited && invited.error().code == u"PGRST202" && resolver_->accounts().size() < 2) {
    arguments.remove(kAccountArgument);
    invited = co_await client_->call(procedure, arguments);
    if (!*alive) co_return {};
  }
  if (!invited) {
    log_.say("❌ inviteTeamMember failed: " + invited.error().logLine().toStdString());
    // What the procedure refuses on purpose, such as an invitation without a free seat, it explains itself.
    if (invited.error().code == u"P0001") co_return std::unexpected(invited.error().reason);
    co_return std::unexpected(QStringLiteral("Couldn't send the invite. Check the email and try again."));
  }
  const auto told = co_await client_->sendAuthorized({.method = "POST",
                                                      .url = client_->config().address("/api/send-invite"),
                                                      .headers = {{"Content-Type", "application/json"}},
                                                      .body = json({{QStringLiteral("email"), email},
                                                                    {QStringLiteral("name"), name},
                                                                    {QStringLiteral("role"), text(rawText(role))}}),
                                                      .attempts = 1},
                                                     QStringLiteral("send-invite"));
  if (!*alive) co_return {};
  if (!told)
    log_.say("invite email notify failed (invite itself still succeeded): " + told.error().logLine().toStdString());
  co_await resolver_->resolveAccountAndMembership();
  co_return {};
}

QCoro::Task<CloudSession::Done> CloudSession::updateMember(AccountMember member) {
  const auto alive = alive_;
  QJsonObject overrides;
  for (const auto& [module, access] : member.moduleOverrides)
    if (access != ModuleAccess::inherit) overrides[text(module.raw())] = text(access.raw());
  const auto changed = co_await client_->update(TableQuery("account_members").eq("id", member.id),
                                                json({{QStringLiteral("name"), QString::fromStdString(member.name)},
                                                      {QStringLiteral("role"), text(member.role.raw())},
                                                      {QStringLiteral("is_active"), member.isActive},
                                                      {QStringLiteral("module_overrides"), overrides}}));
  if (!*alive) co_return {};
  if (!changed) co_return std::unexpected(changed.error().text);
  if (*changed == 0)
    co_return std::unexpected(
        QStringLiteral("This member could not be changed: the membership is gone, or your role does not allow it."));
  co_await resolver_->resolveAccountAndMembership();
  co_return {};
}

QCoro::Task<CloudSession::Done> CloudSession::removeMember(Uuid id) {
  const auto alive = alive_;
  const auto removed = co_await client_->remove(TableQuery("account_members").eq("id", id));
  if (!*alive) co_return {};
  if (!removed) co_return std::unexpected(removed.error().text);
  co_await resolver_->resolveAccountAndMembership();
  co_return {};
}

QCoro::Task<std::expected<int, QString>> CloudSession::adoptLocalFleet() {
  if (model_.accountID().empty() || model_.staysOnThisComputer())
    co_return std::unexpected(
        QStringLiteral("Sign in first; the fleet is moved into the account you are signed in to."));
  const auto state = model_.cache().load(AppViewModel::localPrefix);
  if (!state) co_return std::unexpected(QString::fromStdString(state.error().message));
  Edit edit{.label = "Fleet of this computer moved into the account"};
  forEachKind([&]<class T>(std::type_identity<T>) {
    if constexpr (!std::is_same_v<T, AccountMember>) {
      ListLoader<T> loader(std::string(AppViewModel::localPrefix),
                           [](const std::string&, const std::string&, const std::string&) {});
      loader.readSegments(*state);
      loader.replay(state->journal);
      for (T& record : loader.take())
        if (!model_.collection<T>().find(record.id)) edit.add(std::move(record));
    }
  });
  const int count = static_cast<int>(edit.changes.size());
  if (count == 0) co_return 0;
  const SaveResult saved = co_await model_.apply(std::move(edit));
  if (!saved) co_return std::unexpected(QString::fromStdString(saved.error().message));
  co_return count;
}

}  // namespace thalvorn
