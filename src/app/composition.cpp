#include "app/composition.h"

#include <QEventLoop>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHash>
#include <QIcon>
#include <QQmlEngine>
#include <QTimer>
#include <utility>

#include "app/module_table.h"
#include "app/page_access.h"
#include "app/record_form.h"
#include "app/record_search.h"
#include "app/registers/register_pages.h"
#include "app/restart.h"
#include "app/text.h"
#include "platform/deep_link.h"
#include "platform/desktop_identity.h"
#include "platform/store_access.h"
#include "platform/user_folders.h"
#include "sync/deployment.h"

void qml_register_types_Thalvorn();

namespace thalvorn::app {

namespace {

constexpr int kMajor = 1;
constexpr int kAside = 100;
constexpr std::chrono::seconds kPatienceWithCommands{10};

/// Keeps preferences for the length of one run, where there is no store to keep them in.
class PassingPreferences : public PreferenceStore {
 public:
  QString preference(const QString& key) const override { return values_.value(key); }
  void setPreference(const QString& key, const QString& value) override { values_[key] = value; }

 private:
  QHash<QString, QString> values_;
};

template <class T>
void registerSingleton(const char* name, T* instance) {
  if (!instance) return;
  QQmlEngine::setObjectOwnership(instance, QQmlEngine::CppOwnership);
  qmlRegisterSingletonInstance("Thalvorn", kMajor, 0, name, instance);
}

/// The page that shows a record of a collection.
QString pageOfKind(const QString& kind) {
  if (kind == u"vessels") return QStringLiteral("vessels");
  if (kind == u"logs") return QStringLiteral("serviceHistory");
  if (kind == u"tasks") return QStringLiteral("taskLibrary");
  QString page;
  forEachRegister([&]<class T>(std::type_identity<T>, std::u16string_view) {
    if (kind == toQt(RecordKind<T>::facts.collection)) page = toQt(Register<T>::facts.key);
  });
  return page;
}

}  // namespace

void prepareApplication() {
  QGuiApplication::setApplicationName(QStringLiteral("thalvorn"));
  QGuiApplication::setApplicationDisplayName(kProductName);
  QGuiApplication::setApplicationVersion(QStringLiteral(THALVORN_VERSION));
  QGuiApplication::setDesktopFileName(kApplicationId);
  QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/thalvorn.svg")));
  for (const char16_t* weight : {u"Regular", u"Medium", u"SemiBold"}) {
    QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/Inter-%1.ttf").arg(QStringView(weight)));
  }
  QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
}

Composition::Composition(const Options& options) : options_(options) {
  if (!options_.store.isEmpty()) {
    storeFile_ = canonicalStorePath(options_.store);
  } else if (options_.pictured()) {
    scratch_ = std::make_unique<QTemporaryDir>();
    storeFile_ = scratch_->filePath(QStringLiteral("fleet.sqlite"));
  } else if (const auto store = userStoreFile()) {
    storeFile_ = *store;
  } else {
    problem_ = store.error();
  }
}

Composition::~Composition() {
  finishCommands();
  // The window goes first: its bindings refer to everything else.
  memory_.reset();
  engine_.reset();
  services_.reset();
}

void Composition::finishCommands() {
  if (!instance_ || instance_->runningCommands() == 0) return;
  QEventLoop loop;
  connect(instance_.get(), &SingleInstance::idle, &loop, &QEventLoop::quit);
  QTimer::singleShot(kPatienceWithCommands, &loop, &QEventLoop::quit);
  loop.exec();
}

bool Composition::claimStore() {
  if (scratch_ || !problem_.isEmpty()) return true;
  auto claim = claimForWindow(storeFile_);
  if (!claim) {
    problem_ = claim.error().message;
    return true;
  }
  if (const auto* other = std::get_if<InstanceClient>(&*claim)) {
    if (const auto raised = other->raiseAndWait(raiseRequestFromEnvironment(options_.link)); !raised) {
      qWarning("%s", qUtf8Printable(raised.error().message));
    }
    return false;
  }
  instance_ = std::move(std::get<std::unique_ptr<SingleInstance>>(*claim));
  connect(instance_.get(), &SingleInstance::raiseRequested, this, &Composition::raise);
  return true;
}

void Composition::openStore() {
  if (!problem_.isEmpty()) return;
  auto opened = StoreSession::open(storeFile_, clock_);
  if (opened) {
    session_ = std::move(*opened);
    makeCloud();
    commands_ = std::make_unique<cli::WindowCommands>(session_->model());
    commands_->setCloud(cloud_.get());
    if (instance_) commands_->serve(*instance_);
  } else {
    problem_ = opened.error();
    // Without a store there is nothing to hold; the command line says itself what is wrong with it.
    instance_.reset();
  }
}

void Composition::makeCloud() {
  // Pictures and tests are the same on every computer: only what they are told counts.
  if (options_.pictured() && options_.backend.isEmpty()) return;
  auto server = deployedBackend({.url = options_.backend, .key = options_.backendKey});
  if (!server) {
    serverProblem_ = server.error();
    qWarning("%s", qUtf8Printable(serverProblem_));
  } else if (*server) {
    cloud_ = std::make_unique<CloudSession>(session_->model(), **std::move(server), clock_, timing_);
  }
}

void Composition::makeAccount() {
  AppViewModel& model = session_->model();
  account_ = std::make_unique<AccountController>(*session_, cloud_.get(), serverProblem_, *app_);
  team_ = std::make_unique<TeamController>(*session_, cloud_.get(), *app_);
  sync_ = std::make_unique<SyncController>(model, cloud_.get(), *app_);
  const auto access = [this, &model] { app_->setAccess(pageAccess(model)); };
  connect(&model, &AppViewModel::membershipChanged, app_.get(), access);
  connect(&model, &AppViewModel::prefixChanged, app_.get(), access);
  search_->setFilter(
      [this](const SearchHit& hit) { return !app_->isClosed(hit.page) && app_->offers(hit.notification); });
}

void Composition::makeControllers() {
  if (session_) {
    preferences_ = std::make_unique<CachePreferences>(session_->cache());
  } else {
    preferences_ = std::make_unique<PassingPreferences>();
  }
  app_ = std::make_unique<AppController>(*preferences_);
  format_ = std::make_unique<Format>(clock_);
  notices_ = std::make_unique<Notices>();
  search_ = std::make_unique<SearchModel>();
  search_->addSource(pagesAndCommands());
  app_->setProblem(problem_);
  if (session_) {
    makeAccount();
    fleet_ = std::make_unique<FleetController>(session_->model(), *notices_);
    search_->addScan(recordScan(session_->model()));
    addRegisterScans(*search_, session_->model());
    maintenance_ = std::make_unique<MaintenanceController>(session_->model(), session_->attachments(), *format_, *app_,
                                                           *preferences_);
    recordPages_ = std::make_unique<RecordPages>(*session_, *preferences_, *app_, *format_);
    connect(&recordPages_->settings(), &Settings::restoreRequested, this, [this](const QString& backup) {
      restoreFrom_ = backup;
      QCoreApplication::exit();
    });
    connect(&session_->model(), &AppViewModel::reloaded, this, [this] {
      if (session_->model().prefix().empty()) return;
      if (!account_->mustSignIn()) app_->setPhase(QStringLiteral("ready"));
      if (!std::exchange(resumed_, true)) account_->resume();
      if (const QString message = messageOfRestart(); !message.isEmpty()) app_->toast(message);
    });
  }
  connect(app_.get(), &AppController::notification, this, &Composition::onNotification);
  if (!options_.scheme.isEmpty()) app_->showIn(options_.scheme);
  if (!options_.page.isEmpty()) app_->open(options_.page);
}

void Composition::registerForQml() {
  RecordForm::setStrict(options_.selfTest);
  qml_register_types_Thalvorn();
  registerSingleton("App", app_.get());
  registerSingleton("Format", format_.get());
  registerSingleton("Notices", notices_.get());
  registerSingleton("Search", search_.get());
  registerSingleton("Account", account_.get());
  registerSingleton("Team", team_.get());
  registerSingleton("Sync", sync_.get());
  registerSingleton("Fleet", fleet_.get());
  registerSingleton("Maintenance", maintenance_.get());
  if (recordPages_) recordPages_->registerForQml();
}

void Composition::followDesktop() {
  if (options_.pictured()) {
    app_->setReducedMotion(true);
    return;
  }
  desktop_ = std::make_unique<DesktopSettings>();
  const auto colours = [this] { app_->setDesktopDark(desktop_->colorScheme() == DesktopSettings::ColorScheme::dark); };
  const auto motion = [this] { app_->setReducedMotion(desktop_->reducedMotion()); };
  connect(desktop_.get(), &DesktopSettings::colorSchemeChanged, this, colours);
  connect(desktop_.get(), &DesktopSettings::reducedMotionChanged, this, motion);
  colours();
  motion();
  if (!cloud_) return;
  connect(desktop_.get(), &DesktopSettings::meteredChanged, this,
          [this] { cloud_->sync().metered().setDesktopSays(desktop_->metered() == DesktopSettings::Metered::yes); });
  connect(desktop_.get(), &DesktopSettings::networkReturned, cloud_.get(), &CloudSession::networkReturned);
}

bool Composition::show() {
  openStore();
  makeControllers();
  registerForQml();
  followDesktop();
  if (session_ && options_.pictured()) startReading();
  engine_ = std::make_unique<QQmlApplicationEngine>();
  engine_->addImportPath(QStringLiteral("qrc:/qml"));
  if (recordPages_) recordPages_->addImages(*engine_);
  engine_->load(QUrl(qmlAddress(session_ ? QStringLiteral("Main.qml") : QStringLiteral("shell/ProblemWindow.qml"))));
  if (engine_->rootObjects().isEmpty()) return false;
  window_ = qobject_cast<QQuickWindow*>(engine_->rootObjects().constFirst());
  if (!window_) return false;
  if (options_.pictured()) {
    // Away from the pointer, which would hover over what lies below it.
    window_->setGeometry(QRect(QPoint(kAside, kAside), options_.size));
  } else {
    memory_ = std::make_unique<WindowMemory>(*window_, *preferences_);
    // The window shows first; the records are read behind its first picture.
    if (session_)
      connect(window_, &QQuickWindow::frameSwapped, this, &Composition::startReading,
              static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
  }
  window_->show();
  return true;
}

void Composition::startReading() {
  app_->setDrawn();
  const std::string prefix = options_.demo ? std::string(AppViewModel::demoPrefix) : session_->startingPrefix();
  if (options_.pictured()) {
    session_->openFleetNow(prefix.empty() ? std::string(AppViewModel::demoPrefix) : prefix);
  } else if (prefix.empty()) {
    app_->setPhase(QStringLiteral("welcome"));
  } else {
    openFleet(prefix);
  }
  if (!options_.link.isEmpty()) followLink(options_.link);
  offerToDesktop();
}

void Composition::offerToDesktop() {
  if (options_.pictured() || services_) return;
  services_ = std::make_unique<DesktopServices>(session_->model(), *app_);
  connect(services_.get(), &DesktopServices::raiseRequested, this,
          [this](const QString& token) { raise({.activationToken = token}); });
  connect(services_.get(), &DesktopServices::searchWords, search_.get(), &SearchModel::setWords);
}

void Composition::openFleet(const std::string& prefix) {
  app_->setPhase(QStringLiteral("loading"));
  session_->openFleet(prefix);
}

void Composition::onNotification(const QString& name) {
  if (name == u"exploreDemo") openFleet(std::string(AppViewModel::demoPrefix));
  if (name == u"startLocalFleet") openFleet(std::string(AppViewModel::localPrefix));
  if (name == u"signOutRequested") account_->requestSignOut();
  if (name == u"thalvornRequestSync") sync_->syncNow();
}

void Composition::followLink(const QString& address) {
  const auto link = parseDeepLink(address);
  if (!link) {
    app_->toast(link.error(), QStringLiteral("overdue"));
    return;
  }
  if (const auto* record = std::get_if<OpenRecordLink>(&*link)) {
    const QString page = pageOfKind(record->kind);
    if (page.isEmpty()) {
      app_->toast(tr("This link opens a kind of record that this version does not show."), QStringLiteral("soon"));
    } else {
      app_->open(page, {{QStringLiteral("highlight"), record->id.toString(QUuid::WithoutBraces)}});
    }
  } else {
    account_->followLink(address);
  }
}

void Composition::raise(const RaiseRequest& request) {
  if (!request.activationToken.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", request.activationToken.toUtf8());
  if (window_) {
    if (window_->windowStates() & Qt::WindowMinimized) window_->showNormal();
    window_->raise();
    window_->requestActivate();
  }
  if (!request.deepLink.isEmpty() && session_) followLink(request.deepLink);
}

}  // namespace thalvorn::app
