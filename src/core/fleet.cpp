#include "core/fleet.h"

#include <bit>

namespace thalvorn {

Fleet::Fleet(std::span<const Vessel> vessels)
    : slots_(std::bit_ceil(2 * vessels.size() + 2)), mask_(slots_.size() - 1) {
  for (const Vessel& vessel : vessels) {
    Meters& slot = slots_[slotOf(vessel.id)];
    slot.vesselID = vessel.id;
    slot.vessel = &vessel;
    for (const HourSource source : allCases<HourSource>())
      slot.hours[static_cast<std::size_t>(source)] = vessel.reading(source);
    slot.hoursPerDay.fill(kAssumedHoursPerDay);
  }
}

void Fleet::setHoursPerDay(const Uuid& vesselID, HourSource source, double hoursPerDay) {
  Meters& found = slots_[slotOf(vesselID)];
  if (found.vessel && hoursPerDay > 0) found.hoursPerDay[static_cast<std::size_t>(source)] = hoursPerDay;
}

}  // namespace thalvorn
