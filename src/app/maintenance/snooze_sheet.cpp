#include "app/maintenance/snooze_sheet.h"

#include <algorithm>
#include <array>

#include "app/maintenance/task_texts.h"
#include "base/date_format.h"

namespace thalvorn::app {

namespace {

struct Period {
  const char16_t* value;
  const char16_t* text;
  int days = 0;
  int months = 0;
};

constexpr std::array kPeriods = std::to_array<Period>({{u"1d", u"1 day", 1, 0},
                                                       {u"3d", u"3 days", 3, 0},
                                                       {u"1w", u"1 week", 7, 0},
                                                       {u"2w", u"2 weeks", 14, 0},
                                                       {u"1m", u"1 month", 0, 1}});
constexpr const char16_t* kOwnDate = u"date";

/// The end of a period that begins now. A month later is the same day of the month, or its last.
Timestamp endOf(const Period& period, Timestamp now, const Calendar& calendar) {
  const LocalTime local = calendar.local(now);
  std::chrono::year_month_day day = local.date + std::chrono::months(period.months);
  if (!day.ok()) day = day.year() / day.month() / std::chrono::last;
  const Timestamp moved = calendar.at(day, local.timeOfDay);
  return calendar.addDays(moved, period.days).value_or(moved);
}

}  // namespace

SnoozeSheet::SnoozeSheet(AppViewModel& store, const Format& format, const Uuid& taskID)
    : store_(store), format_(format), taskID_(taskID), until_(store.now()) {
  setPeriod(QStringLiteral("1w"));
  if (snoozed()) setUntil(Format::toQml(*task()->snoozedUntil));
}

QString SnoozeSheet::subtitle() const {
  const MaintenanceTask* one = task();
  return one ? toQt(one->title) : QString();
}

bool SnoozeSheet::snoozed() const {
  const MaintenanceTask* one = task();
  return one && isSnoozed(*one, store_.now());
}

QVariantList SnoozeSheet::periods() const {
  QVariantList list;
  const Calendar calendar = store_.calendar();
  for (const Period& period : kPeriods) {
    const Timestamp end = endOf(period, store_.now(), calendar);
    list.append(QVariantMap{{QStringLiteral("value"), QString::fromUtf16(period.value)},
                            {QStringLiteral("text"), QString::fromUtf16(period.text)},
                            {QStringLiteral("detail"), toQt(formatDue(end, store_.now(), calendar))}});
  }
  list.append(QVariantMap{{QStringLiteral("value"), QString::fromUtf16(kOwnDate)},
                          {QStringLiteral("text"), QStringLiteral("Until a date")},
                          {QStringLiteral("detail"), QString()}});
  return list;
}

void SnoozeSheet::setPeriod(const QString& period) {
  if (period == period_) return;
  period_ = period;
  const auto* found = std::ranges::find_if(kPeriods, [&](const Period& one) { return period == one.value; });
  if (found != kPeriods.end()) until_ = endOf(*found, store_.now(), store_.calendar());
  Q_EMIT changed();
}

void SnoozeSheet::setUntil(const QDateTime& until) {
  if (!until.isValid()) return;
  until_ = Format::fromQml(until);
  period_ = QString::fromUtf16(kOwnDate);
  Q_EMIT changed();
}

QString SnoozeSheet::untilText() const { return QStringLiteral("Silent until ") + format_.date(until()); }

QString SnoozeSheet::message() const {
  return until_ > store_.now() ? QString() : QStringLiteral("Choose a day to come.");
}

bool SnoozeSheet::done(const Saving& saving) {
  if (saving.isFinished() && !saving.result()) {
    error_ = toQt(saving.result().error().message);
    Q_EMIT changed();
    return false;
  }
  return true;
}

bool SnoozeSheet::save() { return message().isEmpty() && done(store_.snoozeTask(taskID_, until_)); }

bool SnoozeSheet::endSnooze() { return done(store_.unsnoozeTask(taskID_)); }

}  // namespace thalvorn::app
