#include "app/fleet/settings.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>
#include <QThreadPool>
#include <algorithm>

#include "app/export_choices.h"
#include "app/maintenance/task_texts.h"
#include "app/module_table.h"
#include "app/reminders.h"
#include "platform/link_registration.h"
#include "store/preferences.h"

namespace thalvorn::app {

namespace {

constexpr int kUsualLead = 1;
constexpr int kMostLead = 30;

QString reminderKey() { return toQt(Reminders::leadKey); }

/// What the sidebar must keep: the way back to this page.
bool canHide(const PageEntry& page) {
  return page.group && QStringView(page.id) != u"settings" && QStringView(page.id) != u"home";
}

}  // namespace

Settings::Settings(StoreSession& session, PreferenceStore& preferences, AppController& app, const Format& format,
                   QObject* parent)
    : QObject(parent), session_(session), preferences_(preferences), app_(app), format_(format) {
  connect(&app_, &AppController::hiddenModulesChanged, this, &Settings::changed);
  connect(&app_, &AppController::accessChanged, this, &Settings::changed);
  connect(&store(), &AppViewModel::displayNameChanged, this, &Settings::changed);
  connect(&store(), &AppViewModel::reloaded, this, &Settings::changed);
}

// ---- choices ----

QString Settings::displayName() const { return toQt(store().displayName()); }
void Settings::setDisplayName(const QString& name) { store().setDisplayName(name.trimmed().toStdString()); }

QString Settings::coordinateFormat() const {
  return preferences_.preference(QString::fromUtf16(kCoordinateFormatKey)) == u"dms" ? QStringLiteral("dms")
                                                                                     : QStringLiteral("decimal");
}
void Settings::setCoordinateFormat(const QString& form) {
  preferences_.setPreference(QString::fromUtf16(kCoordinateFormatKey), form);
  Q_EMIT changed();
}

QString Settings::paper() const { return paperSize(preferences_); }
void Settings::setPaper(const QString& paper) {
  preferences_.setPreference(QString::fromUtf16(kPaperSizeKey), paper);
  Q_EMIT changed();
}

QString Settings::csvSeparator() const {
  switch (csvFormat(preferences_).separator) {
    case CsvSeparator::semicolon:
      return QStringLiteral("semicolon");
    case CsvSeparator::tab:
      return QStringLiteral("tab");
    case CsvSeparator::comma:
      break;
  }
  return QStringLiteral("comma");
}
void Settings::setCsvSeparator(const QString& separator) {
  preferences_.setPreference(QString::fromUtf16(kCsvSeparatorKey), separator);
  Q_EMIT changed();
}

bool Settings::reminders() const { return preferences_.preference(reminderKey()) != u"off"; }
void Settings::setReminders(bool on) {
  preferences_.setPreference(reminderKey(), on ? QString::number(kUsualLead) : QStringLiteral("off"));
  Q_EMIT changed();
}

int Settings::reminderLead() const {
  bool read = false;
  const int days = preferences_.preference(reminderKey()).toInt(&read);
  return read ? std::clamp(days, 0, kMostLead) : kUsualLead;
}
void Settings::setReminderLead(int days) {
  preferences_.setPreference(reminderKey(), QString::number(std::clamp(days, 0, kMostLead)));
  Q_EMIT changed();
}

bool Settings::links() const { return linksRegistered(QCoreApplication::applicationFilePath()); }
void Settings::setLinks(bool on) {
  const auto done = on ? registerLinks(QCoreApplication::applicationFilePath()) : unregisterLinks();
  fail(done ? QString() : done.error());
  Q_EMIT changed();
}

QVariantList Settings::modules() const {
  const QStringList hidden = app_.hiddenModules();
  QVariantList list;
  for (const PageEntry& page : pageTable()) {
    if (!canHide(page)) continue;
    const QString id = QString::fromUtf16(page.id);
    if (app_.isClosed(id)) continue;
    list.append(QVariantMap{{QStringLiteral("id"), id},
                            {QStringLiteral("title"), QString::fromUtf16(page.title)},
                            {QStringLiteral("icon"), QString::fromUtf16(page.icon)},
                            {QStringLiteral("shown"), !hidden.contains(id)}});
  }
  return list;
}

// ---- the store's file ----

QString Settings::fleetName() const {
  if (store().isDemo()) return QStringLiteral("Demo fleet");
  if (store().isSetAside()) return QStringLiteral("Fleet of an account you have left");
  if (store().staysOnThisComputer()) return QStringLiteral("Fleet kept on this computer");
  return preferences_.preference(toQt(preference_keys::userEmail));
}

QString Settings::storeFile() const { return toQt(session_.cache().file().string()); }

QString Settings::storeSize() const {
  // What was written last still stands in the log beside the file.
  const qint64 bytes = QFileInfo(storeFile()).size() + QFileInfo(storeFile() + QStringLiteral("-wal")).size();
  return QLocale().formattedDataSize(bytes, 1);
}

QString Settings::readOnlyReason() const { return toQt(session_.cache().readOnlyReason()); }

void Settings::setWork(const QString& work) {
  work_ = work;
  if (!work.isEmpty()) error_.clear();
  Q_EMIT workChanged();
}

void Settings::fail(const QString& error) {
  work_.clear();
  error_ = error;
  Q_EMIT workChanged();
}

template <class Result>
void Settings::onWorker(const QString& work, std::function<Result()> job, std::function<void(Result)> then) {
  if (!work_.isEmpty()) return;
  setWork(work);
  QThreadPool::globalInstance()->start([this, job = std::move(job), then = std::move(then)] {
    QMetaObject::invokeMethod(this, [this, then, result = job()] {
      setWork({});
      then(result);
    });
  });
}

QString Settings::backupName() const {
  return fileNameFor(QStringLiteral("thalvorn-backup"), {}, store().now(), store().calendar(),
                     QStringLiteral("sqlite"));
}

void Settings::backUp(const QUrl& file) {
  const QString path = withEnding(file.toLocalFile(), QStringLiteral("sqlite"));
  using Written = std::expected<void, CacheError>;
  onWorker<Written>(
      QStringLiteral("Writing the backup…"),
      [&cache = session_.cache(), path] { return cache.backup(std::filesystem::path(path.toStdString())); },
      [this, path](const Written& written) {
        if (written) {
          app_.toast(QStringLiteral("Backup written to %1").arg(path), QStringLiteral("ok"));
        } else {
          fail(toQt(written.error().message));
        }
      });
}

QString Settings::restoreWarning(const QUrl& file) const {
  const QFileInfo backup(file.toLocalFile());
  return QStringLiteral(
             "All fleets in this program on this computer, among them “%1” with %2 vessels, %3 tasks and %4 services, "
             "are replaced by the copy of %5 (%6). The present file is kept beside it. The program starts again.")
      .arg(fleetName(), format_.number(static_cast<double>(store().vessels().size())),
           format_.number(static_cast<double>(store().tasks().size())),
           format_.number(static_cast<double>(store().logs().size())), format_.dateTime(backup.lastModified()),
           QLocale().formattedDataSize(backup.size(), 1));
}

void Settings::restore(const QUrl& file) {
  if (store().unsavedCount() > 0) {
    fail(QStringLiteral("Some changes are not saved yet and would be lost. Wait until everything is saved."));
    return;
  }
  Q_EMIT restoreRequested(file.toLocalFile());
}

void Settings::checkStore() {
  onWorker<CacheReport>(
      QStringLiteral("Checking the store…"), [&cache = session_.cache()] { return cache.check(); },
      [this](const CacheReport& report) {
        QStringList findings;
        for (const std::string& finding : report.findings) findings << toQt(finding);
        checked_ = {{QStringLiteral("sound"), report.sound}, {QStringLiteral("findings"), findings}};
        Q_EMIT workChanged();
      });
}

void Settings::resetDemo() {
  setWork(QStringLiteral("Filling the demo fleet…"));
  store().fillDemoFleet().then(this, [this](const SaveResult& filled) {
    setWork({});
    if (!filled) {
      fail(toQt(filled.error().message));
      return;
    }
    session_.openFleet(std::string(AppViewModel::demoPrefix));
    app_.toast(QStringLiteral("The demo fleet is as new."), QStringLiteral("ok"));
  });
}

}  // namespace thalvorn::app
