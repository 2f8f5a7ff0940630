#pragma once

#include <QObject>
#include <QVariant>
#include <vector>

#include "app/maintenance/meter_field.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

/// All hour meters of a vessel in one form. Readings only count up; what was mistyped is corrected, and an exchanged
/// meter replaced, each with a reason.
class HoursEditor : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString vesselName READ vesselName CONSTANT)
  Q_PROPERTY(QList<QObject*> meters READ meters NOTIFY metersChanged)
  Q_PROPERTY(QString updated READ updated NOTIFY metersChanged)
  Q_PROPERTY(QVariantList history READ history NOTIFY metersChanged)
  Q_PROPERTY(bool dirty READ dirty NOTIFY changed)
  Q_PROPERTY(QString error READ error NOTIFY changed)

 public:
  HoursEditor(AppViewModel& store, const Format& format, const Uuid& vesselID);

  QString vesselName() const;
  QList<QObject*> meters() const;
  /// "Updated 3 days ago · 18 Nov 2026 08:05".
  QString updated() const;
  /// Corrections and replacements, newest first: [{title, text}].
  QVariantList history() const;
  bool dirty() const;
  QString error() const { return error_; }

  /// Raises the meters to what was entered.
  Q_INVOKABLE bool save();
  /// Sets one meter to `hours` because it was "corrected" or "replaced". Returns what is missing; empty when done.
  Q_INVOKABLE QString adjust(const QString& source, const QString& change, const QString& hours, const QString& reason);

 Q_SIGNALS:
  void metersChanged();
  void changed();

 private:
  const Vessel* vessel() const { return store_.vessels().find(vesselID_); }
  void readMeters();

  AppViewModel& store_;
  const Format& format_;
  Uuid vesselID_;
  std::vector<MeterField*> meters_;
  QString error_;
};

/// Corrections and replacements of a vessel's meters, newest first, at most `most`: [{title, text}].
QVariantList meterHistory(const Vessel& vessel, std::size_t most, const Format& format);

}  // namespace thalvorn::app
