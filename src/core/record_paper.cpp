#include "core/record_paper.h"

#include <fmt/format.h>

namespace thalvorn {

std::string detailText(const RegisterValue& value, const ColumnFacts& column, const NumberLocale& numbers,
                       const Calendar& calendar) {
  if (const auto* hours = std::get_if<double>(&value); hours != nullptr && column.unit == "hrs")
    return hoursText(*hours);
  std::string text = shownText(value, column, numbers, calendar);
  if (text.empty()) return "—";
  if (!column.unit.empty()) text += fmt::format(" {}", column.unit);
  return text;
}

std::string countText(std::size_t count, std::string_view singular, std::string_view plural) {
  return fmt::format("{} {}", count, count == 1 ? singular : plural);
}

}  // namespace thalvorn
