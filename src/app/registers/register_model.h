#pragma once

#include <QAbstractListModel>
#include <QTimer>
#include <QVariant>
#include <unordered_set>
#include <vector>

#include "app/app_controller.h"
#include "app/format.h"
#include "core/register.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

/// Whose records a register's list shows.
enum class RegisterScope : std::uint8_t {
  selectedVessel,  ///< of the vessel in view
  fleet,           ///< of all vessels, narrowed by a filter
};

/// The records of a register as a page lists them: filtered, searched, sorted, some of them chosen. What it shows of
/// one record are its columns: each is a role by its key, as text, beside `id`, `vesselId`, `vesselName` and `chosen`.
class RegisterModel : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)
  Q_PROPERTY(int count READ count NOTIFY refreshed)
  Q_PROPERTY(int total READ total NOTIFY refreshed)
  Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY queryChanged)
  Q_PROPERTY(bool filtered READ filtered NOTIFY queryChanged)
  Q_PROPERTY(QVariantList filters READ filters NOTIFY queryChanged)
  Q_PROPERTY(QString sortKey READ sortKey NOTIFY queryChanged)
  Q_PROPERTY(bool descending READ descending NOTIFY queryChanged)
  Q_PROPERTY(QVariant firstDay READ firstDay NOTIFY queryChanged)
  Q_PROPERTY(QVariant lastDay READ lastDay NOTIFY queryChanged)
  Q_PROPERTY(int chosenCount READ chosenCount NOTIFY chosenChanged)
  Q_PROPERTY(int allChosen READ allChosen NOTIFY chosenChanged)

 public:
  /// `key` names what is remembered between starts.
  RegisterModel(AppViewModel& store, PreferenceStore& preferences, const Format& format, RegisterScope scope,
                QString key, QObject* parent);

  /// Follows the records only while it is looked at.
  bool active() const { return active_; }
  void setActive(bool active);
  RegisterScope scope() const { return scope_; }

  int count() const { return static_cast<int>(rows_.size()); }
  /// Records in scope, whatever the filters.
  int total() const { return total_; }

  QString search() const;
  void setSearch(const QString& search);
  bool filtered() const;
  /// [{key, label, kind: "choice", "choices" or "text", options: [{value, text}], values: [text]}] of the columns that
  /// narrow the list, first the vessels where the list is of several.
  QVariantList filters() const;
  /// What passes a filter: stored texts; an empty list passes everything.
  Q_INVOKABLE void narrow(const QString& filter, const QStringList& values);
  /// Whole days, both included; undefined leaves that end open.
  Q_INVOKABLE void setDays(const QVariant& first, const QVariant& last);
  QVariant firstDay() const;
  QVariant lastDay() const;
  Q_INVOKABLE void clearFilters();

  QString sortKey() const;
  bool descending() const { return query_.descending; }
  Q_INVOKABLE void sortBy(const QString& key, bool descending);

  int chosenCount() const { return static_cast<int>(chosen_.size()); }
  /// A Qt::CheckState: all of the rows shown are chosen, some, or none.
  int allChosen() const;
  Q_INVOKABLE void toggle(const QString& id);
  Q_INVOKABLE void chooseAll(bool all);
  Q_INVOKABLE void clearChosen();

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;
  /// The row of a record; -1 when it is not shown.
  Q_INVOKABLE int rowOf(const QVariant& id) const;

  /// The positions of what is shown, in order.
  const std::vector<std::uint32_t>& rows() const { return rows_; }
  /// The positions of the chosen records in the list's order; of all that the list asks for when none is chosen, also
  /// while nobody looks at it.
  std::vector<std::uint32_t> chosenRows();
  /// What the list asks for, with the vessels in scope.
  RegisterQuery query() const;

 Q_SIGNALS:
  void activeChanged();
  void queryChanged();
  void refreshed();
  void chosenChanged();

 protected:
  virtual std::size_t recordCount() const = 0;
  virtual Uuid idAt(std::uint32_t position) const = 0;
  virtual std::optional<std::uint32_t> positionOf(const Uuid& id) const = 0;
  /// Nil where the register's records belong to no vessel.
  virtual Uuid vesselAt(std::uint32_t position) const = 0;
  virtual bool ofVessels() const = 0;
  virtual RegisterValue valueAt(std::uint32_t position, std::size_t column) const = 0;
  virtual const std::vector<ColumnFacts>& columns() const = 0;
  /// All positions in the query's order.
  virtual std::vector<std::uint32_t> ordered(const RegisterQuery& query) const = 0;
  /// Those that pass everything of the query but its order, taken from `ordered`.
  virtual std::vector<std::uint32_t> passing(const std::vector<std::uint32_t>& ordered, const RegisterQuery& query) = 0;

  /// Connects the list with the records' events. To be called once by the class that has them.
  void follow(const CollectionEvents& events);
  /// The record at this position is another; the positions of all may be others.
  virtual void forgetRecord(std::uint32_t position) = 0;
  virtual void forgetRecords() = 0;

 private:
  enum Role { idRole = Qt::UserRole, vesselIdRole, vesselNameRole, chosenRole, firstColumnRole };

  /// Positions behind a removed record move up by one.
  void closeUp(std::uint32_t gone);
  void refreshSoon();
  void refresh();
  void changeQuery();
  QVariantMap vesselFilter() const;

  AppViewModel& store_;
  PreferenceStore& preferences_;
  const Format& format_;
  RegisterScope scope_;
  QString key_;
  RegisterQuery query_;
  std::optional<Timestamp> firstDay_;
  std::optional<Timestamp> lastDay_;
  bool active_ = false;
  bool stale_ = true;
  bool orderStale_ = true;
  int total_ = 0;
  std::vector<std::uint32_t> order_;
  std::vector<std::uint32_t> rows_;
  std::unordered_set<Uuid> chosen_;
  QTimer refresh_;
};

}  // namespace thalvorn::app
