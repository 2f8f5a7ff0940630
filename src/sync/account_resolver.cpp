#include "sync/account_resolver.h"

#include <QCoroFuture>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPromise>
#include <algorithm>
#include <tuple>
#include <utility>

#include "backend/row_kind.h"
#include "sync/table_reader.h"
#include "sync/when_saved.h"

namespace thalvorn {
namespace {

constexpr std::string_view kPlan = "_plan";
constexpr std::string_view kAdditionalSeats = "_additional_seats";
constexpr std::string_view kAccounts = "_accounts";
constexpr int kForbidden = 403;  ///< refused to the user himself, not to somebody without a token

ClaimResult claimResult(const AnyCodable& reply) {
  const QJsonValue account = reply[QStringLiteral("accountId")];
  return {.accountId = account.isString() ? std::optional(account.toString().toStdString()) : std::nullopt,
          .claimed = reply[QStringLiteral("claimed")].toBool()};
}

BootstrapResult bootstrapResult(const AnyCodable& reply) {
  return {.accountId = reply[QStringLiteral("accountId")].toString().toStdString()};
}

std::vector<OwnAccount> accountsFrom(const QJsonArray& list) {
  std::vector<OwnAccount> accounts;
  for (const QJsonValue entry : list)
    accounts.push_back({.id = entry[QStringLiteral("id")].toString().toStdString(),
                        .name = entry[QStringLiteral("name")].toString().toStdString(),
                        .isOwner = entry[QStringLiteral("isOwner")].toBool()});
  return accounts;
}

QJsonArray jsonOf(const std::vector<OwnAccount>& accounts) {
  QJsonArray list;
  for (const OwnAccount& account : accounts)
    list.append(QJsonObject{{QStringLiteral("id"), QString::fromStdString(account.id)},
                            {QStringLiteral("name"), QString::fromStdString(account.name)},
                            {QStringLiteral("isOwner"), account.isOwner}});
  return list;
}

bool isMember(const std::vector<AccountMember>& own, const std::string& account) {
  return std::ranges::any_of(own, [&](const AccountMember& member) { return member.accountId.toString() == account; });
}

/// What the server says to somebody whose every membership was switched off; empty for any other error.
std::string accessRefusal(const SBError& error) {
  if (error.code != u"42501" || error.status != kForbidden) return {};
  const bool isRightOfRole = error.reason.startsWith(QStringLiteral("permission denied"));
  return (isRightOfRole || error.reason.isEmpty() ? error.text : error.reason).toStdString();
}

}  // namespace

int seatsOfPlan(std::string_view plan) {
  if (plan == "captain") return 3;
  if (plan == "fleet") return 10;
  if (plan == "superyacht") return 25;
  return 1;
}

std::string_view planName(std::string_view plan) {
  if (plan == "captain") return "Captain";
  if (plan == "fleet") return "Fleet";
  if (plan == "superyacht") return "Superyacht";
  return "No plan";
}

int AccountFacts::seats() const {
  return seatsOfPlan(plan) + static_cast<int>(std::max<std::int64_t>(0, additionalSeats));
}

AccountResolver::AccountResolver(AppViewModel& model, SupabaseClient& client, SyncLog& log, QObject* parent)
    : QObject(parent), model_(model), client_(client), log_(log) {}

std::string AccountResolver::key(std::string_view suffix) const {
  return client_.userID().toStdString() + std::string(suffix);
}

void AccountResolver::restore() {
  const LocalCache& cache = model_.cache();
  facts_ = {.plan = cache.preference(key(kPlan)).value_or("none"),
            .additionalSeats = std::atoll(cache.preference(key(kAdditionalSeats)).value_or("0").c_str())};
  accounts_ = accountsFrom(
      QJsonDocument::fromJson(QByteArray::fromStdString(cache.preference(key(kAccounts)).value_or("[]"))).array());
  preferred_.clear();
  Q_EMIT changed();
}

SBTask<std::vector<AccountMember>> AccountResolver::readMembers(TableQuery query) {
  const auto read = co_await readWhole(&client_, std::move(query), "id.asc", token_);
  if (!read) co_return std::unexpected(read.error());
  const auto rows = listFromJson<SBAccountMemberRow>(
      QJsonDocument(read->rows).toJson(QJsonDocument::Compact).toStdString(), JsonFields::full);
  if (!rows) co_return std::unexpected(SBError::server(200, QStringLiteral("Invalid JSON response")));
  std::vector<AccountMember> members;
  for (const SBAccountMemberRow& row : rows->records)
    if (const auto made = recordFromRow<AccountMember>(row)) members.push_back(made->record);
  co_return members;
}

SBTask<std::string> AccountResolver::claimOrBootstrap() {
  const auto claimed = co_await client_.call(QStringLiteral("claim_pending_invite"), RPCEmptyParams());
  if (!claimed) co_return std::unexpected(claimed.error());
  if (const ClaimResult claim = claimResult(*claimed); claim.claimed) co_return claim.accountId.value_or("");
  const auto made = co_await client_.call(QStringLiteral("bootstrap_own_account"), RPCEmptyParams());
  if (!made) co_return std::unexpected(made.error());
  co_return bootstrapResult(*made).accountId;
}

SBTask<std::string> AccountResolver::claimBeside(std::vector<AccountMember> own) {
  const auto claimed = co_await client_.call(QStringLiteral("claim_pending_invite"), RPCEmptyParams());
  if (!claimed) {
    if (claimed.error().kind != SBError::Case::serverError) co_return std::unexpected(claimed.error());
    log_.say("⚠️ claim_pending_invite: " + claimed.error().logLine().toStdString());
    co_return {};
  }
  invitationsDue_ = false;
  // An invitation that was claimed long ago is told of again.
  const ClaimResult claim = claimResult(*claimed);
  const std::string account = claim.claimed ? claim.accountId.value_or("") : std::string();
  co_return isMember(own, account) ? std::string() : account;
}

SBTask<std::vector<OwnAccount>> AccountResolver::nameAccounts(std::vector<AccountMember> own) {
  std::vector<Uuid> ids;
  std::vector<OwnAccount> accounts;
  for (const AccountMember& member : own) {
    ids.push_back(member.accountId);
    accounts.push_back({.id = member.accountId.toString(), .name = {}, .isOwner = member.isOwner});
  }
  if (ids.size() > TableQuery::kMostInList) ids.resize(TableQuery::kMostInList);
  if (ids.size() < 2) co_return accounts;
  const auto named = co_await client_.read(TableQuery("accounts").in("id", ids).select("id,name"));
  if (!named) co_return std::unexpected(named.error());
  for (const OwnAccount& row : accountsFrom(QJsonDocument::fromJson(named->rows).array()))
    for (OwnAccount& account : accounts)
      if (account.id == row.id) account.name = row.name;
  std::ranges::sort(accounts, {},
                    [](const OwnAccount& account) { return std::tuple(!account.isOwner, account.name, account.id); });
  co_return accounts;
}

void AccountResolver::takeAccounts(std::vector<OwnAccount> accounts) {
  accounts_ = std::move(accounts);
  model_.cache().setPreference(key(kAccounts),
                               QJsonDocument(jsonOf(accounts_)).toJson(QJsonDocument::Compact).toStdString());
}

void AccountResolver::loseAccess(const std::string& user, std::string reason) {
  log_.say("❌ resolveAccountAndMembership: " + reason);
  // The fleet that is here stays that of its account, whatever account comes next.
  if (const std::string former = model_.fleetAccount(); !former.empty())
    model_.cache().setPreference(AppViewModel::fleetAccountKey(user), former);
  model_.cache().setPreference(AppViewModel::accountKey(user), std::nullopt);
  takeAccounts({});
  model_.setAccessRefusal(std::move(reason));
  model_.setAccountID({});
  std::optional<AccountMember> own = model_.membership();
  if (own) own->isActive = false;
  model_.setMembership(std::move(own));
  Q_EMIT changed();
}

bool AccountResolver::isStill(const std::string& user) const {
  return client_.userID().toStdString() == user && model_.prefix() == user;
}

SBTask<bool> AccountResolver::resolveAccountAndMembership() {
  // One after the other: what one finds, the next would undo.
  const RunToken token = token_;
  QPromise<void> promise;
  promise.start();
  const QFuture<void> before = std::exchange(resolving_, promise.future());
  if (before.isValid() && !before.isFinished()) co_await before;
  if (token.isOver()) co_return false;
  Q_EMIT changed();
  auto resolved = co_await resolveNow();
  promise.finish();
  if (!token.isOver()) Q_EMIT changed();
  co_return resolved;
}

SBTask<bool> AccountResolver::resolveNow() {
  const std::string user = client_.userID().toStdString();
  const TableQuery ownRow = TableQuery("account_members").eq("user_id", user).eq("is_active", "true");
  std::string preferred = preferred_.empty() ? model_.accountID() : preferred_;
  auto own = co_await readMembers(ownRow);
  if (own && own->empty()) {
    const auto entered = co_await claimOrBootstrap();
    if (!isStill(user)) co_return false;
    if (!entered) {
      std::string reason = accessRefusal(entered.error());
      if (reason.empty()) co_return failed(entered.error());
      loseAccess(user, std::move(reason));
      co_return true;
    }
    invitationsDue_ = false;
    preferred = *entered;
    own = co_await readMembers(ownRow);
  } else if (own && invitationsDue_) {
    const auto invited = co_await claimBeside(*own);
    if (!invited) co_return failed(invited.error());
    if (!isStill(user)) co_return false;
    if (!invited->empty()) {
      own = co_await readMembers(ownRow);
      // What waits belongs to the account in view and goes there first.
      if (preferred_.empty() && model_.dirtyCount() + model_.unsavedCount() == 0) preferred = *invited;
    }
  }
  if (!own) co_return failed(own.error());
  if (!isStill(user)) co_return false;
  if (own->empty()) {
    log_.say("❌ resolveAccountAndMembership: no membership row after bootstrap/claim");
    takeAccounts({});
    model_.setAccountID({});
    model_.setMembership(std::nullopt);
    Q_EMIT changed();
    co_return true;
  }
  const AccountMember* chosen = &*std::ranges::max_element(*own, {}, &AccountMember::createdAt);
  for (const AccountMember& member : *own) {
    if (member.accountId.toString() == preferred) {
      chosen = &member;
      break;
    }
    if (member.isOwner) chosen = &member;
  }
  const AccountMember membership = *chosen;
  const std::string account = membership.accountId.toString();

  auto accountAsked = client_.read(TableQuery("accounts").eq("id", account));
  auto membersAsked = readMembers(TableQuery("account_members").eq("account_id", account));
  const auto accountRow = co_await accountAsked;
  auto members = co_await membersAsked;
  if (!accountRow) co_return failed(accountRow.error());
  if (!members) co_return failed(members.error());
  auto accounts = co_await nameAccounts(*std::move(own));
  if (!accounts) co_return failed(accounts.error());
  if (!isStill(user)) co_return false;

  const QJsonValue row = QJsonDocument::fromJson(accountRow->rows).array().at(0);
  facts_ = {.plan = row[QStringLiteral("plan")].toString(QStringLiteral("none")).toStdString(),
            .additionalSeats = row[QStringLiteral("additional_seats")].toInteger()};
  LocalCache& cache = model_.cache();
  cache.setPreference(key(kPlan), facts_.plan);
  cache.setPreference(key(kAdditionalSeats), std::to_string(facts_.additionalSeats));
  takeAccounts(*std::move(accounts));
  preferred_.clear();
  const RunToken token = token_;
  const std::string former = model_.fleetAccount();
  const bool staysMember = std::ranges::find(accounts_, former, &OwnAccount::id) != accounts_.end();
  if (account != former && staysMember && model_.dirtyCount() + model_.unsavedCount() > 0) {
    log_.say("⏳ changes wait for the account in view; it is changed once they are sent");
    co_return true;
  }
  if (!co_await enter(user, account) || token.isOver() || !isStill(user)) co_return false;
  cache.setPreference(AppViewModel::accountKey(user), account);
  model_.setAccessRefusal({});
  model_.setMembership(membership);
  log_.say("👥 account resolved: " + account + " " + std::to_string(members->size()) + " member(s)");
  const bool kept = co_await takeMembers(*std::move(members));
  if (token.isOver()) co_return false;
  Q_EMIT changed();
  const bool left = std::ranges::find(accounts_, former, &OwnAccount::id) == accounts_.end();
  if (!former.empty() && former != account && left)
    Q_EMIT fleetSetAside(QString::fromStdString(AppViewModel::setAsidePrefix(user, former)));
  co_return kept;
}

QCoro::Task<bool> AccountResolver::enter(std::string user, std::string account) {
  const RunToken token = token_;
  const std::string former = model_.fleetAccount();
  const bool stays = former.empty() || former == account;
  const bool saved = stays || co_await whenSaved(&model_, token);
  if (token.isOver() || !isStill(user)) co_return false;
  const bool entered = saved && co_await model_.changeAccount(account);
  if (token.isOver() || entered || !isStill(user)) co_return entered;
  // The fleet that is here is not that account's: nothing is exchanged until the change is on disk.
  model_.setAccountID({});
  log_.say("⚠️ the change of the account could not be saved; it is tried again");
  co_return false;
}

QCoro::Task<bool> AccountResolver::takeMembers(std::vector<AccountMember> members) {
  std::vector<FromBackend<AccountMember>> changes;
  for (const AccountMember& known : model_.accountMembers().records()) {
    if (std::ranges::find(members, known.id, &AccountMember::id) == members.end())
      changes.push_back({.id = known.id, .theirs = std::nullopt, .merged = std::nullopt});
  }
  for (AccountMember& member : members) {
    const Uuid id = member.id;
    changes.push_back({.id = id, .theirs = member, .merged = member});
  }
  const RunToken token = token_;
  const bool kept = co_await whenSaved(&model_, model_.takeFromBackend<AccountMember>(std::move(changes)), token);
  if (!token.isOver() && !kept) log_.say("⚠️ the members could not be saved; they are asked for again");
  co_return kept;
}

std::unexpected<SBError> AccountResolver::failed(const SBError& error) {
  log_.say("resolveAccountAndMembership failed: " + error.logLine().toStdString());
  return std::unexpected(error);
}

}  // namespace thalvorn
