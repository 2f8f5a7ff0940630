#pragma once

#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <expected>
#include <memory>
#include <optional>

#include "app/account/account_controller.h"
#include "app/account/sync_controller.h"
#include "app/account/team_controller.h"
#include "app/app_controller.h"
#include "app/desktop_services.h"
#include "app/fleet_controller.h"
#include "app/format.h"
#include "app/maintenance/maintenance_controller.h"
#include "app/notices.h"
#include "app/options.h"
#include "app/record_pages.h"
#include "app/search_model.h"
#include "app/store_session.h"
#include "app/window_memory.h"
#include "base/calendar.h"
#include "cli/window_commands.h"
#include "platform/desktop_settings.h"
#include "platform/single_instance.h"

namespace thalvorn::app {

/// Where the program is put together: every service and controller is made here, once, and handed to the others and to
/// QML. Nothing else creates one.
class Composition : public QObject {
  Q_OBJECT

 public:
  explicit Composition(const Options& options);
  ~Composition() override;

  /// Takes the store: false when another window has it (which comes to the front) and this process has nothing to do.
  bool claimStore();
  /// Loads and shows the window, and then reads the records. False when its QML has a fault (told on standard error).
  bool show();

  QQuickWindow* window() const { return window_; }
  AppController& app() { return *app_; }
  /// The backup that shall take the store's place once this is gone; empty for none.
  const QString& restoreFrom() const { return restoreFrom_; }
  const QString& storeFile() const { return storeFile_; }
  bool hasStore() const { return session_ != nullptr; }
  const AppViewModel& store() const { return session_->model(); }
  MaintenanceController& maintenance() { return *maintenance_; }
  AccountController& account() { return *account_; }

 private:
  void openStore();
  /// Finds the fleet server of this computer, if one is set up.
  void makeCloud();
  /// Lets the commands of other processes end before their store goes.
  void finishCommands();
  void makeControllers();
  void makeAccount();
  void registerForQml();
  void followDesktop();
  void startReading();
  void offerToDesktop();
  void openFleet(const std::string& prefix);
  void onNotification(const QString& name);
  void followLink(const QString& address);
  void raise(const RaiseRequest& request);

  Options options_;
  SystemClock clock_;
  std::unique_ptr<QTemporaryDir> scratch_;  ///< the store of pictures and self-tests
  QString storeFile_;
  QString restoreFrom_;
  QString problem_;  ///< why there is no store, for the user
  std::unique_ptr<SingleInstance> instance_;
  std::unique_ptr<StoreSession> session_;
  SystemTiming timing_;
  std::unique_ptr<CloudSession> cloud_;  ///< null where no fleet server is set up
  QString serverProblem_;                ///< why the settings of the fleet server cannot be used
  std::unique_ptr<cli::WindowCommands> commands_;
  std::unique_ptr<PreferenceStore> preferences_;
  std::unique_ptr<DesktopSettings> desktop_;
  std::unique_ptr<AppController> app_;
  std::unique_ptr<Format> format_;
  std::unique_ptr<Notices> notices_;
  std::unique_ptr<AccountController> account_;
  std::unique_ptr<TeamController> team_;
  std::unique_ptr<SyncController> sync_;
  std::unique_ptr<FleetController> fleet_;
  std::unique_ptr<SearchModel> search_;
  std::unique_ptr<MaintenanceController> maintenance_;
  std::unique_ptr<RecordPages> recordPages_;
  std::unique_ptr<WindowMemory> memory_;
  std::unique_ptr<DesktopServices> services_;
  std::unique_ptr<QQmlApplicationEngine> engine_;
  QQuickWindow* window_ = nullptr;
  bool resumed_ = false;  ///< the session of the program's start has been taken up
};

/// What must stand before the first window: fonts, text rendering, names of the application.
void prepareApplication();

}  // namespace thalvorn::app
