#include "app/maintenance/maintenance_controller.h"

#include "app/maintenance/task_texts.h"

namespace thalvorn::app {

namespace {

constexpr std::size_t kNextDueShown = 10;

QVariantMap option(const QString& value, const QString& text) {
  return {{QStringLiteral("value"), value}, {QStringLiteral("text"), text}};
}

}  // namespace

MaintenanceController::MaintenanceController(AppViewModel& store, const AttachmentStore& attachments,
                                             const Format& format, AppController& app, PreferenceStore& preferences,
                                             QObject* parent)
    : QObject(parent),
      watch_(store),
      attachments_(attachments),
      format_(format),
      app_(app),
      board_(watch_, {.scope = TaskScope::board, .sort = TaskSortField::due}),
      statusList_(watch_, {.scope = TaskScope::board, .withSnoozed = false, .sort = TaskSortField::due}),
      library_(watch_, {.scope = TaskScope::library, .sort = TaskSortField::name}),
      recurring_(watch_, {.scope = TaskScope::recurring, .sort = TaskSortField::due}),
      nextDue_(watch_, {.scope = TaskScope::board, .withSnoozed = false, .most = kNextDueShown}),
      dashboard_(watch_, format) {
  board_.rememberIn(preferences, QStringLiteral("board"));
  statusList_.rememberIn(preferences, QStringLiteral("statusList"));
  library_.rememberIn(preferences, QStringLiteral("taskLibrary"));
  recurring_.rememberIn(preferences, QStringLiteral("recurringTasks"));

  recount_.setSingleShot(true);
  connect(&recount_, &QTimer::timeout, this, &MaintenanceController::recount);
  const auto soon = [this] { recount_.start(0); };
  connect(&store, &AppViewModel::edited, this, soon);
  connect(&store, &AppViewModel::reloaded, this, soon);
  connect(&store, &AppViewModel::isReloadingChanged, this, soon);
  connect(&store, &AppViewModel::selectedVesselIDChanged, this, soon);
  connect(&watch_, &FleetWatch::moved, this, soon);
  connect(&watch_, &FleetWatch::ticked, this, soon);
  recount();
}

void MaintenanceController::recount() {
  const AppViewModel& store = watch_.store();
  const StatusCounts counts =
      countTasks(store.tasks().records(), watch_.fleet(), watch_.horizon(), store.selectedVesselID().value_or(Uuid{}));
  const auto number = [](std::size_t count) { return static_cast<int>(count); };
  counts_ = {{QStringLiteral("overdue"), number(counts.overdue)},
             {QStringLiteral("dueSoon"), number(counts.dueSoon)},
             {QStringLiteral("onTrack"), number(counts.onTrack)},
             {QStringLiteral("beyondHorizon"), number(counts.beyondHorizon)},
             {QStringLiteral("snoozed"), number(counts.snoozed)},
             {QStringLiteral("open"),
              number(counts.overdue + counts.dueSoon + counts.onTrack + counts.beyondHorizon + counts.snoozed)}};
  Q_EMIT countsChanged();
}

// ---- choices ----

QVariantList MaintenanceController::kinds() const {
  QVariantList options = plainOptions<TaskKind>();
  options.prepend(option({}, QStringLiteral("All kinds")));
  return options;
}

QVariantList MaintenanceController::filters() const {
  QVariantList options = plainOptions<FilterOption>();
  options.first() = option(toQt(rawText(FilterOption::all)), QStringLiteral("All statuses"));
  return options;
}

QVariantList MaintenanceController::sortFields() const { return plainOptions<TaskSortField>(); }

QVariantList MaintenanceController::detailSortFields() const {
  QVariantList options;
  for (const DetailSortField field : allCases<DetailSortField>()) {
    options.append(option(toQt(rawText(taskSortField(field))), toQt(displayText(field))));
  }
  return options;
}

QVariantList MaintenanceController::categories() const {
  QVariantList options = categoryOptions();
  options.prepend(option({}, QStringLiteral("All Categories")));
  return options;
}

QVariantList MaintenanceController::legend() const {
  QVariantList list;
  for (const StatusLegend& line : statusLegend()) {
    list.append(QVariantMap{{QStringLiteral("status"), toQt(rawText(line.status))},
                            {QStringLiteral("text"), toQt(displayText(line.status))},
                            {QStringLiteral("meaning"), toQt(line.meaning)},
                            {QStringLiteral("tone"), statusTone(line.status)}});
  }
  return list;
}

// ---- what pages and forms hold ----

const MaintenanceTask* MaintenanceController::find(const QString& taskId) const {
  const auto id = Uuid::parse(taskId.toStdString());
  return id ? watch_.store().tasks().find(*id) : nullptr;
}

TaskDetail* MaintenanceController::detail() { return new TaskDetail(watch_, format_, attachments_); }

TaskEditor* MaintenanceController::newTask() {
  const Vessel* vessel = watch_.store().selectedVessel();
  if (!vessel) return nullptr;
  MaintenanceTask task;
  task.id = Uuid::random();
  task.vesselID = vessel->id;
  if (board_.kind() == toQt(rawText(TaskKind::deficiencySquawk))) task.kind = TaskKind::deficiencySquawk;
  return new TaskEditor(watch_.store(), format_, attachments_, std::move(task), true);
}

TaskEditor* MaintenanceController::editTask(const QString& taskId) {
  const MaintenanceTask* task = find(taskId);
  return task ? new TaskEditor(watch_.store(), format_, attachments_, *task, false) : nullptr;
}

CompletionSheet* MaintenanceController::completeTask(const QString& taskId) {
  const MaintenanceTask* task = find(taskId);
  return task ? new CompletionSheet(watch_.store(), format_, attachments_, task->id) : nullptr;
}

SnoozeSheet* MaintenanceController::snoozeTask(const QString& taskId) {
  const MaintenanceTask* task = find(taskId);
  return task ? new SnoozeSheet(watch_.store(), format_, task->id) : nullptr;
}

HoursEditor* MaintenanceController::editHours() {
  const Vessel* vessel = watch_.store().selectedVessel();
  return vessel ? new HoursEditor(watch_.store(), format_, vessel->id) : nullptr;
}

void MaintenanceController::deleteTask(const QString& taskId) {
  const MaintenanceTask* task = find(taskId);
  if (!task) return;
  const Saving saving = watch_.store().remove<MaintenanceTask>(task->id);
  if (saving.isFinished() && !saving.result()) {
    app_.toast(toQt(saving.result().error().message), QStringLiteral("overdue"));
  }
}

}  // namespace thalvorn::app
