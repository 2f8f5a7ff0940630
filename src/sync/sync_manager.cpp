#include "sync/sync_manager.h"

#include <QCoroFuture>
#include <QJsonArray>
#include <QPromise>
#include <array>
#include <ranges>
#include <span>

#include "backend/conflict_rows.h"
#include "store/preferences.h"
#include "sync/acknowledgments.h"
#include "sync/settings_step.h"
#include "sync/step_facts.h"
#include "sync/steps.h"
#include "sync/when_saved.h"
#include "sync/yard_parts.h"

namespace thalvorn {
namespace {

constexpr std::string_view kLastSyncDate = "_lastSyncDate";
constexpr std::string_view kChanges = "account_changes";
constexpr std::string_view kMembers = "account_members";
constexpr std::string_view kAccounts = "accounts";
constexpr std::chrono::seconds kUsualWait{2};     ///< for a busy server that names no time
constexpr std::chrono::seconds kLongestWait{20};  ///< within one run
constexpr int kUnansweredTables = 2;              ///< one after the other: the server is out of reach

}  // namespace

struct SyncStep {
  std::string_view label;
  std::string_view table;
  SBTask<void> (*deletions)(SyncRunPtr, RunToken);
  SBTask<void> (*uploads)(SyncRunPtr, RunToken);
  SBTask<bool> (*download)(SyncRunPtr, RunToken);
  void (*ahead)(SyncRun&);
  int (*waiting)(const AppViewModel&);
  std::span<const std::string_view> parts = {};  ///< further tables that hold what belongs to the records
  bool byVessel = false;                         ///< read for one vessel after the other
  bool optional = false;                         ///< an older server may lack the table; what belongs there waits
};

namespace {

using Step = SyncStep;

template <class T>
constexpr Step step() {
  return {.label = stepFacts<T>.label,
          .table = RecordKind<T>::facts.table,
          .deletions = &uploadDeletions<T>,
          .uploads = &uploadChanges<T>,
          .download = &downloadRows<T>,
          .ahead = &askAhead<T>,
          .waiting = [](const AppViewModel& model) { return model.dirtyCount(RecordKind<T>::facts.suffix); },
          .byVessel = RowKind<T>::facts.scope == RowScope::vessel};
}

constexpr Step with(Step step, std::span<const std::string_view> parts) {
  step.parts = parts;
  return step;
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
    with(step<YardPeriod>(), kYardPartTables),
    Step{.label = "settings",
         .table = "user_settings",
         .deletions = nullptr,
         .uploads = &uploadSettings,
         .download = &downloadSettings,
         .ahead = nullptr,
         .waiting = &settingsWaiting},
    step<SubscriptionAccount>(),
    with(step<CrewBoardPost>(), kAcknowledgmentTables),
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

/// What of a step is done at one time: all deletions go before the first upload.
enum class Part : std::uint8_t { deletions, uploads, all };

SBTask<bool> workOf(const Step* step, SyncRunPtr run, RunToken token, Part part) {
  if (part == Part::deletions) {
    const auto deleted = co_await step->deletions(run, token);
    if (!deleted) co_return std::unexpected(deleted.error());
    co_return false;
  }
  if (step->waiting(run->model) > 0) {
    run->ahead->forget(step->table);
    const auto uploaded = co_await step->uploads(run, token);
    if (!uploaded) co_return std::unexpected(uploaded.error());
  }
  if (part == Part::uploads || token.isOver()) co_return false;
  co_return co_await step->download(run, token);
}

QCoro::Task<void> workInto(std::shared_ptr<Bounded> bounded, const Step* step, SyncRunPtr run, RunToken token,
                           Part part) {
  bounded->result = co_await workOf(step, run, token, part);
  bounded->tell(true);
}

/// The step's result; empty when it took too long and was abandoned.
QCoro::Task<std::optional<std::expected<bool, SBError>>> within(std::chrono::milliseconds limit, const Step* step,
                                                                SyncRunPtr run, Part part) {
  const auto bounded = std::make_shared<Bounded>();
  bounded->promise.start();
  RunToken token = RunToken::partOf(run->token);
  QTimer timer;
  timer.setSingleShot(true);
  QObject::connect(&timer, &QTimer::timeout, [bounded] { bounded->tell(false); });
  timer.start(limit);
  workInto(bounded, step, run, token, part);
  const bool inTime = co_await bounded->promise.future();
  if (inTime) co_return bounded->result;
  token.end();
  co_return std::nullopt;
}

bool isWithoutReply(const SBError& error) { return error.kind == SBError::Case::networkError || error.status == 0; }

std::int64_t versionOf(const std::map<std::string, std::int64_t, std::less<>>& versions, std::string_view table) {
  const auto found = versions.find(table);
  return found == versions.end() ? 0 : found->second;
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
      options_(options),
      metered_(model.cache()) {
  decoder_.setMaxThreadCount(1);
  heldBack_.setSingleShot(true);
  connect(&heldBack_, &QTimer::timeout, this, &SyncManager::push);
  // Another user's fleet or another account: whatever a run still does is not for it.
  connect(&model_, &AppViewModel::prefixChanged, this, &SyncManager::abandonRun);
  connect(&model_, &AppViewModel::accountIDChanged, this, [this] {
    if (isSyncing() && !runAccount_.empty() && runAccount_ != model_.accountID()) abandonRun();
  });
}

void SyncManager::abandonRun() {
  token_.end();
  syncingSince_.reset();
  runAccount_.clear();
  pulledAt_.reset();
  partial_.clear();
  problems_.clear();
  Q_EMIT stateChanged();
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

bool SyncManager::mayPull() const {
  return !metered_.isMetered() || !pulledAt_ || timing_.elapsed() - *pulledAt_ >= options_.meteredPause;
}

void SyncManager::periodicSync() {
  if (mayPull()) {
    fullSync();
  } else if (isAnythingWaiting()) {
    push();
  }
}

bool SyncManager::isAnythingWaiting() const {
  return std::ranges::any_of(kSteps, [this](const Step& step) { return step.waiting(model_) > 0; });
}

QCoro::Task<SyncOutcome> SyncManager::syncAll(bool everything) {
  if (!mayStart() || !co_await findAccount()) co_return SyncOutcome::skipped;
  co_return co_await runNow(everything ? Extent::everything : Extent::changes);
}

QCoro::Task<SyncOutcome> SyncManager::pushChanges() {
  if (!mayStart()) co_return SyncOutcome::skipped;
  if (model_.accountID().empty()) {
    log_.say("❌ syncAll skipped — no resolved accountID yet");
    co_return SyncOutcome::skipped;
  }
  co_return co_await runNow(Extent::uploads);
}

bool SyncManager::mayStart() {
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
  if (Preferences preferences(model_.cache());
      preferences.text(preference_keys::lastFleet) == AppViewModel::demoPrefix) {
    log_.say("⚠️ stale demo-mode flag found on an authenticated session — clearing it");
    preferences.remove(preference_keys::lastFleet);
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
  return true;
}

QCoro::Task<SyncOutcome> SyncManager::runNow(Extent extent) {
  syncingSince_ = timing_.elapsed();
  token_ = RunToken();
  runAccount_ = model_.accountID();
  const auto run = std::make_shared<SyncRun>(SyncRun{.model = model_,
                                                     .client = client_,
                                                     .log = log_,
                                                     .timing = timing_,
                                                     .schema = schema_,
                                                     .partial = partial_,
                                                     .accountID = model_.accountID(),
                                                     .userID = client_.userID().toStdString(),
                                                     .token = token_,
                                                     .deleteBefore = model_.now() - options_.deletionDelay,
                                                     .decoder = decoder_});
  Q_EMIT stateChanged();
  co_await work(run, extent);
  if (run->token.isOver()) co_return SyncOutcome::incomplete;
  finish(run, extent != Extent::uploads);
  co_return run->problems.empty() && !run->lostConnection && !run->sessionGone ? SyncOutcome::complete
                                                                               : SyncOutcome::incomplete;
}

SBTask<std::optional<SyncManager::Versions>> SyncManager::readVersions(SyncRunPtr run) {
  if (!run->schema.stamps) co_return std::nullopt;
  const auto reply = co_await readWhole(
      &run->client, TableQuery(kChanges).eq("account_id", run->accountID).select("table_name,version"),
      "table_name.asc", run->token);
  if (!reply) {
    if (reply.error().remedy != SBError::Remedy::updateSchema) co_return std::unexpected(reply.error());
    run->schema.stamps = false;
    co_return std::nullopt;
  }
  Versions versions;
  for (const auto row : reply->rows)
    versions[row[QStringLiteral("table_name")].toString().toStdString()] = row[QStringLiteral("version")].toInteger();
  co_return versions;
}

bool SyncManager::endsRun(SyncRun& run, const SBError& error) {
  if (error.kind == SBError::Case::notAuthenticated || error.remedy == SBError::Remedy::signIn) {
    run.sessionGone = true;
  } else if (isWithoutReply(error)) {
    run.lostConnection = true;
  }
  return run.sessionGone || run.lostConnection;
}

QCoro::Task<void> SyncManager::work(SyncRunPtr run, Extent extent) {
  Stamps stamps;
  if (extent != Extent::uploads) {
    if (!co_await prepare(run, extent, &stamps)) co_return;
  }
  if (co_await sendDeletions(run)) co_await exchange(run, extent, &stamps);
  if (run->unanswered > 0) run->lostConnection = true;
}

QCoro::Task<bool> SyncManager::prepare(SyncRunPtr run, Extent extent, Stamps* stamps) {
  const auto refreshed = co_await run->client.refreshToken();
  if (run->token.isOver()) co_return false;
  if (refreshed) {
    log_.say("🔑 Token refreshed");
  } else {
    log_.say("⚠️ Token refresh failed: " + refreshed.error().logLine().toStdString());
    endsRun(*run, refreshed.error());
    if (run->sessionGone) {
      run->problems.push_back({std::string(kMembers), {}, refreshed.error().text.toStdString()});
      co_return false;
    }
    // Without an answer the old token may still do; the next request tells.
    run->lostConnection = false;
  }
  log_.say("☁️ syncAll starting for uid: " + run->userID);
  auto read = co_await readVersions(run);
  if (run->token.isOver()) co_return false;
  if (!read) {
    log_.say("⚠️ " + std::string(kChanges) + ": " + read.error().logLine().toStdString());
    run->problems.push_back({std::string(kChanges), {}, read.error().text.toStdString()});
    if (endsRun(*run, read.error())) co_return false;
  } else {
    stamps->now = *std::move(read);
  }
  stamps->known = knownVersions();
  // Nothing to be seen of the account may mean that the user is no member any more: absence then proves nothing.
  const auto& now = stamps->now;
  const bool membersChanged =
      !now || now->empty() || extent == Extent::everything ||
      std::ranges::any_of(std::array{kMembers, kAccounts}, [&](std::string_view table) {
        return now->contains(table) && versionOf(stamps->known, table) != versionOf(*now, table);
      });
  if (!membersChanged) co_return true;
  const auto resolved = co_await resolver_.resolveAccountAndMembership();
  if (run->token.isOver()) {
    // Another account has come into view: it has a run of its own.
    const bool other = resolved && *resolved && run->model.prefix() == run->userID && !run->model.accountID().empty() &&
                       run->model.accountID() != run->accountID;
    if (other) {
      run->log.say("⚠️ the account is another now; the run ends");
      QTimer::singleShot(0, this, &SyncManager::fullSync);
    }
    co_return false;
  }
  if (!resolved) endsRun(*run, resolved.error());
  if (!resolved) {
    log_.say("⚠️ members: " + resolved.error().logLine().toStdString());
    run->problems.push_back(
        {std::string(kMembers), {}, "Your membership could not be confirmed; nothing was changed."});
    co_return false;
  }
  if (!*resolved)
    run->problems.push_back(
        {std::string(kMembers), {}, "The members could not be saved yet; they are asked for again."});
  if (*resolved && now) {
    for (const std::string_view table : {kMembers, kAccounts})
      if (now->contains(table)) stamps->known[std::string(table)] = versionOf(*now, table);
    keepVersions(stamps->known);
  }
  co_return true;
}

SyncManager::Exchanged SyncManager::afterFailure(SyncRun& run, const SyncStep& step, const SBError& error,
                                                 bool mayWait) {
  if (step.optional && error.remedy == SBError::Remedy::updateSchema) return Exchanged::done;
  log_.say("⚠️ " + std::string(step.label) + ": " + error.logLine().toStdString());
  const bool busy = error.remedy == SBError::Remedy::retryLater && error.status != 0 && error.status != kNotSaved;
  const std::chrono::milliseconds wait = error.retryAfter.value_or(kUsualWait);
  if (busy) notBefore_[std::string(step.table)] = timing_.elapsed() + wait;
  if (busy && mayWait && wait <= kLongestWait) return Exchanged::busy;
  run.problems.push_back({std::string(step.table), {}, error.text.toStdString()});
  // One table's replies may be lost where the others' are not.
  if (isWithoutReply(error) && ++run.unanswered < kUnansweredTables) return Exchanged::done;
  return endsRun(run, error) ? Exchanged::ends : Exchanged::done;
}

std::chrono::milliseconds SyncManager::waitLeft(std::string_view table) const {
  const auto until = notBefore_.find(table);
  return until == notBefore_.end() ? std::chrono::milliseconds{0} : until->second - timing_.elapsed();
}

std::optional<SyncManager::Exchanged> SyncManager::beforeExchange(SyncRun& run, std::string_view table) {
  const std::chrono::milliseconds left = waitLeft(table);
  if (left <= std::chrono::milliseconds{0}) return std::nullopt;
  // What is left of a short wait from the run before is waited out like one of this run.
  if (left <= kLongestWait) return Exchanged::busy;
  const SyncProblem problem{std::string(table), {}, "The server is busy and asked to wait; it is tried again."};
  if (std::ranges::find(run.problems, problem) == run.problems.end()) run.problems.push_back(problem);
  return Exchanged::done;
}

QCoro::Task<bool> SyncManager::withEach(SyncRunPtr run, std::vector<const SyncStep*> steps, OneTable one) {
  std::vector<const SyncStep*> busy;
  for (const SyncStep* step : steps) {
    const Exchanged done = co_await one(step, true);
    if (done == Exchanged::ends) co_return false;
    if (done == Exchanged::busy) busy.push_back(step);
  }
  // A server that was busy with a table is asked once more, after all the others.
  for (const SyncStep* step : busy) {
    if (const auto left = waitLeft(step->table); left > std::chrono::milliseconds{0}) co_await timing_.wait(left);
    if (run->token.isOver()) co_return false;
    if (co_await one(step, false) == Exchanged::ends) co_return false;
  }
  co_return true;
}

QCoro::Task<bool> SyncManager::sendDeletions(SyncRunPtr run) {
  std::vector<const SyncStep*> steps;
  for (const Step& step : kSteps | std::views::reverse)
    if (step.deletions && step.waiting(model_) > 0) steps.push_back(&step);
  co_return co_await withEach(run, std::move(steps), [this, run](const SyncStep* step, bool mayWait) {
    return sendDeletionsOf(run, step, mayWait);
  });
}

QCoro::Task<SyncManager::Exchanged> SyncManager::sendDeletionsOf(SyncRunPtr run, const SyncStep* step, bool mayWait) {
  if (mayWait)
    if (const auto instead = beforeExchange(*run, step->table)) co_return *instead;
  const auto done = co_await within(options_.stepTimeout, step, run, Part::deletions);
  if (run->token.isOver()) co_return Exchanged::ends;
  if (!done) noteOverrun(*run, step->label, step->table);
  if (done && !*done) co_return afterFailure(*run, *step, done->error(), mayWait);
  if (done) run->unanswered = 0;
  co_return Exchanged::done;
}

void SyncManager::noteOverrun(SyncRun& run, std::string_view label, std::string_view table) {
  log_.say(std::string(label) + " timed out after 60s");
  run.problems.push_back({std::string(table), {}, "The server took too long to answer; it is tried again."});
}

std::optional<std::int64_t> SyncManager::versionNow(const Stamps& stamps, const SyncStep& step) {
  if (!stamps.now) return std::nullopt;
  std::int64_t version = versionOf(*stamps.now, step.table);
  for (const std::string_view part : step.parts) version += versionOf(*stamps.now, part);
  return version;
}

bool SyncManager::isDue(const Stamps& stamps, const SyncStep& step, Extent extent) {
  if (extent == Extent::uploads) return false;
  const std::optional<std::int64_t> version = versionNow(stamps, step);
  const auto before = stamps.known.find(step.table);
  return extent == Extent::everything || !version || before == stamps.known.end() || before->second != *version;
}

void SyncManager::askAhead(SyncRun& run, const SyncStep* step, Extent extent, const Stamps& stamps) {
  const auto current = static_cast<std::size_t>(step - kSteps.data());
  for (run.aheadFrom = std::max(run.aheadFrom, current + 1); run.aheadFrom < kSteps.size(); ++run.aheadFrom) {
    const Step& next = kSteps[run.aheadFrom];
    // What is known of the vessels before their own step may not be all.
    if (run.ahead->isFull() || (next.byVessel && current == 0)) return;
    const bool isBusy = waitLeft(next.table).count() > 0;
    if (next.ahead && !isBusy && isDue(stamps, next, extent) && next.waiting(model_) == 0) next.ahead(run);
  }
}

QCoro::Task<void> SyncManager::exchange(SyncRunPtr run, Extent extent, Stamps* stamps) {
  std::vector<const SyncStep*> steps;
  for (const Step& step : kSteps) steps.push_back(&step);
  co_await withEach(run, std::move(steps), [this, run, extent, stamps](const SyncStep* step, bool mayWait) {
    return exchangeTable(run, step, extent, stamps, mayWait);
  });
}

QCoro::Task<SyncManager::Exchanged> SyncManager::exchangeTable(SyncRunPtr run, const SyncStep* step, Extent extent,
                                                               Stamps* stamps, bool mayWait) {
  const bool download = isDue(*stamps, *step, extent);
  const std::optional<std::int64_t> version = versionNow(*stamps, *step);
  if (!download && step->waiting(model_) == 0) co_return Exchanged::done;
  if (mayWait)
    if (const auto instead = beforeExchange(*run, step->table)) co_return *instead;
  askAhead(*run, step, extent, *stamps);
  run->tables.insert(step->table);
  run->version = version;
  currentTable_ = step->table;
  Q_EMIT stateChanged();
  const auto done = co_await within(options_.stepTimeout, step, run, download ? Part::all : Part::uploads);
  if (run->token.isOver()) co_return Exchanged::ends;
  const bool whole = done && *done && **done;
  if (!done) {
    noteOverrun(*run, step->label, step->table);
    // Its requests may be under way for a while; the tables after it do not wait behind them.
    run->turns = std::make_shared<RequestTurns>();
    run->ahead = std::make_shared<PagesAhead>();
    // What came down in that time need not come again: a long table over a slow link arrives in several runs.
    const std::int64_t reached = pagesReached();
    goOn_ = goOn_ || reached > std::exchange(reached_, reached);
  } else if (!*done) {
    if (const Exchanged after = afterFailure(*run, *step, done->error(), mayWait); after != Exchanged::done)
      co_return after;
  } else {
    run->unanswered = 0;
  }
  if (!download) co_return Exchanged::done;
  // A table asked for vessel by vessel is whole only when all vessels are known.
  if (whole && version && (!step->byVessel || isUpToDate(*stamps, kSteps.front().table))) {
    stamps->known[std::string(step->table)] = *version;
  } else {
    stamps->known.erase(std::string(step->table));
  }
  // At once, so that what is here need not come again however the run ends.
  keepVersions(stamps->known);
  co_return Exchanged::done;
}

std::int64_t SyncManager::pagesReached() const {
  std::int64_t reached = 0;
  for (const auto& entry : partial_) reached += entry.second->next;
  return reached;
}

bool SyncManager::isUpToDate(const Stamps& stamps, std::string_view table) {
  const auto known = stamps.known.find(table);
  return stamps.now && known != stamps.known.end() && known->second == versionOf(*stamps.now, table);
}

void SyncManager::finish(const SyncRunPtr& run, bool full) {
  syncingSince_.reset();
  runAccount_.clear();
  currentTable_ = {};
  offline_ = run->lostConnection;
  const bool goesOn = !run->lostConnection && !run->sessionGone;
  // What a run did not touch stands as the last one left it.
  std::erase_if(problems_, [&](const SyncProblem& old) { return full || run->tables.contains(old.table); });
  for (const SyncProblem& problem : run->problems)
    if (std::ranges::find(problems_, problem) == problems_.end()) problems_.push_back(problem);
  if (full && goesOn) {
    pulledAt_ = timing_.elapsed();
    log_.say("✅ Sync complete");
    model_.cache().setPreference(key(kLastSyncDate), formatTimestamp(model_.now()));
  }
  bool heldBack = false;
  for (const Step& step : kSteps) heldBack = heldBack || (step.deletions && !step.optional && step.waiting(model_) > 0);
  const bool again = std::exchange(pushAgain_, false);
  const bool onWithDownload = std::exchange(goOn_, false) && full && goesOn && !metered_.isMetered();
  if (onWithDownload) {
    QTimer::singleShot(0, this, &SyncManager::fullSync);
  } else if (again && goesOn) {
    QTimer::singleShot(0, this, &SyncManager::push);
  } else if (heldBack && goesOn && run->problems.empty()) {
    heldBack_.start(options_.deletionDelay);
  }
  Q_EMIT stateChanged();
  if (full && goesOn) Q_EMIT exchanged();
}

}  // namespace thalvorn
