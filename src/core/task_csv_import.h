#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/calendar.h"
#include "base/csv.h"
#include "base/json.h"
#include "core/maintenance_task.h"
#include "core/vessel.h"

/// Tasks from comma-separated text. Columns are found by name in any order; quoted cells, a byte-order mark, and files
/// separated by semicolons (then with decimal commas) or tabs are read too.
namespace thalvorn {

/// What the import sheet shows.
struct TaskCsvTexts {
  std::string_view referenceTitle;
  std::string_view reference;
  std::string_view sample;
};
const TaskCsvTexts& taskCsvTexts();

/// One line of the file as it was understood.
struct TaskCsvRow {
  std::int64_t line = 0;  ///< on which the row begins, 1 for the first line of the file
  std::string title;
  std::optional<Choice<TaskCategory>> category;  ///< empty when the cell is
  Choice<TriggerType> triggerType = TriggerType::date;
  std::optional<std::int64_t> recurringDays;
  std::optional<double> dueAtHours;
  std::optional<double> recurringHours;
  Choice<HourSource> hourSource = HourSource::engine;
  std::string notes;
  std::optional<Timestamp> dueDate;  ///< this and the next two only in files that this program wrote
  Choice<TaskPriority> priority = TaskPriority::medium;
  Choice<TaskKind> kind = TaskKind::plannedMaintenance;
  bool valid = false;                 ///< has a title and a category; otherwise the row is skipped
  std::vector<std::string> problems;  ///< why it is skipped, and cells that could not be read
};
BOOST_DESCRIBE_STRUCT(TaskCsvRow, (),
                      (line, title, category, triggerType, recurringDays, dueAtHours, recurringHours, hourSource, notes,
                       dueDate, priority, kind, valid, problems))
THALVORN_JSON_RECORD(TaskCsvRow);

/// The title as the preview shows it; "(no title)" without one.
std::string_view previewTitle(const TaskCsvRow& row);

struct TaskCsvPreview {
  std::vector<TaskCsvRow> rows;
  std::size_t valid = 0;
  std::size_t skipped = 0;
  std::string problem;                      ///< what is wrong with the header line; empty when nothing is
  std::vector<std::string> ignoredColumns;  ///< names of columns that are not known
};

/// "5 valid" and "2 skipped", with ", " between.
std::string previewSummary(const TaskCsvPreview& preview);

/// Reads a file's text, UTF-8. The separator is taken from the header line unless `separator` is given. Dates are by
/// the calendar.
TaskCsvPreview previewTaskCsv(std::string_view text, const Calendar& calendar,
                              std::optional<CsvSeparator> separator = std::nullopt);

/// One new task of `vessel` per valid row. Numbers that the file leaves out stay out: without a due reading the task
/// waits for its first service, which gives it one. A row with an interval of days but no due date first falls due that
/// long from now.
std::vector<MaintenanceTask> tasksFromRows(const std::vector<TaskCsvRow>& rows, const Vessel& vessel, Timestamp now,
                                           const Calendar& calendar);

}  // namespace thalvorn
