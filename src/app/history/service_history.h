#pragma once

#include <QObject>
#include <QUrl>
#include <QVariant>

#include "app/app_controller.h"
#include "app/history/service_history_model.h"
#include "store/attachments.h"

namespace thalvorn::app {

/// What can be done with the service history. QML sees it as `ServiceHistory`.
class ServiceHistory : public QObject {
  Q_OBJECT
  Q_PROPERTY(thalvorn::app::ServiceHistoryModel* model READ model CONSTANT)
  Q_PROPERTY(bool detailed READ detailed WRITE setDetailed NOTIFY detailedChanged)
  Q_PROPERTY(int revision READ revision NOTIFY changed)

 public:
  ServiceHistory(AppViewModel& store, const AttachmentStore& attachments, PreferenceStore& preferences,
                 AppController& app, const Format& format, QObject* parent = nullptr);

  ServiceHistoryModel* model() { return &model_; }
  /// "Service History (Detailed)": notes, parts, photos and corrections in the list itself.
  bool detailed() const { return detailed_; }
  void setDetailed(bool detailed);
  /// Counts the changes of the records; bindings that call `detail` depend on it.
  int revision() const { return revision_; }

  /// See describeService; empty when there is no such service.
  Q_INVOKABLE QVariantMap detail(const QString& id) const;
  /// Makes sure that a service is shown: its vessel comes into view, filters that hide it go. False when it is gone.
  Q_INVOKABLE bool reveal(const QString& id);
  /// A form to put a service right, owned by the caller; null when it is gone.
  Q_INVOKABLE QObject* correction(const QString& id);
  Q_INVOKABLE void remove(const QString& id);

  /// Writes what is shown as a spreadsheet. Tells how it went by a message.
  Q_INVOKABLE void exportCsv(const QUrl& file);
  /// Reads a spreadsheet: {summary, problem, problems, count}. Nothing is kept until `importServices`.
  Q_INVOKABLE QVariantMap readCsv(const QUrl& file);
  /// Adds the services that were read last.
  Q_INVOKABLE void importServices();
  /// "service-history-meridian-2026-11-21.csv".
  Q_INVOKABLE QString exportName() const;

 Q_SIGNALS:
  void detailedChanged();
  void changed();

 private:
  AppViewModel& store_;
  const AttachmentStore& attachments_;
  PreferenceStore& preferences_;
  AppController& app_;
  const Format& format_;
  ServiceHistoryModel model_;
  std::vector<ServiceLog> read_;
  bool detailed_ = false;
  int revision_ = 0;
};

}  // namespace thalvorn::app
