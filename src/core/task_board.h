#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/task_status.h"

/// The lists of tasks: what each shows and in which order. Lists are indices into the tasks; no record is copied.
namespace thalvorn {

enum class TaskSortField : std::uint8_t { name, category, due, status };

template <>
struct EnumTexts<TaskSortField> {
  static constexpr std::array<EnumText, 4> table{
      {{"name", "Name"}, {"category", "Category"}, {"due", "Due"}, {"status", "Status"}}};
};

/// How the detail list of one status sorts.
enum class DetailSortField : std::uint8_t { title, category, dueDate, status };

template <>
struct EnumTexts<DetailSortField> {
  static constexpr std::array<EnumText, 4> table{
      {{"title", "Title"}, {"category", "Category"}, {"dueDate", "Due date"}, {"status", "Status"}}};
};

/// The order of a task list that a detail list's field stands for.
constexpr TaskSortField taskSortField(DetailSortField field) { return static_cast<TaskSortField>(field); }

/// Which statuses the task list shows.
enum class FilterOption : std::uint8_t { all, overdue, dueSoon, onTrack };

template <>
struct EnumTexts<FilterOption> {
  static constexpr std::array<EnumText, 4> table{
      {{"all", "All"}, {"overdue", "Overdue"}, {"dueSoon", "Due Soon"}, {"onTrack", "On Track"}}};
};

/// Which tasks a list is made of.
enum class TaskScope : std::uint8_t {
  board,     ///< overdue, due soon and on track, snoozed ones among them
  library,   ///< every open task, also those beyond the horizon
  recurring  ///< every open task that repeats
};

/// What a task list asks for.
struct TaskQuery {
  TaskScope scope = TaskScope::board;
  FilterOption filter = FilterOption::all;
  std::optional<Uuid> vesselID = {};                  ///< empty: all vessels
  std::optional<TaskKind> kind = {};                  ///< empty: every kind
  std::optional<Choice<TaskCategory>> category = {};  ///< empty: every category
  bool withSnoozed = true;                            ///< false for a list that must agree with its counter
  std::string search = {};                            ///< words that all occur in title, notes or category
  TaskSortField sort = TaskSortField::status;
  bool descending = false;
  bool groupByCategory = false;
};

struct TaskRow {
  std::uint32_t index = 0;  ///< into the tasks that were listed
  TaskStatus status = TaskStatus::beyondHorizon;
  bool snoozed = false;
  friend bool operator==(const TaskRow&, const TaskRow&) = default;
};

/// The tasks a list shows, in its order. `name` sorts by title; `category` by the category's name; `due` by
/// `dueMoment`; `status` by overdue, due soon, on track, beyond the horizon, then by due date. Ties stand by title.
/// Tasks without a due point come last in either direction.
std::vector<TaskRow> listTasks(std::span<const MaintenanceTask> tasks, const Fleet& fleet, const StatusHorizon& horizon,
                               const TaskQuery& query);

/// When the task falls due: the nearer of its due date and the moment at which the meter should reach its target, at
/// the hours a day that the fleet knows of or assumes. Empty without any trigger.
std::optional<Timestamp> dueMoment(const MaintenanceTask& task, const Fleet::Meters& meters, Timestamp now);

/// A run of rows with one category, in a list grouped by category.
struct CategoryGroup {
  Choice<TaskCategory> category;
  std::size_t first = 0;  ///< row
  std::size_t count = 0;
};
std::vector<CategoryGroup> categoryGroups(std::span<const TaskRow> rows, std::span<const MaintenanceTask> tasks);

}  // namespace thalvorn
