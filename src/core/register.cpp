#include "core/register.h"

#include <algorithm>
#include <numeric>

#include "base/date_format.h"

namespace thalvorn {
namespace {

std::optional<std::string_view> textOf(const RegisterValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* text = std::get_if<std::string_view>(&value)) return *text;
  return std::nullopt;
}

/// What two values are compared by; a value that is missing has neither.
struct SortKey {
  std::optional<double> number;
  std::string text;
  bool missing() const { return !number && text.empty(); }
};

SortKey sortKeyOf(const RegisterValue& value) {
  if (const auto text = textOf(value)) return {.number = std::nullopt, .text = foldText(*text)};
  if (const auto* number = std::get_if<double>(&value)) return {.number = *number, .text = {}};
  if (const auto* time = std::get_if<Timestamp>(&value))
    return {.number = static_cast<double>(time->time_since_epoch().count()), .text = {}};
  return {};
}

}  // namespace

void setDays(RegisterQuery& query, std::optional<Timestamp> first, std::optional<Timestamp> last,
             const Calendar& calendar) {
  query.from.reset();
  query.until.reset();
  if (first) query.from = calendar.startOfDay(*first);
  if (last) query.until = calendar.at(std::chrono::sys_days(calendar.date(*last)) + std::chrono::days(1));
}

std::string shownText(const RegisterValue& value, const ColumnFacts& column, const NumberLocale& numbers,
                      const Calendar& calendar) {
  if (const auto text = textOf(value)) return std::string(*text);
  if (const auto* number = std::get_if<double>(&value)) return formatNumber(*number, column.decimals, numbers);
  if (const auto* time = std::get_if<Timestamp>(&value))
    return column.form == ValueForm::date ? formatDate(calendar.date(*time)) : formatDateTime(calendar.local(*time));
  return {};
}

std::vector<std::uint32_t> sortedOrder(std::vector<RegisterValue> values, bool descending) {
  std::vector<SortKey> keys;
  keys.reserve(values.size());
  for (const RegisterValue& value : values) keys.push_back(sortKeyOf(value));
  std::vector<std::uint32_t> order(keys.size());
  std::iota(order.begin(), order.end(), 0U);
  std::ranges::sort(order, [&](std::uint32_t left, std::uint32_t right) {
    const SortKey& a = keys[left];
    const SortKey& b = keys[right];
    if (a.missing() != b.missing()) return b.missing();
    if (a.number && b.number && *a.number != *b.number) return (*a.number < *b.number) != descending;
    if (const int order = a.text.compare(b.text); order != 0) return (order < 0) != descending;
    return left < right;
  });
  return order;
}

Column paperColumn(const ColumnFacts& column) {
  const bool number = column.form == ValueForm::number;
  Column made{.title = std::string(column.title),
              .weight = column.weight,
              .alignment = number ? Alignment::right : Alignment::left,
              .wraps = column.form == ValueForm::text};
  if (!column.unit.empty() && !foldText(made.title).contains(foldText(column.unit)))
    made.title += " (" + std::string(column.unit) + ")";
  return made;
}

}  // namespace thalvorn
