#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "core/vessel.h"

namespace thalvorn {

/// `Vessel::sortOrder` of a vessel that nobody has put in order: it stands after the others, by name.
inline constexpr std::int64_t unordered = std::numeric_limits<std::int32_t>::max();

/// The place after the last of `vessels` that was put in order.
template <class Vessels>
std::int64_t nextPlace(const Vessels& vessels) {
  std::int64_t next = 0;
  for (const Vessel& vessel : vessels)
    if (vessel.sortOrder != unordered) next = std::max(next, vessel.sortOrder + 1);
  return std::min(next, unordered);
}

}  // namespace thalvorn
