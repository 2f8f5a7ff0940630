#include "app/composition.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QHash>
#include <QQmlEngine>

#include "app/module_table.h"

void qml_register_types_Thalvorn();

namespace thalvorn::app {

namespace {

constexpr int kMajor = 1;

/// Keeps preferences for the length of one run: pictures and self-tests leave nothing behind.
class PassingPreferences : public PreferenceStore {
 public:
  QString preference(const QString& key) const override { return values_.value(key); }
  void setPreference(const QString& key, const QString& value) override { values_[key] = value; }

 private:
  QHash<QString, QString> values_;
};

template <class T>
void registerSingleton(const char* name, T* instance) {
  QQmlEngine::setObjectOwnership(instance, QQmlEngine::CppOwnership);
  qmlRegisterSingletonInstance("Thalvorn", kMajor, 0, name, instance);
}

}  // namespace

void prepareApplication() {
  QGuiApplication::setApplicationName(QStringLiteral("thalvorn"));
  QGuiApplication::setApplicationDisplayName(QStringLiteral("Thalvorn Yacht Systems"));
  QGuiApplication::setApplicationVersion(QStringLiteral(THALVORN_VERSION));
  QGuiApplication::setDesktopFileName(QStringLiteral("thalvorn"));
  for (const char16_t* weight : {u"Regular", u"Medium", u"SemiBold"}) {
    QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/Inter-%1.ttf").arg(QStringView(weight)));
  }
  QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
}

Composition::Composition(const Options& options)
    : options_(options),
      preferences_(std::make_unique<PassingPreferences>()),
      app_(std::make_unique<AppController>(*preferences_)),
      fleet_(std::make_unique<FleetController>()),
      format_(std::make_unique<Format>(clock_)),
      notices_(std::make_unique<Notices>()),
      search_(std::make_unique<SearchModel>()) {
  if (!options_.scheme.isEmpty()) app_->setAppearance(options_.scheme);
  if (options_.pictured()) app_->setReducedMotion(true);
  if (!options_.page.isEmpty()) app_->open(options_.page);
  app_->setPhase(QStringLiteral("ready"));
  search_->addSource(pagesAndCommands());
}

Composition::~Composition() = default;

void Composition::registerForQml() {
  qml_register_types_Thalvorn();
  registerSingleton("App", app_.get());
  registerSingleton("Fleet", fleet_.get());
  registerSingleton("Format", format_.get());
  registerSingleton("Notices", notices_.get());
  registerSingleton("Search", search_.get());
}

bool Composition::show() {
  registerForQml();
  engine_ = std::make_unique<QQmlApplicationEngine>();
  engine_->addImportPath(QStringLiteral("qrc:/qml"));
  engine_->load(QUrl(qmlAddress(QStringLiteral("Main.qml"))));
  if (engine_->rootObjects().isEmpty()) return false;
  window_ = qobject_cast<QQuickWindow*>(engine_->rootObjects().constFirst());
  if (!window_) return false;
  restoreWindow();
  window_->show();
  return true;
}

void Composition::restoreWindow() {
  if (options_.pictured()) {
    window_->resize(options_.size);
    return;
  }
}

}  // namespace thalvorn::app
