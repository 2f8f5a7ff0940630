#pragma once

#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <memory>

#include "app/app_controller.h"
#include "app/fleet_controller.h"
#include "app/format.h"
#include "app/notices.h"
#include "app/options.h"
#include "app/search_model.h"
#include "base/calendar.h"

namespace thalvorn::app {

/// Where the program is put together: every service and controller is made here, once, and handed to the others and to
/// QML. Nothing else creates one.
class Composition {
 public:
  explicit Composition(const Options& options);
  ~Composition();

  /// Loads and shows the window; false when its QML has a fault (told on standard error).
  bool show();

  QQuickWindow* window() const { return window_; }
  AppController& app() { return *app_; }

 private:
  void registerForQml();
  void restoreWindow();

  Options options_;
  SystemClock clock_;
  std::unique_ptr<PreferenceStore> preferences_;
  std::unique_ptr<AppController> app_;
  std::unique_ptr<FleetController> fleet_;
  std::unique_ptr<Format> format_;
  std::unique_ptr<Notices> notices_;
  std::unique_ptr<SearchModel> search_;
  std::unique_ptr<QQmlApplicationEngine> engine_;
  QQuickWindow* window_ = nullptr;
};

/// What must stand before the first window: fonts, text rendering, names of the application.
void prepareApplication();

}  // namespace thalvorn::app
