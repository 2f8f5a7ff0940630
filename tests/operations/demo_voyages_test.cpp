#include "operations/demo_voyages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "operations/bunkering.h"
#include "operations/ships_log.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;

TEST(DemoVoyages, EveryYachtHasASeasonThatFitsHerMetersWheneverItIsOpened) {
  for (const auto& [moment, zone] :
       {std::pair("2026-11-21T08:40:00Z", "Europe/Paris"), std::pair("2026-03-29T00:30:00Z", "Europe/Rome"),
        std::pair("2028-02-29T23:59:59Z", "UTC")}) {
    const Timestamp now = parseTimestamp(moment).value();
    const Calendar calendar = Calendar::inZone(zone).value();
    const DemoFleet fleet = demoFleet(now, calendar);
    const DemoVoyages voyages = demoVoyages(fleet, now, calendar);
    const DemoVoyages later = demoVoyages(fleet, calendar.startOfDay(now) + 20h, calendar);
    EXPECT_EQ(later.shipsLog, voyages.shipsLog) << "the same at any hour of the day";
    EXPECT_EQ(later.bunkering, voyages.bunkering);
    EXPECT_TRUE(std::ranges::is_sorted(voyages.shipsLog, std::ranges::greater(), &ShipsLogEntry::date));

    std::set<Uuid> ids;
    for (const Vessel& vessel : fleet.vessels) {
      std::vector<ShipsLogEntry> log;
      for (const ShipsLogEntry& entry : voyages.shipsLog)
        if (entry.vesselID == vessel.id) log.push_back(entry);
      ASSERT_GE(log.size(), 20U) << vessel.name;
      EXPECT_GT(totalsOf(log).distanceNM, 250);
      EXPECT_LT(log.front().date, now);
      EXPECT_GT(log.front().date, now - 96h);
      double reading = vessel.engineHours;
      std::string port = log.front().arrivalPort;
      for (const ShipsLogEntry& entry : log) {
        EXPECT_TRUE(ids.insert(entry.id).second);
        EXPECT_EQ(entry.arrivalPort, port) << "she leaves from where she arrived";
        EXPECT_LT(entry.engineHours, reading);
        EXPECT_FALSE(entry.crewRoster.empty() || entry.tripLog.empty() || entry.skipper.empty());
        for (const TripLogEntry& line : entry.tripLog) EXPECT_LE(entry.date, line.timestamp);
        reading = entry.engineHours - entry.hoursUnderway.value_or(0);
        port = entry.departurePort;
      }
      EXPECT_TRUE(std::ranges::any_of(log, [](const auto& entry) { return !entry.guests.empty(); }));
      EXPECT_TRUE(std::ranges::any_of(log, [](const auto& entry) { return !entry.distanceNM; }));
      EXPECT_GE(std::ranges::count(voyages.bunkering, vessel.id, &BunkeringRecord::vesselID), 4) << vessel.name;
    }
    EXPECT_EQ(totalsOf(voyages.bunkering).charges.byCurrency().size(), 2U);
    for (const BunkeringRecord& record : voyages.bunkering) {
      EXPECT_TRUE(ids.insert(record.id).second);
      EXPECT_GT(record.totalCharge, calculatedTotal(record.quantityGallons, record.pricePerGallon));
    }
  }
}

}  // namespace
}  // namespace thalvorn
