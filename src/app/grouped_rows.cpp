#include "app/grouped_rows.h"

#include <algorithm>

namespace thalvorn::app {

GroupedRows::GroupedRows(QObject* parent) : QAbstractListModel(parent) {}

void GroupedRows::setSource(QAbstractItemModel* source) {
  if (source == source_) return;
  beginResetModel();
  if (source_) source_->disconnect(this);
  source_ = source;
  if (source_) {
    const auto again = [this] { rebuild(); };
    connect(source_, &QAbstractItemModel::modelReset, this, again);
    connect(source_, &QAbstractItemModel::layoutChanged, this, again);
    connect(source_, &QAbstractItemModel::rowsInserted, this, again);
    connect(source_, &QAbstractItemModel::rowsRemoved, this, again);
    connect(source_, &QAbstractItemModel::rowsMoved, this, again);
    connect(source_, &QAbstractItemModel::dataChanged, this, &GroupedRows::forwardChange);
  }
  layOut();
  endResetModel();
  Q_EMIT sourceChanged();
}

void GroupedRows::setGroupRole(const QString& role) {
  if (role == groupRole_) return;
  groupRole_ = role;
  rebuild();
  Q_EMIT groupRoleChanged();
}

void GroupedRows::rebuild() {
  beginResetModel();
  layOut();
  endResetModel();
}

void GroupedRows::layOut() {
  sections_.clear();
  rows_.clear();
  if (!source_) return;
  const int total = source_->rowCount();
  rows_.reserve(static_cast<std::size_t>(total) + 64);
  const int role = roleNumber(groupRole_);
  if (role < 0) {
    for (int row = 0; row < total; ++row) rows_.push_back(row);
    return;
  }
  for (int row = 0; row < total; ++row) {
    const QString title = source_->index(row, 0).data(role).toString();
    if (sections_.empty() || sections_.back().title != title) {
      rows_.push_back(-1 - static_cast<int>(sections_.size()));
      sections_.push_back({title, row, 0});
    }
    ++sections_.back().count;
    if (!collapsed_.contains(title)) rows_.push_back(row);
  }
}

int GroupedRows::roleNumber(const QString& name) const {
  return source_ && !name.isEmpty() ? source_->roleNames().key(name.toUtf8(), -1) : -1;
}

int GroupedRows::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant GroupedRows::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || !source_) return {};
  const int row = rows_[static_cast<std::size_t>(index.row())];
  if (role == isSectionRole) return row < 0;
  if (row >= 0) return role < isSectionRole ? source_->index(row, 0).data(role) : QVariant();
  const Section& section = sections_[static_cast<std::size_t>(-1 - row)];
  switch (role) {
    case sectionTitleRole:
      return section.title;
    case sectionCountRole:
      return section.count;
    case sectionCollapsedRole:
      return collapsed_.contains(section.title);
    default:
      return {};
  }
}

QHash<int, QByteArray> GroupedRows::roleNames() const {
  QHash<int, QByteArray> names = source_ ? source_->roleNames() : QHash<int, QByteArray>();
  names[isSectionRole] = "isSection";
  names[sectionTitleRole] = "sectionTitle";
  names[sectionCountRole] = "sectionCount";
  names[sectionCollapsedRole] = "sectionCollapsed";
  return names;
}

void GroupedRows::setCollapsed(int row, bool collapsed) {
  if (row < 0 || row >= rowCount() || rows_[static_cast<std::size_t>(row)] >= 0) return;
  const Section& section = sections_[static_cast<std::size_t>(-1 - rows_[static_cast<std::size_t>(row)])];
  if (collapsed_.contains(section.title) == collapsed) return;
  const auto first = rows_.begin() + row + 1;
  if (collapsed) {
    collapsed_.insert(section.title);
    beginRemoveRows({}, row + 1, row + section.count);
    rows_.erase(first, first + section.count);
    endRemoveRows();
  } else {
    collapsed_.remove(section.title);
    beginInsertRows({}, row + 1, row + section.count);
    std::vector<int> shown(static_cast<std::size_t>(section.count));
    std::ranges::generate(shown, [next = section.first]() mutable { return next++; });
    rows_.insert(first, shown.begin(), shown.end());
    endInsertRows();
  }
  Q_EMIT dataChanged(index(row), index(row), {sectionCollapsedRole});
}

void GroupedRows::setAllCollapsed(bool collapsed) {
  for (int row = rowCount() - 1; row >= 0; --row) setCollapsed(row, collapsed);
}

int GroupedRows::rowOf(const QVariant& id) const {
  const int role = roleNumber(idRole_);
  if (role < 0 || !id.isValid()) return -1;
  const auto found =
      std::ranges::find_if(rows_, [&](int row) { return row >= 0 && source_->index(row, 0).data(role) == id; });
  return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

void GroupedRows::forwardChange(const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
  if (!groupRole_.isEmpty() && (roles.isEmpty() || roles.contains(roleNumber(groupRole_)))) {
    for (int row = first.row(); row <= last.row(); ++row) {
      const auto section = std::ranges::find_if(
          sections_, [row](const Section& each) { return row >= each.first && row < each.first + each.count; });
      if (section == sections_.end() ||
          section->title != source_->index(row, 0).data(roleNumber(groupRole_)).toString()) {
        rebuild();
        return;
      }
    }
  }
  for (int row = 0; row < rowCount(); ++row) {
    const int from = rows_[static_cast<std::size_t>(row)];
    if (from >= first.row() && from <= last.row()) Q_EMIT dataChanged(index(row), index(row), roles);
  }
}

}  // namespace thalvorn::app
