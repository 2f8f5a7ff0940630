#pragma once

#include <QObject>
#include <memory>

#include "app/desktop_search.h"
#include "app/reminders.h"

namespace thalvorn::app {

class AppController;

/// What the desktop around the window does for it: notifications of due maintenance, and records found by the desktop's
/// own search. Made once the window stands, so that it costs the start nothing.
class DesktopServices : public QObject {
  Q_OBJECT

 public:
  DesktopServices(AppViewModel& model, AppController& app, QObject* parent = nullptr);

 Q_SIGNALS:
  /// Something was opened from outside: the window should come to the front.
  void raiseRequested(const QString& activationToken);
  /// The user goes on searching here with these words.
  void searchWords(const QString& words);

 private:
  void openHit(const QString& id);

  AppViewModel& model_;
  AppController& app_;
  Reminders reminders_;
  DesktopSearch search_;
  SearchProvider provider_;
};

}  // namespace thalvorn::app
