#include "app/maintenance/hours_editor.h"

#include <algorithm>
#include <ranges>

#include "app/maintenance/task_texts.h"

namespace thalvorn::app {

namespace {

constexpr std::size_t kEventsShown = 8;

}  // namespace

QVariantList meterHistory(const Vessel& vessel, std::size_t most, const Format& format) {
  QVariantList list;
  for (const MeterEvent& event : vessel.meterHistory | std::views::reverse | std::views::take(most)) {
    const QString what =
        event.change == MeterChange::replaced ? QStringLiteral("replaced") : QStringLiteral("corrected");
    QStringList parts{QStringLiteral("%1 → %2").arg(format.hours(event.before), format.hours(event.after)),
                      toQt(event.reason), toQt(event.author)};
    parts.removeAll(QString());
    list.append(QVariantMap{{QStringLiteral("title"),
                             QStringLiteral("%1 %2 · %3")
                                 .arg(toQt(event.hourSource.display()), what, format.date(Format::toQml(event.at)))},
                            {QStringLiteral("text"), parts.join(QStringLiteral(" · "))}});
  }
  return list;
}

HoursEditor::HoursEditor(AppViewModel& store, const Format& format, const Uuid& vesselID)
    : store_(store), format_(format), vesselID_(vesselID) {
  readMeters();
}

void HoursEditor::readMeters() {
  for (MeterField* field : meters_) field->deleteLater();
  meters_.clear();
  if (const Vessel* one = vessel()) {
    for (const HourSource source : one->meters()) {
      auto* field = new MeterField(*one, source, format_, this);
      connect(field, &MeterField::changed, this, &HoursEditor::changed);
      meters_.push_back(field);
    }
  }
  Q_EMIT metersChanged();
}

QString HoursEditor::vesselName() const {
  const Vessel* one = vessel();
  return one ? toQt(one->name) : QString();
}

QList<QObject*> HoursEditor::meters() const { return {meters_.begin(), meters_.end()}; }

QString HoursEditor::updated() const {
  const Vessel* one = vessel();
  if (!one || !one->engineHoursUpdatedAt) return QStringLiteral("Never updated");
  const QDateTime at = Format::toQml(*one->engineHoursUpdatedAt);
  return QStringLiteral("Updated %1 · %2").arg(format_.distance(at), format_.dateTime(at));
}

QVariantList HoursEditor::history() const {
  const Vessel* one = vessel();
  return one ? meterHistory(*one, kEventsShown, format_) : QVariantList();
}

bool HoursEditor::dirty() const {
  return std::ranges::any_of(meters_, [](const MeterField* meter) { return !meter->text().trimmed().isEmpty(); });
}

bool HoursEditor::save() {
  error_.clear();
  if (std::ranges::any_of(meters_, &MeterField::wrong)) {
    error_ = QStringLiteral("Something has to be put right first: see the marked fields.");
  } else {
    std::vector<MeterReading> readings;
    for (const MeterField* meter : meters_) readings.push_back(meter->reading());
    const Saving saving = store_.updateMeters(vesselID_, readings);
    if (saving.isFinished() && !saving.result()) {
      error_ = toQt(saving.result().error().message);
    }
  }
  Q_EMIT changed();
  return error_.isEmpty();
}

QString HoursEditor::adjust(const QString& source, const QString& change, const QString& hours, const QString& reason) {
  const auto meter = caseFromRaw<HourSource>(source.toStdString());
  const auto kind = caseFromRaw<MeterChange>(change.toStdString());
  const auto value = thalvorn::parseNumber(hours.toStdString(), format_.numbers());
  if (!value) return toQt(value.error());
  if (!meter || !kind) return QStringLiteral("Choose a meter.");
  const Saving saving = store_.correctMeter(
      vesselID_, *kind, {.source = *meter, .hours = *value, .reason = reason.trimmed().toStdString()});
  if (saving.isFinished() && !saving.result()) return toQt(saving.result().error().message);

  // What was typed into the other meters stays.
  std::vector<std::pair<QString, QString>> typed;
  for (const MeterField* field : meters_) {
    if (field->source() != source) typed.emplace_back(field->source(), field->text());
  }
  readMeters();
  for (MeterField* field : meters_) {
    for (const auto& [name, text] : typed) {
      if (field->source() == name) field->setText(text);
    }
  }
  Q_EMIT changed();
  return {};
}

}  // namespace thalvorn::app
