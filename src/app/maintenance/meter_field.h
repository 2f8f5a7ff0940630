#pragma once

#include <QObject>
#include <optional>

#include "app/format.h"
#include "core/meters.h"

namespace thalvorn::app {

/// One hour meter in a form: what it shows, and what is typed beside it. An empty field leaves the meter as it is.
class MeterField : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString source READ source CONSTANT)
  Q_PROPERTY(QString label READ label CONSTANT)
  Q_PROPERTY(QString current READ current CONSTANT)
  Q_PROPERTY(QString text READ text WRITE setText NOTIFY changed)
  Q_PROPERTY(QString message READ message NOTIFY changed)
  Q_PROPERTY(QString tone READ tone NOTIFY changed)
  Q_PROPERTY(QString gain READ gain NOTIFY changed)

 public:
  MeterField(const Vessel& vessel, HourSource source, const Format& format, QObject* parent = nullptr);

  /// The stored name of the meter.
  QString source() const;
  /// "Gen 1".
  QString label() const;
  /// "Current: 1234.5 hrs".
  QString current() const;
  QString text() const { return text_; }
  void setText(const QString& text);
  /// What is wrong or odd about what was typed; `tone` is "overdue" when it cannot be saved, else "soon".
  QString message() const { return message_; }
  QString tone() const { return wrong_ ? QStringLiteral("overdue") : QStringLiteral("soon"); }
  /// What the meter would gain: "+12.4 h".
  QString gain() const { return gain_; }

  /// True when the text is not a number of hours.
  bool wrong() const { return wrong_; }
  /// What was typed, as the operations take it.
  MeterReading reading() const { return {source_, hours_}; }

 Q_SIGNALS:
  void changed();

 private:
  Vessel vessel_;
  HourSource source_;
  const Format& format_;
  QString text_;
  QString message_;
  QString gain_;
  std::optional<double> hours_;
  bool wrong_ = false;
};

}  // namespace thalvorn::app
