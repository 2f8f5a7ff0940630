#include "core/csv_cells.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace thalvorn {

NumberLocale numbersOf(CsvSeparator separator) {
  if (separator == CsvSeparator::semicolon) return {.decimalPoint = ",", .groupSeparator = "."};
  return {};
}

std::expected<double, std::string> numberCell(std::string_view cell, const NumberLocale& numbers) {
  // As CsvWriter writes it: without group separators.
  std::string plain(cell);
  if (numbers.decimalPoint == ",") {
    if (plain.contains('.')) return parseNumber(cell, numbers);
    std::ranges::replace(plain, ',', '.');
  }
  double value = 0;
  const char* const end = plain.data() + plain.size();
  const auto read = std::from_chars(plain.data(), end, value);
  if (read.ec == std::errc() && read.ptr == end && std::isfinite(value)) return value;
  return parseNumber(cell, numbers);
}

}  // namespace thalvorn
