#include "app/search_model.h"

#include <algorithm>
#include <iterator>

#include "app/command_table.h"
#include "app/module_table.h"

namespace thalvorn::app {

namespace {

constexpr int kHitsPerSource = 8;

bool beginsAWord(const QString& text, QStringView word) {
  for (qsizetype at = text.indexOf(word, 0, Qt::CaseInsensitive); at >= 0;
       at = text.indexOf(word, at + 1, Qt::CaseInsensitive)) {
    if (at == 0 || !text.at(at - 1).isLetterOrNumber()) return true;
  }
  return false;
}

}  // namespace

bool matchesWords(const QString& text, const QString& words) {
  const QStringList each = words.split(u' ', Qt::SkipEmptyParts);
  return std::ranges::all_of(each, [&](const QString& word) { return beginsAWord(text, word); });
}

SearchSource pagesAndCommands() {
  return [](const QString& words, int limit) {
    std::vector<SearchHit> hits;
    const auto room = [&] { return std::ssize(hits) < limit; };
    for (const PageEntry& page : pageTable()) {
      const QString title = QString::fromUtf16(page.title);
      if (!page.group || !room() || !matchesWords(title, words)) continue;
      hits.push_back({.title = title,
                      .detail = {},
                      .icon = QString::fromUtf16(page.icon),
                      .group = QStringLiteral("Go to"),
                      .page = QString::fromUtf16(page.id),
                      .arguments = {},
                      .notification = {}});
    }
    for (const Command& command : commandTable()) {
      const QString title = QString::fromUtf16(command.title);
      if (words.isEmpty() || !*command.notification || !room() || !matchesWords(title, words)) continue;
      hits.push_back({.title = title,
                      .detail = QString::fromUtf16(command.shortcut),
                      .icon = QStringLiteral("keyboard"),
                      .group = QStringLiteral("Commands"),
                      .page = {},
                      .arguments = {},
                      .notification = QString::fromUtf16(command.notification)});
    }
    return hits;
  };
}

SearchModel::SearchModel(QObject* parent) : QAbstractListModel(parent) {
  next_.setSingleShot(true);
  connect(&next_, &QTimer::timeout, this, &SearchModel::scanOn);
}

void SearchModel::addSource(SearchSource source) { sources_.push_back(std::move(source)); }

void SearchModel::addScan(SearchScan scan) { scans_.push_back(std::move(scan)); }

void SearchModel::setWords(const QString& words) {
  beginResetModel();
  words_ = words.simplified();
  hits_.clear();
  for (const SearchSource& source : sources_) {
    std::vector<SearchHit> found = source(words_, kHitsPerSource);
    keep(found);
    std::ranges::move(found, std::back_inserter(hits_));
  }
  endResetModel();
  Q_EMIT wordsChanged();
  Q_EMIT countChanged();
  running_ = 0;
  startScan();
  scanOn();
}

void SearchModel::keep(std::vector<SearchHit>& found) const {
  if (shows_) std::erase_if(found, [this](const SearchHit& hit) { return !shows_(hit); });
}

void SearchModel::startScan() {
  step_ = running_ < scans_.size() && !words_.isEmpty() ? scans_[running_](words_, kHitsPerSource) : SearchStep();
  Q_EMIT busyChanged();
}

void SearchModel::scanOn() {
  if (!step_) return;
  std::vector<SearchHit> found;
  const bool through = step_(found);
  keep(found);
  if (!found.empty()) {
    beginInsertRows({}, count(), count() + static_cast<int>(found.size()) - 1);
    std::ranges::move(found, std::back_inserter(hits_));
    endInsertRows();
    Q_EMIT countChanged();
  }
  if (through) {
    ++running_;
    startScan();
  }
  if (step_) next_.start();
}

int SearchModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QVariant SearchModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const SearchHit& hit = hits_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case titleRole:
      return hit.title;
    case detailRole:
      return hit.detail;
    case iconRole:
      return hit.icon;
    case groupRole:
      return hit.group;
    default:
      return {};
  }
}

QHash<int, QByteArray> SearchModel::roleNames() const {
  return {{titleRole, "title"}, {detailRole, "detail"}, {iconRole, "icon"}, {groupRole, "group"}};
}

void SearchModel::choose(int row) {
  if (row < 0 || row >= count()) return;
  const SearchHit hit = hits_[static_cast<std::size_t>(row)];
  Q_EMIT chosen(hit.page, hit.arguments, hit.notification);
}

}  // namespace thalvorn::app
