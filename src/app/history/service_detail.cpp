#include "app/history/service_detail.h"

#include <QQmlEngine>
#include <QUrl>

#include "app/maintenance/task_texts.h"
#include "app/save_outcome.h"
#include "base/number_format.h"
#include "core/service_history.h"

namespace thalvorn::app {

namespace {

QString fieldLabel(const std::string& field) {
  const FieldFacts* facts = factsOf<ServiceLog>(field);
  return toQt(facts ? facts->label : std::string_view(field)).remove(QStringLiteral(" (optional)"));
}

/// A correction keeps times in their stored form; people read them as they read every date.
QString readable(const std::string& field, const std::string& text, const Format& format) {
  if (text.empty()) return QStringLiteral("nothing");
  if (field == "completedDate") {
    if (const auto time = parseTimestamp(text)) return format.dateTime(Format::toQml(*time));
  }
  return toQt(text);
}

}  // namespace

QVariantMap describeService(const ServiceLog& log, const AppViewModel& store, const AttachmentStore& attachments,
                            const Format& format, const std::string& currency) {
  const int decimals = currencyDecimals(currency);
  const auto amount = [&](const std::optional<double>& value) {
    return value ? format.number(*value, decimals) : QString();
  };
  QVariantList parts;
  for (const PartUsage& part : log.partsUsed) {
    parts.append(QVariantMap{{QStringLiteral("name"), toQt(part.name)},
                             {QStringLiteral("number"), toQt(part.partNumber)},
                             {QStringLiteral("quantity"), toQt(formatQuantity(part.quantity, 3, format.numbers()))},
                             {QStringLiteral("cost"), amount(part.cost)}});
  }
  QStringList photos;
  for (const std::string& path : log.photoPaths) {
    if (const auto file = attachments.absolute(path)) photos << QUrl::fromLocalFile(toQt(file->string())).toString();
  }
  QVariantList corrections;
  for (auto correction = log.corrections.rbegin(); correction != log.corrections.rend(); ++correction) {
    QString by = format.dateTime(Format::toQml(correction->at));
    if (!correction->author.empty()) by += QStringLiteral(" · ") + toQt(correction->author);
    corrections.append(QVariantMap{{QStringLiteral("field"), fieldLabel(correction->field)},
                                   {QStringLiteral("before"), readable(correction->field, correction->before, format)},
                                   {QStringLiteral("after"), readable(correction->field, correction->after, format)},
                                   {QStringLiteral("by"), by},
                                   {QStringLiteral("reason"), toQt(correction->reason)}});
  }
  const EquipmentItem* equipment = log.equipmentID ? store.equipment().find(*log.equipmentID) : nullptr;
  return {{QStringLiteral("id"), idText(log.id)},
          {QStringLiteral("title"), toQt(log.taskTitle)},
          {QStringLiteral("category"), toQt(log.category.display())},
          {QStringLiteral("icon"), categoryIcon(log.category)},
          {QStringLiteral("kind"), toQt(log.kind.display())},
          {QStringLiteral("date"), format.dateTime(Format::toQml(log.completedDate))},
          {QStringLiteral("ago"), format.distance(Format::toQml(log.completedDate))},
          {QStringLiteral("person"), toQt(log.completedBy)},
          {QStringLiteral("hours"), log.engineHoursAtService > 0 ? format.hours(log.engineHoursAtService) : QString()},
          {QStringLiteral("notes"), toQt(log.technicianNotes)},
          {QStringLiteral("labour"), amount(log.cost)},
          {QStringLiteral("parts"), parts},
          {QStringLiteral("partsCost"), amount(partsCost(log))},
          {QStringLiteral("total"), amount(totalCost(log))},
          {QStringLiteral("currency"), toQt(currency)},
          {QStringLiteral("photos"), photos},
          {QStringLiteral("corrections"), corrections},
          {QStringLiteral("equipment"), equipment ? toQt(recordName(*equipment)) : QString()},
          {QStringLiteral("taskId"), store.tasks().find(log.taskID) ? idText(log.taskID) : QString()}};
}

ServiceCorrection::ServiceCorrection(AppViewModel& store, ServiceLog log, const Format& format)
    : RecordFormOf(std::move(log), format), store_(store) {
  addRule("completedDate", [this](const ServiceLog& entered) {
    return entered.completedDate > store_.now()
               ? QStringLiteral("This is in the future. Enter the day on which the work was done.")
               : QString();
  });
  for (const PartUsage& part : record().partsUsed) parts_.push_back(makePart(part));
}

PartForm* ServiceCorrection::makePart(const PartUsage& part) {
  auto* form = new PartForm(part, format_, this);
  QQmlEngine::setObjectOwnership(form, QQmlEngine::CppOwnership);
  connect(form, &RecordForm::changed, this, &RecordForm::changed);
  return form;
}

QString ServiceCorrection::reasonMessage() const {
  return reasonShown_ && reason_.trimmed().isEmpty()
             ? QStringLiteral("Give a reason: it is kept with the earlier text.")
             : QString();
}

QList<QObject*> ServiceCorrection::parts() const { return {parts_.begin(), parts_.end()}; }

ServiceLog ServiceCorrection::corrected() const {
  ServiceLog log = record();
  log.partsUsed.clear();
  for (const PartForm* part : parts_)
    if (!part->blank()) log.partsUsed.push_back(part->record());
  return log;
}

bool ServiceCorrection::anyChange() const { return dirty() || !(corrected() == original()); }

void ServiceCorrection::addPart() {
  parts_.push_back(makePart({.id = Uuid::random(), .name = {}, .partNumber = {}, .cost = {}}));
  Q_EMIT partsChanged();
}

void ServiceCorrection::removePart(int line) {
  if (line < 0 || line >= static_cast<int>(parts_.size())) return;
  parts_[static_cast<std::size_t>(line)]->deleteLater();
  parts_.erase(parts_.begin() + line);
  Q_EMIT partsChanged();
  Q_EMIT changed();
}

bool ServiceCorrection::save() {
  reasonShown_ = true;
  bool right = check() && reasonMessage().isEmpty();
  for (PartForm* part : parts_) right = (part->blank() || part->check()) && right;
  error_ = right ? refusalOf(store_.correctLog(corrected(), reason_.trimmed().toStdString())) : QString();
  Q_EMIT changed();
  return right && error_.isEmpty();
}

}  // namespace thalvorn::app
