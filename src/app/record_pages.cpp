#include "app/record_pages.h"

#include "app/preview/report_images.h"

namespace thalvorn::app {

namespace {

template <class T>
void registerAs(const char* name, const std::unique_ptr<T>& controller) {
  QQmlEngine::setObjectOwnership(controller.get(), QQmlEngine::CppOwnership);
  qmlRegisterSingletonInstance("Thalvorn", 1, 0, name, controller.get());
}

}  // namespace

RecordPages::RecordPages(StoreSession& session, PreferenceStore& preferences, AppController& app, const Format& format)
    : history_(std::make_unique<ServiceHistory>(session.model(), session.attachments(), preferences, app, format)),
      templates_(std::make_unique<TemplateLibrary>(session.model(), app, format)),
      import_(std::make_unique<TaskImport>(session.model(), app, format)),
      vessels_(std::make_unique<VesselList>(session.model(), session.attachments(), app, format)),
      settings_(std::make_unique<Settings>(session, preferences, app, format)),
      reports_(std::make_unique<ReportDesk>(session.model(), session.attachments(), *history_->model(), preferences,
                                            app, format)),
      registers_(std::make_unique<Registers>(RegisterTools{.store = session.model(),
                                                           .attachments = session.attachments(),
                                                           .preferences = preferences,
                                                           .app = app,
                                                           .format = format,
                                                           .reports = *reports_})) {}

RecordPages::~RecordPages() = default;

void RecordPages::registerForQml() {
  registerAs("ServiceHistory", history_);
  registerAs("TemplateLibrary", templates_);
  registerAs("TaskImport", import_);
  registerAs("VesselList", vessels_);
  registerAs("Settings", settings_);
  registerAs("Reports", reports_);
  registerAs("Registers", registers_);
}

void RecordPages::addImages(QQmlEngine& engine) {
  engine.addImageProvider(QStringLiteral("report"), new ReportImages(reports_->renderer()));
}

}  // namespace thalvorn::app
