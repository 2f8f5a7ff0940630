#pragma once

// A fleet of many tasks on a backend of this computer, and computers that share it.

#include <QCoroFuture>
#include <QTemporaryDir>
#include <filesystem>

#include "backend/next_emission.h"
#include "sync/cloud_session.h"
#include "tests/sync/backend_process.h"

namespace thalvorn::bench {

inline QCoro::Task<SyncOutcome> syncNow(CloudSession* cloud) {
  SyncManager& sync = cloud->sync();
  while (sync.isSyncing()) co_await nextEmission(&sync, &SyncManager::stateChanged, std::chrono::minutes(10));
  co_return co_await sync.syncAll();
}

inline QCoro::Task<bool> untilQuiet(CloudSession* cloud) {
  SyncManager& sync = cloud->sync();
  while (sync.isSyncing()) co_await nextEmission(&sync, &SyncManager::stateChanged, std::chrono::minutes(10));
  const bool isQuiet = sync.problems().empty();
  co_return isQuiet;
}

inline QCoro::Task<void> untilSaved(Saving saving) { co_await saving; }

/// One computer with a store of its own.
struct Computer {
  explicit Computer(const BackendConfig& config)
      : cache(LocalCache::open(std::filesystem::path(folder.path().toStdString()) / "store.db").value()),
        model(*cache, clock),
        cloud(model, config, clock, timing, {.deletionDelay = std::chrono::seconds(0)}) {}

  /// Signs in and waits for the first sync; false when anything failed.
  bool enter(const QString& email, const QString& password) {
    return QCoro::waitFor(cloud.signIn(email, password)) && QCoro::waitFor(untilQuiet(&cloud));
  }

  QTemporaryDir folder;
  SystemClock clock;
  SystemTiming timing;
  std::unique_ptr<LocalCache> cache;
  AppViewModel model;
  CloudSession cloud;
};

/// Gives the account of the computer that has entered a vessel with so many tasks; nothing when it cannot.
inline std::optional<Vessel> makeTasks(Computer& computer, const BackendProcess& backend, int tasks) {
  const Vessel vessel{.id = Uuid::random(), .name = "M/Y Meridian"};
  QCoro::waitFor(untilSaved(computer.model.add(vessel)));
  QCoro::waitFor(syncNow(&computer.cloud));
  const QString statement =
      QStringLiteral(
          "insert into public.maintenance_tasks(id, user_id, account_id, vessel_id, title, notes, category,"
          " trigger_type, due_date) select gen_random_uuid(), '%1', '%2', '%3', 'Task ' || n,"
          " 'Check, clean and note the reading', 'Engine', 'date', now() from generate_series(1, %4) n")
          .arg(computer.cloud.userID(), QString::fromStdString(computer.model.accountID()),
               QString::fromStdString(vessel.id.toString()))
          .arg(tasks);
  return backend.execute(statement) ? std::optional(vessel) : std::nullopt;
}

}  // namespace thalvorn::bench
