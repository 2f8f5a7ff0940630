#include "app/registers/register_charts.h"

namespace thalvorn::app {

namespace {

using namespace std::chrono;

constexpr int kMonths = 12;

QString monthLetterAndName(year_month month, bool full) {
  const QString name = QLocale::c().monthName(static_cast<int>(static_cast<unsigned>(month.month())),
                                              full ? QLocale::LongFormat : QLocale::ShortFormat);
  return full ? name + u' ' + QString::number(static_cast<int>(month.year())) : name.left(1);
}

}  // namespace

bool isOfChart(Timestamp time, const Format& format) {
  const Timestamp now = format.clock().now();
  return time <= now + days(31) && time > now - days(31 * kMonths);
}

QVariantMap monthChart(const QString& title, const std::vector<DatedAmount>& amounts, const QString& unit,
                       const Format& format) {
  const Calendar calendar = format.clock().calendar();
  const year_month_day today = calendar.date(format.clock().now());
  const std::vector<MonthSum> sums = monthSums(amounts, calendar);
  QVariantList bars;
  bool any = false;
  for (int back = kMonths - 1; back >= 0; --back) {
    const year_month month = today.year() / today.month() - months(back);
    double sum = 0;
    for (const MonthSum& one : sums)
      if (one.month == month) sum = one.sum;
    any = any || sum > 0;
    bars.append(
        QVariantMap{{QStringLiteral("label"), monthLetterAndName(month, false)},
                    {QStringLiteral("value"), sum},
                    {QStringLiteral("text"),
                     QStringLiteral("%1: %2 %3").arg(monthLetterAndName(month, true), format.number(sum), unit)}});
  }
  return any ? QVariantMap{{QStringLiteral("title"), title}, {QStringLiteral("bars"), bars}} : QVariantMap();
}

}  // namespace thalvorn::app
