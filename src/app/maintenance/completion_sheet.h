#pragma once

#include <QObject>
#include <QVariant>
#include <vector>

#include "app/maintenance/meter_field.h"
#include "core/task_completion.h"
#include "store/app_view_model.h"
#include "store/attachments.h"

namespace thalvorn::app {

/// One line of the parts table while it is filled in.
class PartField : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString name MEMBER name NOTIFY changed)
  Q_PROPERTY(QString number MEMBER number NOTIFY changed)
  Q_PROPERTY(QString quantity MEMBER quantity NOTIFY changed)
  Q_PROPERTY(QString cost MEMBER cost NOTIFY changed)
  Q_PROPERTY(QString message READ message NOTIFY changed)

 public:
  PartField(const Format& format, QObject* parent);

  QString name;
  QString number;
  QString quantity;
  QString cost;

  /// What is wrong with the line; empty when it can be saved. An empty line is left out.
  QString message() const;
  bool empty() const { return name.trimmed().isEmpty() && number.trimmed().isEmpty() && cost.trimmed().isEmpty(); }
  PartUsage part() const;

 Q_SIGNALS:
  void changed();

 private:
  const Format& format_;
};

/// "Mark complete & log": what the crew enters about a finished job.
class CompletionSheet : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString title READ title CONSTANT)
  Q_PROPERTY(QString subtitle READ subtitle CONSTANT)
  Q_PROPERTY(QDateTime doneOn READ doneOn WRITE setDoneOn NOTIFY changed)
  Q_PROPERTY(QString doneOnMessage READ doneOnMessage NOTIFY changed)
  Q_PROPERTY(QString completedBy MEMBER completedBy_ NOTIFY changed)
  Q_PROPERTY(QString labor MEMBER labor_ NOTIFY changed)
  Q_PROPERTY(QString laborMessage READ laborMessage NOTIFY changed)
  Q_PROPERTY(QString currency READ currency CONSTANT)
  Q_PROPERTY(QString notes MEMBER notes_ NOTIFY changed)
  Q_PROPERTY(QString equipmentId MEMBER equipmentId_ NOTIFY changed)
  Q_PROPERTY(QVariantList equipment READ equipment CONSTANT)
  Q_PROPERTY(QVariantList people READ people CONSTANT)
  Q_PROPERTY(QList<QObject*> meters READ meters CONSTANT)
  Q_PROPERTY(QList<QObject*> parts READ parts NOTIFY partsChanged)
  Q_PROPERTY(QStringList photos READ photos NOTIFY photosChanged)
  Q_PROPERTY(QString nextDue READ nextDue NOTIFY changed)
  Q_PROPERTY(QString error READ error NOTIFY errorChanged)
  Q_PROPERTY(bool dirty READ dirty NOTIFY changed)

 public:
  CompletionSheet(AppViewModel& store, const Format& format, const AttachmentStore& attachments, const Uuid& taskID);

  QString title() const;
  /// "Raw water impeller replacement · M/Y Meridian".
  QString subtitle() const;
  QDateTime doneOn() const { return Format::toQml(doneOn_); }
  void setDoneOn(const QDateTime& time);
  QString doneOnMessage() const;
  QString laborMessage() const;
  /// The code of the currency of the vessel's costs.
  QString currency() const;
  /// The vessel's equipment: [{value: id, text}], after a line for none; empty when the register is.
  QVariantList equipment() const;
  /// Who may have done it: the crew aboard, then names of earlier services: [{name, detail}].
  QVariantList people() const;
  QList<QObject*> meters() const;
  QList<QObject*> parts() const;
  /// Addresses of the photos kept so far.
  QStringList photos() const;
  /// "Next due: 5,312.9 h or 21 Nov 2027".
  QString nextDue() const;
  /// Why it could not be saved or a photo not be added; empty once the marked fields have been put right.
  QString error() const;
  bool dirty() const;

  /// Adds an empty line and returns its position.
  Q_INVOKABLE int addPart();
  Q_INVOKABLE void removePart(int line);
  Q_INVOKABLE void addPhotos(const QList<QUrl>& pictures);
  Q_INVOKABLE void removePhoto(int position);
  /// Completes the task; false with `error` or a field's message when something has to be put right first.
  Q_INVOKABLE bool save();

 Q_SIGNALS:
  void changed();
  void partsChanged();
  void photosChanged();
  void errorChanged();

 private:
  const MaintenanceTask* task() const { return store_.tasks().find(taskID_); }
  std::optional<double> laborCost() const;
  CompletionForm form() const;
  /// Whether a field has a message that keeps the sheet from being saved.
  bool wrong() const;
  void setError(const QString& error);

  AppViewModel& store_;
  const Format& format_;
  const AttachmentStore& attachments_;
  Uuid taskID_;
  Timestamp opened_;
  Timestamp doneOn_;
  QString completedBy_;
  QString labor_;
  QString notes_;
  QString equipmentId_;
  std::vector<MeterField*> meters_;
  std::vector<PartField*> parts_;
  std::vector<std::string> photos_;
  bool marked_ = false;  ///< the last saving stopped at marked fields
  QString error_;
};

}  // namespace thalvorn::app
