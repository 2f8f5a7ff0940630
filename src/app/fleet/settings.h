#pragma once

#include <QObject>
#include <QUrl>
#include <QVariant>

#include "app/app_controller.h"
#include "app/format.h"
#include "app/store_session.h"

namespace thalvorn::app {

/// What the user sets up, and the care of the store's file. QML sees it as `Settings`.
class Settings : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString displayName READ displayName WRITE setDisplayName NOTIFY changed)
  Q_PROPERTY(QString coordinateFormat READ coordinateFormat WRITE setCoordinateFormat NOTIFY changed)
  Q_PROPERTY(QString paper READ paper WRITE setPaper NOTIFY changed)
  Q_PROPERTY(QString csvSeparator READ csvSeparator WRITE setCsvSeparator NOTIFY changed)
  Q_PROPERTY(bool reminders READ reminders WRITE setReminders NOTIFY changed)
  Q_PROPERTY(int reminderLead READ reminderLead WRITE setReminderLead NOTIFY changed)
  Q_PROPERTY(bool links READ links NOTIFY changed)
  Q_PROPERTY(QVariantList modules READ modules NOTIFY changed)
  Q_PROPERTY(QString fleetName READ fleetName NOTIFY changed)
  Q_PROPERTY(bool demo READ demo NOTIFY changed)
  Q_PROPERTY(QString storeFile READ storeFile CONSTANT)
  Q_PROPERTY(QString storeSize READ storeSize NOTIFY changed)
  Q_PROPERTY(QString readOnlyReason READ readOnlyReason CONSTANT)
  Q_PROPERTY(QString work READ work NOTIFY workChanged)
  Q_PROPERTY(QVariantMap checked READ checked NOTIFY workChanged)
  Q_PROPERTY(QString error READ error NOTIFY workChanged)

 public:
  /// Preference: "decimal" or "dms".
  static constexpr const char16_t* kCoordinateFormatKey = u"thalvorn.coordinateFormat";

  Settings(StoreSession& session, PreferenceStore& preferences, AppController& app, const Format& format,
           QObject* parent = nullptr);

  QString displayName() const;
  void setDisplayName(const QString& name);
  QString coordinateFormat() const;
  void setCoordinateFormat(const QString& form);
  QString paper() const;
  void setPaper(const QString& paper);
  /// "comma", "semicolon" or "tab".
  QString csvSeparator() const;
  void setCsvSeparator(const QString& separator);
  bool reminders() const;
  void setReminders(bool on);
  /// Days before a due date, 0 to 30.
  int reminderLead() const;
  void setReminderLead(int days);
  /// Whether thalvorn:// links open this program by the user's registration.
  bool links() const;
  Q_INVOKABLE void setLinks(bool on);
  /// What the sidebar can leave out: [{id, title, icon, shown}].
  QVariantList modules() const;

  /// "Demo fleet", "Fleet kept on this computer" or the user's address.
  QString fleetName() const;
  bool demo() const { return store().isDemo(); }
  QString storeFile() const;
  QString storeSize() const;
  QString readOnlyReason() const;

  /// What is being done with the file; empty when nothing is.
  QString work() const { return work_; }
  /// What the last check found: {sound, findings}.
  QVariantMap checked() const { return checked_; }
  QString error() const { return error_; }

  Q_INVOKABLE QString backupName() const;
  Q_INVOKABLE void backUp(const QUrl& file);
  /// What restoring this file would replace, in words to confirm.
  Q_INVOKABLE QString restoreWarning(const QUrl& file) const;
  /// Ends the program, puts the backup in the store's place, keeping the old file, and starts again.
  Q_INVOKABLE void restore(const QUrl& file);
  Q_INVOKABLE void checkStore();
  /// Fills the demo fleet anew and shows it.
  Q_INVOKABLE void resetDemo();

 Q_SIGNALS:
  void changed();
  void workChanged();
  void restoreRequested(const QString& backup);

 private:
  AppViewModel& store() const { return session_.model(); }
  void setWork(const QString& work);
  void fail(const QString& error);
  template <class Result>
  void onWorker(const QString& work, std::function<Result()> job, std::function<void(Result)> then);

  StoreSession& session_;
  PreferenceStore& preferences_;
  AppController& app_;
  const Format& format_;
  QString work_;
  QString error_;
  QVariantMap checked_;
};

}  // namespace thalvorn::app
