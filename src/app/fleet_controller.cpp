#include "app/fleet_controller.h"

#include <algorithm>

#include "app/save_outcome.h"
#include "app/text.h"
#include "base/number_format.h"
#include "core/task_status.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t kUndoDepth = 50;

QString vesselDetail(const Vessel& vessel) {
  QStringList parts;
  if (vessel.lengthFeet > 0) parts << toQt(formatQuantity(vessel.lengthFeet, 1)) + QStringLiteral(" ft");
  if (!vessel.type.empty()) parts << toQt(vessel.type);
  return parts.join(QStringLiteral(" · "));
}

/// Deleting and completing are offered back at once; everything else only by Ctrl+Z.
bool isOfferedBack(const Edit& edit) {
  return std::ranges::any_of(edit.changes, [](const RecordChange& change) {
    return !change.after || (!change.before && std::holds_alternative<ServiceLog>(*change.after));
  });
}

}  // namespace

FleetController::FleetController(AppViewModel& model, Notices& notices, QObject* parent)
    : QObject(parent), model_(model), notices_(notices) {
  recount_.setSingleShot(true);
  recount_.setInterval(0ms);
  connect(&recount_, &QTimer::timeout, this, &FleetController::readAttention);
  minute_.setInterval(60s);
  connect(&minute_, &QTimer::timeout, this, &FleetController::readAttention);
  minute_.start();
  const auto recount = [this] { recount_.start(); };
  connect(&model_, &AppViewModel::reloaded, this, [this] {
    edits_.clear();
    notices_.dismiss();
    readVessels();
    readAttention();
  });
  connect(&model_, &AppViewModel::selectedVesselIDChanged, this, [this] {
    Q_EMIT vesselsChanged();
    readAttention();
  });
  connect(&model_, &AppViewModel::edited, this, &FleetController::offerUndo);
  connect(&model_, &AppViewModel::edited, this, recount);
  CollectionEvents& events = model_.vessels().events();
  for (const auto signal : {&CollectionEvents::inserted, &CollectionEvents::removed}) {
    connect(&events, signal, this, &FleetController::readVessels);
  }
  connect(&events, &CollectionEvents::reset, this, &FleetController::readVessels);
  connect(&events, &CollectionEvents::changed, this, &FleetController::readVessels);
  connect(&model_, &AppViewModel::unsavedChanged, this, &FleetController::savingChanged);
}

QString FleetController::selectedVesselId() const {
  const auto id = model_.selectedVesselID();
  return id ? toQt(id->toString()) : QString();
}

QVariantMap FleetController::selectedVessel() const {
  const QString id = selectedVesselId();
  for (const QVariant& vessel : vessels_) {
    if (vessel.toMap().value(QStringLiteral("id")) == id) return vessel.toMap();
  }
  return {};
}

bool FleetController::demo() const { return model_.isDemo(); }

int FleetController::unsaved() const { return model_.unsavedCount(); }

QString FleetController::saveText() const {
  return unsaved() == 0 ? QStringLiteral("Saved") : QStringLiteral("%1 not saved").arg(unsaved());
}

QString FleetController::saveError() const { return toQt(model_.saveProblem()); }

void FleetController::selectVessel(const QString& id) {
  if (const auto read = Uuid::parse(id.toStdString())) model_.setSelectedVesselID(read);
}

void FleetController::retrySaving() { model_.retrySaving(); }

QString FleetController::undoLast() {
  return edits_.empty() ? QStringLiteral("There is nothing to undo.") : undo(Uuid(edits_.back()));
}

QString FleetController::undo(const Uuid& edit) {
  std::erase(edits_, edit);
  notices_.dismiss();
  QString told;
  std::optional<Uuid> deletedVessel;
  if (const auto found = std::ranges::find(model_.undoable(), edit, &Edit::id); found != model_.undoable().end()) {
    told = QStringLiteral("Undone: ") + toQt(found->label);
    for (const RecordChange& change : found->changes) {
      if (!change.after && std::holds_alternative<Vessel>(*change.before)) deletedVessel = change.id();
    }
  }
  undoing_ = true;
  const Saving saving = model_.undo(edit);
  undoing_ = false;
  if (const QString refusal = refusalOf(saving); !refusal.isEmpty()) return refusal;
  if (deletedVessel) model_.setSelectedVesselID(deletedVessel);
  return told;
}

void FleetController::offerUndo(const Edit& edit) {
  if (undoing_) return;
  edits_.push_back(edit.id);
  if (edits_.size() > kUndoDepth) edits_.erase(edits_.begin());
  if (isOfferedBack(edit)) notices_.offer(toQt(edit.label), [this, id = edit.id] { undo(id); });
}

void FleetController::readVessels() {
  vessels_.clear();
  for (const Vessel* vessel : model_.vesselsInOrder()) {
    vessels_.append(QVariantMap{{QStringLiteral("id"), toQt(vessel->id.toString())},
                                {QStringLiteral("name"), toQt(vessel->name)},
                                {QStringLiteral("detail"), vesselDetail(*vessel)}});
  }
  Q_EMIT vesselsChanged();
}

void FleetController::readAttention() {
  QVariantMap attention;
  if (const auto vessel = model_.selectedVesselID()) {
    const StatusHorizon horizon(model_.now(), model_.calendar());
    const StatusCounts counts =
        countTasks(model_.tasks().records(), thalvorn::Fleet(model_.vessels().records()), horizon, vessel);
    const bool late = counts.overdue > 0;
    const std::size_t count = late ? counts.overdue : counts.dueSoon;
    if (count > 0) {
      attention[QStringLiteral("maintenance")] =
          QVariantMap{{QStringLiteral("count"), static_cast<int>(count)},
                      {QStringLiteral("tone"), late ? QStringLiteral("overdue") : QStringLiteral("soon")},
                      {QStringLiteral("meaning"), late ? QStringLiteral("overdue") : QStringLiteral("due soon")}};
    }
  }
  if (attention == attention_) return;
  attention_ = attention;
  Q_EMIT attentionChanged();
}

}  // namespace thalvorn::app
