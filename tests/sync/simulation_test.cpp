#include "simulation.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <numeric>

namespace thalvorn {
namespace {

/// A server to try, and the courses that are tried without being asked for others.
struct Course {
  const char* name;
  ServerAge age;
  const char* until;  ///< the last migration it has; empty: all
  std::vector<std::uint32_t> seeds;
};

/// THALVORN_SEEDS="FIRST COUNT" asks for others than the usual few; scripts/soak does.
std::vector<std::uint32_t> askedSeeds() {
  std::uint32_t first = 1;
  std::uint32_t count = 1;
  std::sscanf(std::getenv("THALVORN_SEEDS"), "%u %u", &first, &count);
  std::vector<std::uint32_t> seeds(count);
  std::iota(seeds.begin(), seeds.end(), first);
  return seeds;
}

class Simulated : public testing::TestWithParam<Course> {};

TEST_P(Simulated, ClientsAgreeAndNothingIsLost) {
  QStringList options{QStringLiteral("--max-rows"), QStringLiteral("7"), QStringLiteral("--mail-interval"),
                      QStringLiteral("0")};
  if (*GetParam().until) options << QStringLiteral("--until") << QString::fromLatin1(GetParam().until);
  const BackendProcess backend(options);
  ASSERT_TRUE(backend.isRunning());
  if (GetParam().age == ServerAge::newer)
    ASSERT_TRUE(backend.executeFile(QStringLiteral(THALVORN_SOURCE_DIR "/tests/sync/newer_schema.sql")));
  const bool isAsked = std::getenv("THALVORN_SEEDS");
  for (const std::uint32_t seed : isAsked ? askedSeeds() : GetParam().seeds) {
    const std::vector<std::string> faults = Simulation(backend, seed, GetParam().age).run(40);
    for (const std::string& fault : faults) ADD_FAILURE() << "seed " << seed << ": " << fault;
    if (isAsked) std::fprintf(stderr, "seed %u %s\n", seed, faults.empty() ? "passed" : "FAILED");
  }
}

INSTANTIATE_TEST_SUITE_P(Server, Simulated,
                         testing::Values(
                             // 2302: the reply to a deletion is lost, and with it went what another had written.
                             Course{"current", ServerAge::current, "", {1, 2, 3, 4, 2302}},
                             Course{"older", ServerAge::older, "20261121190500", {1, 2}},
                             Course{"oldest", ServerAge::oldest, "20261121190400", {1, 2}},
                             Course{"newer", ServerAge::newer, "", {1, 2}}),
                         [](const auto& course) { return std::string(course.param.name); });

}  // namespace
}  // namespace thalvorn
