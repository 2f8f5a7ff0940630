#include "app/fleet_controller.h"

namespace thalvorn::app {

QVariantMap FleetController::selectedVessel() const {
  for (const QVariant& vessel : vessels_) {
    if (vessel.toMap().value(QStringLiteral("id")) == selected_) return vessel.toMap();
  }
  return {};
}

QString FleetController::saveText() const {
  return unsaved_ == 0 ? QStringLiteral("Saved") : QStringLiteral("%1 not saved").arg(unsaved_);
}

void FleetController::selectVessel(const QString& id) {
  if (id != selected_) Q_EMIT vesselChosen(id);
}

void FleetController::setVessels(const QVariantList& vessels, const QString& selected) {
  vessels_ = vessels;
  selected_ = selected;
  Q_EMIT vesselsChanged();
}

void FleetController::setAttention(const QVariantMap& attention) {
  attention_ = attention;
  Q_EMIT attentionChanged();
}

void FleetController::setSaving(int unsaved, const QString& error) {
  unsaved_ = unsaved;
  saveError_ = error;
  Q_EMIT savingChanged();
}

}  // namespace thalvorn::app
