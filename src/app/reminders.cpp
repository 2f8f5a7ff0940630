#include "app/reminders.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "app/text.h"
#include "platform/desktop_notifications.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

namespace {

constexpr std::chrono::milliseconds kGather{1500};
constexpr std::chrono::minutes kMinute{1};
constexpr std::size_t kMostAtOnce = 3;
const QString kSummary = QStringLiteral("summary");

}  // namespace

Reminders::Reminders(AppViewModel& model, std::unique_ptr<DesktopNotifications> desktop, QObject* parent)
    : QObject(parent), model_(model), desktop_(std::move(desktop)) {
  soon_.setSingleShot(true);
  soon_.setInterval(kGather);
  minute_.setInterval(kMinute);
  connect(&soon_, &QTimer::timeout, this, &Reminders::look);
  connect(&minute_, &QTimer::timeout, this, &Reminders::look);
  const auto later = [this] { soon_.start(); };
  connect(&model_, &AppViewModel::reloaded, this, later);
  connect(&model_, &AppViewModel::edited, this, later);
  connect(&model_, &AppViewModel::selectedVesselIDChanged, this, later);
  connect(desktop_.get(), &DesktopNotifications::availableChanged, this, later);
  connect(desktop_.get(), &DesktopNotifications::actionInvoked, this, &Reminders::onAction);
  connect(desktop_.get(), &DesktopNotifications::ended, this, [this](const QString& id) { shown_.removeAll(id); });
  minute_.start();
}

Reminders::~Reminders() = default;

QString Reminders::toldKey() const { return toQt(model_.prefix()) + QStringLiteral("_remindersTold"); }

void Reminders::look() {
  const Vessel* vessel = model_.selectedVessel();
  const auto lead = model_.cache().preference(leadKey).value_or("1");
  if (!vessel || lead == "off" || !desktop_->available()) return;
  const auto due = dueReminders(model_.tasks().records(), *vessel, model_.now(), model_.calendar(),
                                QByteArray::fromStdString(lead).toLongLong());
  withdrawSettled(due);

  const std::string key = toldKey().toStdString();
  QJsonObject told =
      QJsonDocument::fromJson(QByteArray::fromStdString(model_.cache().preference(key).value_or("{}"))).object();
  std::vector<Reminder> fresh;
  for (const Reminder& reminder : due) {
    const QString id = toQt(reminder.taskID.toString());
    if (told.value(id).toString() == toQt(reminder.stage)) continue;
    told.insert(id, toQt(reminder.stage));
    fresh.push_back(reminder);
  }
  if (fresh.empty()) return;
  // What is no longer there need not be remembered.
  for (const QString& id : told.keys()) {
    const auto uuid = Uuid::parse(id.toStdString());
    if (!uuid || !model_.tasks().find(*uuid)) told.remove(id);
  }
  model_.cache().setPreference(key, QJsonDocument(told).toJson(QJsonDocument::Compact).toStdString());

  const std::size_t single = fresh.size() <= kMostAtOnce + 1 ? fresh.size() : kMostAtOnce;
  for (std::size_t i = 0; i < single; ++i) show(fresh[i]);
  if (single < fresh.size()) showSummary(fresh.size() - single);
}

void Reminders::show(const Reminder& reminder) {
  const QString id = toQt(reminder.taskID.toString());
  shown_.append(id);
  desktop_->show(
      {.id = id,
       .title = toQt(reminder.title),
       .body = toQt(reminder.body),
       .category = QStringLiteral("x-thalvorn.maintenance"),
       .urgency = reminder.overdue ? NotificationUrgency::critical : NotificationUrgency::normal,
       .actions = {{QStringLiteral("open"), tr("Open")}, {QStringLiteral("snooze"), tr("Snooze for a day")}}});
}

void Reminders::showSummary(std::size_t count) {
  shown_.append(kSummary);
  desktop_->show({.id = kSummary,
                  .title = tr("Maintenance due: %n more task(s)", nullptr, static_cast<int>(count)),
                  .body = QStringLiteral("Vessel: ") + toQt(model_.selectedVessel()->name),
                  .category = QStringLiteral("x-thalvorn.maintenance"),
                  .actions = {{QStringLiteral("open"), tr("Open")}}});
}

void Reminders::withdrawSettled(const std::vector<Reminder>& due) {
  for (const QString& id : QStringList(shown_)) {
    if (id == kSummary) continue;
    const bool stillDue =
        std::ranges::any_of(due, [&](const Reminder& reminder) { return toQt(reminder.taskID.toString()) == id; });
    if (!stillDue) desktop_->withdraw(id);
  }
}

void Reminders::onAction(const QString& id, const QString& action, const QString& activationToken) {
  if (action == u"snooze") {
    if (const auto task = Uuid::parse(id.toStdString()))
      model_.snoozeTask(*task, model_.calendar().addDays(model_.now(), 1).value_or(model_.now()));
    return;
  }
  Q_EMIT openRequested(id == kSummary ? QString() : id, activationToken);
}

}  // namespace thalvorn::app
