#pragma once

#include <QQmlEngine>
#include <memory>

#include "app/app_controller.h"
#include "app/fleet/settings.h"
#include "app/fleet/vessel_list.h"
#include "app/format.h"
#include "app/history/service_history.h"
#include "app/library/task_import.h"
#include "app/library/template_library.h"
#include "app/preview/report_desk.h"
#include "app/registers/registers.h"
#include "app/store_session.h"

namespace thalvorn::app {

/// The controllers behind the pages that read and keep the records: service history, template library, import,
/// vessels, settings, reports and the registers.
class RecordPages {
 public:
  RecordPages(StoreSession& session, PreferenceStore& preferences, AppController& app, const Format& format);
  ~RecordPages();

  /// Makes them known to QML by name.
  void registerForQml();
  /// The pictures of report pages; the engine owns their provider.
  void addImages(QQmlEngine& engine);
  Settings& settings() { return *settings_; }

 private:
  std::unique_ptr<ServiceHistory> history_;
  std::unique_ptr<TemplateLibrary> templates_;
  std::unique_ptr<TaskImport> import_;
  std::unique_ptr<VesselList> vessels_;
  std::unique_ptr<Settings> settings_;
  std::unique_ptr<ReportDesk> reports_;
  std::unique_ptr<Registers> registers_;
};

}  // namespace thalvorn::app
