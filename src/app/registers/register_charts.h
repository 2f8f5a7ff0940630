#pragma once

#include <QVariant>
#include <vector>

#include "app/format.h"
#include "core/month_sums.h"

namespace thalvorn::app {

/// The twelve months up to now as a chart, {title, bars: [{label, value, text}]}; empty when nothing was summed in
/// them. `unit` stands behind the values.
QVariantMap monthChart(const QString& title, const std::vector<DatedAmount>& amounts, const QString& unit,
                       const Format& format);

/// Whether a point in time may be in such a chart.
bool isOfChart(Timestamp time, const Format& format);

}  // namespace thalvorn::app
