#pragma once

#include <QAbstractListModel>
#include <QTimer>
#include <optional>
#include <set>
#include <vector>

#include "app/app_controller.h"
#include "app/maintenance/fleet_watch.h"
#include "app/text.h"
#include "base/search_text.h"
#include "core/status_reason.h"
#include "core/task_board.h"

namespace thalvorn::app {

/// The tasks of the selected vessel as one list shows them: chosen, sorted, searched, and on request under headings by
/// category that fold. Holds positions in the store's tasks only; texts are made for the rows that are looked at.
/// A search through very many tasks goes on between frames and adds its finds as they come.
class TaskListModel : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)
  Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY queryChanged)
  Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY queryChanged)
  Q_PROPERTY(QString kind READ kind WRITE setKind NOTIFY queryChanged)
  Q_PROPERTY(QString category READ category WRITE setCategory NOTIFY queryChanged)
  Q_PROPERTY(QString sort READ sortField WRITE setSort NOTIFY queryChanged)
  Q_PROPERTY(bool descending READ descending WRITE setDescending NOTIFY queryChanged)
  Q_PROPERTY(bool grouped READ grouped WRITE setGrouped NOTIFY queryChanged)
  Q_PROPERTY(bool narrowed READ narrowed NOTIFY queryChanged)
  Q_PROPERTY(int total READ total NOTIFY totalChanged)
  Q_PROPERTY(bool searching READ searching NOTIFY totalChanged)

 public:
  /// What a list always asks for, whatever the user narrows it to.
  struct Rule {
    TaskScope scope = TaskScope::board;
    bool withSnoozed = true;
    std::size_t most = 0;  ///< rows at most; 0 for all
    TaskSortField sort = TaskSortField::status;
  };

  TaskListModel(FleetWatch& watch, Rule rule, QObject* parent = nullptr);

  /// Keeps sort, filters and grouping between starts under `key`; takes what was kept.
  void rememberIn(PreferenceStore& preferences, const QString& key);

  /// A list that is not looked at does not follow changes until it is.
  bool active() const { return active_; }
  void setActive(bool active);

  QString search() const { return toQt(query_.search); }
  void setSearch(const QString& search);
  /// The raw value of a filter by status: "all", "overdue", "dueSoon", "onTrack".
  QString filter() const { return toQt(rawText(query_.filter)); }
  void setFilter(const QString& filter);
  /// Raw values; empty for every kind or category.
  QString kind() const { return query_.kind ? toQt(rawText(*query_.kind)) : QString(); }
  void setKind(const QString& kind);
  QString category() const { return query_.category ? toQt(query_.category->raw()) : QString(); }
  void setCategory(const QString& category);
  /// "name", "category", "due" or "status".
  QString sortField() const { return toQt(rawText(query_.sort)); }
  void setSort(const QString& sort);
  bool descending() const { return query_.descending; }
  void setDescending(bool descending);
  bool grouped() const { return query_.groupByCategory; }
  void setGrouped(bool grouped);
  /// Whether the user has narrowed the list by search, status, kind or category.
  bool narrowed() const;
  /// All that the list asks for.
  const TaskQuery& query() const { return query_; }

  /// Tasks found, those under folded headings included.
  int total() const { return static_cast<int>(found_.size()); }
  bool searching() const { return next_ < ordered_.size(); }

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// The row of the task with this id; -1 when it is not in the list or folded away.
  Q_INVOKABLE int rowOf(const QVariant& id) const;
  /// The id of the task in a row; empty for a heading.
  Q_INVOKABLE QString idAt(int row) const;
  /// Folds or unfolds the heading at `row`; other rows are left alone.
  Q_INVOKABLE void setCollapsed(int row, bool collapsed);
  Q_INVOKABLE void setAllCollapsed(bool collapsed);
  /// Shows everything again.
  Q_INVOKABLE void widen();

  /// Brings the list up to date now, and finishes a search.
  void refreshNow();

 Q_SIGNALS:
  void activeChanged();
  void queryChanged();
  void totalChanged();

 private:
  enum Role {
    idRole = Qt::UserRole,
    titleRole,
    categoryRole,
    categoryIconRole,
    meterRole,
    meterMissingRole,
    kindRole,
    statusRole,
    toneRole,
    dueRole,
    dueMoreRole,
    usedRole,
    repeatsRole,
    snoozedRole,
    highRole,
    photosRole,
    isSectionRole,
    sectionTitleRole,
    sectionCountRole,
    sectionCollapsedRole
  };
  /// A task, or the heading of a category.
  struct Line {
    TaskRow task;
    std::optional<Choice<TaskCategory>> heading;
    std::size_t count = 0;
    bool collapsed = false;

    bool sameRecord(const Line& other) const {
      return heading == other.heading && (heading || task.index == other.task.index);
    }
  };
  struct Explained {
    std::uint32_t index = 0;
    StatusReason reason;
    DueText due;
  };

  const Explained& explained(std::uint32_t index) const;
  QVariant taskData(const TaskRow& row, int role) const;
  void changeQuery(bool reorder);
  void refreshSoon();
  /// The store holds other tasks altogether.
  void startAgain();
  /// A task was deleted: those behind it moved up.
  void closeGap(qsizetype removed);
  void timePassed();
  void reorder();
  void searchOn(bool toTheEnd);
  std::vector<Line> layOut() const;
  void show();
  void keep(const char* what, const QString& value);

  FleetWatch& watch_;
  Rule rule_;
  TaskQuery query_;
  bool active_ = false;
  bool stale_ = true;
  QTimer refresh_;
  QTimer search_;
  std::optional<SearchWords> words_;
  std::vector<TaskRow> ordered_;  ///< all that the list may show, before the search
  std::size_t next_ = 0;          ///< how far the search has come in `ordered_`
  std::vector<TaskRow> found_;
  std::vector<Line> lines_;
  std::set<Choice<TaskCategory>> collapsed_;
  mutable std::optional<Explained> explained_;
  PreferenceStore* preferences_ = nullptr;
  QString key_;
};

}  // namespace thalvorn::app
