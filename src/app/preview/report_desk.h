#pragma once

#include <QObject>
#include <QString>

#include "app/app_controller.h"
#include "app/format.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

/// Opens reports to look at, print and save. QML sees it as `Reports`.
class ReportDesk : public QObject {
  Q_OBJECT

 public:
  ReportDesk(AppViewModel& store, AppController& app, const Format& format, QObject* parent = nullptr);

  /// The open tasks of a vessel as a list to work from; of the vessel in view when `vesselId` is empty.
  Q_INVOKABLE void openWorkList(const QString& vesselId = {});

 private:
  AppViewModel& store_;
  AppController& app_;
  const Format& format_;
};

}  // namespace thalvorn::app
