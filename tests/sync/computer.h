#pragma once

#include <gtest/gtest.h>

#include <QCoroFuture>
#include <filesystem>

#include "backend/next_emission.h"
#include "simulation.h"

namespace thalvorn {

/// The backend that the tests of one program share, started by the first that asks. Its pages are short, so that every
/// longer list is read in several.
inline BackendProcess& sharedBackend() {
  static BackendProcess process({QStringLiteral("--max-rows"), QStringLiteral("7")});
  return process;
}

inline QCoro::Task<void> untilIdle(CloudSession* cloud) {
  SyncManager& sync = cloud->sync();
  while (sync.isSyncing()) co_await nextEmission(&sync, &SyncManager::stateChanged, std::chrono::seconds(60));
}

/// A store with the exchange of one user, on a network without faults.
class Computer {
 public:
  explicit Computer(const BackendConfig& config = sharedBackend().config()) {
    cache = LocalCache::open(std::filesystem::path(folder.path().toStdString()) / "store.db").value();
    model = std::make_unique<AppViewModel>(*cache, clock);
    cloud = std::make_unique<CloudSession>(*model, config, clock, timing,
                                           SyncManager::Options{.deletionDelay = std::chrono::seconds(0)});
  }

  bool signIn(const QString& address, const QString& password) {
    if (!finished(cloud->signIn(address, password))) return false;
    finished(untilIdle(cloud.get()));
    return !model->accountID().empty();
  }
  /// As somebody new, with an account of his own.
  bool signUp(const char* who) {
    email =
        QStringLiteral("%1-%2@example.com").arg(QLatin1String(who), QString::fromStdString(Uuid::random().toString()));
    if (!finished(cloud->signUp(email, kPassword))) return false;
    finished(untilIdle(cloud.get()));
    return !model->accountID().empty();
  }
  /// As an owner of one of the backend's accounts.
  bool signIn(int account = 0) { return signIn(sharedBackend().email(account), sharedBackend().password(account)); }
  SyncOutcome sync() {
    finished(untilIdle(cloud.get()));
    return finished(cloud->sync().syncAll());
  }
  std::vector<std::string> said() const {
    std::vector<std::string> lines;
    for (const SyncLog::Line& line : cloud->log().lines()) lines.push_back(line.text.toStdString());
    return lines;
  }
  /// What kept the last run from being complete, for a failing test to tell.
  std::string problems() const {
    std::string all;
    for (const SyncProblem& problem : cloud->sync().problems())
      all += problem.table + " " + problem.record + ": " + problem.text + "\n";
    return all;
  }
  static QCoro::Task<bool> saved(Saving saving) {
    const SaveResult result = co_await saving;
    co_return result.has_value();
  }
  template <class T>
  bool add(T record) {
    return finished(saved(model->add(std::move(record))));
  }
  template <class T>
  bool update(T record) {
    return finished(saved(model->update(std::move(record))));
  }

  inline static const QString kPassword = QStringLiteral("Fair-Winds-7");

  QString email;  ///< of who signed up
  QTemporaryDir folder;
  SystemClock clock;
  HastyTiming timing;
  std::unique_ptr<LocalCache> cache;
  std::unique_ptr<AppViewModel> model;
  std::unique_ptr<CloudSession> cloud;
};

}  // namespace thalvorn
