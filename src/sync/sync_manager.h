#pragma once

#include <QObject>
#include <QThreadPool>
#include <QTimer>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "backend/supabase_client.h"
#include "backend/timing.h"
#include "store/app_view_model.h"
#include "sync/account_resolver.h"
#include "sync/metered_connection.h"
#include "sync/sync_log.h"
#include "sync/sync_run.h"

namespace thalvorn {

struct SyncStep;

/// How a run ended.
enum class SyncOutcome : std::uint8_t {
  complete,    ///< everything that waited is up, everything that changed is here
  incomplete,  ///< something waits for the next run; `problems()` tells what
  skipped
};

/// Moves every record between the store and the backend: uploads what changed here, downloads what changed there, table
/// after table in a fixed order. One run at a time; a step that takes too long or fails does not hold up those after
/// it, and what it did not do waits for the next run. On a metered connection changes still go up at once, while those
/// of the others are fetched once an hour.
class SyncManager : public QObject, public SyncTrigger {
  Q_OBJECT

 public:
  struct Options {
    std::chrono::milliseconds stepTimeout{60'000};
    std::chrono::milliseconds stuckAfter{300'000};
    std::chrono::milliseconds meteredPause{3'600'000};  ///< between the downloads on a metered connection
    std::chrono::seconds deletionDelay{10};  ///< so long a deletion waits before it is sent, so that it can be undone
  };

  SyncManager(AppViewModel& model, SupabaseClient& client, AccountResolver& resolver, SyncLog& log, Timing& timing,
              Options options, QObject* parent = nullptr);
  ~SyncManager() override;

  /// Starts an upload of what waits; while a run is under way, after it.
  void push() override;
  /// Starts a full run; on a metered connection only an upload until the pause after the last one is over.
  void periodicSync() override;
  /// Starts a full run, on every connection.
  void fullSync();

  /// A full run. `everything` reads the tables that the server calls unchanged too.
  QCoro::Task<SyncOutcome> syncAll(bool everything = false);
  /// Uploads alone.
  QCoro::Task<SyncOutcome> pushChanges();

  /// A full run may start by itself: on a metered connection only after a pause since the last one.
  bool mayPull() const;
  MeteredConnection& metered() { return metered_; }
  bool isSyncing() const { return syncingSince_.has_value(); }
  std::optional<Timestamp> lastSyncDate() const;
  /// Why there is nothing to exchange with while the user's account is unknown, and what to do.
  QString whyNoAccount() const;
  /// What kept the last run from being complete.
  const std::vector<SyncProblem>& problems() const { return problems_; }
  /// The last run found no way to the server.
  bool isOffline() const { return offline_; }
  /// The table under way; empty between runs.
  std::string_view currentTable() const { return currentTable_; }
  /// The tables of the steps, in their order.
  static std::vector<std::string_view> tables();

 Q_SIGNALS:
  void stateChanged();
  /// A full run has come to its end with the server within reach.
  void exchanged();
  /// Something the user should read, e.g. that the account could not be determined.
  void messageForUser(const QString& text);

 private:
  enum class Extent : std::uint8_t { uploads, changes, everything };
  using Versions = std::map<std::string, std::int64_t, std::less<>>;
  /// The change stamps of the account's tables.
  struct Stamps {
    std::optional<Versions> now;  ///< empty where the server has none: every table is read
    Versions known;               ///< as of the last download of each that was whole
  };

  bool mayStart();
  /// Asks for the user's account where it could not be found before.
  QCoro::Task<bool> findAccount();
  bool isAnythingWaiting() const;
  /// What the run under way still does counts no more.
  void abandonRun();
  QCoro::Task<SyncOutcome> runNow(Extent extent);
  QCoro::Task<void> work(SyncRunPtr run, Extent extent);
  /// What has to be known before records are exchanged: a fresh token, what has changed, the membership. False when the
  /// run ends there.
  QCoro::Task<bool> prepare(SyncRunPtr run, Extent extent, Stamps* stamps);
  enum class Exchanged : std::uint8_t { done, busy, ends };
  using OneTable = std::function<QCoro::Task<Exchanged>(const SyncStep* step, bool mayWait)>;
  /// Does `one` thing with each table, and once more, after all the others, with those whose server is `busy` and wants
  /// to be asked again a little later. False when the run ends there.
  QCoro::Task<bool> withEach(SyncRunPtr run, std::vector<const SyncStep*> steps, OneTable one);
  /// Deletions, children before parents. False when the run ends there.
  QCoro::Task<bool> sendDeletions(SyncRunPtr run);
  QCoro::Task<Exchanged> sendDeletionsOf(SyncRunPtr run, const SyncStep* step, bool mayWait);
  QCoro::Task<void> exchange(SyncRunPtr run, Extent extent, Stamps* stamps);
  /// One table, up and down.
  QCoro::Task<Exchanged> exchangeTable(SyncRunPtr run, const SyncStep* step, Extent extent, Stamps* stamps,
                                       bool mayWait);
  /// Whether nothing more can be done in this run, which is noted in it.
  static bool endsRun(SyncRun& run, const SBError& error);
  /// Notes what went wrong with a table and when it may be asked for again.
  Exchanged afterFailure(SyncRun& run, const SyncStep& step, const SBError& error, bool mayWait);
  /// What becomes of a table whose server asked to wait; empty when it need not.
  std::optional<Exchanged> beforeExchange(SyncRun& run, std::string_view table);
  /// How long the table's server still wants not to be asked; zero or less when it may be.
  std::chrono::milliseconds waitLeft(std::string_view table) const;
  /// The change stamp of what a step reads; empty where the server has none.
  static std::optional<std::int64_t> versionNow(const Stamps& stamps, const SyncStep& step);
  /// Whether a step's tables have changed since they were read last, or may have.
  static bool isDue(const Stamps& stamps, const SyncStep& step, Extent extent);
  /// Asks for the first rows of the tables behind `step`, so far as there is room.
  void askAhead(SyncRun& run, const SyncStep* step, Extent extent, const Stamps& stamps);
  void noteOverrun(SyncRun& run, std::string_view label, std::string_view table);
  std::int64_t pagesReached() const;
  static bool isUpToDate(const Stamps& stamps, std::string_view table);
  SBTask<std::optional<Versions>> readVersions(SyncRunPtr run);
  void finish(const SyncRunPtr& run, bool full);
  Versions knownVersions() const;
  void keepVersions(const Versions& versions);
  std::string key(std::string_view name) const { return model_.prefix() + std::string(name); }

  AppViewModel& model_;
  SupabaseClient& client_;
  AccountResolver& resolver_;
  SyncLog& log_;
  Timing& timing_;
  Options options_;
  MeteredConnection metered_;
  std::optional<std::chrono::milliseconds> syncingSince_;  ///< in `Timing` time
  std::optional<std::chrono::milliseconds> pulledAt_;      ///< the last full run that found its way, in `Timing` time
  RunToken token_;
  std::string runAccount_;  ///< the account of the run under way
  QString toldRefusal_;
  bool pushAgain_ = false;
  bool offline_ = false;
  std::string_view currentTable_;
  std::vector<SyncProblem> problems_;
  ServerSchema schema_;
  std::map<std::string, std::chrono::milliseconds, std::less<>> notBefore_;
  std::map<std::string, std::shared_ptr<PartialDownload>, std::less<>> partial_;
  std::int64_t reached_ = 0;  ///< as `pagesReached` was after the last step that took too long
  bool goOn_ = false;         ///< such a step got further, so the next run does too
  QThreadPool decoder_;       ///< one thread that reads large pages
  QTimer heldBack_;           ///< until the deletions that can still be undone may be sent
};

}  // namespace thalvorn
