#include "simulation.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace thalvorn {
namespace {

/// THALVORN_SEEDS="FIRST COUNT" asks for others than the usual few; scripts/soak does.
std::pair<std::uint32_t, int> seeds() {
  unsigned first = 1;
  int count = 4;
  if (const char* asked = std::getenv("THALVORN_SEEDS")) std::sscanf(asked, "%u %d", &first, &count);
  return {first, count};
}

TEST(Simulation, ClientsAgreeAndNothingIsLost) {
  const BackendProcess backend(
      {QStringLiteral("--max-rows"), QStringLiteral("7"), QStringLiteral("--mail-interval"), QStringLiteral("0")});
  ASSERT_TRUE(backend.isRunning());
  const auto [first, count] = seeds();
  for (std::uint32_t seed = first; seed < first + static_cast<std::uint32_t>(count); ++seed) {
    for (const std::string& fault : Simulation(backend, seed).run(40))
      ADD_FAILURE() << "seed " << seed << ": " << fault;
    if (testing::Test::HasFailure()) break;
  }
}

}  // namespace
}  // namespace thalvorn
