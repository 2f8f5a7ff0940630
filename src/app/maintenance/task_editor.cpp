#include "app/maintenance/task_editor.h"

#include <algorithm>

#include "app/maintenance/photos.h"
#include "app/maintenance/task_texts.h"
#include "base/number_format.h"
#include "core/task_repetition.h"

namespace thalvorn::app {

namespace {

/// The intervals without regard to what else the task says; 0 is none.
std::optional<std::int64_t> daysOf(const MaintenanceTask& task) {
  return task.recurringDays.value_or(0) > 0 ? task.recurringDays : std::nullopt;
}
std::optional<double> hoursOf(const MaintenanceTask& task) {
  return task.recurringEngineHours.value_or(0) > 0 ? task.recurringEngineHours : std::nullopt;
}

}  // namespace

TaskEditor::TaskEditor(AppViewModel& store, const Format& format, const AttachmentStore& attachments,
                       MaintenanceTask task, bool isNew)
    : RecordFormOf(std::move(task), format), store_(store), attachments_(attachments), isNew_(isNew) {
  addRule("dueDate", [](const MaintenanceTask& one) {
    const bool missing = one.triggerType == TriggerType::date && !one.dueDate && !daysOf(one);
    return missing ? QStringLiteral("Enter a due date: without one the task never comes up.") : QString();
  });
  addRule("dueAtEngineHours", [](const MaintenanceTask& one) {
    const bool hours = !one.dueAtEngineHours && !hoursOf(one);
    if (one.triggerType == TriggerType::engineHours && hours) {
      return QStringLiteral("Enter the hours at which it falls due: without them the task never comes up.");
    }
    const bool neither = one.triggerType == TriggerType::both && hours && !one.dueDate && !daysOf(one);
    return neither ? QStringLiteral("Enter a due date, hours, or both.") : QString();
  });
}

QString TaskEditor::vesselName() const {
  const Vessel* one = vessel();
  return one ? toQt(one->name) : QString();
}

QVariantList TaskEditor::categories() const { return categoryOptions(); }

QVariantList TaskEditor::hourSources() const {
  QVariantList options;
  const Vessel* one = vessel();
  for (const HourSource source : one ? one->meters() : std::vector<HourSource>()) {
    options.append(QVariantMap{{QStringLiteral("value"), toQt(rawText(source))},
                               {QStringLiteral("text"), toQt(displayText(source))}});
  }
  const auto own = original().hourSource;
  if (!isNew_ && one && !one->hasMeter(own)) {
    options.append(QVariantMap{{QStringLiteral("value"), toQt(own.raw())},
                               {QStringLiteral("text"), toQt(own.display()) + QStringLiteral(" (not fitted)")}});
  }
  return options;
}

QString TaskEditor::daysHint() const {
  return planned() ? QStringLiteral("days (0 = no repeat)") : QStringLiteral("days  ·  only for Planned Maintenance");
}

QString TaskEditor::hoursHint() const {
  return planned() ? QStringLiteral("hours (0 = no repeat)") : QStringLiteral("hours  ·  only for Planned Maintenance");
}

double TaskEditor::reading() const {
  const Vessel* one = vessel();
  return one ? one->reading(record().hourSource) : 0;
}

QString TaskEditor::meterHint() const {
  const Vessel* one = vessel();
  if (!one) return {};
  if (!one->hasMeter(record().hourSource))
    return QStringLiteral("This vessel has no such meter: choose one that it has.");
  return toQt(currentHoursText(reading()));
}

QString TaskEditor::dateProposal() const {
  const auto days = daysOf(record());
  return days && planned() ? QStringLiteral("Set to today + ") + toQt(intervalText(days, std::nullopt)) : QString();
}

QString TaskEditor::hoursProposal() const {
  const auto hours = hoursOf(record());
  return hours && planned() ? QStringLiteral("Set to current + ") + toQt(intervalText(std::nullopt, hours)) : QString();
}

void TaskEditor::takeDateProposal() {
  if (const auto days = daysOf(record())) {
    if (const auto due = store_.calendar().addDays(store_.now(), *days)) {
      setValue(QStringLiteral("dueDate"), Format::toQml(*due));
    }
  }
}

void TaskEditor::takeHoursProposal() {
  if (const auto hours = hoursOf(record())) {
    setText(QStringLiteral("dueAtEngineHours"), format_.number(reading() + *hours, 1));
  }
}

QStringList TaskEditor::photos() const {
  QStringList addresses;
  for (const std::string& path : record().photoPaths) addresses << photoAddress(attachments_, path);
  return addresses;
}

void TaskEditor::addPhotos(const QList<QUrl>& pictures) {
  setError({});
  for (const QUrl& picture : pictures) {
    auto path = keepPhoto(attachments_, picture);
    if (!path) {
      setError(path.error());
    } else if (std::ranges::find(record().photoPaths, *path) == record().photoPaths.end()) {
      edit([&](MaintenanceTask& task) { task.photoPaths.push_back(std::move(*path)); });
    }
  }
}

void TaskEditor::removePhoto(int position) {
  if (position < 0 || position >= static_cast<int>(record().photoPaths.size())) return;
  edit([&](MaintenanceTask& task) { task.photoPaths.erase(task.photoPaths.begin() + position); });
}

bool TaskEditor::save() {
  setError({});
  if (!check()) return false;
  // An interval alone is enough: the first due point is one interval from now. What the other trigger left behind goes
  // when the user has chosen another one, for every due point that is there counts.
  if (byDate() && planned() && !record().dueDate) takeDateProposal();
  if (byHours() && planned() && !record().dueAtEngineHours) takeHoursProposal();
  MaintenanceTask task = record();
  if (isNew_ || task.triggerType != original().triggerType) {
    if (!byDate()) {
      task.dueDate.reset();
      task.recurringDays.reset();
    }
    if (!byHours()) {
      task.dueAtEngineHours.reset();
      task.recurringEngineHours.reset();
    }
  }
  const Saving saving = isNew_ ? store_.add(std::move(task)) : store_.update(std::move(task));
  if (saving.isFinished() && !saving.result()) {
    setError(toQt(saving.result().error().message));
    return false;
  }
  return true;
}

QString TaskEditor::taskId() const { return idText(record().id); }

void TaskEditor::setError(const QString& error) {
  if (error == error_) return;
  error_ = error;
  Q_EMIT errorChanged();
}

}  // namespace thalvorn::app
