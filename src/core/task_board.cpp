#include "core/task_board.h"

#include <algorithm>
#include <limits>
#include <tuple>

#include "base/search_text.h"
#include "core/meter_pace.h"
#include "core/task_repetition.h"

namespace thalvorn {
namespace {

constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();

/// What a row is ordered by, taken from the record once. Reversed for a descending list, so that rows without a value
/// (`kLast`) stay at the end either way.
struct SortKey {
  std::uint32_t group = 0;
  std::int64_t first = 0;
  std::int64_t second = 0;
  std::uint64_t titleBegin = 0;  ///< first eight letters of the folded title, the earlier the weightier
  std::size_t foldedAt = 0;      ///< the folded title in `FoldedTitles`
  std::size_t foldedLength = 0;
  TaskRow row;
};

/// The titles of the listed tasks without case and accents, one behind the other.
class FoldedTitles {
 public:
  void take(std::string_view title, SortKey& key) {
    key.foldedAt = text_.size();
    appendFolded(text_, title);
    key.foldedLength = text_.size() - key.foldedAt;
    for (std::size_t i = 0; i < 8; ++i)
      key.titleBegin = key.titleBegin << 8 | (i < key.foldedLength ? static_cast<unsigned char>(of(key)[i]) : 0U);
  }

  /// Negative, zero or positive as the first title stands before, with or behind the second.
  int compare(const SortKey& a, const SortKey& b) const {
    if (a.titleBegin != b.titleBegin) return a.titleBegin < b.titleBegin ? -1 : 1;
    return of(a).compare(of(b));
  }

 private:
  std::string_view of(const SortKey& key) const {
    return std::string_view(text_).substr(key.foldedAt, key.foldedLength);
  }

  std::string text_;
};

/// The position of a category among the names in alphabetical order; unknown ones follow.
std::uint32_t alphabeticalRank(Choice<TaskCategory> category) {
  static const auto ranks = [] {
    auto sorted = allCases<TaskCategory>();
    std::ranges::sort(sorted, {}, [](TaskCategory c) { return foldText(displayText(c)); });
    std::array<std::uint32_t, caseCount<TaskCategory>> rank{};
    for (std::uint32_t i = 0; i < sorted.size(); ++i) rank[static_cast<std::size_t>(sorted[i])] = i;
    return rank;
  }();
  return category.isKnown() ? ranks[category.order()] : category.order();
}

bool isShown(const MaintenanceTask& task, TaskStatus status, const TaskQuery& query) {
  if (status == TaskStatus::completed) return false;
  if (query.scope == TaskScope::board && status == TaskStatus::beyondHorizon) return false;
  if (query.scope == TaskScope::recurring && !repeats(task)) return false;
  switch (query.filter) {
    case FilterOption::all:
      return true;
    case FilterOption::overdue:
      return status == TaskStatus::overdue;
    case FilterOption::dueSoon:
      return status == TaskStatus::dueSoon;
    case FilterOption::onTrack:
      return status == TaskStatus::onTrack;
  }
  return true;
}

std::int64_t orderOf(const std::optional<Timestamp>& time, bool descending) {
  if (!time) return kLast;
  const std::int64_t seconds = time->time_since_epoch().count();
  return descending ? ~seconds : seconds;
}

SortKey sortKey(const MaintenanceTask& task, const TaskRow& row, const Fleet::Meters& meters, Timestamp now,
                const TaskQuery& query) {
  SortKey key{.row = row};
  const std::uint32_t rank = alphabeticalRank(task.category);
  const bool reversedGroups = query.descending && query.sort == TaskSortField::category;
  if (query.groupByCategory) key.group = reversedGroups ? ~rank : rank;
  switch (query.sort) {
    case TaskSortField::name:
      break;
    case TaskSortField::category:
      key.first = query.descending ? ~std::int64_t{rank} : std::int64_t{rank};
      break;
    case TaskSortField::due:
      key.first = orderOf(dueMoment(task, meters, now), query.descending);
      break;
    case TaskSortField::status: {
      const auto order = static_cast<std::int64_t>(row.status);
      key.first = query.descending ? ~order : order;
      key.second = orderOf(task.dueDate, query.descending);
      break;
    }
  }
  return key;
}

}  // namespace

std::optional<Timestamp> dueMoment(const MaintenanceTask& task, const Fleet::Meters& meters, Timestamp now) {
  std::optional<Timestamp> due = task.dueDate;
  if (task.dueAtEngineHours) {
    const Timestamp reached =
        projectedDate(*task.dueAtEngineHours, meters.reading(task.hourSource), meters.pace(task.hourSource), now);
    if (!due || reached < *due) due = reached;
  }
  return due;
}

std::vector<TaskRow> listTasks(std::span<const MaintenanceTask> tasks, const Fleet& fleet, const StatusHorizon& horizon,
                               const TaskQuery& query) {
  SearchWords words(query.search);
  FoldedTitles titles;
  std::vector<SortKey> keys;
  for (std::uint32_t index = 0; index < tasks.size(); ++index) {
    const MaintenanceTask& task = tasks[index];
    if (query.vesselID && task.vesselID != *query.vesselID) continue;
    if (query.kind && !(task.kind == *query.kind)) continue;
    if (query.category && task.category != *query.category) continue;
    const Fleet::Meters& meters = fleet.meters(task.vesselID);
    const TaskRow row{index, taskStatus(task, meters.reading(task.hourSource), horizon),
                      isSnoozed(task, horizon.now())};
    if (!isShown(task, row.status, query) || (row.snoozed && !query.withSnoozed)) continue;
    if (!words.matches({task.title, task.notes, task.category.display()})) continue;
    keys.push_back(sortKey(task, row, meters, horizon.now(), query));
    titles.take(task.title, keys.back());
  }

  const bool titlesReversed = query.descending && query.sort == TaskSortField::name;
  std::ranges::sort(keys, [&](const SortKey& a, const SortKey& b) {
    const auto left = std::tie(a.group, a.first, a.second);
    const auto right = std::tie(b.group, b.first, b.second);
    if (left != right) return left < right;
    const int order = titles.compare(a, b);
    if (order != 0) return titlesReversed ? order > 0 : order < 0;
    return a.row.index < b.row.index;
  });

  std::vector<TaskRow> rows(keys.size());
  std::ranges::transform(keys, rows.begin(), &SortKey::row);
  return rows;
}

std::vector<CategoryGroup> categoryGroups(std::span<const TaskRow> rows, std::span<const MaintenanceTask> tasks) {
  std::vector<CategoryGroup> groups;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Choice<TaskCategory> category = tasks[rows[i].index].category;
    if (groups.empty() || groups.back().category != category) groups.push_back({category, i, 0});
    ++groups.back().count;
  }
  return groups;
}

}  // namespace thalvorn
