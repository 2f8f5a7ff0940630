#pragma once

#include <QObject>
#include <QQuickWindow>
#include <QTimer>

#include "app/app_controller.h"

namespace thalvorn::app {

/// Gives the window the place and size it had, as far as a screen still shows it, and keeps them when they change.
class WindowMemory : public QObject {
  Q_OBJECT

 public:
  WindowMemory(QQuickWindow& window, PreferenceStore& preferences, QObject* parent = nullptr);
  ~WindowMemory() override;

 private:
  void restore();
  void keep();

  QQuickWindow& window_;
  PreferenceStore& preferences_;
  QRect normal_;  ///< the place while neither maximised nor full screen
  QTimer settled_;
};

}  // namespace thalvorn::app
