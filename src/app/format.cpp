#include "app/format.h"

#include <QLocale>
#include <QRegularExpression>
#include <limits>

#include "app/text.h"
#include "base/date_format.h"

namespace thalvorn::app {

namespace {

NumberLocale localeOf(const QLocale& locale) {
  return {.decimalPoint = locale.decimalPoint().toStdString(), .groupSeparator = locale.groupSeparator().toStdString()};
}

/// The month a word begins with, in English or the user's language; 0 for none.
int monthNamed(const QString& word) {
  if (word.size() < 3) return 0;
  for (int month = 1; month <= 12; ++month) {
    for (const QLocale& locale : {QLocale::c(), QLocale()}) {
      if (locale.monthName(month).startsWith(word, Qt::CaseInsensitive) ||
          locale.monthName(month, QLocale::ShortFormat).startsWith(word, Qt::CaseInsensitive)) {
        return month;
      }
    }
  }
  return 0;
}

/// Whether the user's country writes the month before the day in figures.
bool monthFirst() {
  const QString form = QLocale().dateFormat(QLocale::ShortFormat);
  return form.indexOf(u'M', 0, Qt::CaseSensitive) < form.indexOf(u'd', 0, Qt::CaseSensitive) && !form.startsWith(u'y');
}

int fullYear(const QString& digits, int otherwise) {
  if (digits.isEmpty()) return otherwise;
  const int year = digits.toInt();
  return digits.size() <= 2 ? 2000 + year : year;
}

QDate parseDay(const QString& text, const QDate& today) {
  static const QRegularExpression iso(QStringLiteral("^(\\d{4})-(\\d{1,2})-(\\d{1,2})$"));
  static const QRegularExpression named(
      QStringLiteral("^(?:\\p{L}+\\.?,? )?(\\d{1,2})\\.? (\\p{L}+)\\.?,?(?: (\\d{2,4}))?$"));
  static const QRegularExpression namedFirst(QStringLiteral("^(\\p{L}+)\\.? (\\d{1,2})(?:,? (\\d{4}))?$"));
  static const QRegularExpression figures(QStringLiteral("^(\\d{1,2})[./-](\\d{1,2})(?:[./-](\\d{2,4}))?\\.?$"));
  static const QRegularExpression offset(QStringLiteral("^([+-]\\d{1,5})(?: ?d(?:ays)?)?$"));
  const QString word = text.simplified();
  if (word.compare(u"today", Qt::CaseInsensitive) == 0) return today;
  if (word.compare(u"tomorrow", Qt::CaseInsensitive) == 0) return today.addDays(1);
  if (word.compare(u"yesterday", Qt::CaseInsensitive) == 0) return today.addDays(-1);
  if (const auto found = offset.match(word); found.hasMatch()) return today.addDays(found.captured(1).toInt());
  if (const auto found = iso.match(word); found.hasMatch()) {
    return {found.captured(1).toInt(), found.captured(2).toInt(), found.captured(3).toInt()};
  }
  if (const auto found = named.match(word); found.hasMatch()) {
    return {fullYear(found.captured(3), today.year()), monthNamed(found.captured(2)), found.captured(1).toInt()};
  }
  if (const auto found = namedFirst.match(word); found.hasMatch()) {
    return {fullYear(found.captured(3), today.year()), monthNamed(found.captured(1)), found.captured(2).toInt()};
  }
  if (const auto found = figures.match(word); found.hasMatch()) {
    const int first = found.captured(1).toInt();
    const int second = found.captured(2).toInt();
    const bool swap = second > 12 || (monthFirst() && first <= 12);
    return {fullYear(found.captured(3), today.year()), swap ? first : second, swap ? second : first};
  }
  return {};
}

}  // namespace

Format::Format(const Clock& clock, QObject* parent) : QObject(parent), clock_(clock), numbers_(localeOf(QLocale())) {}

bool Format::metric() const { return QLocale().measurementSystem() == QLocale::MetricSystem; }

QVariantList Format::periods() const {
  using namespace std::chrono;
  const Calendar calendar = clock_.calendar();
  const year_month_day today = calendar.date(clock_.now());
  const auto period = [&](const char* text, year_month_day first, year_month_day last) {
    return QVariantMap{{QStringLiteral("text"), QString::fromLatin1(text)},
                       {QStringLiteral("first"), toQml(calendar.at(first))},
                       {QStringLiteral("last"), toQml(calendar.at(last))}};
  };
  const year_month month = today.year() / today.month();
  const auto lastOf = [](year_month of) { return year_month_day(of / std::chrono::last); };
  const year_month before = month - months(1);
  const year_month_day yearAgo(sys_days(lastOf(month - months(12))) + days(1));
  return {period("This month", month / 1, lastOf(month)), period("Last month", before / 1, lastOf(before)),
          period("Last 12 months", yearAgo, lastOf(month)),
          period("This year", today.year() / 1 / 1, today.year() / 12 / 31),
          period("Last year", (today.year() - years(1)) / 1 / 1, (today.year() - years(1)) / 12 / 31)};
}

QDateTime Format::toQml(Timestamp time) { return QDateTime::fromSecsSinceEpoch(time.time_since_epoch().count()); }

Timestamp Format::fromQml(const QDateTime& time) { return Timestamp(std::chrono::seconds(time.toSecsSinceEpoch())); }

QString Format::number(double value, int decimals) const { return toQt(formatNumber(value, decimals, numbers_)); }

double Format::parseNumber(const QString& text) const {
  return thalvorn::parseNumber(text.toStdString(), numbers_).value_or(std::numeric_limits<double>::quiet_NaN());
}

QString Format::hours(double value) const { return number(value, 1) + QStringLiteral(" h"); }

QString Format::money(double amount, const QString& currency) const {
  return toQt(formatMoney(amount, currency.toStdString(), numbers_));
}

QDateTime Format::now() const { return toQml(clock_.now()); }

QString Format::date(const QDateTime& time) const {
  return time.isValid() ? toQt(formatDate(clock_.calendar().date(fromQml(time)))) : QString();
}

QString Format::dateTime(const QDateTime& time) const {
  return time.isValid() ? toQt(formatDateTime(clock_.calendar().local(fromQml(time)))) : QString();
}

QString Format::distance(const QDateTime& time) const {
  return time.isValid() ? toQt(formatDistance(fromQml(time), clock_.now(), clock_.calendar())) : QString();
}

QString Format::due(const QDateTime& time) const {
  return time.isValid() ? toQt(formatDue(fromQml(time), clock_.now(), clock_.calendar())) : QString();
}

QString Format::month(const QDateTime& time) const { return QLocale::c().toString(time.date(), u"MMMM yyyy"); }

QDateTime Format::addDays(const QDateTime& time, int days) const {
  const auto moved = clock_.calendar().addDays(fromQml(time), days);
  return moved ? toQml(*moved) : time;
}

QVariant Format::parseDate(const QString& text, const QVariant& otherwise, bool withTime) const {
  static const QRegularExpression clockFace(QStringLiteral("[ T,·]+(\\d{1,2})[:.h](\\d{2})$"));
  const QDateTime given = otherwise.toDateTime();
  const QDateTime base = given.isValid() ? given.toLocalTime() : now();
  QString day = text.simplified();
  QTime time = base.time();
  if (withTime) {
    if (const auto found = clockFace.match(day); found.hasMatch()) {
      time = QTime(found.captured(1).toInt(), found.captured(2).toInt());
      day.truncate(found.capturedStart());
    }
  }
  const QDate date = parseDay(day, now().date());
  if (!date.isValid() || !time.isValid() || date.year() < 1900 || date.year() > 9999) return {};
  return QDateTime(date, time);
}

}  // namespace thalvorn::app
