#include "app/account/team_controller.h"

#include <algorithm>
#include <array>

#include "app/choice_list.h"
#include "app/text.h"

namespace thalvorn::app {

namespace {

/// What each role may do, in the order of the roles.
constexpr std::array<std::string_view, EnumTexts<TeamRole>::table.size()> kRoleDetails{
    "Reads and changes everything, and manages the team: invites, sets roles, removes.",
    "Reads and changes all records. Does not see or change the team.",
    "Reads all records and acknowledges posts on the crew board. Changes nothing else."};

}  // namespace

TeamController::TeamController(StoreSession& session, CloudSession* cloud, AppController& app, QObject* parent)
    : QObject(parent), session_(session), cloud_(cloud), app_(app) {
  for (const auto signal : {&AppViewModel::prefixChanged, &AppViewModel::membershipChanged,
                            &AppViewModel::accountIDChanged, &AppViewModel::reloaded}) {
    connect(&model(), signal, this, &TeamController::changed);
  }
  const CollectionEvents& events = model().accountMembers().events();
  for (const auto signal : {&CollectionEvents::inserted, &CollectionEvents::removed})
    connect(&events, signal, this, &TeamController::changed);
  connect(&events, &CollectionEvents::changed, this, &TeamController::changed);
  connect(&events, &CollectionEvents::reset, this, &TeamController::changed);
  if (!cloud_) return;
  connect(cloud_, &CloudSession::changed, this, &TeamController::changed);
  connect(&cloud_->account(), &AccountResolver::changed, this, &TeamController::changed);
}

bool TeamController::open() const {
  return cloud_ && !cloud_->userID().isEmpty() && model().prefix() == cloud_->userID().toStdString();
}

bool TeamController::mayManage() const {
  return open() && model().membership() && model().rights(AppTabPermissionKey::admin).write;
}

QString TeamController::plan() const { return open() ? toQt(planName(cloud_->account().facts().plan)) : QString(); }

QString TeamController::seatsText() const { return open() ? cloud_->seatsText() : QString(); }

QString TeamController::role() const {
  const auto& own = model().membership();
  if (!open() || !own) return {};
  if (!own->isActive) return QStringLiteral("Inactive");
  return own->isOwner ? QStringLiteral("Owner") : toQt(own->role.display());
}

QVariantMap TeamController::describe(const AccountMember& member) const {
  const bool self = open() && member.userId && member.userId->toString() == model().prefix();
  QString state = QStringLiteral("Active");
  QString tone = QStringLiteral("ok");
  if (!member.isActive) {
    state = QStringLiteral("Inactive");
    tone.clear();
  } else if (member.isOwner) {
    state = QStringLiteral("Owner");
    tone = QStringLiteral("accent");
  } else if (!member.userId) {
    state = QStringLiteral("Invited");
    tone = QStringLiteral("soon");
  }
  const QString email = member.invitedEmail ? toQt(*member.invitedEmail) : self ? cloud_->userEmail() : QString();
  const auto exceptions = std::ranges::count_if(
      member.moduleOverrides, [](const auto& entry) { return entry.second != ModuleAccess::inherit; });
  return {{QStringLiteral("id"), toQt(member.id.toString())},
          {QStringLiteral("name"), member.name.empty() ? email : toQt(member.name)},
          {QStringLiteral("email"), email},
          {QStringLiteral("role"), toQt(member.role.raw())},
          {QStringLiteral("roleText"), toQt(member.role.display())},
          {QStringLiteral("state"), state},
          {QStringLiteral("tone"), tone},
          {QStringLiteral("isOwner"), member.isOwner},
          {QStringLiteral("isSelf"), self},
          {QStringLiteral("invited"), !member.userId},
          {QStringLiteral("active"), member.isActive},
          {QStringLiteral("exceptions"), static_cast<int>(exceptions)}};
}

QVariantList TeamController::members() const {
  if (!mayManage()) return {};
  QVariantList list;
  for (const AccountMember& member : model().accountMembers().records())
    if (member.accountId.toString() == model().accountID()) list.append(describe(member));
  std::ranges::sort(list, {}, [](const QVariant& entry) {
    const QVariantMap member = entry.toMap();
    return std::pair(!member.value(QStringLiteral("isOwner")).toBool(),
                     member.value(QStringLiteral("name")).toString().toCaseFolded());
  });
  return list;
}

QVariantList TeamController::accounts() const {
  QVariantList list;
  if (!open()) return list;
  for (const OwnAccount& account : cloud_->account().accounts()) {
    const QString name = account.name.empty() ? QStringLiteral("Account without a name") : toQt(account.name);
    list.append(
        QVariantMap{{QStringLiteral("value"), toQt(account.id)},
                    {QStringLiteral("text"), account.isOwner ? QStringLiteral("%1 (your own)").arg(name) : name}});
  }
  return list;
}

QString TeamController::accountId() const { return toQt(model().accountID()); }

QVariantList TeamController::roles() const {
  QVariantList list = choicesOf<TeamRole>();
  std::ranges::transform(list, kRoleDetails, list.begin(), [](const QVariant& choice, std::string_view detail) {
    QVariantMap role = choice.toMap();
    role[QStringLiteral("detail")] = toQt(detail);
    return role;
  });
  return list;
}

QVariantList TeamController::accesses() const { return choicesOf<ModuleAccess>(); }

bool TeamController::hasLocalFleet() const {
  if (!open() || !model().rights(AppTabPermissionKey::tasks).write) return false;
  const std::vector<std::string> prefixes = session_.cache().prefixes();
  return std::ranges::find(prefixes, AppViewModel::localPrefix) != prefixes.end();
}

const AccountMember* TeamController::find(const QString& id) const {
  const auto read = Uuid::parse(id.toStdString());
  return read ? model().accountMembers().find(*read) : nullptr;
}

QVariantMap TeamController::member(const QString& id) const {
  const AccountMember* member = find(id);
  return member ? describe(*member) : QVariantMap();
}

QVariantList TeamController::modules(const QString& id) const {
  const AccountMember* member = find(id);
  QVariantList list;
  for (std::size_t index = 0; index < EnumTexts<AppTabPermissionKey>::table.size(); ++index) {
    const EnumText& entry = EnumTexts<AppTabPermissionKey>::table[index];
    QString access = QStringLiteral("inherit");
    if (member) {
      const auto found = member->moduleOverrides.find(static_cast<AppTabPermissionKey>(index));
      if (found != member->moduleOverrides.end()) access = toQt(found->second.raw());
    }
    list.append(QVariantMap{{QStringLiteral("key"), toQt(entry.raw)},
                            {QStringLiteral("text"), toQt(entry.display)},
                            {QStringLiteral("access"), access}});
  }
  return list;
}

// ---- changes ----

void TeamController::clearErrors() {
  for (QString* text : {&error_, &emailError_, &nameError_}) text->clear();
  Q_EMIT workChanged();
}

bool TeamController::begin() {
  if (busy_ || !open()) return false;
  if (cloud_->needsSignIn()) {
    error_ = QStringLiteral("The team can be changed once you have signed in again.");
    Q_EMIT workChanged();
    return false;
  }
  busy_ = true;
  Q_EMIT workChanged();
  return true;
}

void TeamController::settle(const CloudSession::Done& result, const QString& told) {
  busy_ = false;
  if (!result) {
    error_ = result.error();
    Q_EMIT workChanged();
    return;
  }
  Q_EMIT workChanged();
  app_.toast(told, QStringLiteral("ok"));
  Q_EMIT done();
}

void TeamController::refresh() {
  if (!open() || cloud_->needsSignIn()) return;
  QCoro::connect(cloud_->refreshAccount(), this, [](bool) {});
}

void TeamController::invite(const QString& email, const QString& name, const QString& role) {
  clearErrors();
  const QString address = email.trimmed();
  const auto isSame = [&](const QVariant& entry) {
    return entry.toMap().value(QStringLiteral("email")).toString().compare(address, Qt::CaseInsensitive) == 0;
  };
  if (!address.contains(u'@') || address.contains(u' ')) {
    emailError_ = QStringLiteral("Enter the address that the person will sign up with.");
  } else if (std::ranges::any_of(members(), isSame)) {
    emailError_ = QStringLiteral("This person is in the team already.");
  }
  if (name.trimmed().isEmpty()) nameError_ = QStringLiteral("Enter the person's name.");
  if (!emailError_.isEmpty() || !nameError_.isEmpty()) {
    Q_EMIT workChanged();
    return;
  }
  const auto chosen = caseFromRaw<TeamRole>(role.toStdString());
  if (!chosen || !begin()) return;
  QCoro::connect(
      cloud_->inviteTeamMember(address, name.trimmed(), *chosen), this,
      [this, address](const CloudSession::Done& invited) {
        settle(invited, QStringLiteral("%1 is invited, and joins by signing in or up with this address.").arg(address));
      });
}

void TeamController::save(const QString& id, const QString& name, const QString& role, bool active,
                          const QVariantMap& overrides) {
  clearErrors();
  const AccountMember* found = find(id);
  if (!found) {
    error_ = QStringLiteral("This member is not in the team any more.");
  } else if (name.trimmed().isEmpty()) {
    nameError_ = QStringLiteral("Enter the person's name.");
  }
  if (!found || !nameError_.isEmpty()) {
    Q_EMIT workChanged();
    return;
  }
  AccountMember member = *found;
  member.name = name.trimmed().toStdString();
  const bool self = member.userId && member.userId->toString() == model().prefix();
  // Nobody shuts himself or the owner out.
  if (!self && !member.isOwner) {
    member.role = Choice<TeamRole>::fromRaw(role.toStdString());
    member.isActive = active;
  }
  if (!member.isOwner) {
    for (auto entry = overrides.begin(); entry != overrides.end(); ++entry) {
      const auto key = Choice<AppTabPermissionKey>::fromRaw(entry.key().toStdString());
      member.moduleOverrides[key] = Choice<ModuleAccess>::fromRaw(entry.value().toString().toStdString());
    }
    std::erase_if(member.moduleOverrides, [](const auto& entry) { return entry.second == ModuleAccess::inherit; });
  }
  if (member == *found) {
    Q_EMIT done();
    return;
  }
  if (!begin()) return;
  QCoro::connect(cloud_->updateMember(std::move(member)), this, [this, name](const CloudSession::Done& saved) {
    settle(saved, QStringLiteral("%1 is changed.").arg(name.trimmed()));
  });
}

void TeamController::remove(const QString& id) {
  clearErrors();
  const AccountMember* found = find(id);
  if (!found || found->isOwner || !begin()) return;
  const QString name = describe(*found).value(QStringLiteral("name")).toString();
  QCoro::connect(cloud_->removeMember(found->id), this, [this, name](const CloudSession::Done& removed) {
    settle(removed, QStringLiteral("%1 is no longer in the team.").arg(name));
  });
}

void TeamController::openAccount(const QString& id) {
  clearErrors();
  if (id == accountId() || !begin()) return;
  QCoro::connect(cloud_->openAccount(id.toStdString()), this, [this](const CloudSession::Done& opened) {
    settle(opened, QStringLiteral("The other account is open; its records are being fetched."));
  });
}

void TeamController::adoptLocalFleet() {
  clearErrors();
  if (busy_ || !open()) return;
  busy_ = true;
  Q_EMIT workChanged();
  QCoro::connect(cloud_->adoptLocalFleet(), this, [this](const std::expected<int, QString>& moved) {
    if (!moved) {
      settle(std::unexpected(moved.error()), {});
    } else if (*moved == 0) {
      settle({}, QStringLiteral("Everything of this computer's fleet is in the account already."));
    } else {
      settle({}, QStringLiteral("%1 %2 moved into the account.")
                     .arg(*moved)
                     .arg(*moved == 1 ? QStringLiteral("record") : QStringLiteral("records")));
    }
  });
}

}  // namespace thalvorn::app
