#pragma once

#include <QObject>
#include <QTimer>
#include <optional>

#include "core/fleet.h"
#include "core/task_status.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

/// What every maintenance screen judges tasks by: the moments at which due dates change their status, and the vessels'
/// meters with the pace they run at. Status changes by itself with time, so it looks at the clock every minute.
class FleetWatch : public QObject {
  Q_OBJECT

 public:
  explicit FleetWatch(AppViewModel& store, QObject* parent = nullptr);

  AppViewModel& store() const { return store_; }
  /// As of the last look at the clock.
  Timestamp now() const { return horizon().now(); }
  const StatusHorizon& horizon() const;
  const Calendar& calendar() const;
  const Fleet& fleet() const;
  /// The vessel of a task; one without meters when it is gone.
  const Vessel& vesselOf(const MaintenanceTask& task) const;

  /// Looks at the clock again.
  void tick();

 Q_SIGNALS:
  /// A minute has passed.
  void ticked();
  /// A meter stands or runs otherwise, so every status may be another.
  void moved();

 private:
  void metersChanged();
  void look() const;

  AppViewModel& store_;
  QTimer minute_;
  QTimer tell_;
  mutable std::optional<Fleet> fleet_;
  mutable std::optional<Calendar> calendar_;
  mutable std::optional<StatusHorizon> horizon_;
};

}  // namespace thalvorn::app
