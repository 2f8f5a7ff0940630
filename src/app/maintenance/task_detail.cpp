#include "app/maintenance/task_detail.h"

#include <algorithm>
#include <ranges>

#include "app/maintenance/hours_editor.h"
#include "app/maintenance/photos.h"
#include "app/maintenance/task_texts.h"
#include "base/date_format.h"
#include "core/meter_pace.h"
#include "core/status_reason.h"
#include "core/task_repetition.h"

namespace thalvorn::app {

namespace {

constexpr std::size_t kServicesShown = 12;
constexpr std::size_t kMeterEventsShown = 8;

QVariantMap fact(const char16_t* label, const QString& value, const QString& note = {}) {
  return {{QStringLiteral("label"), QString::fromUtf16(label)},
          {QStringLiteral("value"), value},
          {QStringLiteral("note"), note}};
}

QVariantMap entry(const QString& title, const QStringList& parts, const QString& id = {}) {
  QStringList filled = parts;
  filled.removeAll(QString());
  return {{QStringLiteral("id"), id},
          {QStringLiteral("title"), title},
          {QStringLiteral("text"), filled.join(QStringLiteral(" · "))}};
}

}  // namespace

TaskDetail::TaskDetail(FleetWatch& watch, const Format& format, const AttachmentStore& photos, QObject* parent)
    : QObject(parent), watch_(watch), format_(format), photos_(photos) {
  again_.setSingleShot(true);
  connect(&again_, &QTimer::timeout, this, &TaskDetail::read);
  const auto soon = [this] {
    if (!taskId_.isEmpty()) again_.start(0);
  };
  const AppViewModel& store = watch_.store();
  connect(&store, &AppViewModel::edited, this, soon);
  connect(&store, &AppViewModel::reloaded, this, soon);
  connect(&watch_, &FleetWatch::moved, this, soon);
  connect(&watch_, &FleetWatch::ticked, this, soon);
}

void TaskDetail::setTaskId(const QString& id) {
  if (id == taskId_) return;
  taskId_ = id;
  read();
}

void TaskDetail::read() {
  again_.stop();
  task_.clear();
  facts_.clear();
  history_.clear();
  meterHistory_.clear();
  historyTotal_ = 0;
  const auto id = Uuid::parse(taskId_.toStdString());
  const MaintenanceTask* task = id ? watch_.store().tasks().find(*id) : nullptr;
  if (task) {
    const Vessel& vessel = watch_.vesselOf(*task);
    const StatusReason reason = explainStatus(*task, vessel, watch_.horizon(), watch_.calendar());
    QStringList photos;
    for (const std::string& path : task->photoPaths) photos.append(photoAddress(photos_, path));
    task_ = {{QStringLiteral("title"), toQt(task->title)},
             {QStringLiteral("notes"), toQt(task->notes)},
             {QStringLiteral("category"), toQt(task->category.display())},
             {QStringLiteral("categoryIcon"), categoryIcon(task->category)},
             {QStringLiteral("kindName"), toQt(task->kind.display())},
             {QStringLiteral("status"), statusWord(reason.status, reason.snoozed)},
             {QStringLiteral("tone"), reason.snoozed ? QString() : statusTone(reason.status)},
             {QStringLiteral("snoozed"), reason.snoozed},
             {QStringLiteral("completed"), task->isCompleted},
             {QStringLiteral("high"), task->priority == TaskPriority::high},
             {QStringLiteral("reason"), toQt(reasonText(*task, reason, vessel, watch_.now(), watch_.calendar()))},
             {QStringLiteral("meterMissing"), reason.meterMissing},
             {QStringLiteral("photos"), photos}};
    readFacts(*task, vessel);
    readHistory(*task);
    meterHistory_ = thalvorn::app::meterHistory(vessel, kMeterEventsShown, format_);
  }
  Q_EMIT changed();
}

void TaskDetail::readFacts(const MaintenanceTask& task, const Vessel& vessel) {
  const auto day = [&](Timestamp time) { return toQt(formatDate(watch_.calendar().date(time))); };
  if (task.dueAtEngineHours) {
    const double target = *task.dueAtEngineHours;
    const double reading = vessel.reading(task.hourSource);
    facts_.append(fact(u"Due at", format_.hours(target), toQt(task.hourSource.display())));
    facts_.append(fact(u"Now", format_.hours(reading)));
    if (target > reading) {
      const double pace = watch_.fleet().meters(task.vesselID).pace(task.hourSource);
      facts_.append(
          fact(u"Expected",
               toQt(aboutDate(projectedDate(target, reading, pace, watch_.now()), watch_.now(), watch_.calendar())),
               QStringLiteral("at %1 h a day").arg(format_.number(pace, 1))));
    }
  }
  if (task.dueDate) {
    const bool near = std::chrono::abs(*task.dueDate - watch_.now()) <= std::chrono::days(30);
    facts_.append(fact(task.dueAtEngineHours ? u"Or by" : u"Due", day(*task.dueDate),
                       near ? toQt(formatDistance(*task.dueDate, watch_.now(), watch_.calendar())) : QString()));
  }
  if (!task.dueDate && !task.dueAtEngineHours) facts_.append(fact(u"Due", QStringLiteral("No due point")));
  facts_.append(
      fact(u"Repeats", repeats(task) ? toQt(intervalText(repeatDays(task), repeatHours(task))) : repeatText(task)));
  facts_.append(fact(u"Priority", toQt(task.priority.display())));
  if (task.snoozedUntil && *task.snoozedUntil > watch_.now()) {
    facts_.append(fact(u"Snoozed until", day(*task.snoozedUntil)));
  }
}

void TaskDetail::readHistory(const MaintenanceTask& task) {
  std::vector<const ServiceLog*> logs;
  for (const ServiceLog& log : watch_.store().logs().records()) {
    if (log.taskID == task.id) logs.push_back(&log);
  }
  std::ranges::sort(logs, std::ranges::greater(), [](const ServiceLog* log) { return log->completedDate; });
  historyTotal_ = static_cast<int>(logs.size());
  for (const ServiceLog* log : logs | std::views::take(kServicesShown)) {
    QString title = toQt(formatDate(watch_.calendar().date(log->completedDate)));
    if (log->engineHoursAtService > 0) {
      title = format_.hours(log->engineHoursAtService) + QStringLiteral(" · ") + title;
    }
    const auto cost = totalCost(*log);
    history_.append(
        entry(title,
              {toQt(log->technicianNotes).simplified(), toQt(log->completedBy), cost ? format_.money(*cost) : QString(),
               log->corrections.empty() ? QString() : QStringLiteral("corrected")},
              idText(log->id)));
  }
}

}  // namespace thalvorn::app
