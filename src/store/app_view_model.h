#pragma once

#include <QObject>
#include <QTimer>
#include <deque>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>

#include <QCoroTask>

#include "base/calendar.h"
#include "compliance/permissions.h"
#include "core/task_board.h"
#include "store/attachments.h"
#include "store/collection.h"
#include "store/edit.h"
#include "store/local_cache.h"
#include "store/record_kind.h"
#include "store/saving.h"
#include "store/sync_dirty_tracker.h"

namespace thalvorn {

struct CompletionForm;
struct MeterAdjustment;
struct MeterReading;

/// Exchanges records with the backend; asked for by the store, done by the sync.
class SyncTrigger {
 public:
  virtual ~SyncTrigger() = default;
  /// Uploads what waits.
  virtual void push() = 0;
  /// The turn of the five-minute loop.
  virtual void periodicSync() = 0;
};

/// A record that waits for upload.
template <class T>
struct Unsent {
  Uuid id;
  std::optional<T> base;     ///< as both sides last knew it; empty when it was made here
  std::optional<T> current;  ///< empty when it was deleted here
  Revision revision = 0;     ///< of its newest edit
  Timestamp at;              ///< when that was made
  bool revived = false;      ///< a deletion that had been sent was taken back
};

/// What the backend holds of one record, for the store to take.
template <class T>
struct FromBackend {
  Uuid id;
  std::optional<T> theirs;  ///< empty: it is not there any more
  std::optional<T> merged;  ///< what it becomes here; the same as `theirs` when nothing of ours is left in it
  StoredForm form = {};     ///< of `theirs`, where it has been made already
};

/// A record that reached the backend.
template <class T>
struct Uploaded {
  Uuid id;
  Revision upTo = 0;        ///< the newest edit that is in it
  std::optional<T> record;  ///< as it stands there; empty when it was deleted
};

/// The single in-memory store of everything the user works on. Screens read its collections and call its operations;
/// every change goes through `apply`. Lives on the view layer's thread.
class AppViewModel : public QObject {
  Q_OBJECT

 public:
  /// The prefixes of the two fleets that never leave this computer.
  static constexpr std::string_view demoPrefix = "demo";
  static constexpr std::string_view localPrefix = "local";

  AppViewModel(LocalCache& cache, const Clock& clock, QObject* parent = nullptr);
  ~AppViewModel() override;

  // ---- state ----
  bool isReloading() const { return isReloading_; }
  int vesselPhotoCacheVersion() const { return vesselPhotoCacheVersion_; }
  template <class T>
  const Collection<T>& collection() const {
    return std::get<Collection<T>>(collections_);
  }
  const Collection<Vessel>& vessels() const { return collection<Vessel>(); }
  const Collection<MaintenanceTask>& tasks() const { return collection<MaintenanceTask>(); }
  const Collection<ServiceLog>& logs() const { return collection<ServiceLog>(); }
  const Collection<ShipsLogEntry>& shipsLog() const { return collection<ShipsLogEntry>(); }
  const Collection<VesselProfile>& vesselProfiles() const { return collection<VesselProfile>(); }
  const Collection<BunkeringRecord>& bunkeringRecords() const { return collection<BunkeringRecord>(); }
  const Collection<EquipmentItem>& equipment() const { return collection<EquipmentItem>(); }
  const Collection<SubscriptionAccount>& subscriptions() const { return collection<SubscriptionAccount>(); }
  const Collection<ShipDocument>& documents() const { return collection<ShipDocument>(); }
  const Collection<ShipContact>& contacts() const { return collection<ShipContact>(); }
  const Collection<VoyagePlan>& voyagePlans() const { return collection<VoyagePlan>(); }
  const Collection<SavedWaypoint>& savedWaypoints() const { return collection<SavedWaypoint>(); }
  const Collection<YardPeriod>& yardPeriods() const { return collection<YardPeriod>(); }
  const Collection<CrewBoardPost>& crewBoardPosts() const { return collection<CrewBoardPost>(); }
  const Collection<ISMRecord>& ismRecords() const { return collection<ISMRecord>(); }
  const Collection<MarpolRecord>& marpolRecords() const { return collection<MarpolRecord>(); }
  const Collection<GMDSSTestLog>& gmdssTestLogs() const { return collection<GMDSSTestLog>(); }
  const Collection<CrewMember>& crewMembers() const { return collection<CrewMember>(); }
  const Collection<GuestProfile>& guestProfiles() const { return collection<GuestProfile>(); }
  const Collection<CalendarEvent>& calendarEvents() const { return collection<CalendarEvent>(); }
  const Collection<AccountMember>& accountMembers() const { return collection<AccountMember>(); }
  const Collection<ISMCheckDefinition>& ismCheckDefinitions() const { return collection<ISMCheckDefinition>(); }
  const Collection<ConflictNote>& conflicts() const { return collection<ConflictNote>(); }

  const std::string& accountID() const { return accountId_; }
  std::string displayName() const;
  std::optional<Uuid> selectedVesselID() const { return selectedVessel_; }
  FilterOption selectedFilter() const { return selectedFilter_; }
  std::optional<Uuid> spotlightHighlightID() const { return spotlightHighlight_; }
  bool isAuthenticated() const { return isAuthenticated_; }

  /// The prefix of the cache keys of whoever works now: a user's id, `demoPrefix`, `localPrefix`; empty before a
  /// choice.
  const std::string& prefix() const { return prefix_; }
  bool isDemo() const { return prefix_ == demoPrefix; }
  /// True for the fleets that are never uploaded: those two, and one that was set aside.
  bool staysOnThisComputer() const { return staysOnThisComputer(prefix_); }
  static bool staysOnThisComputer(std::string_view prefix) {
    return prefix == demoPrefix || prefix == localPrefix || isSetAside(prefix);
  }
  /// The fleet of an account that its user has left, as it last was on this computer: it can be read only.
  bool isSetAside() const { return isSetAside(prefix_); }
  static bool isSetAside(std::string_view prefix) { return prefix.contains('@'); }
  /// The prefix under which it is kept.
  static std::string setAsidePrefix(const std::string& userID, const std::string& account) {
    return userID + "@" + account;
  }
  /// Preferences behind that prefix: whose fleet it was, by the names of her vessels, and since when it is set aside.
  static constexpr std::string_view setAsideVessels = "_setAsideVessels";
  static constexpr std::string_view setAsideSince = "_setAsideSince";

  LocalCache& cache() const { return cache_; }
  /// The photos and files of the records, in the folder "files" beside the store's file.
  const AttachmentStore& attachments() const { return attachments_; }
  const Clock& clock() const { return clock_; }
  Timestamp now() const { return clock_.now(); }
  Calendar calendar() const { return clock_.calendar(); }

  /// The vessels as lists show them: by `sortOrder`, then name.
  std::vector<const Vessel*> vesselsInOrder() const;
  const Vessel* selectedVessel() const;
  const VesselProfile* profileOf(const Uuid& vesselID) const;

  // ---- start, choice of user
  // -----------------------------------------------------------------------------------------
  /// Loads every collection of the user (or of the demo or computer-only fleet) from the cache, off this thread, and
  /// restores the selected vessel. A later call supersedes an earlier one that is still loading.
  QCoro::Task<void> reloadForUser(std::string prefix);
  /// The same, finished before it returns; for the command line.
  void reloadNow(std::string prefix);
  /// Why the records in memory are not all there are: the file could not be read. Empty while all is well.
  const std::string& loadProblem() const { return loadProblem_; }
  /// Forgets what is in memory and shows nobody's records.
  void clear();

  void setSelectedVesselID(std::optional<Uuid> id);
  void setSelectedFilter(FilterOption filter);
  void setSpotlightHighlightID(std::optional<Uuid> id);
  void setDisplayName(std::string name);

  // ---- operations
  // ----------------------------------------------------------------------------------------------------
  /// Applies an edit in memory at once and saves it; the one way in for every change. Refuses without change when the
  /// file is read-only, the user's role does not allow it, or a record to be changed is gone.
  Saving apply(Edit edit);

  /// Adds the record (a nil `id` gets a new one), replaces the one with its `id`, or deletes by `id`.
  template <class T>
  Saving add(T record);
  template <class T>
  Saving update(T record);
  template <class T>
  Saving put(T record);
  template <class T>
  Saving remove(const Uuid& id);

  /// "Mark complete & log": the log, the task and the vessel in one edit.
  Saving completeTask(const Uuid& taskID, const CompletionForm& form);
  Saving snoozeTask(const Uuid& taskID, Timestamp until);
  Saving unsnoozeTask(const Uuid& taskID);
  /// Raises hour meters; lower values are ignored. Hours.
  Saving updateMeters(const Uuid& vesselID, const std::vector<MeterReading>& readings);
  /// Puts a mistyped meter right, or notes that it was replaced, which moves the tasks that read it along. The reason
  /// goes into the vessel's meter history; an empty author means the user.
  Saving correctMeter(const Uuid& vesselID, MeterChange change, MeterAdjustment adjustment);
  Saving correctLog(const ServiceLog& corrected, std::string reason);
  /// Deletes the vessel and everything that hangs on it.
  Saving removeVessel(const Uuid& vesselID);
  /// How many records of which kind hang on a vessel, e.g. "12 tasks"; empty kinds are left out.
  std::vector<std::string> whatHangsOn(const Uuid& vesselID) const;
  /// Gives the vessels their positions in this order.
  Saving reorderVessels(const std::vector<Uuid>& order);

  /// The edits that can be taken back, newest last.
  const std::deque<Edit>& undoable() const { return undoable_; }
  /// Takes an edit back as far as nobody changed its records since.
  Saving undo(const Uuid& editID);

  /// Fills the demo fleet's entries, replacing what was there. Finishes when they are on disk; reload afterwards.
  Saving fillDemoFleet();
  /// Whether the demo fleet should be made (again): it is not there, or it is dated from another day and nobody has
  /// changed anything in it.
  bool demoFleetIsStale() const;

  // ---- saving
  // --------------------------------------------------------------------------------------------------------
  /// Edits on the screen that are not on disk yet.
  int unsavedCount() const { return static_cast<int>(pending_.size()); }
  /// Those among them that were made here, or hold something of ours. While there are any it is not known what waits
  /// for upload.
  int unsavedEdits() const { return unsavedEdits_; }
  /// Finishes once everything up to now is on disk.
  Saving everythingSaved() const;
  /// Why the oldest of them could not be saved; empty while all is well.
  const std::string& saveProblem() const { return saveProblem_; }
  /// Tries again now.
  void retrySaving();

  // ---- exchange with the backend
  // -------------------------------------------------------------------------------------
  void setSyncTrigger(SyncTrigger* trigger) { sync_ = trigger; }
  /// Signed in with a session that can be used: changes are pushed, and the five-minute loop runs.
  void setAuthenticated(bool authenticated);
  /// The account whose rows the fleet is; empty while it is not resolved.
  void setAccountID(std::string id);
  /// Has the open user's fleet be that of another account. The one that is here is set aside and never sent to it; one
  /// that was set aside of that account is brought back, with what waits in it. Everything must be saved. False when
  /// the change could not be made durable: everything stands as it did.
  QCoro::Task<bool> changeAccount(std::string account);
  /// The account that the open user's fleet on this computer belongs to, also when he is no member of it any more;
  /// empty while it is nobody's yet.
  std::string fleetAccount() const;
  /// The preference that keeps it between starts.
  static std::string fleetAccountKey(const std::string& userID) { return userID + "_fleetAccount"; }
  /// The preference that keeps the account of a user between starts.
  static std::string accountKey(const std::string& userID) { return userID + "_accountID"; }
  /// The preference that keeps why a user has lost his access.
  static std::string accessRefusalKey(const std::string& userID) { return userID + "_accessRefusal"; }

  /// The user's place in the account, which decides what he may see and change. While it is unknown nothing is held
  /// back here; the server decides what it takes.
  void setMembership(std::optional<AccountMember> member);
  const std::optional<AccountMember>& membership() const { return membership_; }
  /// The server lets the user no longer in, for the reason given in its words; empty: he has access as far as is known.
  /// What is here stays readable as far as his role went and keeps waiting, but cannot be changed. Kept between starts.
  void setAccessRefusal(std::string reason);
  const std::string& accessRefusal() const { return accessRefusal_; }
  /// The rights in a module, or in what belongs to every member. In the fleets of this computer everything is allowed.
  ModuleRights rights(std::optional<AppTabPermissionKey> module) const;

  /// The records on disk that wait for upload.
  template <class T>
  std::vector<Unsent<T>> unsent() const;
  /// The same of one record; empty when it does not wait.
  template <class T>
  std::optional<Unsent<T>> unsent(const Uuid& id) const;
  /// How many records wait, of one entry or of all. None ever waits of the fleets that stay on this computer.
  int dirtyCount() const { return static_cast<int>(marks_.records()); }
  int dirtyCount(std::string_view suffix) const { return static_cast<int>(marks_.records(suffix)); }

  /// Takes what the backend holds, in one edit that is neither uploaded nor undone. A record that waits for upload must
  /// come with what it was merged to, from its state at this moment; it waits on, on top of `theirs`. Every edit made
  /// here must be saved (`unsavedEdits()` is 0), since only then is it known what waits; what came from the backend
  /// before may still be on its way to the disk. `also`: what is changed here along with it, to be uploaded.
  template <class T>
  Saving takeFromBackend(std::vector<FromBackend<T>> records, Edit also = {});
  /// So many records of a kind are about to come.
  template <class T>
  void makeRoom(std::size_t count) {
    mutableCollection<T>().reserve(count);
  }
  /// The backend holds these records as they are given, each since its edit `upTo`.
  template <class T>
  void markUploaded(const std::vector<Uploaded<T>>& records);

 Q_SIGNALS:
  void isReloadingChanged();
  void reloaded();
  void prefixChanged();
  void selectedVesselIDChanged();
  void selectedFilterChanged();
  void spotlightHighlightIDChanged();
  void displayNameChanged();
  void isAuthenticatedChanged();
  void accountIDChanged();
  void membershipChanged();
  /// What waits for upload is other than it was.
  void unsentChanged();
  void unsavedChanged();
  /// After every edit has been applied in memory.
  void edited(const thalvorn::Edit& edit);
  void undoableChanged();
  void vesselPhotoCacheVersionChanged();

 private:
  template <class List>
  struct CollectionsOf;
  template <class... T>
  struct CollectionsOf<boost::mp11::mp_list<T...>> {
    using type = std::tuple<Collection<T>...>;
  };
  using Collections = CollectionsOf<RecordTypes>::type;
  struct Loaded;
  struct Pending {
    std::shared_ptr<const JournalEntry> entry;
    std::shared_ptr<QPromise<SaveResult>> promise;
    bool isOurs = false;  ///< something in it waits for upload
  };

  static Loaded decodeState(LocalCache& cache, const AttachmentStore& attachments, const std::string& prefix,
                            Timestamp now);
  void take(Loaded loaded, const std::string& prefix);
  void saveMovedContent(const Loaded& loaded);
  void restoreAccount();
  void noteDemoEdit();
  std::string refusalOf(const Edit& edit) const;
  void applyInMemory(const Edit& edit);
  template <class T>
  void applyInMemory(std::vector<T> puts, const std::unordered_set<Uuid>& removes);
  /// Tells of records that came down, each given with what stood there before.
  template <class T>
  void tellReceived(std::vector<std::pair<Uuid, std::optional<T>>> changed, std::vector<RecordChange> also);
  template <class T>
  Unsent<T> unsentRecord(const Uuid& id, const UnsentMark* own, const UnsentMark* side) const;
  std::optional<AnyRecord> currentOf(const AnyRecord& like) const;
  Saving save(JournalEntry entry);
  void saveNext();
  void saved(std::expected<Revision, CacheError> result);
  void schedulePush();
  template <class T>
  Collection<T>& mutableCollection() {
    return std::get<Collection<T>>(collections_);
  }

  LocalCache& cache_;
  const Clock& clock_;
  AttachmentStore attachments_;
  Collections collections_;
  std::string prefix_;
  std::string accountId_;
  bool isReloading_ = false;
  bool isAuthenticated_ = false;
  std::optional<AccountMember> membership_;
  std::string accessRefusal_;
  int vesselPhotoCacheVersion_ = 0;
  std::optional<Uuid> selectedVessel_;
  FilterOption selectedFilter_ = FilterOption::all;
  std::optional<Uuid> spotlightHighlight_;

  std::deque<Pending> pending_;
  int unsavedEdits_ = 0;
  bool saving_ = false;
  std::string saveProblem_;
  std::string loadProblem_;
  QTimer retryTimer_;
  std::deque<Edit> undoable_;
  SyncDirtyTracker marks_;
  int reloadGeneration_ = 0;
  SyncTrigger* sync_ = nullptr;
  QTimer cloudPushTask;     ///< the pending debounced upload after a change
  QTimer periodicSyncTask;  ///< the five-minute sync loop
};

}  // namespace thalvorn
