#include "sync/account_resolver.h"

#include <QCoroFuture>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "backend/row_kind.h"

namespace thalvorn {
namespace {

constexpr std::string_view kPlan = "_plan";
constexpr std::string_view kAdditionalSeats = "_additional_seats";

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
  Q_EMIT changed();
}

SBTask<std::vector<AccountMember>> AccountResolver::readMembers(TableQuery query) {
  const auto reply = co_await client_.read(std::move(query));
  if (!reply) co_return std::unexpected(reply.error());
  const auto rows = listFromJson<SBAccountMemberRow>(
      std::string_view(reply->rows.data(), static_cast<std::size_t>(reply->rows.size())), JsonFields::full);
  if (!rows) co_return std::unexpected(SBError::server(200, QStringLiteral("Invalid JSON response")));
  std::vector<AccountMember> members;
  for (const SBAccountMemberRow& row : rows->records)
    if (const auto made = recordFromRow<AccountMember>(row)) members.push_back(made->record);
  co_return members;
}

SBTask<void> AccountResolver::resolve() {
  const std::string user = client_.userID().toStdString();
  const TableQuery ownRow = TableQuery("account_members").eq("user_id", user).eq("is_active", "true");
  auto own = co_await readMembers(ownRow);
  if (own && own->empty()) {
    const auto claim = co_await client_.call(QStringLiteral("claim_pending_invite"), RPCEmptyParams());
    if (!claim) co_return failed(claim.error());
    if (!claim->toObject().value(QStringLiteral("claimed")).toBool()) {
      const auto bootstrap = co_await client_.call(QStringLiteral("bootstrap_own_account"), RPCEmptyParams());
      if (!bootstrap) co_return failed(bootstrap.error());
    }
    own = co_await readMembers(ownRow);
  }
  if (!own) co_return failed(own.error());
  if (client_.userID().toStdString() != user || model_.prefix() != user) co_return {};
  if (own->empty()) {
    log_.say("❌ resolveAccountAndMembership: no membership row after bootstrap/claim");
    model_.cache().setPreference(AppViewModel::accountKey(user), std::nullopt);
    model_.setAccountID({});
    model_.setMembership(std::nullopt);
    Q_EMIT changed();
    co_return {};
  }
  // A member of several accounts works in the one he worked in last, else in his own.
  const AccountMember* chosen = &own->front();
  for (const AccountMember& member : *own) {
    if (member.accountId.toString() == model_.accountID()) {
      chosen = &member;
      break;
    }
    if (member.isOwner) chosen = &member;
  }
  const AccountMember membership = *chosen;
  const std::string account = membership.accountId.toString();

  const auto accountRow = co_await client_.read(TableQuery("accounts").eq("id", account));
  if (!accountRow) co_return failed(accountRow.error());
  auto members = co_await readMembers(TableQuery("account_members").eq("account_id", account));
  if (!members) co_return failed(members.error());
  if (client_.userID().toStdString() != user || model_.prefix() != user) co_return {};

  const QJsonValue row = QJsonDocument::fromJson(accountRow->rows).array().at(0);
  facts_ = {.plan = row[QStringLiteral("plan")].toString(QStringLiteral("none")).toStdString(),
            .additionalSeats = row[QStringLiteral("additional_seats")].toInteger()};
  LocalCache& cache = model_.cache();
  cache.setPreference(AppViewModel::accountKey(user), account);
  cache.setPreference(key(kPlan), facts_.plan);
  cache.setPreference(key(kAdditionalSeats), std::to_string(facts_.additionalSeats));
  model_.setAccountID(account);
  model_.setMembership(membership);
  log_.say("👥 account resolved: " + account + " " + std::to_string(members->size()) + " member(s)");
  co_await takeMembers(*std::move(members));
  Q_EMIT changed();
  co_return {};
}

QCoro::Task<void> AccountResolver::takeMembers(std::vector<AccountMember> members) {
  std::vector<FromBackend<AccountMember>> changes;
  for (const AccountMember& known : model_.accountMembers().records()) {
    if (std::ranges::find(members, known.id, &AccountMember::id) == members.end())
      changes.push_back({.id = known.id, .theirs = std::nullopt, .merged = std::nullopt});
  }
  for (AccountMember& member : members) {
    const Uuid id = member.id;
    changes.push_back({.id = id, .theirs = member, .merged = member});
  }
  co_await model_.takeFromBackend<AccountMember>(std::move(changes));
}

std::unexpected<SBError> AccountResolver::failed(const SBError& error) {
  log_.say("resolveAccountAndMembership failed: " + error.logLine().toStdString());
  return std::unexpected(error);
}

}  // namespace thalvorn
