#include "core/task_csv_import.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "base/date_format.h"
#include "base/number_format.h"
#include "base/search_text.h"

namespace thalvorn {
namespace {

using Column = std::optional<std::size_t>;

constexpr double kMostDays = 36'500;
constexpr double kMostHours = 1e6;

/// Where the known columns of a file are.
struct Columns {
  Column title, category, triggerType, recurringDays, dueAtHours, recurringHours, hourSource, notes;
  Column dueDate, priority, kind;
};

struct KnownColumn {
  std::string_view name;
  Column Columns::* place;
};
constexpr std::array<KnownColumn, 11> kColumns{{{"title", &Columns::title},
                                                {"category", &Columns::category},
                                                {"triggerType", &Columns::triggerType},
                                                {"recurringDays", &Columns::recurringDays},
                                                {"dueAtHours", &Columns::dueAtHours},
                                                {"recurringHours", &Columns::recurringHours},
                                                {"hourSource", &Columns::hourSource},
                                                {"notes", &Columns::notes},
                                                {"dueDate", &Columns::dueDate},
                                                {"priority", &Columns::priority},
                                                {"kind", &Columns::kind}}};

/// The case whose stored or shown text the cell is, without regard to case.
template <class E>
std::optional<E> caseNamed(std::string_view cell) {
  if (const auto exact = caseFromRaw<E>(cell)) return exact;
  for (const E each : allCases<E>())
    if (equalIgnoringCase(cell, rawText(each)) || equalIgnoringCase(cell, displayText(each))) return each;
  return std::nullopt;
}

std::optional<TriggerType> triggerNamed(std::string_view cell) {
  if (equalIgnoringCase(cell, "hours")) return TriggerType::engineHours;
  return caseNamed<TriggerType>(cell);
}

std::optional<HourSource> meterNamed(std::string_view cell) {
  for (const HourSource source : allCases<HourSource>())
    if (cell == displayText(source)) return source;
  if (const auto source = caseNamed<HourSource>(cell)) return source;
  for (const HourSource source : allCases<HourSource>())
    if (equalIgnoringCase(cell, meterLabel(source))) return source;
  return std::nullopt;
}

/// Reads the cells of one row and notes those it cannot read.
class RowReader {
 public:
  RowReader(const CsvRow& cells, const NumberLocale& locale, TaskCsvRow& row)
      : cells_(cells), locale_(locale), row_(row) {}

  std::string text(Column column) const { return std::string(withoutFormulaGuard(cells_.cell(column))); }

  /// A number from 0 to `most`; empty when the cell is, or when it cannot be read.
  std::optional<double> number(std::string_view name, Column column, double most) {
    const std::string_view cell = cells_.cell(column);
    if (cell.empty()) return std::nullopt;
    const auto value = numberIn(cell);
    if (!value || !(*value >= 0 && *value <= most)) {
      problem("{} “{}” is not a number from 0 to {}; left empty.", name, cell, formatNumber(most, 0));
      return std::nullopt;
    }
    return value;
  }

  std::optional<std::int64_t> wholeNumber(std::string_view name, Column column, double most) {
    const auto value = number(name, column, most);
    if (!value) return std::nullopt;
    if (*value != std::floor(*value)) {
      problem("{} “{}” is not a whole number; left empty.", name, cells_.cell(column));
      return std::nullopt;
    }
    return static_cast<std::int64_t>(*value);
  }

  /// The case that the cell names; `otherwise` when it is empty or names none.
  template <class E>
  E choice(std::string_view name, Column column, std::optional<E> (*named)(std::string_view), E otherwise) {
    const std::string_view cell = cells_.cell(column);
    if (cell.empty()) return otherwise;
    if (const auto known = named(cell)) return *known;
    problem("{} “{}” is not known; taken as {}.", name, cell, displayText(otherwise));
    return otherwise;
  }

  std::optional<Timestamp> date(std::string_view name, Column column, const Calendar& calendar) {
    const std::string_view cell = cells_.cell(column);
    if (cell.empty()) return std::nullopt;
    const auto value = parseSpreadsheetDateTime(cell, calendar);
    if (!value) problem("{} “{}” is not a date such as 2026-05-31; left empty.", name, cell);
    return value;
  }

  template <class... Args>
  void problem(fmt::format_string<Args...> format, Args&&... args) {
    row_.problems.push_back(fmt::format(format, std::forward<Args>(args)...));
  }

 private:
  std::optional<double> numberIn(std::string_view cell) const {
    const bool plain = std::ranges::all_of(cell, [](char c) { return c >= '0' && c <= '9'; });
    if (plain || locale_.decimalPoint == ".") {
      double value = 0;
      const auto read = std::from_chars(cell.data(), cell.data() + cell.size(), value);
      if (read.ec == std::errc() && read.ptr == cell.data() + cell.size()) return value;
    }
    const auto value = parseNumber(cell, locale_);
    return value ? std::optional(*value) : std::nullopt;
  }

  const CsvRow& cells_;
  const NumberLocale& locale_;
  TaskCsvRow& row_;
};

TaskCsvRow readRow(const CsvRow& cells, const Columns& at, std::size_t columnCount, const NumberLocale& locale,
                   const Calendar& calendar) {
  TaskCsvRow row;
  RowReader reader(cells, locale, row);
  row.line = static_cast<std::int64_t>(cells.line);
  row.title = reader.text(at.title);
  const bool categorised = !cells.cell(at.category).empty();
  row.valid = !row.title.empty() && categorised;
  if (row.title.empty()) reader.problem("Skipped: the title is missing.");
  if (!categorised) reader.problem("Skipped: the category is missing.");

  if (categorised) row.category = reader.choice("category", at.category, &caseNamed<TaskCategory>, TaskCategory::other);
  row.triggerType = reader.choice("triggerType", at.triggerType, &triggerNamed, TriggerType::date);
  row.recurringDays = reader.wholeNumber("recurringDays", at.recurringDays, kMostDays);
  row.dueAtHours = reader.number("dueAtHours", at.dueAtHours, kMostHours);
  row.recurringHours = reader.number("recurringHours", at.recurringHours, kMostHours);
  row.hourSource = reader.choice("hourSource", at.hourSource, &meterNamed, HourSource::engine);
  row.notes = reader.text(at.notes);
  row.dueDate = reader.date("dueDate", at.dueDate, calendar);
  row.priority = reader.choice("priority", at.priority, &caseNamed<TaskPriority>, TaskPriority::medium);
  row.kind = reader.choice("kind", at.kind, &caseNamed<TaskKind>, TaskKind::plannedMaintenance);
  if (cells.cells.size() > columnCount)
    reader.problem("More cells than columns: “{}” and what follows was left out. Put text with separators in quotes.",
                   cells.cell(columnCount));
  return row;
}

Columns findColumns(const CsvHeader& header, TaskCsvPreview& preview) {
  Columns columns;
  for (const auto& [name, place] : kColumns) columns.*place = header.column(name);
  for (const std::string& name : header.names()) {
    const bool known = std::ranges::any_of(kColumns, [&](const auto& c) { return equalIgnoringCase(c.name, name); });
    if (!known && !name.empty()) preview.ignoredColumns.push_back(name);
  }
  if (!columns.title || !columns.category)
    preview.problem = fmt::format("The first line must name the columns; {} missing.",
                                  columns.title      ? "“category” is"
                                  : columns.category ? "“title” is"
                                                     : "“title” and “category” are");
  return columns;
}

bool isBlank(const CsvRow& row) { return row.cells.size() == 1 && row.cell(0).empty(); }

}  // namespace

std::string_view previewTitle(const TaskCsvRow& row) {
  return row.title.empty() ? std::string_view("(no title)") : row.title;
}

std::string previewSummary(const TaskCsvPreview& preview) {
  return fmt::format("{} valid, {} skipped", preview.valid, preview.skipped);
}

TaskCsvPreview previewTaskCsv(std::string_view text, const Calendar& calendar, std::optional<CsvSeparator> separator) {
  const CsvSource source = openCsv(text, separator);
  const NumberLocale locale = source.separator == CsvSeparator::semicolon
                                  ? NumberLocale{.decimalPoint = ",", .groupSeparator = "."}
                                  : NumberLocale{};
  TaskCsvPreview preview;
  preview.rows.reserve(static_cast<std::size_t>(std::ranges::count(source.text, '\n')) + 1);
  std::optional<Columns> columns;
  std::size_t columnCount = 0;
  readCsv(source, [&](const CsvRow& row) {
    if (isBlank(row)) return;
    if (!columns) {
      columnCount = row.cells.size();
      columns = findColumns(CsvHeader(row.cells), preview);
      return;
    }
    preview.rows.push_back(readRow(row, *columns, columnCount, locale, calendar));
    ++(preview.rows.back().valid ? preview.valid : preview.skipped);
  });
  return preview;
}

std::vector<MaintenanceTask> tasksFromRows(const std::vector<TaskCsvRow>& rows, const Vessel& vessel, Timestamp now,
                                           const Calendar& calendar) {
  std::vector<MaintenanceTask> tasks;
  tasks.reserve(rows.size());
  for (const TaskCsvRow& row : rows) {
    if (!row.valid) continue;
    MaintenanceTask& task = tasks.emplace_back();
    task.id = Uuid::random();
    task.vesselID = vessel.id;
    task.title = row.title;
    task.notes = row.notes;
    task.category = row.category.value_or(TaskCategory::other);
    task.triggerType = row.triggerType;
    task.hourSource = row.hourSource;
    task.dueDate = row.dueDate;
    task.recurringDays = row.recurringDays;
    task.dueAtEngineHours = row.dueAtHours;
    task.recurringEngineHours = row.recurringHours;
    task.priority = row.priority;
    task.kind = row.kind;
    const std::int64_t days = row.recurringDays.value_or(0);
    if (!task.dueDate && days > 0) task.dueDate = calendar.addDays(now, days);
  }
  return tasks;
}

}  // namespace thalvorn
