#pragma once

#include <QObject>
#include <QTimer>
#include <QVariant>

#include "app/format.h"
#include "app/maintenance/fleet_watch.h"

namespace thalvorn::app {

/// What the home page tells of the selected vessel at a glance.
class Dashboard : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool active READ active WRITE setActive NOTIFY changed)
  Q_PROPERTY(QString greeting READ greeting NOTIFY changed)
  Q_PROPERTY(bool hasVessel READ hasVessel NOTIFY changed)
  Q_PROPERTY(bool hasTasks READ hasTasks NOTIFY changed)
  Q_PROPERTY(QVariantList counters READ counters NOTIFY changed)
  Q_PROPERTY(QVariantList meters READ meters NOTIFY changed)
  Q_PROPERTY(QString metersUpdated READ metersUpdated NOTIFY changed)
  Q_PROPERTY(QVariantList attention READ attention NOTIFY changed)
  Q_PROPERTY(QVariantList workDone READ workDone NOTIFY changed)
  Q_PROPERTY(QString workDoneText READ workDoneText NOTIFY changed)

 public:
  Dashboard(FleetWatch& watch, const Format& format, QObject* parent = nullptr);

  /// Follows changes only while it is looked at.
  bool active() const { return active_; }
  void setActive(bool active);

  /// "Good morning, Ana", by the time of day.
  QString greeting() const { return greeting_; }
  bool hasVessel() const { return hasVessel_; }
  bool hasTasks() const { return hasTasks_; }
  /// Overdue, due soon, on track: [{status, title, tone, count, note, todayLabel, today}].
  QVariantList counters() const { return counters_; }
  /// The fitted meters: [{label, value}].
  QVariantList meters() const { return meters_; }
  /// "Updated yesterday"; "Never updated".
  QString metersUpdated() const { return metersUpdated_; }
  /// What else needs a hand: [{icon, title, detail, page, arguments}].
  QVariantList attention() const { return attention_; }
  /// Services by month, oldest first: [{label, value, text}].
  QVariantList workDone() const { return workDone_; }
  /// "132 jobs · 24,310.00"; empty without any.
  QString workDoneText() const { return workDoneText_; }

  /// Reads everything again, now.
  void refreshNow();

 Q_SIGNALS:
  void changed();

 private:
  void refreshSoon();
  void readCounters(const Uuid& vessel);
  void readMeters(const Vessel& vessel);
  void readAttention(const Vessel& vessel);
  void readWorkDone(const Uuid& vessel);

  FleetWatch& watch_;
  const Format& format_;
  QTimer refresh_;
  bool active_ = false;
  bool stale_ = true;
  QString greeting_;
  bool hasVessel_ = false;
  bool hasTasks_ = false;
  QVariantList counters_;
  QVariantList meters_;
  QString metersUpdated_;
  QVariantList attention_;
  QVariantList workDone_;
  QString workDoneText_;
};

}  // namespace thalvorn::app
