#pragma once

#include <QAbstractListModel>
#include <QTimer>
#include <QVariant>

#include "app/app_controller.h"
#include "app/format.h"
#include "app/text.h"
#include "core/service_history.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

/// The services of the vessel in view: filtered, searched, in order, with what they cost together.
class ServiceHistoryModel : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)
  Q_PROPERTY(int count READ count NOTIFY refreshed)
  Q_PROPERTY(int total READ total NOTIFY refreshed)
  Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY queryChanged)
  Q_PROPERTY(QString category READ category WRITE setCategory NOTIFY queryChanged)
  Q_PROPERTY(QString kind READ kind WRITE setKind NOTIFY queryChanged)
  Q_PROPERTY(QString period READ period WRITE setPeriod NOTIFY queryChanged)
  Q_PROPERTY(QString person READ person WRITE setPerson NOTIFY queryChanged)
  Q_PROPERTY(bool filtered READ filtered NOTIFY queryChanged)
  Q_PROPERTY(QString sortField READ sortField NOTIFY queryChanged)
  Q_PROPERTY(bool descending READ descending NOTIFY queryChanged)
  Q_PROPERTY(QVariantList categories READ categories NOTIFY refreshed)
  Q_PROPERTY(QVariantList kinds READ kinds CONSTANT)
  Q_PROPERTY(QVariantList periods READ periods CONSTANT)
  Q_PROPERTY(QVariantList people READ people NOTIFY refreshed)
  Q_PROPERTY(QVariantMap costs READ costs NOTIFY refreshed)
  Q_PROPERTY(QVariantList years READ years NOTIFY refreshed)

 public:
  ServiceHistoryModel(AppViewModel& store, PreferenceStore& preferences, const Format& format,
                      QObject* parent = nullptr);

  /// Follows the records only while it is looked at.
  bool active() const { return active_; }
  void setActive(bool active);

  int count() const { return static_cast<int>(rows_.size()); }
  /// Services of the vessel, whatever the filter.
  int total() const { return total_; }

  QString search() const { return toQt(filter_.search); }
  void setSearch(const QString& search);
  /// Stored texts; empty for all.
  QString category() const;
  void setCategory(const QString& category);
  QString kind() const;
  void setKind(const QString& kind);
  QString period() const;
  void setPeriod(const QString& period);
  QString person() const { return toQt(filter_.person.value_or(std::string())); }
  void setPerson(const QString& person);
  bool filtered() const;
  QString sortField() const;
  bool descending() const { return descending_; }
  Q_INVOKABLE void sortBy(const QString& sort, bool descending);
  Q_INVOKABLE void clearFilters();

  /// [{value, text, icon}], the first for all; only categories that the vessel's services have.
  QVariantList categories() const { return categories_; }
  QVariantList kinds() const;
  QVariantList periods() const;
  QVariantList people() const { return people_; }
  /// {services, labour, parts, total, currency} of what is shown, as text.
  QVariantMap costs() const;
  /// The same by year, latest first: {year, services, labour, parts, total}.
  QVariantList years() const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;
  /// The row of a service; -1 when it is not shown.
  Q_INVOKABLE int rowOf(const QVariant& id) const;

  /// What is shown, in order.
  std::vector<ServiceLog> shownLogs() const;
  const ServiceHistoryFilter& filter() const { return filter_; }
  /// The services of a vessel as the list would show them, also while it is not looked at.
  std::vector<ServiceLog> servicesOf(const Uuid& vessel) const;
  /// The currency of the vessel's costs, ISO 4217.
  std::string currency() const;

 Q_SIGNALS:
  void activeChanged();
  void queryChanged();
  void refreshed();

 private:
  enum Role {
    idRole = Qt::UserRole,
    dateRole,
    dateExactRole,
    yearRole,
    titleRole,
    categoryRole,
    iconRole,
    kindRole,
    hoursRole,
    personRole,
    notesRole,
    partsRole,
    labourRole,
    partsCostRole,
    totalRole,
    photosRole,
    correctedRole
  };

  void refreshSoon();
  void refresh();
  void changeQuery();
  void readChoices();
  QString amount(const std::optional<double>& value) const;

  AppViewModel& store_;
  PreferenceStore& preferences_;
  const Format& format_;
  ServiceHistoryFilter filter_;
  ServicePeriod period_ = ServicePeriod::all;
  ServiceHistorySort sort_ = ServiceHistorySort::date;
  bool descending_ = true;
  bool active_ = false;
  bool stale_ = true;
  int total_ = 0;
  std::vector<std::uint32_t> rows_;
  ServiceCosts costs_;
  std::vector<ServiceYear> years_;
  QVariantList categories_;
  QVariantList people_;
  QTimer refresh_;
};

}  // namespace thalvorn::app
