#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QHash>
#include <memory>

#include "app/app_controller.h"
#include "app/format.h"
#include "core/fixtures.h"
#include "store/app_view_model.h"
#include "store/cache_testing.h"

namespace thalvorn::app {

class KeptPreferences : public PreferenceStore {
 public:
  QString preference(const QString& key) const override { return values.value(key); }
  void setPreference(const QString& key, const QString& value) override { values[key] = value; }
  QHash<QString, QString> values;
};

/// A store of its own with one yacht, at noon of a fixed day.
class MaintenanceFleet : public ::testing::Test {
 protected:
  MaintenanceFleet() {
    store.reloadNow(std::string(AppViewModel::localPrefix));
    ship.engineHoursUpdatedAt = clock.now();
    store.add(ship);
  }

  Timestamp inDays(int days) const { return clock.now() + std::chrono::days(days); }
  MaintenanceTask add(MaintenanceTask task) {
    store.add(task);
    return task;
  }
  /// Lets what was put off until the edit is through happen.
  static void settle() {
    for (int round = 0; round < 4; ++round) QCoreApplication::processEvents();
  }
  static QString text(const Uuid& id) { return QString::fromStdString(id.toString()); }

  testing_tools::ScratchFolder folder;
  FixedClock clock{thalvorn::testing::at("2026-11-21T12:00:00Z")};
  std::unique_ptr<LocalCache> cache = testing_tools::opened(folder / "fleet.sqlite");
  AppViewModel store{*cache, clock};
  Vessel ship = thalvorn::testing::yacht();
  Format format{clock};
};

}  // namespace thalvorn::app
