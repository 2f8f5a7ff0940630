#include "app/registers/register_detail.h"

#include "operations/bunkering.h"

namespace thalvorn::app {

QString detailText(const RegisterValue& value, const ColumnFacts& column, const Format& format) {
  if (const auto* number = std::get_if<double>(&value); number && column.unit == "hrs") return toQt(hoursText(*number));
  const QString text = toQt(shownText(value, column, format.numbers(), format.clock().calendar()));
  return text.isEmpty() || column.unit.empty() ? text : text + u' ' + toQt(column.unit);
}

QString otherUnitText(const RegisterValue& value, const ColumnFacts& column, const Format& format) {
  const auto* number = std::get_if<double>(&value);
  if (!number || column.unit != "gal" || !format.metric()) return {};
  return format.number(*number * kLitresPerGallon, column.decimals) + QStringLiteral(" L");
}

}  // namespace thalvorn::app
