#pragma once

#include <QObject>
#include <QVariant>

namespace thalvorn::app {

/// The fleet as the shell shows it: the vessel switcher, the counts that need attention, the state of saving.
/// QML sees it as `Fleet`.
class FleetController : public QObject {
  Q_OBJECT
  Q_PROPERTY(QVariantList vessels READ vessels NOTIFY vesselsChanged)
  Q_PROPERTY(QString selectedVesselId READ selectedVesselId NOTIFY vesselsChanged)
  Q_PROPERTY(QVariantMap selectedVessel READ selectedVessel NOTIFY vesselsChanged)
  Q_PROPERTY(QVariantMap attention READ attention NOTIFY attentionChanged)
  Q_PROPERTY(int unsaved READ unsaved NOTIFY savingChanged)
  Q_PROPERTY(QString saveText READ saveText NOTIFY savingChanged)
  Q_PROPERTY(QString saveError READ saveError NOTIFY savingChanged)

 public:
  using QObject::QObject;

  /// In list order: {id, name, detail}.
  QVariantList vessels() const { return vessels_; }
  QString selectedVesselId() const { return selected_; }
  QVariantMap selectedVessel() const;
  /// By page id: {count, tone, meaning}.
  QVariantMap attention() const { return attention_; }
  /// Edits that are not on disk yet.
  int unsaved() const { return unsaved_; }
  /// "Saved" or "3 not saved".
  QString saveText() const;
  /// Why saving fails at present, and what to do; empty when all is well.
  QString saveError() const { return saveError_; }

  Q_INVOKABLE void selectVessel(const QString& id);

  void setVessels(const QVariantList& vessels, const QString& selected);
  void setAttention(const QVariantMap& attention);
  void setSaving(int unsaved, const QString& error);

 Q_SIGNALS:
  void vesselsChanged();
  void attentionChanged();
  void savingChanged();
  void vesselChosen(const QString& id);

 private:
  QVariantList vessels_;
  QString selected_;
  QVariantMap attention_;
  int unsaved_ = 0;
  QString saveError_;
};

}  // namespace thalvorn::app
