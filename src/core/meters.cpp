#include "core/meters.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>

#include "base/number_format.h"

namespace thalvorn {
namespace {

constexpr double kMostHours = 1e6;

bool isReading(double hours) { return std::isfinite(hours) && hours >= 0 && hours <= kMostHours; }

/// The most a meter can have run since its last update; a day's worth at least, for readings are noted once a day.
std::optional<double> mostSinceUpdate(const Vessel& vessel, Timestamp now) {
  if (!vessel.engineHoursUpdatedAt) return std::nullopt;
  const std::chrono::duration<double, std::ratio<3600>> passed = now - *vessel.engineHoursUpdatedAt;
  return std::max(passed.count(), 24.0);
}

std::expected<Vessel, std::string> adjust(Vessel vessel, const MeterAdjustment& adjustment, MeterChange change,
                                          Timestamp now) {
  if (adjustment.reason.find_first_not_of(" \t\r\n") == std::string::npos)
    return std::unexpected("Give a reason: it is kept in the meter's history.");
  if (!isReading(adjustment.hours))
    return std::unexpected(fmt::format("Enter hours between 0 and {}.", formatNumber(kMostHours, 0)));
  const double before = vessel.reading(adjustment.source);
  if (change == MeterChange::corrected && before == adjustment.hours)
    return std::unexpected(fmt::format("{} already shows {}.", displayText(adjustment.source), hoursText(before)));
  vessel.setReading(adjustment.source, adjustment.hours);
  vessel.engineHoursUpdatedAt = now;
  vessel.meterHistory.push_back({.id = adjustment.eventID,
                                 .at = now,
                                 .hourSource = adjustment.source,
                                 .change = change,
                                 .before = before,
                                 .after = adjustment.hours,
                                 .reason = adjustment.reason,
                                 .author = adjustment.author});
  return vessel;
}

}  // namespace

std::string noticeText(const MeterNotice& notice) {
  const std::string_view meter = displayText(notice.source);
  switch (notice.finding) {
    case MeterFinding::lower:
      return fmt::format(
          "{}: {} is below the current {} and was left out — meters only count up. Use “Correct meter…” "
          "if the current reading is wrong.",
          meter, hoursText(notice.entered), hoursText(notice.current));
    case MeterFinding::notANumber:
      return fmt::format("{}: enter hours between 0 and {}.", meter, formatNumber(kMostHours, 0));
    case MeterFinding::implausible:
      return fmt::format("{}: {} is more than 24 hours a day above the last reading of {}. Check for a typing error.",
                         meter, hoursText(notice.entered), hoursText(notice.current));
    case MeterFinding::notFitted:
      return fmt::format("{}: the vessel is not fitted with this meter.", meter);
  }
  return {};
}

std::optional<MeterNotice> checkReading(const Vessel& vessel, HourSource source, double hours, Timestamp now) {
  MeterNotice notice{.source = source, .entered = hours, .current = vessel.reading(source)};
  if (!std::isfinite(hours) || hours > kMostHours) {
    notice.finding = MeterFinding::notANumber;
  } else if (hours < notice.current) {
    notice.finding = MeterFinding::lower;
  } else if (!vessel.hasMeter(source)) {
    notice.finding = MeterFinding::notFitted;
  } else if (const auto most = mostSinceUpdate(vessel, now); most && hours - notice.current > *most) {
    notice.finding = MeterFinding::implausible;
  } else {
    return std::nullopt;
  }
  return notice;
}

RaisedMeters raiseMeters(Vessel vessel, std::span<const MeterReading> readings, Timestamp now) {
  RaisedMeters raised{.vessel = std::move(vessel), .notices = {}};
  for (const auto& [source, hours] : readings) {
    if (!hours) continue;
    const auto notice = checkReading(raised.vessel, source, *hours, now);
    if (notice) raised.notices.push_back(*notice);
    if ((notice && notice->ignored()) || *hours == raised.vessel.reading(source)) continue;
    raised.vessel.setReading(source, *hours);
    raised.rose = true;
  }
  if (raised.rose) raised.vessel.engineHoursUpdatedAt = now;
  return raised;
}

std::expected<Vessel, std::string> correctMeter(Vessel vessel, const MeterAdjustment& adjustment, Timestamp now) {
  return adjust(std::move(vessel), adjustment, MeterChange::corrected, now);
}

std::expected<Vessel, std::string> replaceMeter(Vessel vessel, const MeterAdjustment& adjustment, Timestamp now) {
  return adjust(std::move(vessel), adjustment, MeterChange::replaced, now);
}

std::vector<MaintenanceTask> followNewMeter(std::span<const MaintenanceTask> tasks, const Uuid& vesselID,
                                            const MeterEvent& event) {
  std::vector<MaintenanceTask> moved;
  for (const MaintenanceTask& task : tasks) {
    if (task.vesselID != vesselID || task.isCompleted || task.hourSource != event.hourSource || !task.dueAtEngineHours)
      continue;
    moved.push_back(task);
    moved.back().dueAtEngineHours = std::max(0.0, *task.dueAtEngineHours + event.after - event.before);
  }
  return moved;
}

}  // namespace thalvorn
