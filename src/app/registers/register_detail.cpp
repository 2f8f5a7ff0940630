#include "app/registers/register_detail.h"

#include "core/record_paper.h"
#include "operations/bunkering.h"

namespace thalvorn::app {

QString detailText(const RegisterValue& value, const ColumnFacts& column, const Format& format) {
  const Calendar calendar = format.clock().calendar();
  if (shownText(value, column, format.numbers(), calendar).empty()) return {};
  return toQt(thalvorn::detailText(value, column, format.numbers(), calendar));
}

QString otherUnitText(const RegisterValue& value, const ColumnFacts& column, const Format& format) {
  const auto* number = std::get_if<double>(&value);
  if (!number || column.unit != "gal" || !format.metric()) return {};
  return format.number(*number * kLitresPerGallon, column.decimals) + QStringLiteral(" L");
}

}  // namespace thalvorn::app
