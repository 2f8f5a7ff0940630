#include "sync/sync_manager.h"

#include <QCoroFuture>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPromise>
#include <array>
#include <ranges>

#include "store/preferences.h"
#include "sync/settings_step.h"
#include "sync/step_facts.h"
#include "sync/steps.h"
#include "sync/yard_parts.h"

namespace thalvorn {
namespace {

constexpr std::string_view kLastSyncDate = "_lastSyncDate";
constexpr std::string_view kTableVersions = "_tableVersions";
constexpr std::string_view kChanges = "account_changes";
constexpr std::string_view kMembers = "account_members";
constexpr std::string_view kAccounts = "accounts";

struct Step {
  std::string_view label;
  std::string_view table;
  SBTask<void> (*deletions)(SyncRunPtr, RunToken);
  SBTask<void> (*uploads)(SyncRunPtr, RunToken);
  SBTask<bool> (*download)(SyncRunPtr, RunToken);
  int (*waiting)(const AppViewModel&);
  bool optional = false;  ///< an older server may lack the table; what belongs there waits
};

template <class T>
constexpr Step step() {
  return {.label = stepFacts<T>.label,
          .table = RecordKind<T>::facts.table,
          .deletions = &uploadDeletions<T>,
          .uploads = &uploadChanges<T>,
          .download = &downloadRows<T>,
          .waiting = [](const AppViewModel& model) { return model.dirtyCount(RecordKind<T>::facts.suffix); }};
}

constexpr Step optional(Step step) {
  step.optional = true;
  return step;
}

/// The steps in run order. Vessels come first because every other row refers to one; conflicts last, when all are
/// known.
constexpr std::array kSteps{
    step<Vessel>(),
    step<VesselProfile>(),
    step<MaintenanceTask>(),
    step<ServiceLog>(),
    step<ShipsLogEntry>(),
    step<BunkeringRecord>(),
    step<ShipDocument>(),
    step<ShipContact>(),
    step<EquipmentItem>(),
    step<VoyagePlan>(),
    step<SavedWaypoint>(),
    step<CrewMember>(),
    step<GuestProfile>(),
    step<CalendarEvent>(),
    step<ISMRecord>(),
    step<MarpolRecord>(),
    step<GMDSSTestLog>(),
    step<ISMCheckDefinition>(),
    step<YardPeriod>(),
    Step{.label = "settings",
         .table = "user_settings",
         .deletions = nullptr,
         .uploads = &uploadSettings,
         .download = &downloadSettings,
         .waiting = &settingsWaiting},
    step<SubscriptionAccount>(),
    step<CrewBoardPost>(),
    optional(step<ConflictNote>()),
};

/// One step's work under way, and whether it came to its end in time.
struct Bounded {
  QPromise<bool> promise;
  std::expected<bool, SBError> result = false;
  bool told = false;

  void tell(bool inTime) {
    if (told) return;
    told = true;
    promise.addResult(inTime);
    promise.finish();
  }
};

SBTask<bool> workOf(const Step* step, SyncRunPtr run, RunToken token, bool download) {
  if (step->waiting(run->model) > 0) {
    const auto uploaded = co_await step->uploads(run, token);
    if (!uploaded) co_return std::unexpected(uploaded.error());
  }
  if (!download || token.isOver()) co_return false;
  co_return co_await step->download(run, token);
}

QCoro::Task<void> workInto(std::shared_ptr<Bounded> bounded, const Step* step, SyncRunPtr run, RunToken token,
                           bool download) {
  bounded->result = co_await workOf(step, run, token, download);
  bounded->tell(true);
}

/// The step's result; empty when it took too long and was abandoned.
QCoro::Task<std::optional<std::expected<bool, SBError>>> within(std::chrono::milliseconds limit, const Step* step,
                                                                SyncRunPtr run, bool download) {
  const auto bounded = std::make_shared<Bounded>();
  bounded->promise.start();
  RunToken token = RunToken::partOf(run->token);
  QTimer timer;
  timer.setSingleShot(true);
  QObject::connect(&timer, &QTimer::timeout, [bounded] { bounded->tell(false); });
  timer.start(limit);
  workInto(bounded, step, run, token, download);
  const bool inTime = co_await bounded->promise.future();
  if (inTime) co_return bounded->result;
  token.end();
  co_return std::nullopt;
}

std::int64_t versionOf(const std::map<std::string, std::int64_t, std::less<>>& versions, std::string_view table) {
  const auto found = versions.find(table);
  return found == versions.end() ? 0 : found->second;
}

bool endsRun(const SBError& error) {
  return error.kind != SBError::Case::serverError || error.remedy == SBError::Remedy::signIn || error.status == 0;
}

}  // namespace

SyncManager::SyncManager(AppViewModel& model, SupabaseClient& client, AccountResolver& resolver, SyncLog& log,
                         Timing& timing, Options options, QObject* parent)
    : QObject(parent),
      model_(model),
      client_(client),
      resolver_(resolver),
      log_(log),
      timing_(timing),
      options_(options) {
  heldBack_.setSingleShot(true);
  connect(&heldBack_, &QTimer::timeout, this, &SyncManager::push);
  connect(&model_, &AppViewModel::prefixChanged, this, [this] {
    // Another user's fleet: whatever a run still does is not for it.
    token_.end();
    syncingSince_.reset();
    problems_.clear();
    Q_EMIT stateChanged();
  });
}

SyncManager::~SyncManager() { token_.end(); }

std::vector<std::string_view> SyncManager::tables() {
  std::vector<std::string_view> all;
  all.reserve(kSteps.size());
  for (const Step& step : kSteps) all.push_back(step.table);
  return all;
}

std::optional<Timestamp> SyncManager::lastSyncDate() const {
  const auto stored = model_.cache().preference(key(kLastSyncDate));
  return stored ? parseTimestamp(*stored) : std::nullopt;
}

void SyncManager::push() {
  if (isSyncing()) {
    pushAgain_ = true;
    return;
  }
  pushChanges();
}

void SyncManager::fullSync() { syncAll(); }

QCoro::Task<SyncOutcome> SyncManager::syncAll(bool everything) {
  if (!mayStart(true)) co_return SyncOutcome::skipped;
  co_return co_await runNow(everything ? Extent::everything : Extent::changes);
}

QCoro::Task<SyncOutcome> SyncManager::pushChanges() {
  if (!mayStart(false)) co_return SyncOutcome::skipped;
  co_return co_await runNow(Extent::uploads);
}

bool SyncManager::mayStart(bool full) {
  if (!client_.isAuthenticated()) {
    if (model_.isDemo()) {
      log_.say("🎭 syncAll skipped — demo mode (data is local-only)");
    } else {
      log_.say("❌ syncAll skipped — not authenticated");
    }
    return false;
  }
  if (model_.staysOnThisComputer() || model_.prefix() != client_.userID().toStdString()) {
    log_.say("🎭 syncAll skipped — demo mode (data is local-only)");
    return false;
  }
  if (syncingSince_) {
    if (timing_.elapsed() - *syncingSince_ <= options_.stuckAfter) {
      log_.say("⏭ syncAll skipped — already syncing");
      return false;
    }
    log_.say("⚠️ isSyncing stuck for >5 min — force resetting");
    token_.end();
    syncingSince_.reset();
  }
  if (model_.accountID().empty()) {
    log_.say("❌ syncAll skipped — no resolved accountID yet");
    if (full)
      Q_EMIT messageForUser(tr("Couldn't determine your account — try Sync Now again, or sign out and back in."));
    return false;
  }
  return true;
}

QCoro::Task<SyncOutcome> SyncManager::runNow(Extent extent) {
  syncingSince_ = timing_.elapsed();
  token_ = RunToken();
  const auto run = std::make_shared<SyncRun>(SyncRun{.model = model_,
                                                     .client = client_,
                                                     .log = log_,
                                                     .timing = timing_,
                                                     .schema = schema_,
                                                     .notBefore = notBefore_,
                                                     .accountID = model_.accountID(),
                                                     .userID = client_.userID().toStdString(),
                                                     .token = token_,
                                                     .deleteBefore = model_.now() - options_.deletionDelay});
  Q_EMIT stateChanged();
  co_await work(run, extent);
  if (run->token.isOver()) co_return SyncOutcome::incomplete;
  finish(run, extent != Extent::uploads);
  co_return run->problems.empty() && !run->lostConnection ? SyncOutcome::complete : SyncOutcome::incomplete;
}

SBTask<std::optional<SyncManager::Versions>> SyncManager::readVersions(SyncRunPtr run) {
  if (!run->schema.stamps) co_return std::nullopt;
  const auto reply =
      co_await run->client.read(TableQuery(kChanges).eq("account_id", run->accountID).select("table_name,version"));
  if (!reply) {
    if (reply.error().remedy != SBError::Remedy::updateSchema) co_return std::unexpected(reply.error());
    run->schema.stamps = false;
    co_return std::nullopt;
  }
  Versions versions;
  const QJsonArray rows = QJsonDocument::fromJson(reply->rows).array();
  for (const auto row : rows)
    versions[row[QStringLiteral("table_name")].toString().toStdString()] = row[QStringLiteral("version")].toInteger();
  co_return versions;
}

QCoro::Task<void> SyncManager::work(SyncRunPtr run, Extent extent) {
  std::optional<Versions> versions;
  Versions known;
  if (extent != Extent::uploads) {
    const auto refreshed = co_await run->client.refreshToken();
    if (run->token.isOver()) co_return;
    if (refreshed) {
      log_.say("🔑 Token refreshed");
    } else {
      log_.say("⚠️ Token refresh failed: " + refreshed.error().logLine().toStdString());
      if (endsRun(refreshed.error())) {
        run->lostConnection = refreshed.error().status == 0;
        run->sessionGone = !run->lostConnection;
        co_return;
      }
    }
    log_.say("☁️ syncAll starting for uid: " + run->userID);
    auto read = co_await readVersions(run);
    if (run->token.isOver()) co_return;
    if (!read) {
      run->lostConnection = endsRun(read.error());
      run->problems.push_back({std::string(kChanges), {}, read.error().text.toStdString()});
      if (run->lostConnection) co_return;
    } else {
      versions = *std::move(read);
    }
    known = knownVersions();
    // Nothing to be seen of the account may mean that the user is no member any more: absence then proves nothing.
    const bool membersChanged =
        !versions || versions->empty() || extent == Extent::everything ||
        std::ranges::any_of(std::array{kMembers, kAccounts}, [&](std::string_view table) {
          const auto now = versions->find(table);
          const auto before = known.find(table);
          return now != versions->end() && (before == known.end() || before->second != now->second);
        });
    if (membersChanged) {
      const auto resolved = co_await resolver_.resolve();
      if (run->token.isOver()) co_return;
      if (!resolved || model_.accountID() != run->accountID) {
        run->problems.push_back(
            {std::string(kMembers), {}, "Your membership could not be confirmed; nothing was changed."});
        co_return;
      }
    }
  }

  for (const Step& step : kSteps | std::views::reverse) {
    if (!step.deletions || step.waiting(model_) == 0) continue;
    const auto deleted = co_await step.deletions(run, run->token);
    if (run->token.isOver()) co_return;
    if (deleted || (step.optional && deleted.error().remedy == SBError::Remedy::updateSchema)) continue;
    run->problems.push_back({std::string(step.table), {}, deleted.error().text.toStdString()});
    run->lostConnection = endsRun(deleted.error());
    if (run->lostConnection) co_return;
  }

  for (const Step& step : kSteps) {
    if (const auto later = notBefore_.find(step.table);
        later != notBefore_.end() && later->second > timing_.elapsed()) {
      run->problems.push_back(
          {std::string(step.table), {}, "The server is busy and asked to wait; it is tried again."});
      continue;
    }
    bool download = false;
    std::optional<std::int64_t> version;
    if (extent != Extent::uploads) {
      if (versions) {
        version = versionOf(*versions, step.table);
        if (step.table == RecordKind<YardPeriod>::facts.table)
          for (const std::string_view part : kYardPartTables) *version += versionOf(*versions, part);
      }
      const auto before = known.find(step.table);
      download = extent == Extent::everything || !version || before == known.end() || before->second != *version;
    }
    if (!download && step.waiting(model_) == 0) continue;
    currentTable_ = step.table;
    Q_EMIT stateChanged();
    const auto done = co_await within(options_.stepTimeout, &step, run, download);
    if (run->token.isOver()) co_return;
    if (!done) {
      log_.say(std::string(step.label) + " timed out after 60s");
      run->problems.push_back({std::string(step.table), {}, "The server took too long to answer; it is tried again."});
    } else if (!*done && step.optional && done->error().remedy == SBError::Remedy::updateSchema) {
      continue;
    } else if (!*done) {
      const SBError& error = done->error();
      log_.say("⚠️ " + std::string(step.label) + ": " + error.logLine().toStdString());
      run->problems.push_back({std::string(step.table), {}, error.text.toStdString()});
      if (error.retryAfter) run->notBefore[std::string(step.table)] = timing_.elapsed() + *error.retryAfter;
      run->lostConnection = endsRun(error);
      if (run->lostConnection) co_return;
    } else if (**done && version) {
      known[std::string(step.table)] = *version;
    } else if (download) {
      known.erase(std::string(step.table));
    }
  }
  if (extent == Extent::uploads) co_return;
  for (const std::string_view table : {kMembers, kAccounts})
    if (versions && versions->contains(table)) known[std::string(table)] = versions->find(table)->second;
  keepVersions(known);
}

void SyncManager::finish(const SyncRunPtr& run, bool full) {
  syncingSince_.reset();
  currentTable_ = {};
  offline_ = run->lostConnection;
  if (full || !run->problems.empty()) problems_ = run->problems;
  if (full && !run->lostConnection && !run->sessionGone) {
    log_.say("✅ Sync complete");
    model_.cache().setPreference(key(kLastSyncDate), formatTimestamp(model_.now()));
  }
  bool heldBack = false;
  for (const Step& step : kSteps) heldBack = heldBack || (step.deletions && !step.optional && step.waiting(model_) > 0);
  const bool again = std::exchange(pushAgain_, false);
  if (again && !run->lostConnection) {
    QTimer::singleShot(0, this, &SyncManager::push);
  } else if (heldBack && !run->lostConnection && run->problems.empty()) {
    heldBack_.start(options_.deletionDelay);
  }
  Q_EMIT stateChanged();
}

SyncManager::Versions SyncManager::knownVersions() const {
  Versions versions;
  const auto stored = model_.cache().preference(key(kTableVersions));
  if (!stored) return versions;
  const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(*stored)).object();
  if (object.value(QStringLiteral("account")).toString().toStdString() != model_.accountID()) return versions;
  const QJsonObject tables = object.value(QStringLiteral("tables")).toObject();
  for (auto table = tables.begin(); table != tables.end(); ++table)
    versions[table.key().toStdString()] = table.value().toInteger();
  return versions;
}

void SyncManager::keepVersions(const Versions& versions) {
  QJsonObject tables;
  for (const auto& [table, version] : versions) tables[QString::fromStdString(table)] = static_cast<qint64>(version);
  const QJsonObject object{{QStringLiteral("account"), QString::fromStdString(model_.accountID())},
                           {QStringLiteral("tables"), tables}};
  model_.cache().setPreference(key(kTableVersions), QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString());
}

}  // namespace thalvorn
