#include "app/preview/report_desk.h"

namespace thalvorn::app {

ReportDesk::ReportDesk(AppViewModel& store, AppController& app, const Format& format, QObject* parent)
    : QObject(parent), store_(store), app_(app), format_(format) {}

void ReportDesk::openWorkList(const QString& vesselId) {
  app_.open(QStringLiteral("report"),
            {{QStringLiteral("report"), QStringLiteral("workList")}, {QStringLiteral("vesselId"), vesselId}});
}

}  // namespace thalvorn::app
