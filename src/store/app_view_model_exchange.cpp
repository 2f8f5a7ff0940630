// The store's side of the exchange with the backend: what waits for upload, and taking what came down.

#include <QCoroFuture>
#include <algorithm>

#include "store/app_view_model.h"
#include "store/logging.h"

namespace thalvorn {
namespace {

template <class T>
std::string sideSuffix() {
  return std::string(RecordKind<T>::facts.suffix) + "_extra";
}

/// The JSON of the record's side entry; empty for a kind without one.
template <class T>
std::string sideJson(const T& record) {
  if constexpr (HasExtraFields<T>) {
    return extraJson(record);
  } else {
    return {};
  }
}

/// The record from the JSON of its entry and of its side entry; empty when it was not there, or cannot be read.
template <class T>
std::optional<T> fromEntries(const std::string& own, const std::string& extra) {
  if (own.empty()) return std::nullopt;
  auto record = recordFromJson<T>(own, JsonFields::own);
  if (!record) return std::nullopt;
  if constexpr (HasExtraFields<T>) {
    if (!extra.empty() && !updateFromJson(*record, extra, JsonFields::extra)) return std::nullopt;
  }
  return *std::move(record);
}

/// How many records `edited` tells of at a time: a page that came down is told in parts, for as changes of any kind the
/// records take much more room.
constexpr std::size_t kToldAtOnce = 128;

/// What the history calls an edit that came from the backend.
constexpr const char* kReceived = "Received";

template <class T>
StoredForm formOf(const std::optional<T>& record) {
  return record ? storedForm(*record) : StoredForm{};
}

bool isAcknowledgment(const RecordChange& change) {
  const auto* before = change.before ? std::get_if<CrewBoardPost>(&*change.before) : nullptr;
  const auto* after = change.after ? std::get_if<CrewBoardPost>(&*change.after) : nullptr;
  return before && after && differInAcknowledgmentsAlone(*before, *after);
}

}  // namespace

void AppViewModel::setAuthenticated(bool authenticated) {
  if (authenticated == isAuthenticated_) return;
  isAuthenticated_ = authenticated;
  if (authenticated) {
    periodicSyncTask.start();
  } else {
    periodicSyncTask.stop();
    cloudPushTask.stop();
  }
  Q_EMIT isAuthenticatedChanged();
}

void AppViewModel::setAccountID(std::string id) {
  if (id == accountId_) return;
  accountId_ = std::move(id);
  Q_EMIT accountIDChanged();
}

std::string AppViewModel::fleetAccount() const {
  const auto kept = cache_.preference(fleetAccountKey(prefix_));
  return kept ? *kept : cache_.preference(accountKey(prefix_)).value_or(std::string());
}

QCoro::Task<bool> AppViewModel::changeAccount(std::string account) {
  const std::string user = prefix_;
  const std::string former = fleetAccount();
  if (former.empty() || former == account) {
    cache_.setPreference(fleetAccountKey(user), account);
    setAccountID(std::move(account));
    co_return true;
  }
  if (unsavedCount() > 0) co_return false;
  const std::string aside = setAsidePrefix(user, former);
  // What is on the screen belongs to what is set aside until the other fleet is read: nothing is entered in between.
  prefix_ = aside;
  std::string names;
  for (const Vessel* vessel : vesselsInOrder()) names += (names.empty() ? "" : ", ") + vessel->name;
  cache_.setPreference(aside + std::string(setAsideVessels), std::move(names));
  cache_.setPreference(aside + std::string(setAsideSince), formatTimestamp(now()));
  const auto promise = std::make_shared<QPromise<bool>>();
  QFuture<bool> future = promise->future();
  promise->start();
  cache_.setAside(user, aside, setAsidePrefix(user, account), {fleetAccountKey(user), account},
                  [promise](const auto& moved) {
                    if (!moved)
                      qCWarning(storeLog, "❌ the fleet could not be set aside: %s", moved.error().message.c_str());
                    promise->addResult(moved.has_value());
                    promise->finish();
                  });
  const bool moved = co_await future;
  if (prefix_ != aside) co_return false;  // another fleet has been opened meanwhile
  if (!moved) {
    prefix_ = user;
    co_return false;
  }
  qCInfo(storeLog, "📦 fleet of the former account kept as %s", aside.c_str());
  // Kept before the fleet is read, which takes the account from it.
  cache_.setPreference(accountKey(user), account);
  co_await reloadForUser(user);
  co_return prefix_ == user;
}

void AppViewModel::setMembership(std::optional<AccountMember> member) {
  if (member == membership_) return;
  membership_ = std::move(member);
  Q_EMIT membershipChanged();
}

void AppViewModel::setAccessRefusal(std::string reason) {
  if (reason == accessRefusal_) return;
  accessRefusal_ = std::move(reason);
  cache_.setPreference(accessRefusalKey(prefix_),
                       accessRefusal_.empty() ? std::nullopt : std::optional(accessRefusal_));
  Q_EMIT membershipChanged();
}

ModuleRights AppViewModel::rights(std::optional<AppTabPermissionKey> module) const {
  const bool closed = isSetAside() || !accessRefusal_.empty();
  ModuleRights given{.read = true, .write = true};
  if (membership_) {
    // What he may read he may go on reading here, also when his access has been switched off.
    AccountMember member = *membership_;
    member.isActive = member.isActive || closed;
    given = module ? rightsOf(member, *module) : commonRightsOf(member);
  }
  if (closed) given.write = false;
  return given;
}

std::string AppViewModel::refusalOf(const Edit& edit) const {
  if (isSetAside())
    return "This fleet belongs to an account that you have left. It can be read here; nothing was changed.";
  if (staysOnThisComputer()) return {};
  if (!accessRefusal_.empty()) return accessRefusal_ + " Nothing was changed.";
  for (const RecordChange& change : edit.changes) {
    const KindFacts& kind =
        std::visit([]<class T>(const T&) -> const KindFacts& { return RecordKind<T>::facts; }, change.either());
    if (isAcknowledgment(change) && rights(kind.permission).read) continue;
    if (!rights(kind.permission).write)
      return "Your role in this account does not allow changing " + std::string(kind.plural) + "; nothing was changed.";
    if (!std::holds_alternative<CrewMember>(change.either())) continue;
    const CrewMember none;
    const CrewMember& before = change.before ? std::get<CrewMember>(*change.before) : none;
    const CrewMember& after = change.after ? std::get<CrewMember>(*change.after) : none;
    for (const AppTabPermissionKey part : changedCrewParts(before, after))
      if (!rights(part).write)
        return "Your access to “" + std::string(displayText(part)) +
               "” does not allow changing it; nothing was changed.";
  }
  return {};
}

template <class T>
Unsent<T> AppViewModel::unsentRecord(const Uuid& id, const UnsentMark* own, const UnsentMark* side) const {
  Unsent<T> record{.id = id};
  if (const T* current = collection<T>().find(id)) record.current = *current;
  record.base = fromEntries<T>(own              ? own->before
                               : record.current ? toJson(*record.current)
                                                : std::string(),
                               side             ? side->before
                               : record.current ? sideJson(*record.current)
                                                : std::string());
  for (const UnsentMark* mark : {own, side}) {
    if (!mark) continue;
    record.revision = std::max(record.revision, mark->revision);
    record.at = std::max(record.at, mark->at);
    record.revived = record.revived || mark->revived;
  }
  return record;
}

template <class T>
std::vector<Unsent<T>> AppViewModel::unsent() const {
  const auto& own = marks_.of(RecordKind<T>::facts.suffix);
  const auto& side = marks_.of(sideSuffix<T>());
  std::vector<Unsent<T>> waiting;
  for (const auto& [id, mark] : own) {
    const auto other = side.find(id);
    waiting.push_back(unsentRecord<T>(id, &mark, other == side.end() ? nullptr : &other->second));
  }
  for (const auto& [id, mark] : side)
    if (!own.contains(id)) waiting.push_back(unsentRecord<T>(id, nullptr, &mark));
  std::ranges::sort(waiting, {}, &Unsent<T>::revision);
  return waiting;
}

template <class T>
std::optional<Unsent<T>> AppViewModel::unsent(const Uuid& id) const {
  const UnsentMark* own = marks_.find(RecordKind<T>::facts.suffix, id);
  const UnsentMark* side = marks_.find(sideSuffix<T>(), id);
  return own || side ? std::optional(unsentRecord<T>(id, own, side)) : std::nullopt;
}

template <class T>
Saving AppViewModel::takeFromBackend(std::vector<FromBackend<T>> records, Edit also) {
  if (cache_.isReadOnly()) return refused(cache_.readOnlyReason());
  if (isSetAside()) return refused("This fleet is kept as it is.");
  if (unsavedEdits_ > 0) return refused("What was entered here is not saved yet.");
  const std::string_view suffix = RecordKind<T>::facts.suffix;
  const std::string side = sideSuffix<T>();
  const bool anyWaits = !marks_.of(suffix).empty() || !marks_.of(side).empty();
  JournalEntry entry{.revision = 0, .prefix = prefix_, .at = now(), .label = kReceived, .changes = {}};
  entry.changes.reserve(records.size());
  std::vector<SentRecord> superseded;
  std::vector<std::pair<Uuid, std::optional<T>>> changed;  ///< each with what stood there
  changed.reserve(records.size());
  std::vector<T> puts;
  puts.reserve(records.size());
  std::unordered_set<Uuid> removes;
  for (FromBackend<T>& record : records) {
    const T* current = collection<T>().find(record.id);
    const bool known = current && record.theirs && *current == *record.theirs;
    const bool isTheirs = record.theirs == record.merged;
    if (record.theirs && record.form.own.empty() && !(known && isTheirs)) record.form = storedForm(*record.theirs);
    std::vector<EntryChange> onTop;
    if (!isTheirs) appendChanges(onTop, suffix, record.id, record.form, formOf(record.merged));
    if (!known && (current || record.theirs))
      appendChanges(entry.changes, suffix, record.id, current ? storedForm(*current) : StoredForm{},
                    std::move(record.form), true);
    std::ranges::move(onTop, std::back_inserter(entry.changes));
    if (anyWaits)
      for (const std::string_view name : {suffix, std::string_view(side)})
        if (const UnsentMark* mark = marks_.find(name, record.id))
          superseded.push_back({std::string(name), record.id, mark->revision});
    if (current ? record.merged && *current == *record.merged : !record.merged) continue;
    changed.emplace_back(record.id, current ? std::optional<T>(*current) : std::nullopt);
    if (record.merged) {
      puts.push_back(*std::move(record.merged));
    } else {
      removes.insert(record.id);
    }
  }
  for (const EntryChange& change : entryChanges(also)) entry.changes.push_back(change);
  if (entry.changes.empty()) return finishedSaving(Revision{0});
  applyInMemory<T>(std::move(puts), removes);
  applyInMemory(also);
  Saving saving = save(std::move(entry));
  if (!superseded.empty())
    saving.then(this, [this, prefix = prefix_, superseded = std::move(superseded)](const SaveResult& result) {
      if (result) cache_.markSent(prefix, superseded, {});
    });
  tellReceived<T>(std::move(changed), std::move(also.changes));
  return saving;
}

template <class T>
void AppViewModel::tellReceived(std::vector<std::pair<Uuid, std::optional<T>>> changed,
                                std::vector<RecordChange> also) {
  Edit part{.label = kReceived, .changes = std::move(also), .isReceived = true};
  for (auto& [id, before] : changed) {
    const T* after = collection<T>().find(id);
    if (!before && !after) continue;
    RecordChange& change = part.changes.emplace_back();
    if (before) change.before.emplace(*std::move(before));
    if (after) change.after.emplace(*after);
    if (part.changes.size() < kToldAtOnce) continue;
    Q_EMIT edited(part);
    part.changes.clear();
  }
  if (!part.empty()) Q_EMIT edited(part);
}

template <class T>
void AppViewModel::markUploaded(const std::vector<Uploaded<T>>& records) {
  if (records.empty()) return;
  std::vector<SentRecord> sent;
  for (const Uploaded<T>& record : records) {
    std::string suffix(RecordKind<T>::facts.suffix);
    marks_.sent(suffix, record.id, record.upTo, record.record ? toJson(*record.record) : std::string());
    sent.push_back({std::move(suffix), record.id, record.upTo});
    if constexpr (HasExtraFields<T>) {
      marks_.sent(sideSuffix<T>(), record.id, record.upTo, record.record ? extraJson(*record.record) : std::string());
      sent.push_back({sideSuffix<T>(), record.id, record.upTo});
    }
  }
  cache_.markSent(prefix_, std::move(sent), {});
  Q_EMIT unsentChanged();
}

#define THALVORN_INSTANTIATE(Type)                                                           \
  template std::vector<Unsent<Type>> AppViewModel::unsent<Type>() const;                     \
  template std::optional<Unsent<Type>> AppViewModel::unsent<Type>(const Uuid&) const;        \
  template Saving AppViewModel::takeFromBackend<Type>(std::vector<FromBackend<Type>>, Edit); \
  template void AppViewModel::markUploaded<Type>(const std::vector<Uploaded<Type>>&)
THALVORN_INSTANTIATE(Vessel);
THALVORN_INSTANTIATE(MaintenanceTask);
THALVORN_INSTANTIATE(ServiceLog);
THALVORN_INSTANTIATE(ShipsLogEntry);
THALVORN_INSTANTIATE(VesselProfile);
THALVORN_INSTANTIATE(BunkeringRecord);
THALVORN_INSTANTIATE(EquipmentItem);
THALVORN_INSTANTIATE(SubscriptionAccount);
THALVORN_INSTANTIATE(ShipDocument);
THALVORN_INSTANTIATE(ShipContact);
THALVORN_INSTANTIATE(VoyagePlan);
THALVORN_INSTANTIATE(SavedWaypoint);
THALVORN_INSTANTIATE(YardPeriod);
THALVORN_INSTANTIATE(CrewBoardPost);
THALVORN_INSTANTIATE(ISMRecord);
THALVORN_INSTANTIATE(MarpolRecord);
THALVORN_INSTANTIATE(GMDSSTestLog);
THALVORN_INSTANTIATE(CrewMember);
THALVORN_INSTANTIATE(GuestProfile);
THALVORN_INSTANTIATE(CalendarEvent);
THALVORN_INSTANTIATE(AccountMember);
THALVORN_INSTANTIATE(ISMCheckDefinition);
THALVORN_INSTANTIATE(ConflictNote);
#undef THALVORN_INSTANTIATE

}  // namespace thalvorn
