#pragma once

#include <QAbstractListModel>
#include <QSet>
#include <QVariant>

#include "app/app_controller.h"
#include "app/format.h"
#include "core/template_catalogue.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

/// The catalogue of ready-made tasks, from which the vessel in view takes those that are chosen.
/// QML sees it as `TemplateLibrary`.
class TemplateLibrary : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)
  Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY shownChanged)
  Q_PROPERTY(QString category READ category WRITE setCategory NOTIFY shownChanged)
  Q_PROPERTY(QVariantList categories READ categories CONSTANT)
  Q_PROPERTY(int count READ count NOTIFY shownChanged)
  Q_PROPERTY(int chosenCount READ chosenCount NOTIFY chosenChanged)
  Q_PROPERTY(QString chosenText READ chosenText NOTIFY chosenChanged)
  Q_PROPERTY(QString chosenWarning READ chosenWarning NOTIFY chosenChanged)
  Q_PROPERTY(int allChosen READ allChosen NOTIFY chosenChanged)
  Q_PROPERTY(QString from READ from WRITE setFrom NOTIFY startChanged)
  Q_PROPERTY(QVariantList starts READ starts CONSTANT)
  Q_PROPERTY(QDateTime startDate READ startDate WRITE setStartDate NOTIFY startChanged)
  Q_PROPERTY(QVariant lastDone READ lastDone WRITE setLastDone NOTIFY startChanged)
  Q_PROPERTY(QString lastDoneHours READ lastDoneHours WRITE setLastDoneHours NOTIFY startChanged)
  Q_PROPERTY(QString lastDoneHoursMessage READ lastDoneHoursMessage NOTIFY startChanged)
  Q_PROPERTY(QVariantList firstDue READ firstDue NOTIFY firstDueChanged)
  Q_PROPERTY(QString vesselName READ vesselName NOTIFY firstDueChanged)

 public:
  TemplateLibrary(AppViewModel& store, AppController& app, const Format& format, QObject* parent = nullptr);

  /// Follows the vessel's tasks only while it is looked at.
  bool active() const { return active_; }
  void setActive(bool active);

  QString search() const { return search_; }
  void setSearch(const QString& search);
  /// Stored text; empty for all.
  QString category() const { return category_; }
  void setCategory(const QString& category);
  QVariantList categories() const;

  int count() const { return static_cast<int>(shown_.size()); }
  int chosenCount() const { return static_cast<int>(chosen_.size()); }
  /// "12 selected".
  QString chosenText() const;
  /// What is odd about the choice: tasks that the vessel has already, machinery that she has not.
  QString chosenWarning() const;
  /// Qt::CheckState of "Select All" over what is shown.
  int allChosen() const;

  /// "startDate", "lastDone" or "notKnown".
  QString from() const;
  void setFrom(const QString& from);
  QVariantList starts() const;
  QDateTime startDate() const { return Format::toQml(start_.startDate); }
  void setStartDate(const QDateTime& date);
  QVariant lastDone() const;
  void setLastDone(const QVariant& date);
  QString lastDoneHours() const { return lastDoneHours_; }
  void setLastDoneHours(const QString& hours);
  QString lastDoneHoursMessage() const;
  /// When the chosen tasks would first fall due, the first few: [{title, due}].
  QVariantList firstDue() const;
  QString vesselName() const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;
  Q_INVOKABLE int rowOf(const QVariant& id) const;

  Q_INVOKABLE void toggle(const QString& id);
  /// Chooses or leaves all that are shown. Tasks that the vessel has already and jobs on machinery that she has not are
  /// only chosen one by one.
  Q_INVOKABLE void chooseAll(bool chosen);
  Q_INVOKABLE void clearChoice();
  /// Makes one task of the vessel from each chosen template.
  Q_INVOKABLE bool addToTasks();

 Q_SIGNALS:
  void activeChanged();
  void shownChanged();
  void chosenChanged();
  void startChanged();
  void firstDueChanged();

 private:
  enum Role {
    idRole = Qt::UserRole,
    titleRole,
    categoryRole,
    iconRole,
    intervalRole,
    proposedRole,
    notesRole,
    chosenRole,
    remarkRole
  };

  void showMatching();
  void readVessel();
  bool fitted(const TaskTemplate& made) const;
  bool present(const TaskTemplate& made) const;
  TemplateStart start() const;

  AppViewModel& store_;
  AppController& app_;
  const Format& format_;
  bool active_ = false;
  QString search_;
  QString category_;
  std::vector<const TaskTemplate*> shown_;
  QSet<QString> chosen_;         ///< identities
  QSet<QString> presentTitles_;  ///< of the vessel's open tasks, folded
  TemplateStart start_;
  QString lastDoneHours_;
};

}  // namespace thalvorn::app
