#pragma once

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/calendar.h"
#include "base/csv.h"
#include "base/date_format.h"
#include "base/describe.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/uuid.h"
#include "core/csv_cells.h"
#include "core/register.h"
#include "core/vessel.h"

/// Any described record as a line of a spreadsheet, and back: one column per field, headed by its label, first the date
/// that the register counts by, identifiers last; sensitive fields are left out. Lists stand as JSON in one cell.
namespace thalvorn {

/// A figure below the rows.
struct CsvTotal {
  std::string label{};
  double value = 0;
  int decimals = 0;
};

/// The calendar aboard a vessel.
using CalendarAboard = std::function<Calendar(const Uuid& vesselID)>;

struct RecordCsvOptions {
  CsvFormat format{};
  std::vector<CsvTotal> totals{};  ///< below the rows under "SUMMARY"; reading the file again ends there
  /// Heads every row with the name of its vessel, for people; not read again. A record that holds the name itself has
  /// its own column.
  std::function<std::string(const Uuid&)> vesselName{};
  /// By whose wall clock the dates of a record stand, in place of the one calendar; reading needs the same.
  CalendarAboard calendarAboard{};
};

/// The records in the order given. Dates stand by the wall clock of the calendar; `recordsFromCsv` reads the file again
/// unchanged.
template <DescribedRecord T>
std::string recordsCsv(std::span<const T> records, const Calendar& calendar, const RecordCsvOptions& options = {});

template <class T>
struct RecordCsvImport {
  std::vector<T> records;
  std::vector<CsvProblem> problems;
  std::size_t skipped = 0;                  ///< rows that gave no record
  std::vector<std::string> ignoredColumns;  ///< whose heads name no field
};

/// Reads records; columns are found by label or field name in any order. A row without the register's date is skipped;
/// the date also stands for when the record was entered where the file does not tell. A record without an identity gets
/// one that follows from its row, so that a second import knows it; one without a vessel belongs to `vesselID`.
template <DescribedRecord T>
RecordCsvImport<T> recordsFromCsv(std::string_view text, const Uuid& vesselID, const Calendar& calendar,
                                  std::optional<CsvSeparator> separator = std::nullopt,
                                  const CalendarAboard& calendarAboard = {});

/// Those of `read` that are not among `known` and stand in the file once, by identity. Records of a vessel that is not
/// in the fleet become those of `vesselID`.
template <DescribedRecord T>
std::vector<T> newRecords(std::vector<T> read, std::span<const T> known, std::span<const Vessel> fleet,
                          const Uuid& vesselID) {
  std::unordered_set<Uuid> ids;
  for (const T& record : known) ids.insert(record.id);
  std::erase_if(read, [&](T& record) {
    if constexpr (requires { record.vesselID = vesselID; }) {
      if (std::ranges::find(fleet, record.vesselID, &Vessel::id) == fleet.end()) record.vesselID = vesselID;
    }
    return !ids.insert(record.id).second;
  });
  return read;
}

namespace record_csv_detail {

/// The row that stands above the totals.
inline constexpr std::string_view kTotalsTitle = "SUMMARY";

template <class V>
concept List = !std::is_same_v<V, std::string> && requires(V list) { list.begin(); };
template <class V>
inline constexpr bool isOptional = false;
template <class V>
inline constexpr bool isOptional<std::optional<V>> = true;
template <class V>
concept Identity = std::is_same_v<V, Uuid> || std::is_same_v<V, std::optional<Uuid>>;

class RowWriter {
 public:
  RowWriter(const CsvFormat& format, const Calendar& calendar) : csv(format), calendar_(calendar) {}

  void setCalendar(const Calendar& calendar) { calendar_ = calendar; }

  template <class V>
  void value(const V& value) {
    if constexpr (isOptional<V>) {
      value ? this->value(*value) : void(csv.empty());
    } else if constexpr (std::is_same_v<V, std::string>) {
      csv.text(value);
    } else if constexpr (std::is_same_v<V, bool>) {
      csv.text(value ? "TRUE" : "FALSE");
    } else if constexpr (std::floating_point<V>) {
      csv.number(value);
    } else if constexpr (std::integral<V>) {
      csv.integer(value);
    } else if constexpr (std::is_same_v<V, Timestamp>) {
      csv.text(spreadsheetDateTime(value, calendar_));
    } else if constexpr (std::is_same_v<V, Uuid>) {
      csv.text(value.isNil() ? std::string() : value.toString());
    } else {
      csv.text(value.display());
    }
  }

  /// The member of the record's JSON form with this name.
  template <class T>
  void list(const T& record, std::string_view member) {
    if (members_.empty()) {
      json_ = toJson(record, JsonFields::full);
      members_ = splitJsonObject(json_).value_or(std::vector<RawMember>());
    }
    const auto found = std::ranges::find(members_, member, &RawMember::name);
    csv.text(found != members_.end() ? found->value : std::string_view());
  }

  void endRow() {
    members_.clear();
    csv.endRow();
  }

  CsvWriter csv;

 private:
  Calendar calendar_;
  std::string json_;  ///< of the record that is being written, when one of its lists was
  std::vector<RawMember> members_;
};

/// Reads the cells of one row after the other and notes what it could not read.
class CellReader {
 public:
  CellReader(CsvSeparator separator, const Calendar& calendar, std::vector<CsvProblem>& problems)
      : numbers_(numbersOf(separator)), calendar_(calendar), problems_(problems) {}

  const Calendar& calendar() const { return calendar_; }
  void setCalendar(const Calendar& calendar) { calendar_ = calendar; }

  void startCell(const CsvRow& row, std::size_t place, std::string_view title, const FieldFacts* facts) {
    line_ = row.line;
    raw_ = place < row.cells.size() ? row.cells[place] : std::string_view();
    cell_ = row.cell(place);
    title_ = title;
    facts_ = facts;
  }

  /// Takes the cell over into the value, which stays as it is when the cell is empty or cannot be read.
  template <class V>
  void value(V& value) {
    if constexpr (std::is_same_v<V, std::string>) {
      value = withoutFormulaGuard(raw_);
    } else if (cell_.empty()) {
      return;
    } else if constexpr (isOptional<V>) {
      take(read<typename V::value_type>(), value);
    } else {
      take(read<V>(), value);
    }
  }

  /// A list as JSON, read through a record of its own so that half a list is never taken.
  template <class T>
  std::optional<T> list(std::string_view member) {
    if (cell_.empty()) return std::nullopt;
    T record{};
    if (updateFromJson(record, fmt::format("{{\"{}\":{}}}", member, cell_))) return record;
    problem(fmt::format("{}: the list cannot be read. Left empty.", title_));
    return std::nullopt;
  }

 private:
  template <class V>
  std::optional<V> read() {
    if constexpr (std::is_same_v<V, std::string>) {
      return std::string(withoutFormulaGuard(raw_));
    } else if constexpr (std::is_same_v<V, bool>) {
      return truth();
    } else if constexpr (std::is_arithmetic_v<V>) {
      const auto number = this->number(std::integral<V>);
      return number ? std::optional(static_cast<V>(*number)) : std::nullopt;
    } else if constexpr (std::is_same_v<V, Timestamp>) {
      return time();
    } else if constexpr (std::is_same_v<V, Uuid>) {
      return identity();
    } else {
      return choice(static_cast<const V*>(nullptr));
    }
  }
  template <class E>
  std::optional<Choice<E>> choice(const Choice<E>*) const {
    return choiceNamed<E>(withoutFormulaGuard(cell_));
  }
  template <class V, class Into>
  static void take(std::optional<V> read, Into& into) {
    if (!read) return;
    if constexpr (isOptional<Into>)
      into = std::move(read);
    else
      into = *std::move(read);
  }

  void problem(std::string message) { problems_.push_back({line_, std::move(message)}); }
  std::optional<double> number(bool whole);
  std::optional<Timestamp> time();
  std::optional<Uuid> identity();
  std::optional<bool> truth();

  NumberLocale numbers_;
  Calendar calendar_;
  std::vector<CsvProblem>& problems_;
  std::size_t line_ = 0;
  std::string_view raw_;   ///< the cell as it stands
  std::string_view cell_;  ///< without blanks around it
  std::string_view title_;
  const FieldFacts* facts_ = nullptr;
};

template <class T>
struct CsvField {
  std::string_view name;
  std::string_view title;
  std::string member{};  ///< its name in the JSON form
  const FieldFacts* facts = nullptr;
  std::size_t place = 0;  ///< 0: the date; identifiers stand last
  void (*write)(RowWriter&, const T&, const CsvField&) = nullptr;
  void (*read)(CellReader&, T&, const CsvField&) = nullptr;
};

/// The names that the fields have in the JSON form, in field order. A blank record has all but its optional fields.
template <class T>
std::vector<std::string> memberNames() {
  const std::string json = toJson(T{}, JsonFields::full);
  const auto members = splitJsonObject(json).value_or(std::vector<RawMember>());
  std::vector<std::string> names;
  std::size_t next = 0;
  boost::mp11::mp_for_each<FieldList<T>>([&](auto field) {
    using V = std::remove_cvref_t<decltype(std::declval<T>().*field.pointer)>;
    const bool left = isOptional<V> && members.size() < fieldCount<T>;
    names.push_back(left || next == members.size() ? std::string() : members[next++].name);
  });
  return names;
}

template <class T>
constexpr const FieldFacts* factsIfAny(std::string_view name) {
  if constexpr (HasFacts<T>)
    return factsOf<T>(name);
  else
    return nullptr;
}

/// The label of a field, or its name where it has no label or shares it with another field.
template <class T>
std::string_view csvTitle(std::string_view name) {
  const FieldFacts* facts = factsIfAny<T>(name);
  if (facts == nullptr || facts->label.empty()) return name;
  const auto sharing = std::ranges::count_if(fieldNames<T>, [&](std::string_view other) {
    const FieldFacts* others = factsIfAny<T>(other);
    return others != nullptr && others->label == facts->label;
  });
  return sharing == 1 ? facts->label : name;
}

template <class T>
constexpr std::string_view dateField() {
  if constexpr (requires { Register<T>::date; })
    return register_detail::nameOfMember<Register<T>::date>();
  else
    return {};
}

/// The columns of a record's file.
template <class T>
const std::vector<CsvField<T>>& csvFields() {
  static const std::vector<CsvField<T>> fields = [] {
    std::vector<CsvField<T>> made;
    const std::vector<std::string> members = memberNames<T>();
    std::size_t index = 0;
    boost::mp11::mp_for_each<FieldList<T>>([&](auto field) {
      using V = std::remove_cvref_t<decltype(std::declval<T>().*field.pointer)>;
      using Field = CsvField<T>;
      static constexpr auto pointer = decltype(field)::pointer;
      const std::size_t position = ++index;
      const std::string& member = members[position - 1];
      const FieldFacts* facts = factsIfAny<T>(field.name);
      if (facts != nullptr && facts->sensitive) return;
      Field column{.name = field.name, .title = csvTitle<T>(field.name), .member = member, .facts = facts};
      if (column.name != dateField<T>()) column.place = Identity<V> ? fieldCount<T> + position : position;
      if constexpr (List<V>) {
        column.write = [](RowWriter& row, const T& record, const Field& self) {
          (record.*pointer).empty() ? void(row.csv.empty()) : row.list(record, self.member);
        };
        column.read = [](CellReader& cells, T& record, const Field& self) {
          if (auto read = cells.list<T>(self.member)) record.*pointer = std::move((*read).*pointer);
        };
      } else {
        column.write = [](RowWriter& row, const T& record, const Field&) { row.value(record.*pointer); };
        column.read = [](CellReader& cells, T& record, const Field&) { cells.value(record.*pointer); };
      }
      made.push_back(std::move(column));
    });
    std::ranges::sort(made, {}, &CsvField<T>::place);
    return made;
  }();
  return fields;
}

/// Appends the totals below the rows.
void writeTotals(CsvWriter& csv, std::span<const CsvTotal> totals);
/// Whether the row begins the totals.
bool beginsTotals(const CsvRow& row);
bool isBlank(const CsvRow& row);
/// An identity that follows from what stands in the row.
Uuid identityOf(const CsvRow& row, const Uuid& space);

inline constexpr std::string_view kVesselTitle = "Vessel";

}  // namespace record_csv_detail

template <DescribedRecord T>
std::string recordsCsv(std::span<const T> records, const Calendar& calendar, const RecordCsvOptions& options) {
  namespace detail = record_csv_detail;
  const auto& fields = detail::csvFields<T>();
  detail::RowWriter row(options.format, calendar);
  bool named = false;
  if constexpr (requires(const T& record) { options.vesselName(record.vesselID); })
    named = options.vesselName && std::ranges::count(fields, detail::kVesselTitle, &detail::CsvField<T>::title) == 0;
  if (named) row.csv.text(detail::kVesselTitle);
  for (const auto& field : fields) row.csv.text(field.title);
  row.endRow();
  for (const T& record : records) {
    if constexpr (requires { options.vesselName(record.vesselID); }) {
      if (named) row.csv.text(options.vesselName(record.vesselID));
    }
    if constexpr (requires { options.calendarAboard(record.vesselID); }) {
      if (options.calendarAboard) row.setCalendar(options.calendarAboard(record.vesselID));
    }
    for (const auto& field : fields) field.write(row, record, field);
    row.endRow();
  }
  detail::writeTotals(row.csv, options.totals);
  return row.csv.take();
}

template <DescribedRecord T>
RecordCsvImport<T> recordsFromCsv(std::string_view text, const Uuid& vesselID, const Calendar& calendar,
                                  std::optional<CsvSeparator> separator, const CalendarAboard& calendarAboard) {
  namespace detail = record_csv_detail;
  using Field = detail::CsvField<T>;
  const CsvSource source = openCsv(text, separator);
  RecordCsvImport<T> import;
  detail::CellReader cells(source.separator, calendar, import.problems);
  struct Column {
    const Field* field;
    std::size_t place;
  };
  std::vector<Column> columns;
  const Field* dated = nullptr;
  std::optional<std::size_t> datePlace;
  std::optional<std::size_t> vesselPlace;

  const auto readHeader = [&](const CsvRow& row) {
    const CsvHeader header(row.cells);
    std::vector<bool> taken(row.cells.size());
    for (const Field& field : detail::csvFields<T>()) {
      auto place = header.column(field.title);
      if (!place) place = header.column(field.name);
      if (field.place == 0) {
        dated = &field;
        datePlace = place;
      }
      if (field.name == "vesselID") vesselPlace = place;
      if (!place) continue;
      columns.push_back({&field, *place});
      taken[*place] = true;
    }
    for (std::size_t i = 0; i < taken.size(); ++i)
      if (!taken[i] && !header.names()[i].empty() && !equalIgnoringCase(header.names()[i], detail::kVesselTitle))
        import.ignoredColumns.emplace_back(row.cell(i));
    if ((dated == nullptr || datePlace) && !columns.empty()) return true;
    import.problems.push_back({row.line, fmt::format("The first line must name the columns; “{}” is missing.",
                                                     dated != nullptr ? dated->title : std::string_view("id"))});
    return false;
  };
  const auto readRow = [&](const CsvRow& row) {
    if (detail::isBlank(row)) return;
    if (calendarAboard) cells.setCalendar(calendarAboard(Uuid::parse(row.cell(vesselPlace)).value_or(vesselID)));
    const std::string_view written = row.cell(datePlace);
    if (datePlace && !parseSpreadsheetDateTime(written, cells.calendar())) {
      import.problems.push_back(
          {row.line, written.empty() ? fmt::format("Skipped: {} is missing.", dated->title)
                                     : fmt::format("Skipped: “{}” is not a date such as 2026-05-31 08:00.", written)});
      ++import.skipped;
      return;
    }
    T record{};
    for (const auto& [field, place] : columns) {
      cells.startCell(row, place, field->title, field->facts);
      field->read(cells, record, *field);
    }
    if constexpr (requires { record.vesselID = vesselID; }) {
      if (record.vesselID == Uuid{}) record.vesselID = vesselID;
    }
    if constexpr (requires { record.createdAt = record.*Register<T>::date; }) {
      if (record.createdAt == Timestamp{}) record.createdAt = record.*Register<T>::date;
    }
    if (record.id.isNil()) record.id = detail::identityOf(row, vesselID);
    import.records.push_back(std::move(record));
  };

  bool headed = false;
  readCsv(source, [&](const CsvRow& row) {
    if (!headed) {
      headed = readHeader(row);
      return headed;
    }
    if (detail::beginsTotals(row)) return false;
    readRow(row);
    return true;
  });
  return import;
}

}  // namespace thalvorn
