#include "app/maintenance/fleet_watch.h"

#include <chrono>

#include "core/meter_pace.h"

namespace thalvorn::app {

FleetWatch::FleetWatch(AppViewModel& store, QObject* parent) : QObject(parent), store_(store) {
  minute_.setInterval(std::chrono::minutes(1));
  connect(&minute_, &QTimer::timeout, this, &FleetWatch::tick);
  minute_.start();
  tell_.setSingleShot(true);
  connect(&tell_, &QTimer::timeout, this, &FleetWatch::moved);

  const auto follow = [this](CollectionEvents& events) {
    connect(&events, &CollectionEvents::reset, this, &FleetWatch::metersChanged);
    connect(&events, &CollectionEvents::inserted, this, &FleetWatch::metersChanged);
    connect(&events, &CollectionEvents::changed, this, &FleetWatch::metersChanged);
    connect(&events, &CollectionEvents::removed, this, &FleetWatch::metersChanged);
  };
  follow(store_.vessels().events());
  follow(store_.logs().events());
}

void FleetWatch::look() const {
  calendar_ = store_.calendar();
  horizon_.emplace(store_.now(), *calendar_);
}

const StatusHorizon& FleetWatch::horizon() const {
  if (!horizon_) look();
  return *horizon_;
}

const Calendar& FleetWatch::calendar() const {
  if (!calendar_) look();
  return *calendar_;
}

const Fleet& FleetWatch::fleet() const {
  if (!fleet_) {
    fleet_.emplace(store_.vessels().records());
    learnPaces(*fleet_, store_.tasks().records(), store_.logs().records(), now());
  }
  return *fleet_;
}

const Vessel& FleetWatch::vesselOf(const MaintenanceTask& task) const {
  static const Vessel none{.numberOfEngines = 0};
  const Vessel* vessel = store_.vessels().find(task.vesselID);
  return vessel ? *vessel : none;
}

void FleetWatch::tick() {
  look();
  Q_EMIT ticked();
}

void FleetWatch::metersChanged() {
  fleet_.reset();
  tell_.start(0);
}

}  // namespace thalvorn::app
