#include "app/maintenance/meter_field.h"

#include "app/maintenance/task_texts.h"
#include "base/number_format.h"

namespace thalvorn::app {

MeterField::MeterField(const Vessel& vessel, HourSource source, const Format& format, QObject* parent)
    : QObject(parent), vessel_(vessel), source_(source), format_(format) {}

QString MeterField::source() const { return toQt(rawText(source_)); }
QString MeterField::label() const { return toQt(meterLabel(source_)); }
QString MeterField::current() const { return toQt(currentHoursText(vessel_.reading(source_))); }

void MeterField::setText(const QString& text) {
  if (text == text_) return;
  text_ = text;
  message_.clear();
  gain_.clear();
  hours_.reset();
  wrong_ = false;
  if (!text.trimmed().isEmpty()) {
    const auto hours = thalvorn::parseNumber(text.toStdString(), format_.numbers());
    if (!hours) {
      wrong_ = true;
      message_ = toQt(hours.error());
    } else {
      hours_ = *hours;
      if (const auto notice = checkReading(vessel_, source_, *hours, format_.clock().now())) {
        wrong_ = notice->finding == MeterFinding::notANumber;
        message_ = toQt(noticeText(*notice));
      }
      const double more = *hours - vessel_.reading(source_);
      if (more > 0) gain_ = QStringLiteral("+%1 h").arg(format_.number(more, 1));
    }
  }
  Q_EMIT changed();
}

}  // namespace thalvorn::app
