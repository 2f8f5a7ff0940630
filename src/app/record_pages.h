#pragma once

#include <memory>

#include "app/app_controller.h"
#include "app/format.h"
#include "app/preview/report_desk.h"
#include "app/store_session.h"

namespace thalvorn::app {

/// The controllers behind the pages that read and keep the records: service history, template library, import,
/// vessels, settings and reports.
class RecordPages {
 public:
  RecordPages(StoreSession& session, AppController& app, const Format& format);
  ~RecordPages();

  /// Makes them known to QML by name.
  void registerForQml();

 private:
  std::unique_ptr<ReportDesk> reports_;
};

}  // namespace thalvorn::app
