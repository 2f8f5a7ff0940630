#include <gtest/gtest.h>

#include "core/fixtures.h"
#include "core/service_history.h"

namespace thalvorn {
namespace {

using testing::at;
using testing::id;
using testing::zone;

ServiceLog service(std::string_view title, std::string_view day, std::optional<double> labour = {}) {
  ServiceLog log;
  log.id = id(title);
  log.vesselID = id("Aurelia");
  log.taskTitle = title;
  log.completedDate = at(day);
  log.cost = labour;
  return log;
}

struct History : ::testing::Test {
  History() {
    logs = {service("Óleo change", "2025-03-01T10:00:00Z", 100), service("Anodes", "2025-12-31T23:30:00Z"),
            service("Belt", "2026-02-01T10:00:00Z", 40), service("anchor chain", "2026-02-01T10:00:00Z", 40)};
    logs[0].completedBy = "Ana";
    logs[0].partsUsed = {{.id = id("p"), .name = "Filter", .quantity = 2, .partNumber = "1R-0739", .cost = 25}};
    logs[1].category = TaskCategory::hull;
    logs[1].completedBy = "yard";
    logs[2].kind = TaskKind::warranty;
    logs[3].vesselID = id("Other");
  }
  std::vector<std::string> titles(const ServiceHistoryFilter& filter, ServiceHistorySort sort, bool descending) const {
    std::vector<std::string> found;
    for (const auto row : selectServices(logs, filter, sort, descending)) found.push_back(logs[row].taskTitle);
    return found;
  }
  using Titles = std::vector<std::string>;
  std::vector<ServiceLog> logs;
};

TEST_F(History, FiltersByEverythingThatAListOffers) {
  using Sort = ServiceHistorySort;
  const auto found = [&](const ServiceHistoryFilter& filter) { return titles(filter, Sort::date, false); };
  EXPECT_EQ(found({.vesselID = id("Other")}), Titles{"anchor chain"});
  EXPECT_EQ(found({.category = TaskCategory::hull}), Titles{"Anodes"});
  EXPECT_EQ(found({.kind = TaskKind::warranty}), Titles{"Belt"});
  EXPECT_EQ(found({.person = "yard"}), Titles{"Anodes"});
  EXPECT_EQ(found({.search = "oleo"}), Titles{"Óleo change"}) << "accents do not matter";
  EXPECT_EQ(found({.search = "1r-0739"}), Titles{"Óleo change"}) << "part numbers are found";
  EXPECT_EQ(found({.from = at("2025-03-01T10:00:01Z"), .until = at("2026-02-01T10:00:00Z")}), Titles{"Anodes"});
}

TEST_F(History, SortsWithoutRegardToCaseAndBreaksTiesByTheLatest) {
  using Sort = ServiceHistorySort;
  EXPECT_EQ(titles({}, Sort::task, false), (Titles{"anchor chain", "Anodes", "Belt", "Óleo change"}));
  EXPECT_EQ(titles({}, Sort::cost, true), (Titles{"Óleo change", "anchor chain", "Belt", "Anodes"}));
  EXPECT_EQ(titles({}, Sort::date, true), (Titles{"anchor chain", "Belt", "Anodes", "Óleo change"}));
}

TEST_F(History, SumsCostsByTheYearOnTheWallClock) {
  const std::vector<std::uint32_t> all{0, 1, 2, 3};
  const auto years = costsByYear(logs, all, zone("Europe/Rome"));
  ASSERT_EQ(years.size(), 2U);
  EXPECT_EQ(years[0], (ServiceYear{2026, {.services = 3, .labour = 80, .parts = 0}}))
      << "half past eleven at night in Greenwich is next year in Rome";
  EXPECT_EQ(years[1], (ServiceYear{2025, {.services = 1, .labour = 100, .parts = 25}}));
  EXPECT_EQ(years[1].costs.total(), 125);
  EXPECT_EQ(partsCost(logs[1]), std::nullopt);
}

TEST(ServicePeriods, EndNowAndFollowTheCalendar) {
  const Timestamp now = at("2028-02-29T12:00:00Z");
  const auto bounds = [&](ServicePeriod period) {
    ServiceHistoryFilter filter;
    setPeriod(filter, period, now, Calendar::utc());
    return std::pair(filter.from, filter.until);
  };
  EXPECT_EQ(bounds(ServicePeriod::all), (std::pair<std::optional<Timestamp>, std::optional<Timestamp>>()));
  EXPECT_EQ(bounds(ServicePeriod::last30Days).first, at("2028-01-30T00:00:00Z"));
  EXPECT_EQ(bounds(ServicePeriod::last12Months).first, at("2027-02-28T00:00:00Z")) << "there is no 29 February 2027";
  EXPECT_EQ(bounds(ServicePeriod::lastYear),
            std::pair(std::optional(at("2027-01-01T00:00:00Z")), std::optional(at("2028-01-01T00:00:00Z"))));
}

}  // namespace
}  // namespace thalvorn
