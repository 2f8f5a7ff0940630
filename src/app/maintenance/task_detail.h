#pragma once

#include <QObject>
#include <QTimer>
#include <QVariant>

#include "app/format.h"
#include "app/maintenance/fleet_watch.h"
#include "store/attachments.h"

namespace thalvorn::app {

/// One task to read: when it falls due and why, what was done on it, and what became of its vessel's meters.
class TaskDetail : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString taskId READ taskId WRITE setTaskId NOTIFY changed)
  Q_PROPERTY(bool exists READ exists NOTIFY changed)
  Q_PROPERTY(QVariantMap task READ task NOTIFY changed)
  Q_PROPERTY(QVariantList facts READ facts NOTIFY changed)
  Q_PROPERTY(QVariantList history READ history NOTIFY changed)
  Q_PROPERTY(int historyTotal READ historyTotal NOTIFY changed)
  Q_PROPERTY(QVariantList meterHistory READ meterHistory NOTIFY changed)

 public:
  TaskDetail(FleetWatch& watch, const Format& format, const AttachmentStore& photos, QObject* parent = nullptr);

  QString taskId() const { return taskId_; }
  void setTaskId(const QString& id);
  bool exists() const { return !task_.isEmpty(); }
  /// {title, notes, category, categoryIcon, kind, kindName, status, tone, snoozed, high, priority, reason,
  /// meterMissing, photos: addresses}.
  QVariantMap task() const { return task_; }
  /// [{label, value, note}].
  QVariantList facts() const { return facts_; }
  /// The latest services of this task: [{id, title, text}].
  QVariantList history() const { return history_; }
  int historyTotal() const { return historyTotal_; }
  /// Corrections and replacements of the vessel's meters, newest first: [{title, text}].
  QVariantList meterHistory() const { return meterHistory_; }

 Q_SIGNALS:
  void changed();

 private:
  void read();
  void readFacts(const MaintenanceTask& task, const Vessel& vessel);
  void readHistory(const MaintenanceTask& task);

  FleetWatch& watch_;
  const Format& format_;
  const AttachmentStore& photos_;
  QTimer again_;
  QString taskId_;
  QVariantMap task_;
  QVariantList facts_;
  QVariantList history_;
  int historyTotal_ = 0;
  QVariantList meterHistory_;
};

}  // namespace thalvorn::app
