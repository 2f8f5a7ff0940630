#include "core/meter_pace.h"

#include <algorithm>
#include <cmath>
#include <ranges>
#include <unordered_map>

#include "base/date_format.h"

namespace thalvorn {
namespace {

constexpr double kDaySeconds = 86400;
constexpr std::chrono::days kWindow{90};

double daysBetween(Timestamp from, Timestamp to) { return static_cast<double>((to - from).count()) / kDaySeconds; }

/// When the meter was last set by hand: readings from before do not compare with later ones.
std::optional<DatedReading> lastSetByHand(const Vessel& vessel, HourSource source) {
  std::optional<DatedReading> last;
  for (const MeterEvent& event : vessel.meterHistory)
    if (event.hourSource == source && (!last || event.at >= last->at)) last = {event.at, event.after};
  return last;
}

}  // namespace

std::optional<double> averageDailyHours(std::vector<DatedReading> readings) {
  std::ranges::sort(readings, std::greater{}, &DatedReading::at);
  if (readings.empty()) return std::nullopt;
  const DatedReading latest = readings.front();
  const Timestamp windowBegin = latest.at - kWindow;
  DatedReading first = latest;
  for (const DatedReading& reading : readings | std::views::drop(1)) {
    if (reading.hours > first.hours) continue;
    if (reading.at < windowBegin) {
      // The window begins between this reading and the next.
      const double share = daysBetween(reading.at, windowBegin) / daysBetween(reading.at, first.at);
      first = {windowBegin, std::lerp(reading.hours, first.hours, share)};
      break;
    }
    first = reading;
  }
  const double days = daysBetween(first.at, latest.at);
  if (days < 1) return std::nullopt;
  return (latest.hours - first.hours) / days;
}

void learnPaces(Fleet& fleet, std::span<const MaintenanceTask> tasks, std::span<const ServiceLog> logs, Timestamp now) {
  constexpr std::size_t meterCount = caseCount<HourSource>;
  struct VesselReadings {
    std::array<std::vector<DatedReading>, meterCount> byMeter;
    std::array<std::optional<DatedReading>, meterCount> setByHand;
  };
  std::unordered_map<Uuid, VesselReadings> readings;
  for (const Fleet::Meters& meters : fleet.all()) {
    VesselReadings& known = readings[meters.vesselID];
    for (const HourSource source : meters.vessel->meters()) {
      const auto at = static_cast<std::size_t>(source);
      const auto setByHand = lastSetByHand(*meters.vessel, source);
      if (setByHand) known.byMeter[at].push_back(*setByHand);
      known.setByHand[at] = setByHand;
      known.byMeter[at].push_back({meters.vessel->engineHoursUpdatedAt.value_or(now), meters.reading(source)});
    }
  }

  std::unordered_map<Uuid, HourSource> meterOfTask;
  meterOfTask.reserve(tasks.size());
  for (const MaintenanceTask& task : tasks)
    if (const auto source = task.hourSource.known()) meterOfTask.emplace(task.id, *source);

  for (const ServiceLog& log : logs) {
    const auto vessel = readings.find(log.vesselID);
    const auto meter = meterOfTask.find(log.taskID);
    if (vessel == readings.end() || meter == meterOfTask.end() || log.completedDate > now) continue;
    const auto at = static_cast<std::size_t>(meter->second);
    const auto& setByHand = vessel->second.setByHand[at];
    if (setByHand && log.completedDate < setByHand->at) continue;
    vessel->second.byMeter[at].push_back({log.completedDate, log.engineHoursAtService});
  }

  for (auto& [vesselID, known] : readings)
    for (const HourSource source : allCases<HourSource>())
      if (const auto pace = averageDailyHours(std::move(known.byMeter[static_cast<std::size_t>(source)])))
        fleet.setHoursPerDay(vesselID, source, *pace);
}

Timestamp projectedDate(double target, double reading, double hoursPerDay, Timestamp now) {
  constexpr double farOff = 1e11;  // seconds, some three thousand years
  const double seconds = (target - reading) / hoursPerDay * kDaySeconds;
  return now + std::chrono::seconds(std::llround(std::clamp(seconds, -farOff, farOff)));
}

std::string aboutDate(Timestamp estimate, Timestamp now, const Calendar& calendar) {
  return "about " + formatShortDate(calendar.date(estimate), calendar.date(now));
}

}  // namespace thalvorn
