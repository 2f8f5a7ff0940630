#include "app/window_memory.h"

#include <QGuiApplication>
#include <QScreen>

namespace thalvorn::app {

namespace {

using namespace std::chrono_literals;

constexpr int kLeastVisible = 120;

QString key() { return QStringLiteral("thalvorn.window"); }

/// "x,y,width,height,maximised"
QString written(const QRect& place, bool maximised) {
  return QStringLiteral("%1,%2,%3,%4,%5")
      .arg(place.x())
      .arg(place.y())
      .arg(place.width())
      .arg(place.height())
      .arg(maximised ? 1 : 0);
}

bool isSeen(const QRect& place) {
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect part = screen->availableGeometry().intersected(place);
    if (part.width() >= kLeastVisible && part.height() >= kLeastVisible) return true;
  }
  return false;
}

}  // namespace

WindowMemory::WindowMemory(QQuickWindow& window, PreferenceStore& preferences, QObject* parent)
    : QObject(parent), window_(window), preferences_(preferences) {
  restore();
  settled_.setSingleShot(true);
  settled_.setInterval(800ms);
  connect(&settled_, &QTimer::timeout, this, &WindowMemory::keep);
  const auto moved = [this] {
    if (window_.visibility() == QWindow::Windowed) normal_ = window_.geometry();
    settled_.start();
  };
  connect(&window_, &QWindow::xChanged, this, moved);
  connect(&window_, &QWindow::yChanged, this, moved);
  connect(&window_, &QWindow::widthChanged, this, moved);
  connect(&window_, &QWindow::heightChanged, this, moved);
  connect(&window_, &QWindow::visibilityChanged, this, moved);
}

WindowMemory::~WindowMemory() {
  if (settled_.isActive()) keep();
}

void WindowMemory::restore() {
  const QStringList parts = preferences_.preference(key()).split(u',');
  if (parts.size() == 5) {
    const QRect place(parts[0].toInt(), parts[1].toInt(), parts[2].toInt(), parts[3].toInt());
    if (isSeen(place)) {
      normal_ = place;
      window_.setGeometry(place);
    }
    if (parts[4] == u"1") window_.setWindowStates(Qt::WindowMaximized);
    return;
  }
  if (const QScreen* screen = window_.screen()) {
    const QRect free = screen->availableGeometry();
    if (free.width() <= window_.width() || free.height() <= window_.height()) {
      window_.setWindowStates(Qt::WindowMaximized);
    }
  }
}

void WindowMemory::keep() {
  if (window_.visibility() == QWindow::Hidden || window_.visibility() == QWindow::FullScreen) return;
  if (normal_.isEmpty()) normal_ = window_.geometry();
  preferences_.setPreference(key(), written(normal_, window_.visibility() == QWindow::Maximized));
}

}  // namespace thalvorn::app
