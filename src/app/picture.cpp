#include "app/picture.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QImage>
#include <QMutex>
#include <QQuickItem>
#include <array>

#include "app/composition.h"
#include "app/module_table.h"

namespace thalvorn::app {

namespace {

constexpr std::array kSizes{QSize(1366, 768), QSize(1920, 1080)};
constexpr int kRounds = 12;
/// What the welcome page can ask for.
constexpr std::array kWelcomeSteps{u"choice", u"signIn", u"signUp", u"forgot"};

struct Warnings {
  QMutex mutex;
  QStringList texts;
  QtMessageHandler before = nullptr;
};

Warnings& warnings() {
  static Warnings all;
  return all;
}

void keepWarning(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type == QtWarningMsg || type == QtCriticalMsg) {
    const QMutexLocker lock(&warnings().mutex);
    warnings().texts.append(text);
  }
  if (warnings().before) warnings().before(type, context, text);
}

/// Lets bindings, layouts and deferred calls come to rest.
void settle(QQuickWindow* window) {
  for (int round = 0; round < kRounds; ++round) {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    // A form that another has replaced goes here, where no event loop runs that would see to it.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (round % 4 == 3) window->grabWindow();
  }
}

}  // namespace

QString savePicture(Composition& composition, const QString& file) {
  settle(composition.window());
  const QImage image = composition.window()->grabWindow();
  if (image.isNull() || !image.save(file)) return QStringLiteral("The picture could not be written to %1.").arg(file);
  return {};
}

namespace {

/// The welcome page in each of its steps.
QString saveWelcome(Composition& composition, const QString& folder, QStringView scheme) {
  composition.app().setPhase(QStringLiteral("welcome"));
  QString fault;
  for (const char16_t* step : kWelcomeSteps) {
    composition.account().setStep(QString::fromUtf16(step));
    const QString name = QStringLiteral("welcome-%1-%2.png").arg(QStringView(step), scheme);
    if (fault.isEmpty()) fault = savePicture(composition, QDir(folder).filePath(name));
  }
  composition.account().setStep(QStringLiteral("choice"));
  composition.app().setPhase(QStringLiteral("ready"));
  return fault;
}

struct Sheet {
  const char16_t* name;
  const char16_t* source;
  const char16_t* key;          ///< the property that names its record; empty for none
  std::string_view collection;  ///< whose first record of the vessel in view it opens
};

constexpr std::array kSheets{
    Sheet{u"sheet-task", u"maintenance/TaskSheet.qml", u"taskId", "tasks"},
    Sheet{u"sheet-complete", u"maintenance/CompleteSheet.qml", u"taskId", "tasks"},
    Sheet{u"sheet-snooze", u"maintenance/SnoozeSheet.qml", u"taskId", "tasks"},
    Sheet{u"sheet-hours", u"maintenance/HoursSheet.qml", u"", ""},
    Sheet{u"sheet-service", u"history/CorrectServiceSheet.qml", u"serviceId", "logs"},
    Sheet{u"sheet-vessel", u"fleet/VesselSheet.qml", u"vesselId", "vessels"},
    Sheet{u"sheet-shipsLog", u"registers/ShipsLogSheet.qml", u"recordId", "shipsLog"},
    Sheet{u"sheet-bunkering", u"registers/BunkeringSheet.qml", u"recordId", "bunkeringRecords"},
    Sheet{u"sheet-gmdss", u"registers/GMDSSSheet.qml", u"recordId", "gmdssTestLogs"},
};

/// The record of the selected vessel that a sheet is shown with.
QString recordFor(const AppViewModel& store, std::string_view collection) {
  const Uuid vessel = store.selectedVesselID().value_or(Uuid{});
  if (collection == RecordKind<Vessel>::facts.collection) return QString::fromStdString(vessel.toString());
  std::string id;
  forEachKind([&]<class T>(std::type_identity<T>) {
    if (RecordKind<T>::facts.collection != collection) return;
    for (const T& record : store.collection<T>().records())
      if (id.empty() && vesselOf(record) == vessel) id = record.id.toString();
  });
  return QString::fromStdString(id);
}

void openSheet(Composition& composition, const Sheet& sheet) {
  const QString key = QString::fromUtf16(sheet.key);
  QVariantMap properties;
  if (!key.isEmpty()) properties[key] = recordFor(composition.store(), sheet.collection);
  composition.app().openSheet(QString::fromUtf16(sheet.source), properties);
}

/// The forms over the page from which they are opened.
QString saveSheets(Composition& composition, const QString& folder, QStringView scheme) {
  composition.app().open(QStringLiteral("maintenance"));
  for (const Sheet& sheet : kSheets) {
    openSheet(composition, sheet);
    const QString name = QStringLiteral("%1-%2.png").arg(QStringView(sheet.name), scheme);
    if (QString fault = savePicture(composition, QDir(folder).filePath(name)); !fault.isEmpty()) return fault;
  }
  return {};
}

}  // namespace

QString savePictures(Composition& composition, const QString& folder) {
  if (!QDir().mkpath(folder)) return QStringLiteral("The folder %1 could not be made.").arg(folder);
  for (const char16_t* scheme : {u"light", u"dark"}) {
    composition.app().showIn(QString::fromUtf16(scheme));
    composition.window()->resize(kSizes.front());
    if (const QString fault = saveWelcome(composition, folder, scheme); !fault.isEmpty()) return fault;
    for (const QSize& size : kSizes) {
      composition.window()->resize(size);
      for (const PageEntry& page : pageTable()) {
        composition.app().open(QString::fromUtf16(page.id));
        const QString name = QStringLiteral("%1-%2-%3x%4.png")
                                 .arg(QStringView(page.id), QStringView(scheme))
                                 .arg(size.width())
                                 .arg(size.height());
        if (const QString fault = savePicture(composition, QDir(folder).filePath(name)); !fault.isEmpty()) return fault;
      }
    }
  }
  // Last, since a form stays over the window.
  composition.window()->resize(kSizes.front());
  for (const char16_t* scheme : {u"light", u"dark"}) {
    composition.app().showIn(QString::fromUtf16(scheme));
    if (const QString fault = saveSheets(composition, folder, scheme); !fault.isEmpty()) return fault;
  }
  return {};
}

void collectWarnings() { warnings().before = qInstallMessageHandler(keepWarning); }

QStringList collectedWarnings() {
  const QMutexLocker lock(&warnings().mutex);
  return warnings().texts;
}

QStringList visitEveryPage(Composition& composition) {
  const QSize size = composition.window()->size();
  for (const PageEntry& page : pageTable()) {
    const QString id = QString::fromUtf16(page.id);
    composition.app().open(id);
    settle(composition.window());
    // The other colours and the least width, and back: what is taken down meanwhile goes without a word, too.
    composition.app().showIn(QStringLiteral("dark"));
    composition.window()->resize(composition.window()->minimumSize());
    settle(composition.window());
    composition.app().showIn(QStringLiteral("light"));
    composition.window()->resize(size);
    settle(composition.window());
    if (!composition.window()->property("shownPage").value<QQuickItem*>()) {
      qWarning("The page %s did not load", qUtf8Printable(id));
    }
  }
  for (const char* name : {"openSearch", "openHelp", "openStatusHelp", "openShortcuts", "openAbout"}) {
    composition.app().post(QString::fromLatin1(name));
    settle(composition.window());
  }
  for (const Sheet& sheet : kSheets) {
    openSheet(composition, sheet);
    settle(composition.window());
  }
  for (const char* sheet : {"Invite", "Member", "ChangePassword"}) {
    composition.app().openSheet(
        QStringLiteral("account/%1Sheet.qml").arg(QLatin1String(sheet)),
        sheet == QByteArray("Member") ? QVariantMap{{QStringLiteral("memberId"), QString()}} : QVariantMap());
    settle(composition.window());
  }
  composition.app().setPhase(QStringLiteral("welcome"));
  for (const char16_t* step : kWelcomeSteps) {
    composition.account().setStep(QString::fromUtf16(step));
    settle(composition.window());
  }
  return collectedWarnings();
}

}  // namespace thalvorn::app
