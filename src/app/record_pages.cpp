#include "app/record_pages.h"

#include <QQmlEngine>

namespace thalvorn::app {

namespace {

template <class T>
void registerAs(const char* name, const std::unique_ptr<T>& controller) {
  QQmlEngine::setObjectOwnership(controller.get(), QQmlEngine::CppOwnership);
  qmlRegisterSingletonInstance("Thalvorn", 1, 0, name, controller.get());
}

}  // namespace

RecordPages::RecordPages(StoreSession& session, AppController& app, const Format& format)
    : reports_(std::make_unique<ReportDesk>(session.model(), app, format)) {}

RecordPages::~RecordPages() = default;

void RecordPages::registerForQml() { registerAs("Reports", reports_); }

}  // namespace thalvorn::app
