#include "store/app_view_model.h"

#include <QCoroFuture>
#include <QThreadPool>
#include <algorithm>

#include "store/legacy_migration.h"
#include "store/list_loader.h"
#include "store/logging.h"
#include "store/preferences.h"
#include "store/user_preferences.h"

namespace thalvorn {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::size_t kUndoDepth = 50;
constexpr milliseconds kPushDelay{2500};
constexpr milliseconds kRetryDelay{5000};
constexpr seconds kPeriodicSync{300};

constexpr auto kSuffixes = [] {
  std::array<std::string_view, boost::mp11::mp_size<RecordTypes>::value> suffixes{};
  std::size_t i = 0;
  boost::mp11::mp_for_each<boost::mp11::mp_transform<std::type_identity, RecordTypes>>(
      [&]<class T>(std::type_identity<T>) { suffixes[i++] = RecordKind<T>::facts.suffix; });
  return suffixes;
}();

/// The kinds whose records older programs gave photos or files inside the record.
template <class T>
concept HasInlineContent =
    requires(const std::vector<T>& records, const AttachmentStore& files) { moveInlineContent(records, files); };

std::string selectedVesselKey(const std::string& prefix) { return prefix + "_selectedVesselID"; }

/// "“Engine coolant check” deleted", or "Service log deleted" for a record without a name.
template <class T>
std::string editLabel(const T& record, std::string_view done) {
  std::string label = recordName(record);
  if (label.empty()) {
    label = RecordKind<T>::facts.singular;
    label.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(label.front())));
  } else {
    label = "“" + label + "”";
  }
  return label + ' ' + std::string(done);
}

}  // namespace

/// What a worker thread read for one prefix.
struct AppViewModel::Loaded {
  template <class List>
  struct ListsOf;
  template <class... T>
  struct ListsOf<boost::mp11::mp_list<T...>> {
    using type = std::tuple<std::vector<T>...>;
  };
  ListsOf<RecordTypes>::type lists;
  SyncDirtyTracker marks;
  Edit contentMoved{.label = "Photos and files moved to disk"};      ///< of records as an older program left them
  std::vector<std::pair<std::string_view, std::size_t>> movedBytes;  ///< by suffix
  std::string problem;
};

AppViewModel::AppViewModel(LocalCache& cache, const Clock& clock, QObject* parent)
    : QObject(parent), cache_(cache), clock_(clock), attachments_(cache.file().parent_path() / "files") {
  retryTimer_.setSingleShot(true);
  retryTimer_.setInterval(kRetryDelay);
  connect(&retryTimer_, &QTimer::timeout, this, &AppViewModel::retrySaving);
  cloudPushTask.setSingleShot(true);
  cloudPushTask.setInterval(kPushDelay);
  connect(&cloudPushTask, &QTimer::timeout, this, [this] {
    if (!sync_ || !isAuthenticated_) return;
    qCInfo(storeLog, "☁️ Auto-push after change");
    sync_->push();
  });
  periodicSyncTask.setInterval(kPeriodicSync);
  connect(&periodicSyncTask, &QTimer::timeout, this, [this] {
    if (!sync_ || !isAuthenticated_) return;
    qCInfo(storeLog, "☁️ Periodic 5-min sync");
    sync_->periodicSync();
  });
}

AppViewModel::~AppViewModel() {
  // The writer thread answers to this object; after the flush nothing more can come.
  cache_.flush();
  // Whoever awaits an edit is told, though not whether it got to the disk: nobody here can hear of that any more.
  for (const Pending& edit : pending_) {
    edit.promise->addResult(std::unexpected(StoreError{"The program was closed meanwhile."}));
    edit.promise->finish();
  }
}

std::string AppViewModel::displayName() const {
  return UserPreferences(cache_, prefix_).value(preference_keys::userDisplayName).value_or(std::string());
}

void AppViewModel::setDisplayName(std::string name) {
  if (name == displayName()) return;
  UserPreferences(cache_, prefix_).change(preference_keys::userDisplayName, std::move(name), now());
  Q_EMIT displayNameChanged();
}

std::vector<const Vessel*> AppViewModel::vesselsInOrder() const {
  std::vector<const Vessel*> ordered;
  for (const Vessel& vessel : vessels().records()) ordered.push_back(&vessel);
  std::ranges::sort(ordered, [](const Vessel* a, const Vessel* b) {
    return std::tie(a->sortOrder, a->name, a->id) < std::tie(b->sortOrder, b->name, b->id);
  });
  return ordered;
}

const Vessel* AppViewModel::selectedVessel() const {
  return selectedVessel_ ? vessels().find(*selectedVessel_) : nullptr;
}

const VesselProfile* AppViewModel::profileOf(const Uuid& vesselID) const {
  const auto profiles = vesselProfiles().records();
  const auto found = std::ranges::find(profiles, vesselID, &VesselProfile::vesselID);
  return found == profiles.end() ? nullptr : &*found;
}

// ---- loading
// ----------------------------------------------------------------------------------------------------------

AppViewModel::Loaded AppViewModel::decodeState(LocalCache& cache, const AttachmentStore& attachments,
                                               const std::string& prefix, Timestamp now) {
  Loaded loaded;
  if (prefix.empty()) return loaded;
  if (!cache.isReadOnly()) {
    attachments.removeInterrupted();
    adoptLegacyEntries(cache, prefix, kSuffixes, now);
  }
  auto state = cache.load(prefix);
  if (!state) {
    loaded.problem = state.error().message;
    return loaded;
  }
  forEachKind([&]<class T>(std::type_identity<T>) {
    ListLoader<T> loader(prefix, [&](std::string key, std::string bytes, std::string reason) {
      cache.keepCorrupt(std::move(key), std::move(bytes), std::move(reason));
    });
    loader.readSegments(*state);
    loader.replay(state->journal);
    std::get<std::vector<T>>(loaded.lists) = loader.take();
    if constexpr (HasInlineContent<T>) {
      if (cache.isReadOnly()) return;
      std::vector<T>& records = std::get<std::vector<T>>(loaded.lists);
      ContentMoves<T> moves = moveInlineContent(records, attachments);
      for (const std::string& failure : moves.failures) qCWarning(storeLog, "⚠️ %s", failure.c_str());
      if (moves.records.empty()) return;
      loaded.movedBytes.emplace_back(RecordKind<T>::facts.suffix, moves.bytes);
      std::unordered_map<Uuid, T> moved;
      for (auto& [before, after] : moves.records) {
        moved.emplace(after.id, after);
        loaded.contentMoved.replace(std::move(before), std::move(after));
      }
      for (T& record : records)
        if (const auto found = moved.find(record.id); found != moved.end()) record = std::move(found->second);
    }
  });
  if (!staysOnThisComputer(prefix)) {
    for (const auto* edits : {&state->unsent, &state->journal})
      for (const JournalEntry& edit : *edits) loaded.marks.note(edit, edit.revision);
  }
  return loaded;
}

void AppViewModel::take(Loaded loaded, const std::string& prefix) {
  prefix_ = prefix;
  forEachKind([&]<class T>(std::type_identity<T>) {
    mutableCollection<T>().reset(std::move(std::get<std::vector<T>>(loaded.lists)));
  });
  marks_ = std::move(loaded.marks);
  undoable_.clear();
  qCInfo(storeLog, "🔄 %zu vessels from key %s_vessels", vessels().size(), prefix.c_str());
  qCInfo(storeLog, "📂 ISM load: count=%zu", ismRecords().size());
  loadProblem_ = std::move(loaded.problem);
  if (!loadProblem_.empty()) qCWarning(storeLog, "❌ load failed: %s", loadProblem_.c_str());

  UserPreferences(cache_, prefix).adoptShared(localPrefix);
  const auto stored = cache_.preference(selectedVesselKey(prefix));
  selectedVessel_ = stored ? Uuid::parse(*stored) : std::nullopt;
  if (!selectedVessel()) {
    const auto ordered = vesselsInOrder();
    selectedVessel_ = ordered.empty() ? std::nullopt : std::optional(ordered.front()->id);
  }
  saveMovedContent(loaded);
  restoreAccount();

  isReloading_ = false;
  Q_EMIT prefixChanged();
  Q_EMIT displayNameChanged();
  Q_EMIT selectedVesselIDChanged();
  Q_EMIT isReloadingChanged();
  Q_EMIT undoableChanged();
  Q_EMIT unsentChanged();
  Q_EMIT reloaded();
}

void AppViewModel::restoreAccount() {
  const bool shared = !prefix_.empty() && !staysOnThisComputer();
  std::optional<AccountMember> own;
  accessRefusal_ = shared ? cache_.preference(accessRefusalKey(prefix_)).value_or(std::string()) : std::string();
  // The account of the records that are here, also when the program ended in the middle of a change of account.
  setAccountID(shared && accessRefusal_.empty() ? fleetAccount() : std::string());
  for (const AccountMember& member : accountMembers().records()) {
    if (!member.userId) continue;
    const std::string user = member.userId->toString();
    const std::string account = member.accountId.toString();
    if (shared ? user == prefix_ && (account == accountId_ || !accessRefusal_.empty())
               : prefix_ == setAsidePrefix(user, account))
      own = member;
  }
  if (own && !accessRefusal_.empty()) own->isActive = false;
  setMembership(std::move(own));
}

void AppViewModel::saveMovedContent(const Loaded& loaded) {
  if (loaded.contentMoved.empty()) return;
  Saving saving = save({.prefix = prefix_,
                        .at = now(),
                        .label = loaded.contentMoved.label,
                        .changes = entryChanges(loaded.contentMoved)});
  saving.then(this, [prefix = prefix_, moved = loaded.movedBytes](const SaveResult& result) {
    if (!result) return;
    for (const auto& [suffix, bytes] : moved) logMovedContent(suffix, prefix + std::string(suffix), bytes);
  });
}

QCoro::Task<void> AppViewModel::reloadForUser(std::string prefix) {
  const int generation = ++reloadGeneration_;
  qCInfo(storeLog, "🔄 reloadForUser — uid: %s", prefix.c_str());
  isReloading_ = true;
  Q_EMIT isReloadingChanged();
  const auto promise = std::make_shared<QPromise<std::shared_ptr<Loaded>>>();
  QFuture<std::shared_ptr<Loaded>> future = promise->future();
  QThreadPool::globalInstance()->start([cache = &cache_, attachments = attachments_, prefix, promise, now = now()] {
    promise->start();
    promise->addResult(std::make_shared<Loaded>(decodeState(*cache, attachments, prefix, now)));
    promise->finish();
  });
  const std::shared_ptr<Loaded> loaded = co_await future;
  if (generation != reloadGeneration_) co_return;
  take(std::move(*loaded), prefix);
}

void AppViewModel::reloadNow(std::string prefix) {
  ++reloadGeneration_;
  take(decodeState(cache_, attachments_, prefix, now()), prefix);
}

void AppViewModel::clear() {
  ++reloadGeneration_;
  take(Loaded{}, {});
}

// ---- what is in view
// ----------------------------------------------------------------------------------------------------

void AppViewModel::setSelectedVesselID(std::optional<Uuid> id) {
  if (id == selectedVessel_) return;
  selectedVessel_ = id;
  cache_.setPreference(selectedVesselKey(prefix_), id ? std::optional(id->toString()) : std::nullopt);
  UserPreferences(cache_, prefix_).noteChange(preference_keys::selectedVesselID, now());
  Q_EMIT selectedVesselIDChanged();
}

void AppViewModel::setSelectedFilter(FilterOption filter) {
  if (filter == selectedFilter_) return;
  selectedFilter_ = filter;
  Q_EMIT selectedFilterChanged();
}

void AppViewModel::setSpotlightHighlightID(std::optional<Uuid> id) {
  spotlightHighlight_ = id;
  Q_EMIT spotlightHighlightIDChanged();
}

// ---- edits
// --------------------------------------------------------------------------------------------------------------

std::optional<AnyRecord> AppViewModel::currentOf(const AnyRecord& like) const {
  return std::visit(
      [&]<class T>(const T& record) -> std::optional<AnyRecord> {
        const T* current = collection<T>().find(record.id);
        return current ? std::optional<AnyRecord>(*current) : std::nullopt;
      },
      like);
}

Saving AppViewModel::apply(Edit edit) {
  if (edit.empty()) return finishedSaving(Revision{0});
  if (cache_.isReadOnly()) return refused(cache_.readOnlyReason());
  if (prefix_.empty()) return refused("Open a fleet first.");
  if (std::string refusal = refusalOf(edit); !refusal.empty()) return refused(std::move(refusal));

  // A form works on a copy; what changed in the record meanwhile stays unless the form changed the same field.
  for (RecordChange& change : edit.changes) {
    std::string problem;
    std::visit(
        [&]<class T>(const T& record) {
          const T* current = collection<T>().find(record.id);
          if (change.before && !current) {
            problem =
                "This " + std::string(RecordKind<T>::facts.singular) + " was deleted meanwhile; nothing was changed.";
          } else if (change.before && change.after) {
            T merged = *current;
            const T& after = std::get<T>(*change.after);
            copyFields(after, merged, changedFields(std::get<T>(*change.before), after));
            change.before = *current;
            change.after = std::move(merged);
          } else if (change.before) {
            change.before = *current;
          } else if (current) {
            problem = "This " + std::string(RecordKind<T>::facts.singular) + " is there already; nothing was changed.";
          }
        },
        change.either());
    if (!problem.empty()) return refused(std::move(problem));
  }
  std::erase_if(edit.changes, [](const RecordChange& change) {
    return change.before && change.after && *change.before == *change.after;
  });
  if (edit.empty()) return finishedSaving(Revision{0});

  JournalEntry entry{.revision = 0, .prefix = prefix_, .at = now(), .label = edit.label, .changes = entryChanges(edit)};
  noteDemoEdit();
  applyInMemory(edit);
  undoable_.push_back(edit);
  if (undoable_.size() > kUndoDepth) undoable_.pop_front();
  Saving saving = save(std::move(entry));
  Q_EMIT edited(edit);
  Q_EMIT undoableChanged();
  schedulePush();
  return saving;
}

template <class T>
void AppViewModel::applyInMemory(std::vector<T> puts, const std::unordered_set<Uuid>& removes) {
  constexpr std::size_t kTellOneByOne = 32;
  if (puts.empty() && removes.empty()) return;
  Collection<T>& records = mutableCollection<T>();
  if constexpr (std::is_same_v<T, VesselProfile>) {
    const auto hasNewPhoto = [&records](const VesselProfile& put) {
      const VesselProfile* current = records.find(put.id);
      return put.photoPath != (current != nullptr ? current->photoPath : std::string());
    };
    if (std::ranges::any_of(puts, hasNewPhoto)) {
      ++vesselPhotoCacheVersion_;
      Q_EMIT vesselPhotoCacheVersionChanged();
    }
  }
  if (puts.size() + removes.size() > kTellOneByOne) {
    records.applyMany(std::move(puts), removes);
  } else {
    for (T& record : puts) records.put(std::move(record));
    for (const Uuid& id : removes) records.remove(id);
  }
  if constexpr (std::is_same_v<T, ISMRecord>) qCInfo(storeLog, "💾 ISM save: count=%zu", records.size());
  if constexpr (std::is_same_v<T, Vessel>) {
    if (!selectedVessel()) {
      const auto ordered = vesselsInOrder();
      setSelectedVesselID(ordered.empty() ? std::nullopt : std::optional(ordered.front()->id));
    }
  }
}

void AppViewModel::applyInMemory(const Edit& edit) {
  forEachKind([&]<class T>(std::type_identity<T>) {
    std::vector<T> puts;
    std::unordered_set<Uuid> removes;
    for (const RecordChange& change : edit.changes) {
      if (!std::holds_alternative<T>(change.either())) continue;
      if (change.after) {
        puts.push_back(std::get<T>(*change.after));
      } else {
        removes.insert(change.id());
      }
    }
    applyInMemory<T>(std::move(puts), removes);
  });
}

Saving AppViewModel::undo(const Uuid& editID) {
  const auto found = std::ranges::find(undoable_, editID, &Edit::id);
  if (found == undoable_.end()) return refused("This can no longer be undone.");
  Edit inverse = inverseOf(*found, [this](const AnyRecord& like) { return currentOf(like); });
  inverse.label = "Undone: " + found->label;
  undoable_.erase(found);
  return apply(std::move(inverse));
}

// ---- saving
// -------------------------------------------------------------------------------------------------------------

Saving AppViewModel::save(JournalEntry entry) {
  auto promise = std::make_shared<QPromise<SaveResult>>();
  promise->start();
  Saving saving = promise->future();
  const bool isOurs = std::ranges::any_of(entry.changes, [](const EntryChange& change) { return !change.sent; });
  unsavedEdits_ += isOurs ? 1 : 0;
  pending_.push_back({std::make_shared<const JournalEntry>(std::move(entry)), std::move(promise), isOurs});
  Q_EMIT unsavedChanged();
  saveNext();
  return saving;
}

Saving AppViewModel::everythingSaved() const {
  return pending_.empty() ? finishedSaving(Revision{0}) : pending_.back().promise->future();
}

void AppViewModel::saveNext() {
  // One at a time: when an edit cannot be saved, none behind it may get ahead of it.
  if (saving_ || pending_.empty() || retryTimer_.isActive()) return;
  saving_ = true;
  cache_.append(pending_.front().entry, [this](std::expected<Revision, CacheError> result) {
    QMetaObject::invokeMethod(this, [this, result = std::move(result)] { saved(result); }, Qt::QueuedConnection);
  });
}

void AppViewModel::saved(std::expected<Revision, CacheError> result) {
  saving_ = false;
  if (!result) {
    saveProblem_ = result.error().message;
    qCWarning(storeLog, "⚠️ not saved yet: %s", saveProblem_.c_str());
    retryTimer_.start();
    Q_EMIT unsavedChanged();
    return;
  }
  Pending done = std::move(pending_.front());
  pending_.pop_front();
  unsavedEdits_ -= done.isOurs ? 1 : 0;
  saveProblem_.clear();
  if (!staysOnThisComputer() && done.entry->prefix == prefix_) {
    marks_.note(*done.entry, *result);
    Q_EMIT unsentChanged();
  }
  done.promise->addResult(SaveResult(*result));
  done.promise->finish();
  Q_EMIT unsavedChanged();
  saveNext();
}

void AppViewModel::retrySaving() {
  retryTimer_.stop();
  saveNext();
}

void AppViewModel::schedulePush() {
  if (isAuthenticated_ && !staysOnThisComputer()) cloudPushTask.start();
}

// ---- one record of any kind
// -----------------------------------------------------------------------------------------------

template <class T>
Saving AppViewModel::add(T record) {
  if (record.id.isNil()) record.id = Uuid::random();
  Edit edit{.label = editLabel(record, "added")};
  edit.add(std::move(record));
  return apply(std::move(edit));
}

template <class T>
Saving AppViewModel::update(T record) {
  const T* current = collection<T>().find(record.id);
  if (!current)
    return refused("This " + std::string(RecordKind<T>::facts.singular) +
                   " was deleted meanwhile; nothing was changed.");
  Edit edit{.label = editLabel(record, "changed")};
  edit.replace(*current, std::move(record));
  return apply(std::move(edit));
}

template <class T>
Saving AppViewModel::put(T record) {
  return collection<T>().find(record.id) ? update(std::move(record)) : add(std::move(record));
}

template <class T>
Saving AppViewModel::remove(const Uuid& id) {
  const T* current = collection<T>().find(id);
  if (!current) return refused("There is no " + std::string(RecordKind<T>::facts.singular) + " " + id.toString() + ".");
  Edit edit{.label = editLabel(*current, "deleted")};
  edit.remove(*current);
  return apply(std::move(edit));
}

#define THALVORN_INSTANTIATE(Type)                         \
  template Saving AppViewModel::add<Type>(Type);           \
  template Saving AppViewModel::update<Type>(Type);        \
  template Saving AppViewModel::put<Type>(Type);           \
  template Saving AppViewModel::remove<Type>(const Uuid&); \
  template void AppViewModel::applyInMemory<Type>(std::vector<Type>, const std::unordered_set<Uuid>&)
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
