#include "app/maintenance/task_list_model.h"

#include <QElapsedTimer>
#include <algorithm>
#include <ranges>

#include "app/maintenance/task_texts.h"

namespace thalvorn::app {

namespace {

/// How long a search may hold up a frame.
constexpr std::chrono::milliseconds kSlice{4};
constexpr std::size_t kLookAtClockEvery = 128;
/// In place of the position of a task that was deleted, until its row is taken away.
constexpr std::uint32_t kGone = ~std::uint32_t{0};

}  // namespace

TaskListModel::TaskListModel(FleetWatch& watch, Rule rule, QObject* parent)
    : QAbstractListModel(parent), watch_(watch), rule_(rule) {
  query_.scope = rule.scope;
  query_.withSnoozed = rule.withSnoozed;
  query_.sort = rule.sort;
  refresh_.setSingleShot(true);
  connect(&refresh_, &QTimer::timeout, this, [this] {
    reorder();
    searchOn(false);
  });
  search_.setSingleShot(true);
  connect(&search_, &QTimer::timeout, this, [this] { searchOn(false); });

  // Positions behind a removed task are wrong at once; everything else can wait until the edit is through.
  const AppViewModel& store = watch_.store();
  const CollectionEvents& tasks = store.tasks().events();
  connect(&tasks, &CollectionEvents::reset, this, &TaskListModel::startAgain);
  connect(&tasks, &CollectionEvents::removed, this, &TaskListModel::closeGap);
  connect(&tasks, &CollectionEvents::inserted, this, &TaskListModel::refreshSoon);
  connect(&tasks, &CollectionEvents::changed, this, &TaskListModel::refreshSoon);
  connect(&store, &AppViewModel::selectedVesselIDChanged, this, &TaskListModel::refreshSoon);
  connect(&watch_, &FleetWatch::moved, this, &TaskListModel::refreshSoon);
  connect(&watch_, &FleetWatch::ticked, this, &TaskListModel::timePassed);
}

void TaskListModel::rememberIn(PreferenceStore& preferences, const QString& key) {
  key_ = key;
  const auto kept = [&](const char* what) { return preferences.preference(key + QLatin1String(what)); };
  if (const auto field = caseFromRaw<TaskSortField>(kept(".sort").toStdString())) query_.sort = *field;
  if (const auto kind = caseFromRaw<TaskKind>(kept(".kind").toStdString())) query_.kind = *kind;
  if (const auto filter = caseFromRaw<FilterOption>(kept(".filter").toStdString())) query_.filter = *filter;
  query_.descending = kept(".descending") == u"1";
  query_.groupByCategory = kept(".grouped") == u"1";
  for (const QString& category : kept(".collapsed").split(u'|', Qt::SkipEmptyParts)) {
    collapsed_.insert(Choice<TaskCategory>::fromRaw(category.toStdString()));
  }
  preferences_ = &preferences;
  changeQuery(true);
}

void TaskListModel::keep(const char* what, const QString& value) {
  if (preferences_) preferences_->setPreference(key_ + QLatin1String(what), value);
}

void TaskListModel::setActive(bool active) {
  if (active == active_) return;
  active_ = active;
  if (!active_) search_.stop();
  if (active_ && (stale_ || searching())) {
    reorder();
    searchOn(false);
  }
  Q_EMIT activeChanged();
}

// ---- what is asked for ----

void TaskListModel::setSearch(const QString& search) {
  std::string text = search.trimmed().toStdString();
  if (text == query_.search) return;
  query_.search = std::move(text);
  changeQuery(false);
}

void TaskListModel::setFilter(const QString& filter) {
  const FilterOption option = caseFromRaw<FilterOption>(filter.toStdString()).value_or(FilterOption::all);
  if (option == query_.filter) return;
  query_.filter = option;
  keep(".filter", this->filter());
  changeQuery(true);
}

void TaskListModel::setKind(const QString& kind) {
  const auto option = caseFromRaw<TaskKind>(kind.toStdString());
  if (option == query_.kind) return;
  query_.kind = option;
  keep(".kind", this->kind());
  changeQuery(true);
}

void TaskListModel::setCategory(const QString& category) {
  std::optional<Choice<TaskCategory>> option;
  if (!category.isEmpty()) option = Choice<TaskCategory>::fromRaw(category.toStdString());
  if (option == query_.category) return;
  query_.category = option;
  changeQuery(true);
}

void TaskListModel::setSort(const QString& sort) {
  const TaskSortField field = caseFromRaw<TaskSortField>(sort.toStdString()).value_or(rule_.sort);
  if (field == query_.sort) return;
  query_.sort = field;
  keep(".sort", sortField());
  changeQuery(true);
}

void TaskListModel::setDescending(bool descending) {
  if (descending == query_.descending) return;
  query_.descending = descending;
  keep(".descending", QString::number(descending ? 1 : 0));
  changeQuery(true);
}

void TaskListModel::setGrouped(bool grouped) {
  if (grouped == query_.groupByCategory) return;
  query_.groupByCategory = grouped;
  keep(".grouped", QString::number(grouped ? 1 : 0));
  changeQuery(true);
}

bool TaskListModel::narrowed() const {
  return !query_.search.empty() || query_.filter != FilterOption::all || query_.kind || query_.category;
}

void TaskListModel::widen() {
  query_.search.clear();
  query_.filter = FilterOption::all;
  query_.kind.reset();
  query_.category.reset();
  keep(".filter", filter());
  keep(".kind", kind());
  changeQuery(true);
}

void TaskListModel::changeQuery(bool otherOrder) {
  Q_EMIT queryChanged();
  if (!active_) {
    stale_ = true;
    return;
  }
  if (otherOrder) reorder();
  found_.clear();
  next_ = 0;
  searchOn(false);
}

// ---- bringing up to date ----

void TaskListModel::refreshSoon() {
  explained_.reset();
  stale_ = true;
  if (active_) refresh_.start(0);
}

void TaskListModel::refreshNow() {
  explained_.reset();
  stale_ = true;
  refresh_.stop();
  if (!active_) return;
  reorder();
  searchOn(true);
}

void TaskListModel::startAgain() {
  search_.stop();
  ordered_.clear();
  found_.clear();
  next_ = 0;
  if (!lines_.empty()) {
    beginResetModel();
    lines_.clear();
    endResetModel();
  }
  refreshNow();
}

void TaskListModel::closeGap(qsizetype removed) {
  for (Line& line : lines_) {
    if (line.heading) continue;
    const auto index = static_cast<qsizetype>(line.task.index);
    if (index == removed) line.task.index = kGone;
    if (index > removed) --line.task.index;
  }
  if (active_) {
    refreshNow();
    return;
  }
  stale_ = true;
  const auto gone =
      std::ranges::find_if(lines_, [](const Line& line) { return !line.heading && line.task.index == kGone; });
  if (gone == lines_.end()) return;
  const int row = static_cast<int>(gone - lines_.begin());
  beginRemoveRows({}, row, row);
  lines_.erase(gone);
  endRemoveRows();
}

void TaskListModel::timePassed() {
  explained_.reset();
  if (!active_ || stale_) {
    stale_ = true;
    return;
  }
  const Fleet& fleet = watch_.fleet();
  const auto tasks = watch_.store().tasks().records();
  const bool same = std::ranges::all_of(ordered_, [&](const TaskRow& row) {
    const MaintenanceTask& task = tasks[row.index];
    const double reading = fleet.meters(task.vesselID).reading(task.hourSource);
    return taskStatus(task, reading, watch_.horizon()) == row.status && isSnoozed(task, watch_.now()) == row.snoozed;
  });
  // A task that reaches the board was beyond its horizon, so it is not among the rows of the board.
  if (!same || query_.scope == TaskScope::board) {
    refreshSoon();
  } else if (!lines_.empty()) {
    Q_EMIT dataChanged(index(0), index(rowCount() - 1));
  }
}

void TaskListModel::reorder() {
  stale_ = false;
  explained_.reset();
  TaskQuery query = query_;
  query.search.clear();
  query.vesselID = watch_.store().selectedVesselID().value_or(Uuid{});
  ordered_ = listTasks(watch_.store().tasks().records(), watch_.fleet(), watch_.horizon(), query);
  if (rule_.most > 0 && ordered_.size() > rule_.most) ordered_.resize(rule_.most);
  found_.clear();
  next_ = 0;
}

void TaskListModel::searchOn(bool toTheEnd) {
  search_.stop();
  if (next_ == 0) words_.emplace(query_.search);
  if (words_->empty()) {
    found_ = ordered_;
    next_ = ordered_.size();
  }
  QElapsedTimer timer;
  timer.start();
  const auto tasks = watch_.store().tasks().records();
  for (; next_ < ordered_.size(); ++next_) {
    if (!toTheEnd && next_ % kLookAtClockEvery == kLookAtClockEvery - 1 && timer.hasExpired(kSlice.count())) break;
    const MaintenanceTask& task = tasks[ordered_[next_].index];
    if (words_->matches({task.title, task.notes, task.category.display()})) found_.push_back(ordered_[next_]);
  }
  if (searching()) search_.start(0);
  show();
}

std::vector<TaskListModel::Line> TaskListModel::layOut() const {
  std::vector<Line> lines;
  lines.reserve(found_.size() + (grouped() ? caseCount<TaskCategory> : 0));
  const auto take = [&](std::size_t first, std::size_t count) {
    for (const TaskRow& row : std::span(found_).subspan(first, count)) lines.push_back({.task = row});
  };
  if (!grouped()) {
    take(0, found_.size());
    return lines;
  }
  for (const CategoryGroup& group : categoryGroups(found_, watch_.store().tasks().records())) {
    const bool collapsed = collapsed_.contains(group.category);
    lines.push_back({.heading = group.category, .count = group.count, .collapsed = collapsed});
    if (!collapsed) take(group.first, group.count);
  }
  return lines;
}

/// Tells views what is different between the lines shown and those to be shown, so that nothing jumps.
void TaskListModel::show() {
  constexpr std::ptrdiff_t kExchangedAtMost = 64;
  std::vector<Line> lines = layOut();
  const auto [was, is] = std::ranges::mismatch(lines_, lines, &Line::sameRecord);
  const auto first = was - lines_.begin();
  auto wasEnd = lines_.end();
  auto isEnd = lines.end();
  while (wasEnd > was && isEnd > is && std::prev(wasEnd)->sameRecord(*std::prev(isEnd))) {
    --wasEnd;
    --isEnd;
  }
  const auto gone = wasEnd - was;
  const auto come = isEnd - is;
  if (gone > 0 && come > 0 && std::max(gone, come) > kExchangedAtMost) {
    beginResetModel();
    lines_ = std::move(lines);
    endResetModel();
  } else {
    const int at = static_cast<int>(first);
    if (gone > 0) {
      beginRemoveRows({}, at, at + static_cast<int>(gone) - 1);
      lines_.erase(was, wasEnd);
      endRemoveRows();
    }
    if (come > 0) {
      beginInsertRows({}, at, at + static_cast<int>(come) - 1);
      lines_.insert(lines_.begin() + first, is, isEnd);
      endInsertRows();
    }
    lines_ = std::move(lines);
    if (!lines_.empty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1));
  }
  Q_EMIT totalChanged();
}

void TaskListModel::setCollapsed(int row, bool collapsed) {
  if (row < 0 || row >= rowCount()) return;
  const Line& line = lines_[static_cast<std::size_t>(row)];
  if (!line.heading || line.collapsed == collapsed) return;
  if (collapsed) {
    collapsed_.insert(*line.heading);
  } else {
    collapsed_.erase(*line.heading);
  }
  QStringList names;
  for (const Choice<TaskCategory> category : collapsed_) names.append(toQt(category.raw()));
  keep(".collapsed", names.join(u'|'));
  show();
}

void TaskListModel::setAllCollapsed(bool collapsed) {
  for (int row = rowCount() - 1; row >= 0; --row) setCollapsed(row, collapsed);
}

// ---- what is shown ----

int TaskListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(lines_.size());
}

const TaskListModel::Explained& TaskListModel::explained(std::uint32_t index) const {
  if (!explained_ || explained_->index != index) {
    const MaintenanceTask& task = watch_.store().tasks()[index];
    const StatusReason reason = explainStatus(task, watch_.vesselOf(task), watch_.horizon(), watch_.calendar());
    explained_ = Explained{index, reason, dueText(task, reason, watch_.now(), watch_.calendar())};
  }
  return *explained_;
}

QVariant TaskListModel::taskData(const TaskRow& row, int role) const {
  const MaintenanceTask& task = watch_.store().tasks()[row.index];
  switch (role) {
    case idRole:
      return idText(task.id);
    case titleRole:
    case Qt::DisplayRole:
      return toQt(task.title);
    case categoryRole:
      return toQt(task.category.display());
    case categoryIconRole:
      return categoryIcon(task.category);
    case meterRole:
      return task.dueAtEngineHours ? toQt(task.hourSource.display()) : QStringLiteral("—");
    case meterMissingRole:
      return explained(row.index).reason.meterMissing;
    case kindRole:
      return kindWord(task.kind);
    case statusRole:
      return statusWord(row.status, row.snoozed);
    case toneRole:
      return row.snoozed ? QString() : statusTone(row.status);
    case dueRole:
      return toQt(explained(row.index).due.first);
    case dueMoreRole:
      return toQt(explained(row.index).due.second);
    case usedRole:
      return explained(row.index).reason.intervalUsed.value_or(-1);
    case repeatsRole:
      return repeatText(task);
    case snoozedRole:
      return row.snoozed;
    case highRole:
      return task.priority == TaskPriority::high;
    case photosRole:
      return static_cast<int>(task.photoPaths.size() + task.photoData.size());
    case isSectionRole:
      return false;
    default:
      return {};
  }
}

QVariant TaskListModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const Line& line = lines_[static_cast<std::size_t>(index.row())];
  if (!line.heading) return line.task.index == kGone ? QVariant() : taskData(line.task, role);
  switch (role) {
    case isSectionRole:
      return true;
    case sectionTitleRole:
    case Qt::DisplayRole:
      return toQt(line.heading->display());
    case sectionCountRole:
      return static_cast<int>(line.count);
    case sectionCollapsedRole:
      return line.collapsed;
    default:
      return {};
  }
}

QHash<int, QByteArray> TaskListModel::roleNames() const {
  return {{idRole, "id"},
          {titleRole, "title"},
          {categoryRole, "category"},
          {categoryIconRole, "categoryIcon"},
          {meterRole, "meter"},
          {meterMissingRole, "meterMissing"},
          {kindRole, "kind"},
          {statusRole, "status"},
          {toneRole, "tone"},
          {dueRole, "due"},
          {dueMoreRole, "dueMore"},
          {usedRole, "used"},
          {repeatsRole, "repeats"},
          {snoozedRole, "snoozed"},
          {highRole, "high"},
          {photosRole, "photos"},
          {isSectionRole, "isSection"},
          {sectionTitleRole, "sectionTitle"},
          {sectionCountRole, "sectionCount"},
          {sectionCollapsedRole, "sectionCollapsed"}};
}

int TaskListModel::rowOf(const QVariant& id) const {
  const auto uuid = Uuid::parse(id.toString().toStdString());
  const auto at = uuid ? watch_.store().tasks().indexOf(*uuid) : std::nullopt;
  if (!at) return -1;
  const auto found =
      std::ranges::find_if(lines_, [&](const Line& line) { return !line.heading && line.task.index == *at; });
  return found == lines_.end() ? -1 : static_cast<int>(found - lines_.begin());
}

QString TaskListModel::idAt(int row) const {
  if (row < 0 || row >= rowCount()) return {};
  const Line& line = lines_[static_cast<std::size_t>(row)];
  return line.heading || line.task.index == kGone ? QString() : idText(watch_.store().tasks()[line.task.index].id);
}

}  // namespace thalvorn::app
