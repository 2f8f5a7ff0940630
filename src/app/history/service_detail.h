#pragma once

#include <QObject>
#include <QVariant>
#include <vector>

#include "app/format.h"
#include "app/record_form.h"
#include "core/service_log.h"
#include "store/app_view_model.h"
#include "store/attachments.h"

namespace thalvorn::app {

/// Everything that is known of one service, for reading. Amounts are in `currency`.
/// {id, title, category, icon, kind, date, person, hours, notes, labour, parts: [{name, number, quantity, cost}],
/// partsCost, total, currency, photos: [address], corrections: [{field, before, after, by, reason}], taskId}
QVariantMap describeService(const ServiceLog& log, const AppViewModel& store, const AttachmentStore& attachments,
                            const Format& format, const std::string& currency);

/// One line of parts in the form that corrects a service.
class PartForm : public RecordFormOf<PartUsage> {
  Q_OBJECT

 public:
  PartForm(PartUsage part, const Format& format, QObject* parent) : RecordFormOf(std::move(part), format, parent) {}

  /// True when nothing was entered: the line is left out.
  bool blank() const { return record().name.empty() && record().partNumber.empty() && !record().cost; }
};

/// Puts a service right. The record keeps what it said before, with the reason.
class ServiceCorrection : public RecordFormOf<ServiceLog> {
  Q_OBJECT
  Q_PROPERTY(QString reason MEMBER reason_ NOTIFY changed)
  Q_PROPERTY(QString reasonMessage READ reasonMessage NOTIFY changed)
  Q_PROPERTY(QList<QObject*> parts READ parts NOTIFY partsChanged)
  Q_PROPERTY(bool anyChange READ anyChange NOTIFY changed)
  Q_PROPERTY(QString error READ error NOTIFY changed)

 public:
  ServiceCorrection(AppViewModel& store, ServiceLog log, const Format& format);

  QString reasonMessage() const;
  QList<QObject*> parts() const;
  bool anyChange() const;
  QString error() const { return error_; }

  Q_INVOKABLE void addPart();
  Q_INVOKABLE void removePart(int line);
  /// Saves the correction; false when a field or the reason has to be put right first, or the store refuses.
  Q_INVOKABLE bool save();

 Q_SIGNALS:
  void partsChanged();

 private:
  PartForm* makePart(const PartUsage& part);
  ServiceLog corrected() const;

  AppViewModel& store_;
  std::vector<PartForm*> parts_;
  QString reason_;
  QString error_;
  bool reasonShown_ = false;
};

}  // namespace thalvorn::app
