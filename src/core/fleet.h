#pragma once

#include <array>
#include <cstdint>
#include <ranges>
#include <span>
#include <vector>

#include "base/uuid.h"
#include "core/vessel.h"

namespace thalvorn {

/// The vessels of a fleet with their meters, found by identity in constant time: what a pass over many tasks needs.
/// Refers to the vessels it was made from; make a new one when they change.
class Fleet {
 public:
  /// Running hours a day that are assumed while nothing better is known: 10 hours of running in a week.
  static constexpr double kAssumedHoursPerDay = 10.0 / 7.0;

  /// What the six meters of one vessel show, and how fast they run.
  struct Meters {
    Uuid vesselID;
    const Vessel* vessel = nullptr;  ///< null: not a vessel of the fleet
    std::array<double, caseCount<HourSource>> hours{};
    std::array<double, caseCount<HourSource>> hoursPerDay{};

    /// The reading of a meter; 0 for a meter that only a newer program knows.
    double reading(Choice<HourSource> source) const { return source.isKnown() ? hours[source.order()] : 0.0; }
    /// Hours a day that the meter runs on average, always above 0.
    double pace(Choice<HourSource> source) const {
      return vessel && source.isKnown() ? hoursPerDay[source.order()] : kAssumedHoursPerDay;
    }
  };

  explicit Fleet(std::span<const Vessel> vessels);

  /// The meters of a vessel; all zero when the fleet has no such vessel.
  const Meters& meters(const Uuid& vesselID) const { return slots_[slotOf(vesselID)]; }

  /// The meters of every vessel, in no particular order.
  auto all() const {
    return slots_ | std::views::filter([](const Meters& meters) { return meters.vessel != nullptr; });
  }

  /// Makes known how many hours a day a meter runs on average; what is not above 0 is not taken.
  void setHoursPerDay(const Uuid& vesselID, HourSource source, double hoursPerDay);

 private:
  /// The vessel's slot, or the free one where it would stand.
  std::size_t slotOf(const Uuid& vesselID) const {
    std::size_t at = std::hash<Uuid>{}(vesselID)&mask_;
    while (slots_[at].vessel != nullptr && slots_[at].vesselID != vesselID) at = (at + 1) & mask_;
    return at;
  }

  std::vector<Meters> slots_;  // open addressing, at most half full
  std::size_t mask_ = 0;
};

}  // namespace thalvorn
