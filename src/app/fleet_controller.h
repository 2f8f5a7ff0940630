#pragma once

#include <QObject>
#include <QTimer>
#include <QVariant>
#include <vector>

#include "app/notices.h"
#include "base/uuid.h"

namespace thalvorn {
class AppViewModel;
struct Edit;
}  // namespace thalvorn

namespace thalvorn::app {

/// The fleet as the shell shows it: the vessel switcher, the counts that need attention, the state of saving, undo.
/// QML sees it as `Fleet`.
class FleetController : public QObject {
  Q_OBJECT
  Q_PROPERTY(QVariantList vessels READ vessels NOTIFY vesselsChanged)
  Q_PROPERTY(QString selectedVesselId READ selectedVesselId NOTIFY vesselsChanged)
  Q_PROPERTY(QVariantMap selectedVessel READ selectedVessel NOTIFY vesselsChanged)
  Q_PROPERTY(QVariantMap attention READ attention NOTIFY attentionChanged)
  Q_PROPERTY(bool demo READ demo NOTIFY vesselsChanged)
  Q_PROPERTY(int unsaved READ unsaved NOTIFY savingChanged)
  Q_PROPERTY(QString saveText READ saveText NOTIFY savingChanged)
  Q_PROPERTY(QString saveError READ saveError NOTIFY savingChanged)

 public:
  FleetController(AppViewModel& model, Notices& notices, QObject* parent = nullptr);

  /// In list order: {id, name, detail}.
  QVariantList vessels() const { return vessels_; }
  QString selectedVesselId() const;
  QVariantMap selectedVessel() const;
  /// By page id: {count, tone, meaning}.
  QVariantMap attention() const { return attention_; }
  bool demo() const;
  /// Edits that are not on disk yet.
  int unsaved() const;
  /// "Saved" or "3 not saved".
  QString saveText() const;
  /// Why saving fails at present, and what to do; empty when all is well.
  QString saveError() const;

  Q_INVOKABLE void selectVessel(const QString& id);
  Q_INVOKABLE void retrySaving();
  /// Takes the last edit of this session back that has not been taken back yet, and says what came of it.
  Q_INVOKABLE QString undoLast();

 Q_SIGNALS:
  void vesselsChanged();
  void attentionChanged();
  void savingChanged();

 private:
  void readVessels();
  void readAttention();
  void offerUndo(const Edit& edit);
  /// Takes the edit back and shows a vessel that comes back with it; says what was undone, or why nothing was.
  QString undo(const Uuid& edit);

  AppViewModel& model_;
  Notices& notices_;
  QVariantList vessels_;
  QVariantMap attention_;
  std::vector<Uuid> edits_;  ///< of this session, oldest first, without what was taken back
  bool undoing_ = false;
  QTimer recount_;  ///< gathers many changes into one count
  QTimer minute_;   ///< time passes: what was due soon becomes overdue
};

}  // namespace thalvorn::app
