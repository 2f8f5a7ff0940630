#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "backend/supabase_client.h"
#include "backend/timing.h"
#include "store/app_view_model.h"
#include "sync/account_resolver.h"
#include "sync/sync_log.h"
#include "sync/sync_run.h"

namespace thalvorn {

/// How a run ended.
enum class SyncOutcome : std::uint8_t {
  complete,    ///< everything that waited is up, everything that changed is here
  incomplete,  ///< something waits for the next run; `problems()` tells what
  skipped
};

/// Moves every record between the store and the backend: uploads what changed here, downloads what changed there, table
/// after table in a fixed order. One run at a time; a step that takes too long or fails does not hold up those after
/// it, and what it did not do waits for the next run.
class SyncManager : public QObject, public SyncTrigger {
  Q_OBJECT

 public:
  struct Options {
    std::chrono::milliseconds stepTimeout{60'000};
    std::chrono::milliseconds stuckAfter{300'000};
    std::chrono::seconds deletionDelay{10};  ///< so long a deletion waits before it is sent, so that it can be undone
  };

  SyncManager(AppViewModel& model, SupabaseClient& client, AccountResolver& resolver, SyncLog& log, Timing& timing,
              Options options, QObject* parent = nullptr);
  ~SyncManager() override;

  /// Starts an upload of what waits; while a run is under way, after it.
  void push() override;
  /// Starts a full run.
  void fullSync() override;

  /// A full run. `everything` reads the tables that the server calls unchanged too.
  QCoro::Task<SyncOutcome> syncAll(bool everything = false);
  /// Uploads alone.
  QCoro::Task<SyncOutcome> pushChanges();

  bool isSyncing() const { return syncingSince_.has_value(); }
  std::optional<Timestamp> lastSyncDate() const;
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
  /// Something the user should read, e.g. that the account could not be determined.
  void messageForUser(const QString& text);

 private:
  enum class Extent : std::uint8_t { uploads, changes, everything };
  using Versions = std::map<std::string, std::int64_t, std::less<>>;

  bool mayStart(bool full);
  QCoro::Task<SyncOutcome> runNow(Extent extent);
  QCoro::Task<void> work(SyncRunPtr run, Extent extent);
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
  std::optional<std::chrono::milliseconds> syncingSince_;  ///< in `Timing` time
  RunToken token_;
  bool pushAgain_ = false;
  bool offline_ = false;
  std::string_view currentTable_;
  std::vector<SyncProblem> problems_;
  ServerSchema schema_;
  std::map<std::string, std::chrono::milliseconds, std::less<>> notBefore_;
  QTimer heldBack_;  ///< until the deletions that can still be undone may be sent
};

}  // namespace thalvorn
