#pragma once

#include <QObject>
#include <QTimer>
#include <QVariant>
#include <memory>

#include "base/uuid.h"
#include "core/reminders.h"

namespace thalvorn {
class AppViewModel;
class DesktopNotifications;
}  // namespace thalvorn

namespace thalvorn::app {

/// Tells the desktop of due maintenance of the selected vessel, each stage of a due point once, also over restarts. A
/// notification opens its task or snoozes it for a day.
class Reminders : public QObject {
  Q_OBJECT

 public:
  /// Preference: "off", or the days before a due date at which a reminder comes; 1 when unset.
  static constexpr std::string_view leadKey = "thalvorn.reminderLeadDays";

  Reminders(AppViewModel& model, std::unique_ptr<DesktopNotifications> desktop, QObject* parent = nullptr);
  ~Reminders() override;

 Q_SIGNALS:
  /// The user wants to see the task.
  void openRequested(const QString& taskId, const QString& activationToken);

 private:
  void look();
  void show(const Reminder& reminder);
  void showSummary(std::size_t count);
  void withdrawSettled(const std::vector<Reminder>& due);
  void onAction(const QString& id, const QString& action, const QString& activationToken);
  QString toldKey() const;

  AppViewModel& model_;
  std::unique_ptr<DesktopNotifications> desktop_;
  QTimer soon_;    ///< gathers many changes into one look
  QTimer minute_;  ///< time passes
  QStringList shown_;
};

}  // namespace thalvorn::app
