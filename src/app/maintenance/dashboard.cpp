#include "app/maintenance/dashboard.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "app/maintenance/task_texts.h"
#include "base/date_format.h"
#include "core/report_basics.h"

namespace thalvorn::app {

namespace {

using namespace std::chrono;

constexpr int kMonths = 12;
constexpr days kMetersGrowOld{30};

QString counted(std::size_t count, const char16_t* one, const char16_t* many) {
  return QStringLiteral("%1 %2").arg(count).arg(QStringView(count == 1 ? one : many));
}

QString greetingAt(const LocalTime& time, const QString& name) {
  const auto hour = duration_cast<hours>(time.timeOfDay).count();
  const QString words = hour < 4 || hour >= 18 ? QStringLiteral("Good evening")
                        : hour < 12            ? QStringLiteral("Good morning")
                                               : QStringLiteral("Good afternoon");
  return name.isEmpty() ? words : words + QStringLiteral(", ") + name;
}

QVariantMap attentionItem(const char16_t* icon, const QString& title, const QString& detail, const char16_t* page,
                          const QVariantMap& arguments = {}) {
  return {{QStringLiteral("icon"), QString::fromUtf16(icon)},
          {QStringLiteral("title"), title},
          {QStringLiteral("detail"), detail},
          {QStringLiteral("page"), QString::fromUtf16(page)},
          {QStringLiteral("arguments"), arguments}};
}

/// The first of several titles, and how many more there are.
QString firstOf(const std::vector<const MaintenanceTask*>& tasks) {
  QString text = toQt(tasks.front()->title);
  if (tasks.size() > 1) text += QStringLiteral(" and %1 more").arg(tasks.size() - 1);
  return text;
}

}  // namespace

Dashboard::Dashboard(FleetWatch& watch, const Format& format, QObject* parent)
    : QObject(parent), watch_(watch), format_(format) {
  refresh_.setSingleShot(true);
  connect(&refresh_, &QTimer::timeout, this, &Dashboard::refreshNow);
  const AppViewModel& store = watch_.store();
  const auto soon = [this] { refreshSoon(); };
  connect(&store, &AppViewModel::edited, this, soon);
  connect(&store, &AppViewModel::reloaded, this, soon);
  connect(&store, &AppViewModel::selectedVesselIDChanged, this, soon);
  connect(&store, &AppViewModel::displayNameChanged, this, soon);
  connect(&watch_, &FleetWatch::moved, this, soon);
  connect(&watch_, &FleetWatch::ticked, this, soon);
}

void Dashboard::setActive(bool active) {
  if (active == active_) return;
  active_ = active;
  if (active_ && stale_) refreshNow();
}

void Dashboard::refreshSoon() {
  stale_ = true;
  if (active_) refresh_.start(0);
}

void Dashboard::refreshNow() {
  stale_ = false;
  const AppViewModel& store = watch_.store();
  greeting_ = greetingAt(watch_.calendar().local(watch_.now()), toQt(store.displayName()).section(u' ', 0, 0));
  const Vessel* vessel = store.selectedVessel();
  hasVessel_ = vessel != nullptr;
  const Uuid id = vessel ? vessel->id : Uuid{};
  hasTasks_ = std::ranges::any_of(store.tasks().records(), [&](const auto& task) { return task.vesselID == id; });
  readCounters(id);
  readMeters(vessel ? *vessel : Vessel{.numberOfEngines = 0});
  readAttention(vessel ? *vessel : Vessel{.numberOfEngines = 0});
  readWorkDone(id);
  Q_EMIT changed();
}

void Dashboard::readCounters(const Uuid& vessel) {
  const auto tasks = watch_.store().tasks().records();
  const Fleet& fleet = watch_.fleet();
  const StatusCounts counts = countTasks(tasks, fleet, watch_.horizon(), vessel);
  const TodayCounts today = countToday(tasks, fleet, watch_.now(), watch_.calendar(), vessel);

  std::size_t high = 0;
  std::optional<Timestamp> oldest;
  for (const MaintenanceTask& task : tasks) {
    if (task.vesselID != vessel || isSnoozed(task, watch_.now())) continue;
    if (taskStatus(task, fleet.meters(vessel).reading(task.hourSource), watch_.horizon()) != TaskStatus::overdue) {
      continue;
    }
    high += task.priority == TaskPriority::high ? 1 : 0;
    if (task.dueDate && (!oldest || *task.dueDate < *oldest)) oldest = task.dueDate;
  }
  QStringList overdueNotes;
  if (high > 0) overdueNotes << QStringLiteral("%1 high priority").arg(high);
  if (oldest) {
    const auto late = sys_days(watch_.calendar().date(watch_.now())) - sys_days(watch_.calendar().date(*oldest));
    if (late.count() > 0) {
      overdueNotes << QStringLiteral("oldest ") + counted(static_cast<std::size_t>(late.count()), u"day", u"days");
    }
  }
  if (overdueNotes.isEmpty())
    overdueNotes << (counts.overdue ? QStringLiteral("past their target") : QStringLiteral("nothing is late"));

  const auto counter = [](const char16_t* status, const char16_t* title, const char16_t* tone, std::size_t count,
                          const QString& note, const QString& todayLabel, std::size_t todayCount) {
    return QVariantMap{{QStringLiteral("status"), QString::fromUtf16(status)},
                       {QStringLiteral("title"), QString::fromUtf16(title)},
                       {QStringLiteral("tone"), QString::fromUtf16(tone)},
                       {QStringLiteral("count"), static_cast<int>(count)},
                       {QStringLiteral("note"), note},
                       {QStringLiteral("todayLabel"), todayLabel},
                       {QStringLiteral("today"), static_cast<int>(todayCount)}};
  };
  counters_ = {
      counter(u"overdue", u"Overdue", u"overdue", counts.overdue, overdueNotes.join(QStringLiteral(" · ")), {}, 0),
      counter(u"dueSoon", u"Due soon", u"soon", counts.dueSoon, QStringLiteral("within 7 days or 10 hours"),
              QStringLiteral("Due Soon (today)"), today.dueSoon),
      counter(u"onTrack", u"On track", u"ok", counts.onTrack, QStringLiteral("8–30 days or 11–50 hours"),
              QStringLiteral("On Track (today)"), today.onTrack)};
}

void Dashboard::readMeters(const Vessel& vessel) {
  meters_.clear();
  for (const HourSource source : vessel.meters()) {
    meters_.append(QVariantMap{{QStringLiteral("label"), toQt(meterLabel(source))},
                               {QStringLiteral("value"), format_.number(vessel.reading(source), 1)}});
  }
  metersUpdated_ = vessel.engineHoursUpdatedAt
                       ? QStringLiteral("Updated ") +
                             toQt(formatDistance(*vessel.engineHoursUpdatedAt, watch_.now(), watch_.calendar()))
                       : QStringLiteral("Never updated");
}

void Dashboard::readAttention(const Vessel& vessel) {
  attention_.clear();
  std::vector<const MaintenanceTask*> squawks;
  std::vector<const MaintenanceTask*> warranties;
  std::vector<const MaintenanceTask*> withoutMeter;
  std::vector<const MaintenanceTask*> withoutDue;
  std::vector<const MaintenanceTask*> snoozed;
  for (const MaintenanceTask& task : watch_.store().tasks().records()) {
    if (task.vesselID != vessel.id || task.isCompleted) continue;
    if (task.kind == TaskKind::deficiencySquawk) squawks.push_back(&task);
    if (task.kind == TaskKind::warranty) warranties.push_back(&task);
    if (task.dueAtEngineHours && !vessel.hasMeter(task.hourSource)) withoutMeter.push_back(&task);
    if (!task.dueDate && !task.dueAtEngineHours) withoutDue.push_back(&task);
    if (isSnoozed(task, watch_.now())) snoozed.push_back(&task);
  }
  const auto task = [](const MaintenanceTask* one) {
    return QVariantMap{{QStringLiteral("highlight"), idText(one->id)}};
  };
  if (!squawks.empty()) {
    attention_.append(attentionItem(u"warning", counted(squawks.size(), u"open squawk", u"open squawks"),
                                    firstOf(squawks), u"maintenance",
                                    {{QStringLiteral("kind"), toQt(rawText(TaskKind::deficiencySquawk))}}));
  }
  if (!warranties.empty()) {
    attention_.append(attentionItem(u"shield-check", counted(warranties.size(), u"warranty item", u"warranty items"),
                                    firstOf(warranties), u"maintenance",
                                    {{QStringLiteral("kind"), toQt(rawText(TaskKind::warranty))}}));
  }
  if (!withoutMeter.empty()) {
    attention_.append(attentionItem(
        u"gauge", counted(withoutMeter.size(), u"task names a meter not fitted", u"tasks name a meter not fitted"),
        firstOf(withoutMeter), u"taskLibrary", task(withoutMeter.front())));
  }
  const auto updated = vessel.engineHoursUpdatedAt;
  if (!vessel.meters().empty() && (!updated || watch_.now() - *updated > kMetersGrowOld)) {
    attention_.append(attentionItem(
        u"clock",
        updated ? QStringLiteral("Hour meters are over 30 days old") : QStringLiteral("Hour meters were never read"),
        QStringLiteral("Due by hours is judged on them"), u""));
    QVariantMap last = attention_.last().toMap();
    last[QStringLiteral("notification")] = QStringLiteral("openHoursEditor");
    attention_.last() = last;
  }
  if (!snoozed.empty()) {
    const auto next = std::ranges::min(snoozed, {}, [](const MaintenanceTask* one) { return *one->snoozedUntil; });
    attention_.append(attentionItem(
        u"bell-z", counted(snoozed.size(), u"snoozed task", u"snoozed tasks"),
        QStringLiteral("%1 returns %2")
            .arg(toQt(next->title), toQt(formatDistance(*next->snoozedUntil, watch_.now(), watch_.calendar()))),
        u"taskLibrary", task(next)));
  }
  if (!withoutDue.empty()) {
    attention_.append(attentionItem(u"calendar-blank",
                                    counted(withoutDue.size(), u"task never falls due", u"tasks never fall due"),
                                    firstOf(withoutDue), u"taskLibrary", task(withoutDue.front())));
  }
}

void Dashboard::readWorkDone(const Uuid& vessel) {
  struct Month {
    int jobs = 0;
    double cost = 0;
  };
  std::array<Month, kMonths> months;
  const auto thisMonth = [&] {
    const year_month_day today = watch_.calendar().date(watch_.now());
    return today.year() / today.month();
  }();
  const Timestamp from = watch_.calendar().at((thisMonth - std::chrono::months(kMonths - 1)) / 1d);
  Month all;
  for (const ServiceLog& log : watch_.store().logs().records()) {
    if (log.vesselID != vessel || log.completedDate < from) continue;
    const year_month_day day = watch_.calendar().date(log.completedDate);
    const auto ago = (thisMonth - day.year() / day.month()).count();
    if (ago < 0 || ago >= kMonths) continue;
    Month& month = months[static_cast<std::size_t>(kMonths - 1 - ago)];
    const double cost = totalCost(log).value_or(0);
    ++month.jobs;
    month.cost += cost;
    ++all.jobs;
    all.cost += cost;
  }
  const VesselProfile* profile = watch_.store().profileOf(vessel);
  const QString currency = toQt(costCurrency(profile ? *profile : VesselProfile()));
  const auto told = [&](const Month& month) {
    QString text = counted(static_cast<std::size_t>(month.jobs), u"job", u"jobs");
    if (month.cost > 0) text += QStringLiteral(" · ") + format_.money(month.cost, currency);
    return text;
  };
  workDone_.clear();
  for (int i = 0; i < kMonths; ++i) {
    const auto month = thisMonth - std::chrono::months(kMonths - 1 - i);
    const QString name =
        QLocale().standaloneMonthName(static_cast<int>(static_cast<unsigned>(month.month())), QLocale::ShortFormat);
    const Month& one = months[static_cast<std::size_t>(i)];
    workDone_.append(
        QVariantMap{{QStringLiteral("label"), name},
                    {QStringLiteral("value"), one.jobs},
                    {QStringLiteral("text"),
                     QStringLiteral("%1 %2: %3").arg(name).arg(static_cast<int>(month.year())).arg(told(one))}});
  }
  workDoneText_ = all.jobs > 0 ? told(all) : QString();
}

}  // namespace thalvorn::app
