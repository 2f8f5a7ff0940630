#pragma once

#include <QObject>
#include <QTimer>
#include <QVariant>

#include "app/app_controller.h"
#include "store/app_view_model.h"
#include "sync/cloud_session.h"

namespace thalvorn::app {

/// How the exchange with the fleet server stands: a word for the sidebar, and everything behind it for the sync page.
/// QML sees it as `Sync`.
class SyncController : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool shown READ shown NOTIFY changed)
  Q_PROPERTY(bool hasServer READ hasServer CONSTANT)
  Q_PROPERTY(QString state READ state NOTIFY changed)
  Q_PROPERTY(QString text READ text NOTIFY changed)
  Q_PROPERTY(QString detail READ detail NOTIFY changed)
  Q_PROPERTY(QVariant lastRun READ lastRun NOTIFY changed)
  Q_PROPERTY(QString running READ running NOTIFY changed)
  Q_PROPERTY(int waitingCount READ waitingCount NOTIFY changed)
  Q_PROPERTY(int openConflicts READ openConflicts NOTIFY changed)
  Q_PROPERTY(QString metered READ metered WRITE setMetered NOTIFY meteredChanged)
  Q_PROPERTY(QVariantList meteredChoices READ meteredChoices CONSTANT)
  Q_PROPERTY(QString meteredText READ meteredText NOTIFY meteredChanged)
  Q_PROPERTY(bool watched READ watched WRITE setWatched NOTIFY changed)
  Q_PROPERTY(QVariantList waiting READ waiting NOTIFY detailsChanged)
  Q_PROPERTY(QVariantList files READ files NOTIFY detailsChanged)
  Q_PROPERTY(QVariantList problems READ problems NOTIFY detailsChanged)
  Q_PROPERTY(QVariantList conflicts READ conflicts NOTIFY detailsChanged)
  Q_PROPERTY(QVariantList log READ log NOTIFY logChanged)

 public:
  /// `cloud` is null where no fleet server is set up.
  SyncController(AppViewModel& model, CloudSession* cloud, AppController& app, QObject* parent = nullptr);

  /// The fleet in view is one that is shared; otherwise there is nothing to tell.
  bool shown() const;
  bool hasServer() const { return cloud_ != nullptr; }
  /// "signIn", "syncing", "offline", "problem", "waiting" or "current"; empty while nothing is shared.
  QString state() const;
  /// The state in a word or two, e.g. "3 waiting".
  QString text() const;
  /// The same as a sentence.
  QString detail() const;
  /// When everything was last exchanged, as a date; undefined before the first time.
  QVariant lastRun() const;
  /// What is being exchanged at this moment; empty between runs.
  QString running() const;
  int waitingCount() const;
  int openConflicts() const;

  /// Whether the connection counts as paid by volume: "automatic" (as the desktop says), "on" or "off".
  QString metered() const;
  void setMetered(const QString& choice);
  QVariantList meteredChoices() const;
  /// What that comes to at the moment.
  QString meteredText() const;

  /// The lists below are kept up to date only while a page shows them.
  bool watched() const { return watched_; }
  void setWatched(bool watched);
  /// What waits to be sent: {text, count}.
  QVariantList waiting() const { return waiting_; }
  /// Photos and papers that have not gone up yet: {id, kind, name, failed, text}.
  QVariantList files() const { return files_; }
  /// What the last run could not do: {where, record, text}.
  QVariantList problems() const { return problems_; }
  /// What two people changed at once and nobody has settled yet, newest first: {id, name, kind, deleted, kept, keptAt,
  /// other, otherAt, lines: [{field, now, other}]}.
  QVariantList conflicts() const { return conflicts_; }
  /// Newest first: {at, text, problem}.
  QVariantList log() const { return log_; }

  /// Starts a full run, or says why none can start.
  Q_INVOKABLE void syncNow();
  /// Puts the other version of a conflict back in, or leaves the record as it is; either settles it.
  Q_INVOKABLE void takeBack(const QString& id);
  Q_INVOKABLE void keep(const QString& id);
  /// Sends a file that could not go up again, or gives it up; it stays on this computer.
  Q_INVOKABLE void retryFile(const QString& id);
  Q_INVOKABLE void removeFile(const QString& id);
  /// The log as plain text.
  Q_INVOKABLE QString logText() const;

 Q_SIGNALS:
  void changed();
  void detailsChanged();
  void logChanged();
  void meteredChanged();

 private:
  void readDetails();
  void readLog();
  QString who(const std::string& userID) const;
  const ConflictNote* find(const QString& id) const;
  void readFiles();
  void settle(Edit edit, const QString& told);

  AppViewModel& model_;
  CloudSession* cloud_;
  AppController& app_;
  bool watched_ = false;
  QVariantList waiting_;
  QVariantList files_;
  QVariantList problems_;
  QVariantList conflicts_;
  QVariantList log_;
  QTimer details_;  ///< gathers many changes into one reading
  QTimer lines_;
};

}  // namespace thalvorn::app
