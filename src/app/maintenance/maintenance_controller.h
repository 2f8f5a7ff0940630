#pragma once

#include <QObject>
#include <QVariant>

#include "app/app_controller.h"
#include "app/format.h"
#include "app/maintenance/completion_sheet.h"
#include "app/maintenance/dashboard.h"
#include "app/maintenance/fleet_watch.h"
#include "app/maintenance/hours_editor.h"
#include "app/maintenance/snooze_sheet.h"
#include "app/maintenance/task_detail.h"
#include "app/maintenance/task_editor.h"
#include "app/maintenance/task_list_model.h"

namespace thalvorn::app {

/// The lists, forms and choices of the maintenance screens. QML sees it as `Maintenance`.
class MaintenanceController : public QObject {
  Q_OBJECT
  Q_PROPERTY(thalvorn::app::TaskListModel* board READ board CONSTANT)
  Q_PROPERTY(thalvorn::app::TaskListModel* statusList READ statusList CONSTANT)
  Q_PROPERTY(thalvorn::app::TaskListModel* library READ library CONSTANT)
  Q_PROPERTY(thalvorn::app::TaskListModel* recurring READ recurring CONSTANT)
  Q_PROPERTY(thalvorn::app::TaskListModel* nextDue READ nextDue CONSTANT)
  Q_PROPERTY(thalvorn::app::Dashboard* dashboard READ dashboard CONSTANT)
  Q_PROPERTY(QVariantMap counts READ counts NOTIFY countsChanged)
  Q_PROPERTY(bool hasVessel READ hasVessel NOTIFY countsChanged)
  Q_PROPERTY(bool loading READ loading NOTIFY countsChanged)
  Q_PROPERTY(QVariantList kinds READ kinds CONSTANT)
  Q_PROPERTY(QVariantList filters READ filters CONSTANT)
  Q_PROPERTY(QVariantList sortFields READ sortFields CONSTANT)
  Q_PROPERTY(QVariantList detailSortFields READ detailSortFields CONSTANT)
  Q_PROPERTY(QVariantList categories READ categories CONSTANT)
  Q_PROPERTY(QVariantList legend READ legend CONSTANT)

 public:
  MaintenanceController(AppViewModel& store, const AttachmentStore& attachments, const Format& format,
                        AppController& app, PreferenceStore& preferences, QObject* parent = nullptr);

  TaskListModel* board() { return &board_; }
  TaskListModel* statusList() { return &statusList_; }
  TaskListModel* library() { return &library_; }
  TaskListModel* recurring() { return &recurring_; }
  TaskListModel* nextDue() { return &nextDue_; }
  Dashboard* dashboard() { return &dashboard_; }

  /// Tasks of the selected vessel by status: {overdue, dueSoon, onTrack, beyondHorizon, snoozed, total}.
  QVariantMap counts() const { return counts_; }
  bool hasVessel() const { return watch_.store().selectedVessel() != nullptr; }
  bool loading() const { return watch_.store().isReloading(); }

  /// Choices for menus: [{value, text}], "" standing for all.
  QVariantList kinds() const;
  QVariantList filters() const;
  QVariantList sortFields() const;
  /// The fields by which the list of one status sorts.
  QVariantList detailSortFields() const;
  QVariantList categories() const;
  /// [{status, text, meaning, tone}].
  QVariantList legend() const;

  /// What one page shows of a task; the caller keeps it.
  Q_INVOKABLE thalvorn::app::TaskDetail* detail();
  /// The forms; null when the task or vessel is gone. The caller keeps them.
  Q_INVOKABLE thalvorn::app::TaskEditor* newTask();
  Q_INVOKABLE thalvorn::app::TaskEditor* editTask(const QString& taskId);
  Q_INVOKABLE thalvorn::app::CompletionSheet* completeTask(const QString& taskId);
  Q_INVOKABLE thalvorn::app::SnoozeSheet* snoozeTask(const QString& taskId);
  Q_INVOKABLE thalvorn::app::HoursEditor* editHours();
  /// Deletes the task; its services stay in the history.
  Q_INVOKABLE void deleteTask(const QString& taskId);

  /// Looks at the clock again, as happens every minute.
  void tick() { watch_.tick(); }

 Q_SIGNALS:
  void countsChanged();

 private:
  const MaintenanceTask* find(const QString& taskId) const;
  void recount();

  FleetWatch watch_;
  const AttachmentStore& attachments_;
  const Format& format_;
  AppController& app_;
  TaskListModel board_;
  TaskListModel statusList_;
  TaskListModel library_;
  TaskListModel recurring_;
  TaskListModel nextDue_;
  Dashboard dashboard_;
  QTimer recount_;
  QVariantMap counts_;
};

}  // namespace thalvorn::app
