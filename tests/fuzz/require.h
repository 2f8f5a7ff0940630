#pragma once

#include <cstdio>
#include <cstdlib>
#include <source_location>

namespace thalvorn {

/// Ends the fuzzer, which then keeps the input, when a promise of the code under test is broken.
inline void require(bool promise, std::source_location place = std::source_location::current()) {
  if (promise) return;
  std::fprintf(stderr, "%s:%u: a promise is broken\n", place.file_name(), place.line());
  std::abort();
}

}  // namespace thalvorn
