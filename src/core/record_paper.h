#pragma once

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/register.h"
#include "core/report_basics.h"

/// What the papers of all registers have in common.
namespace thalvorn {

/// The value of one field as a paper or a detail page shows it, with its unit: "12 kts", "1234.5 hrs", "4.125",
/// "14 Jan 2026 08:05"; an em dash where there is none.
std::string detailText(const RegisterValue& value, const ColumnFacts& column, const NumberLocale& numbers,
                       const Calendar& calendar);

/// A field of a record with its label, or with `label` instead.
template <auto member, class T>
LabeledText labeledField(const T& record, const ReportSetting& setting, std::string_view label = {}) {
  constexpr RegisterColumn<T> column = fieldColumn<member>();
  return {std::string(label.empty() ? column.title : label),
          detailText(column.value(record), column, setting.numbers, setting.calendar)};
}

/// The days asked for, else those from the first to the last record.
template <HasRegister T>
std::string periodOf(std::span<const T> records, ReportPeriod asked, const Calendar& calendar) {
  if (!records.empty()) {
    const auto [first, last] = std::ranges::minmax(records, {}, Register<T>::date);
    if (!asked.first) asked.first = first.*Register<T>::date;
    if (!asked.last) asked.last = last.*Register<T>::date;
  }
  return periodText(asked, calendar);
}

/// "4 records, newest first": how many there are and in which order they stand.
std::string countText(std::size_t count, std::string_view singular, std::string_view plural);
template <HasRegister T>
std::string orderText(std::span<const T> records) {
  std::string text = countText(records.size(), Register<T>::facts.singular, Register<T>::facts.plural);
  if (records.size() < 2) return text;
  if (std::ranges::is_sorted(records, std::ranges::greater(), Register<T>::date)) return text + ", newest first";
  if (std::ranges::is_sorted(records, std::ranges::less(), Register<T>::date)) return text + ", oldest first";
  return text;
}

/// Puts the name of each record's vessel behind the first column.
template <HasRegister T>
void addVesselColumn(Table& table, std::span<const T> records, std::span<const ReportVessel> vessels) {
  table.columns.insert(table.columns.begin() + 1, Column{.title = "Vessel"});
  for (std::size_t i = 0; i < records.size(); ++i) {
    auto& cells = table.rows[i].cells;
    cells.insert(cells.begin() + 1, Cell(std::string(vesselNameOf(records[i].vesselID, vessels))));
  }
}

}  // namespace thalvorn
