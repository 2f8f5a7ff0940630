#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/calendar.h"
#include "base/describe.h"
#include "base/enums.h"
#include "base/fields.h"
#include "base/number_format.h"
#include "base/search_text.h"
#include "base/uuid.h"
#include "core/report_basics.h"
#include "reports/document/document.h"

/// A register described once: its list on the screen, its search, filters and order, and the table on paper all read
/// the columns that stand beside the record as `Register<T>`.
namespace thalvorn {

/// What a column holds of one record; nothing where the record has no value.
using RegisterValue = std::variant<std::monostate, std::string_view, std::string, double, Timestamp>;

enum class ValueForm : std::uint8_t { text, number, date, dateTime };

/// How a list can be narrowed by a column.
enum class ColumnFilter : std::uint8_t {
  none,
  choice,   ///< one case of an enumeration
  choices,  ///< any of several cases
  text,     ///< words that occur in the column
};

struct ColumnFacts {
  std::string_view key;    ///< names the column in lists, orders and filters; the field's name where it shows a field
  std::string_view title;  ///< its head on screen and paper
  std::string_view unit = {};
  ValueForm form = ValueForm::text;
  int decimals = 0;
  bool searched = false;  ///< the free-text search looks into it
  ColumnFilter filter = ColumnFilter::none;
  std::span<const EnumText> cases = {};  ///< of an enumeration
  double weight = 1;                     ///< share of the paper's width among the columns that wrap
};

template <class T>
struct RegisterColumn : ColumnFacts {
  RegisterValue (*value)(const T&) = nullptr;
  RegisterValue (*order)(const T&) = nullptr;      ///< what it is sorted by
  std::string_view (*stored)(const T&) = nullptr;  ///< the text that search and filters compare; null for numbers
};

/// What a register is called.
struct RegisterFacts {
  std::string_view key;       ///< "bunkering": its name in addresses and settings
  std::string_view title;     ///< "Fuel Bunkering Log"
  std::string_view singular;  ///< "bunkering record"
  std::string_view plural;
};

/// Specialised beside each register's record: `facts`, `columns` (an array of RegisterColumn<T>), `date`, the member
/// that periods are counted by, and `name(record)`, what a person calls a record.
template <class T>
struct Register;

template <class T>
concept HasRegister = requires {
  Register<T>::facts;
  Register<T>::columns;
};

namespace register_detail {

template <class M>
struct MemberOf;
template <class R, class V>
struct MemberOf<V R::*> {
  using Record = R;
  using Value = V;
};

template <auto member>
constexpr std::string_view nameOfMember() {
  using T = typename MemberOf<decltype(member)>::Record;
  std::string_view name;
  boost::mp11::mp_for_each<FieldList<T>>([&](auto field) {
    if constexpr (std::is_same_v<std::remove_cv_t<decltype(field.pointer)>, std::remove_cv_t<decltype(member)>>) {
      if (field.pointer == member) name = field.name;
    }
  });
  return name;
}

template <class V>
RegisterValue shownValue(const V& value) {
  if constexpr (isChoice<V>) {
    return value.display();
  } else if constexpr (requires { value.has_value(); }) {
    return value ? shownValue(*value) : RegisterValue();
  } else if constexpr (std::is_same_v<V, bool>) {
    return std::string_view(value ? "Yes" : "No");
  } else if constexpr (std::is_arithmetic_v<V>) {
    return static_cast<double>(value);
  } else if constexpr (std::is_same_v<V, std::string>) {
    return std::string_view(value);
  } else {
    return value;
  }
}

template <class V>
struct Plain {
  using Type = V;
};
template <class V>
struct Plain<std::optional<V>> {
  using Type = V;
};

template <class V>
constexpr ValueForm formOf(const FieldFacts* facts) {
  using P = typename Plain<V>::Type;
  if constexpr (std::is_same_v<P, Timestamp>)
    return facts != nullptr && facts->entry == FieldEntry::dateOnly ? ValueForm::date : ValueForm::dateTime;
  else if constexpr (std::is_arithmetic_v<P> && !std::is_same_v<P, bool>)
    return ValueForm::number;
  else
    return ValueForm::text;
}

template <class E>
constexpr std::span<const EnumText> casesOf(const Choice<E>*) {
  return EnumTexts<E>::table;
}

}  // namespace register_detail

/// What a column of a field says beyond the field's own facts.
struct ColumnUse {
  std::string_view title = {};  ///< instead of the field's label
  bool searched = false;
  ColumnFilter filter = ColumnFilter::none;
  double weight = 1;
};

/// A column that shows a field as it is; label, unit and decimals come from the field's facts.
template <auto member>
constexpr auto fieldColumn(ColumnUse use = {}) {
  using T = typename register_detail::MemberOf<decltype(member)>::Record;
  using V = typename register_detail::MemberOf<decltype(member)>::Value;
  constexpr std::string_view name = register_detail::nameOfMember<member>();
  static_assert(!name.empty(), "only described fields have columns");
  const FieldFacts* facts = factsOf<T>(name);
  RegisterColumn<T> column;
  column.key = name;
  column.title = !use.title.empty() ? use.title : facts != nullptr ? facts->label : name;
  column.unit = facts != nullptr ? facts->unit : std::string_view();
  column.form = register_detail::formOf<V>(facts);
  column.decimals = facts != nullptr ? facts->decimals : 0;
  column.searched = use.searched;
  column.filter = use.filter;
  column.weight = use.weight;
  column.value = [](const T& record) { return register_detail::shownValue(record.*member); };
  column.order = column.value;
  if constexpr (std::is_same_v<V, std::string>) {
    column.stored = [](const T& record) { return std::string_view(record.*member); };
  } else if constexpr (isChoice<V>) {
    column.cases = register_detail::casesOf(static_cast<const V*>(nullptr));
    column.stored = [](const T& record) { return (record.*member).raw(); };
    column.order = [](const T& record) -> RegisterValue { return static_cast<double>((record.*member).order()); };
  }
  return column;
}

/// A column that is worked out of a record.
template <class T>
constexpr RegisterColumn<T> computedColumn(ColumnFacts facts, RegisterValue (*value)(const T&)) {
  RegisterColumn<T> column{facts};
  column.value = value;
  column.order = value;
  return column;
}

/// What of a register is asked for, and in which order.
struct RegisterQuery {
  struct Narrowing {
    std::string column;
    std::vector<std::string> values;  ///< stored texts, any of which passes; of a text filter the words sought
    friend bool operator==(const Narrowing&, const Narrowing&) = default;
  };
  std::string search;                 ///< every word must occur in the searched columns
  std::vector<Uuid> vessels;          ///< of these only; of all when empty
  std::optional<Timestamp> from;      ///< from this moment on
  std::optional<Timestamp> until;     ///< before this moment
  std::vector<Narrowing> narrowings;  ///< an empty list of values passes everything
  std::string sort;                   ///< a column's key; by date when empty or unknown
  bool descending = true;
  friend bool operator==(const RegisterQuery&, const RegisterQuery&) = default;
};

/// The whole days `first` to `last`, both included, as a period of a query; a missing one leaves that end open.
void setDays(RegisterQuery& query, std::optional<Timestamp> first, std::optional<Timestamp> last,
             const Calendar& calendar);

/// The value as people read it: "12.5", "14 Jan 2026 08:05"; empty when there is none. Without its unit.
std::string shownText(const RegisterValue& value, const ColumnFacts& column, const NumberLocale& numbers,
                      const Calendar& calendar);

/// The order of positions 0 … keys.size()−1 by their keys, texts without regard to case and accents, nothing last;
/// equal ones keep their order.
std::vector<std::uint32_t> sortedOrder(std::vector<RegisterValue> keys, bool descending);

/// The head of a paper column; its unit in brackets unless the title names it.
Column paperColumn(const ColumnFacts& column);

template <HasRegister T>
constexpr const RegisterColumn<T>* columnOf(std::string_view key) {
  for (const RegisterColumn<T>& column : Register<T>::columns)
    if (column.key == key) return &column;
  return nullptr;
}

/// Appends the texts that the search looks into, a line each.
template <HasRegister T>
void appendSearched(std::string& out, const T& record) {
  for (const RegisterColumn<T>& column : Register<T>::columns) {
    if (!column.searched) continue;
    if (column.stored != nullptr && column.cases.empty()) {
      out += column.stored(record);
    } else {
      const RegisterValue value = column.value(record);
      if (const auto* text = std::get_if<std::string>(&value)) out += *text;
      if (const auto* text = std::get_if<std::string_view>(&value)) out += *text;
    }
    out += '\n';
  }
}

/// Everything of a query but its words, ready to be asked of many records.
template <HasRegister T>
class RegisterFilter {
 public:
  explicit RegisterFilter(const RegisterQuery& query) : query_(query) {
    for (const auto& narrowing : query.narrowings) {
      const RegisterColumn<T>* column = columnOf<T>(narrowing.column);
      if (column == nullptr || column->stored == nullptr || narrowing.values.empty()) continue;
      if (column->filter == ColumnFilter::text)
        texts_.push_back({column, SearchWords(narrowing.values.front())});
      else
        choices_.push_back({column, narrowing.values});
    }
  }

  bool passes(const T& record) {
    if constexpr (requires { record.vesselID; }) {
      if (!query_.vessels.empty() && !contains(query_.vessels, record.vesselID)) return false;
    }
    if constexpr (requires { Register<T>::date; }) {
      if (query_.from && record.*Register<T>::date < *query_.from) return false;
      if (query_.until && !(record.*Register<T>::date < *query_.until)) return false;
    }
    for (const auto& [column, values] : choices_)
      if (!contains(values, column->stored(record))) return false;
    for (auto& [column, words] : texts_)
      if (!words.matches({column->stored(record)})) return false;
    return true;
  }

 private:
  template <class List, class Value>
  static bool contains(const List& list, const Value& value) {
    for (const auto& one : list)
      if (one == value) return true;
    return false;
  }

  const RegisterQuery& query_;
  std::vector<std::pair<const RegisterColumn<T>*, std::vector<std::string>>> choices_;
  std::vector<std::pair<const RegisterColumn<T>*, SearchWords>> texts_;
};

/// The column that a query is ordered by.
template <HasRegister T>
const RegisterColumn<T>& sortColumn(const RegisterQuery& query) {
  if (const RegisterColumn<T>* column = columnOf<T>(query.sort)) return *column;
  for (const RegisterColumn<T>& column : Register<T>::columns)
    if (column.form == ValueForm::date || column.form == ValueForm::dateTime) return column;
  return Register<T>::columns.front();
}

/// Puts positions of `records` in the query's order.
template <HasRegister T>
void sortRecords(std::span<const T> records, std::vector<std::uint32_t>& positions, const RegisterQuery& query) {
  const RegisterColumn<T>& column = sortColumn<T>(query);
  std::vector<RegisterValue> keys;
  keys.reserve(positions.size());
  for (const std::uint32_t position : positions) keys.push_back(column.order(records[position]));
  std::vector<std::uint32_t> sorted;
  sorted.reserve(positions.size());
  for (const std::uint32_t at : sortedOrder(std::move(keys), query.descending)) sorted.push_back(positions[at]);
  positions = std::move(sorted);
}

/// The records that a query asks for, as positions in its order.
template <HasRegister T>
std::vector<std::uint32_t> selectRecords(std::span<const T> records, const RegisterQuery& query) {
  RegisterFilter<T> filter(query);
  SearchWords words(query.search);
  std::vector<std::uint32_t> positions;
  std::string texts;
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (!filter.passes(records[i])) continue;
    if (!words.empty()) {
      texts.clear();
      appendSearched(texts, records[i]);
      if (!words.matches({texts})) continue;
    }
    positions.push_back(static_cast<std::uint32_t>(i));
  }
  sortRecords(records, positions, query);
  return positions;
}

/// A table of the named columns, for paper.
template <HasRegister T>
Table registerTable(std::span<const T> records, std::initializer_list<std::string_view> keys,
                    const ReportSetting& setting) {
  Table table;
  std::vector<const RegisterColumn<T>*> columns;
  for (const std::string_view key : keys) {
    if (const RegisterColumn<T>* column = columnOf<T>(key)) {
      columns.push_back(column);
      table.columns.push_back(paperColumn(*column));
    }
  }
  table.rows.reserve(records.size());
  for (const T& record : records) {
    TableRow& row = table.rows.emplace_back();
    row.cells.reserve(columns.size());
    for (const RegisterColumn<T>* column : columns)
      row.cells.emplace_back(shownText(column->value(record), *column, setting.numbers, setting.calendar));
  }
  return table;
}

}  // namespace thalvorn
