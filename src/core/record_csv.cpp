#include "core/record_csv.h"

#include <cmath>

namespace thalvorn::record_csv_detail {

std::optional<double> CellReader::number(bool whole) {
  const auto read = numberCell(cell_, numbers_);
  if (!read) {
    problem(fmt::format("{}: {} Left empty.", title_, read.error()));
    return std::nullopt;
  }
  if (whole && (*read != std::floor(*read) || std::abs(*read) > 9.0e15)) {
    problem(fmt::format("{}: “{}” is not a whole number. Left empty.", title_, cell_));
    return std::nullopt;
  }
  if (facts_ != nullptr && (*read < facts_->minimum || *read > facts_->maximum)) {
    const bool less = *read < facts_->minimum;
    problem(fmt::format("{}: “{}” is {} than {}. Left empty.", title_, cell_, less ? "less" : "more",
                        formatQuantity(less ? facts_->minimum : facts_->maximum)));
    return std::nullopt;
  }
  return *read;
}

std::optional<Timestamp> CellReader::time() {
  const auto read = parseSpreadsheetDateTime(cell_, calendar_);
  if (!read) problem(fmt::format("{}: “{}” is not a date such as 2026-05-31 08:00. Left empty.", title_, cell_));
  return read;
}

std::optional<Uuid> CellReader::identity() {
  const auto read = Uuid::parse(cell_);
  if (!read) problem(fmt::format("{}: “{}” is not an identifier. Left empty.", title_, cell_));
  return read;
}

std::optional<bool> CellReader::truth() {
  for (const std::string_view yes : {"true", "yes", "1"})
    if (equalIgnoringCase(cell_, yes)) return true;
  for (const std::string_view no : {"false", "no", "0"})
    if (equalIgnoringCase(cell_, no)) return false;
  problem(fmt::format("{}: “{}” is neither TRUE nor FALSE. Left empty.", title_, cell_));
  return std::nullopt;
}

void writeTotals(CsvWriter& csv, std::span<const CsvTotal> totals) {
  if (totals.empty()) return;
  csv.endRow().label(kTotalsTitle).endRow();
  for (const CsvTotal& total : totals) csv.label(total.label).number(total.value, total.decimals).endRow();
}

bool beginsTotals(const CsvRow& row) {
  if (row.cell(0) != kTotalsTitle) return false;
  for (std::size_t i = 1; i < row.cells.size(); ++i)
    if (!row.cell(i).empty()) return false;
  return true;
}

bool isBlank(const CsvRow& row) {
  for (std::size_t i = 0; i < row.cells.size(); ++i)
    if (!row.cell(i).empty()) return false;
  return true;
}

Uuid identityOf(const CsvRow& row, const Uuid& space) {
  std::string texts;
  for (const std::string_view cell : row.cells) {
    texts += cell;
    texts += '\0';
  }
  return Uuid::named(space, texts);
}

}  // namespace thalvorn::record_csv_detail
