#pragma once

#include <QStringList>
#include <QUrl>
#include <QVariant>

#include "app/record_form.h"
#include "core/maintenance_task.h"
#include "store/app_view_model.h"
#include "store/attachments.h"

namespace thalvorn::app {

/// The form of a maintenance task, new or to be changed. What makes it fall due governs which fields show.
class TaskEditor : public RecordFormOf<MaintenanceTask> {
  Q_OBJECT
  Q_PROPERTY(bool isNew READ isNew CONSTANT)
  Q_PROPERTY(QString vesselName READ vesselName CONSTANT)
  Q_PROPERTY(QVariantList categories READ categories CONSTANT)
  Q_PROPERTY(QVariantList hourSources READ hourSources CONSTANT)
  Q_PROPERTY(bool byDate READ byDate NOTIFY changed)
  Q_PROPERTY(bool byHours READ byHours NOTIFY changed)
  Q_PROPERTY(bool planned READ planned NOTIFY changed)
  Q_PROPERTY(QString daysHint READ daysHint NOTIFY changed)
  Q_PROPERTY(QString hoursHint READ hoursHint NOTIFY changed)
  Q_PROPERTY(QString meterHint READ meterHint NOTIFY changed)
  Q_PROPERTY(QString dateProposal READ dateProposal NOTIFY changed)
  Q_PROPERTY(QString hoursProposal READ hoursProposal NOTIFY changed)
  Q_PROPERTY(QStringList photos READ photos NOTIFY changed)
  Q_PROPERTY(QString error READ error NOTIFY errorChanged)

 public:
  TaskEditor(AppViewModel& store, const Format& format, const AttachmentStore& attachments, MaintenanceTask task,
             bool isNew);

  bool isNew() const { return isNew_; }
  QString vesselName() const;
  QVariantList categories() const;
  /// The meters that the vessel is fitted with, and the task's own when it is not.
  QVariantList hourSources() const;
  bool byDate() const { return record().triggerType != TriggerType::engineHours; }
  bool byHours() const { return record().triggerType != TriggerType::date; }
  bool planned() const { return record().kind == TaskKind::plannedMaintenance; }
  QString daysHint() const;
  QString hoursHint() const;
  /// What the chosen meter shows, or that the vessel lacks it.
  QString meterHint() const;
  /// "Set to today + 365 days", "Set to current + 250 h"; empty without an interval.
  QString dateProposal() const;
  QString hoursProposal() const;
  QStringList photos() const;
  QString error() const { return error_; }

  Q_INVOKABLE void takeDateProposal();
  Q_INVOKABLE void takeHoursProposal();
  Q_INVOKABLE void addPhotos(const QList<QUrl>& pictures);
  Q_INVOKABLE void removePhoto(int position);
  /// False when a field has a message or the store refused.
  Q_INVOKABLE bool save();
  /// The id of the task, once saved.
  Q_INVOKABLE QString taskId() const;

 Q_SIGNALS:
  void errorChanged();

 private:
  const Vessel* vessel() const { return store_.vessels().find(record().vesselID); }
  double reading() const;
  void setError(const QString& error);

  AppViewModel& store_;
  const AttachmentStore& attachments_;
  bool isNew_;
  QString error_;
};

}  // namespace thalvorn::app
