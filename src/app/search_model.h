#pragma once

#include <QAbstractListModel>
#include <QTimer>
#include <QVariant>
#include <functional>
#include <vector>

namespace thalvorn::app {

/// One thing the global search found, and where it is shown.
struct SearchHit {
  QString title;
  QString detail;
  QString icon;
  QString group;  ///< heading, e.g. "Tasks"
  QString page;
  QVariantMap arguments;
  QString notification;  ///< posted instead of opening a page, when not empty
};

/// Finds up to `limit` hits for the words, best first.
using SearchSource = std::function<std::vector<SearchHit>(const QString& words, int limit)>;

/// Goes on with a search for a few milliseconds and appends what it found; true when it is through.
using SearchStep = std::function<bool(std::vector<SearchHit>& hits)>;
/// Begins a search that takes long, for up to `limit` hits of each kind.
using SearchScan = std::function<SearchStep(const QString& words, int limit)>;

/// What the global search shows for the words typed. QML sees it as `Search`.
class SearchModel : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(QString words READ words WRITE setWords NOTIFY wordsChanged)
  Q_PROPERTY(int count READ count NOTIFY countChanged)
  Q_PROPERTY(bool busy READ busy NOTIFY busyChanged)

 public:
  explicit SearchModel(QObject* parent = nullptr);

  /// Sources are asked in the order they were added.
  void addSource(SearchSource source);
  /// Scans follow the sources, one after the other, between frames.
  void addScan(SearchScan scan);

  /// Leaves out the hits that are not to be shown.
  void setFilter(std::function<bool(const SearchHit&)> shows) { shows_ = std::move(shows); }

  QString words() const { return words_; }
  void setWords(const QString& words);
  int count() const { return static_cast<int>(hits_.size()); }

  /// More may still be found.
  bool busy() const { return running_ < scans_.size() && step_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// Reports the chosen hit through `chosen`.
  Q_INVOKABLE void choose(int row);

 Q_SIGNALS:
  void wordsChanged();
  void countChanged();
  void busyChanged();
  void chosen(const QString& page, const QVariantMap& arguments, const QString& notification);

 private:
  void keep(std::vector<SearchHit>& found) const;
  void startScan();
  void scanOn();

  enum Role { titleRole = Qt::UserRole, detailRole, iconRole, groupRole };

  QString words_;
  std::vector<SearchSource> sources_;
  std::vector<SearchScan> scans_;
  std::vector<SearchHit> hits_;
  std::function<bool(const SearchHit&)> shows_;
  std::size_t running_ = 0;  ///< the scan that is going on
  SearchStep step_;
  QTimer next_;
};

/// True when every word of `words` begins a word of `text`, whatever the case.
bool matchesWords(const QString& text, const QString& words);

/// The program's own pages and menu commands.
SearchSource pagesAndCommands();

}  // namespace thalvorn::app
