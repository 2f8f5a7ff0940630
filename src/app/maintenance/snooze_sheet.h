#pragma once

#include <QObject>
#include <QVariant>

#include "app/format.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

/// Silencing a task for a while, changing until when, or ending it.
class SnoozeSheet : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString subtitle READ subtitle CONSTANT)
  Q_PROPERTY(bool snoozed READ snoozed CONSTANT)
  Q_PROPERTY(QVariantList periods READ periods CONSTANT)
  Q_PROPERTY(QString period READ period WRITE setPeriod NOTIFY changed)
  Q_PROPERTY(QDateTime until READ until WRITE setUntil NOTIFY changed)
  Q_PROPERTY(QString untilText READ untilText NOTIFY changed)
  Q_PROPERTY(QString message READ message NOTIFY changed)
  Q_PROPERTY(QString error READ error NOTIFY changed)

 public:
  SnoozeSheet(AppViewModel& store, const Format& format, const Uuid& taskID);

  QString subtitle() const;
  /// Whether the task is silenced already.
  bool snoozed() const;
  /// [{value, text, detail: the day it ends}], the last one being a date of one's own.
  QVariantList periods() const;
  /// The chosen period; "date" for a date of one's own.
  QString period() const { return period_; }
  void setPeriod(const QString& period);
  QDateTime until() const { return Format::toQml(until_); }
  void setUntil(const QDateTime& until);
  /// "Silent until Sat 28 Nov 2026".
  QString untilText() const;
  /// What is wrong with the date.
  QString message() const;
  QString error() const { return error_; }

  Q_INVOKABLE bool save();
  Q_INVOKABLE bool endSnooze();

 Q_SIGNALS:
  void changed();

 private:
  const MaintenanceTask* task() const { return store_.tasks().find(taskID_); }
  bool done(const Saving& saving);

  AppViewModel& store_;
  const Format& format_;
  Uuid taskID_;
  QString period_;
  Timestamp until_;
  QString error_;
};

}  // namespace thalvorn::app
