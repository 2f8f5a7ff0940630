#pragma once

#include <cstdint>
#include <cstring>

#include "base/uuid.h"

namespace thalvorn::demo {

/// Numbers that look random and are the same on every machine (splitmix64).
class Dice {
 public:
  explicit Dice(const Uuid& seed) { std::memcpy(&state_, seed.bytes.data(), sizeof state_); }

  /// 0 to `count` - 1.
  unsigned below(unsigned count) { return static_cast<unsigned>(next() % count); }

 private:
  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
  }
  std::uint64_t state_ = 0;
};

}  // namespace thalvorn::demo
