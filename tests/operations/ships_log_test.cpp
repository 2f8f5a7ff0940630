#include "operations/ships_log.h"

#include <gtest/gtest.h>

#include "core/month_sums.h"
#include "operations/ships_log_register.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;

Timestamp at(std::string_view text) { return parseTimestamp(text).value(); }

const Uuid kVessel = Uuid::named(Uuid{}, "Aurelia");

ShipsLogEntry passage(std::string_view date, std::optional<double> miles, std::optional<double> gallons) {
  ShipsLogEntry entry{.id = Uuid::random(), .vesselID = kVessel, .date = at(date)};
  entry.distanceNM = miles;
  entry.fuelUsedGallons = gallons;
  return entry;
}

TEST(ShipsLog, EntriesWithoutAValueCountAsPassagesAndAddNothing) {
  std::vector<ShipsLogEntry> log{passage("2026-05-01", 120.4, 300), passage("2026-05-02", {}, {}),
                                 passage("2026-05-03", 80.2, 50.5)};
  log[0].hoursUnderway = 8.25;
  const auto values = [](const ShipsLogTotals& totals) {
    std::vector<std::string> texts;
    for (const auto& [label, value] : statistics(totals)) texts.push_back(std::string(label) + " " + value);
    return texts;
  };
  using Texts = std::vector<std::string>;
  EXPECT_EQ(values(totalsOf(log)), (Texts{"Passages 3", "Total distance 201 nm", "Total fuel 350 gal"}));
  EXPECT_EQ(exportHeader("M/Y Aurelia", totalsOf(log)),
            "Vessel: M/Y Aurelia  ·  Passages: 3  ·  Total NM: 201  ·  Underway Hrs: 8.2  ·  Fuel Used: 350 gal");
  // Litres add up beside gallons; neither follows from the other.
  log[1].fuelUsedLitres = 4671.4;
  EXPECT_EQ(values(totalsOf(log))[2], "Total fuel 350 gal / 4671 L");
  EXPECT_EQ(values(totalsOf(std::span(log).subspan(1, 1)))[2], "Total fuel 4671 L");
  EXPECT_EQ(values(totalsOf({})), (Texts{"Passages 0", "Total distance 0 nm", "Total fuel 0 gal"}));
}

TEST(ShipsLog, SumsByMonthFollowTheCalendarAndHaveNoGaps) {
  const Calendar rome = Calendar::inZone("Europe/Rome").value();
  const std::vector<DatedAmount> miles{
      {at("2026-01-31T23:30:00Z"), 10}, {at("2026-04-30T21:00:00Z"), 5}, {at("2026-02-10"), 7}};
  using namespace std::chrono;
  EXPECT_EQ(monthSums(miles, rome),
            (std::vector<MonthSum>{{2026y / February, 17}, {2026y / March, 0}, {2026y / April, 5}}));
  EXPECT_EQ(monthSums(miles, Calendar::utc()).front(), (MonthSum{2026y / January, 10}));
  const std::vector<DatedAmount> farApart{{at("1950-01-01"), 3}, {at("2026-05-01"), 4}};
  const auto latest = monthSums(farApart, rome, 3);
  ASSERT_EQ(latest.size(), 3U);
  EXPECT_EQ(latest.back(), (MonthSum{2026y / May, 4}));
  EXPECT_EQ(latest.front(), (MonthSum{2026y / March, 0}));
  EXPECT_TRUE(monthSums({}, rome).empty());
}

TEST(ShipsLog, ANewEntryBeginsWhereTheLastOneEnded) {
  const Vessel vessel{.id = kVessel, .name = "M/Y Aurelia", .engineHours = 812.5};
  const Timestamp now = at("2026-05-04T06:00:00Z");
  const ShipsLogEntry first = newShipsLogEntry(vessel, {}, now);
  EXPECT_EQ(first.date, now);
  EXPECT_EQ(first.engineHours, 812.5);
  EXPECT_EQ(first.departurePort, "");

  std::vector<ShipsLogEntry> log{passage("2026-05-03", 80, 50), passage("2026-05-01", 120, 300),
                                 passage("2026-05-09", 1, 1)};
  log[0].arrivalPort = "Calvi";
  log[0].skipper = "Ana";
  log[0].crewCount = 4;
  log[0].crewRoster = {{.id = Uuid::random(), .name = "Jo", .role = CrewDutyRole::mate, .watch = "0–4"}};
  log[0].guests = {{.id = Uuid::random(), .name = "Mr Brown", .note = ""}};
  log[2].vesselID = Uuid::random();
  const ShipsLogEntry next = newShipsLogEntry(vessel, log, now);
  EXPECT_EQ(next.departurePort, "Calvi");
  EXPECT_EQ(next.arrivalPort, "");
  EXPECT_EQ(next.skipper, "Ana");
  EXPECT_EQ(next.crewCount, 4);
  ASSERT_EQ(next.crewRoster.size(), 1U);
  EXPECT_EQ(next.crewRoster[0].name, "Jo");
  EXPECT_NE(next.crewRoster[0].id, log[0].crewRoster[0].id) << "a line of its own";
  EXPECT_TRUE(next.guests.empty()) << "who is aboard is asked each time";
}

TEST(ShipsLog, JournalLinesAreAddedRemovedAndShownInTheOrderOfTime) {
  ShipsLogEntry entry = passage("2026-05-01", 1, 1);
  const auto add = [&](std::string_view time, std::string text) {
    auto changed = withJournalLine(entry, {.id = Uuid::random(),
                                           .timestamp = at(time),
                                           .category = TripLogCategory::safety,
                                           .author = " Jo ",
                                           .text = std::move(text)});
    if (!changed) return false;
    entry = *std::move(changed);
    return true;
  };
  EXPECT_TRUE(add("2026-05-01T12:00:00Z", "  noon\n"));
  EXPECT_TRUE(add("2026-05-01T08:00:00Z", "let go"));
  EXPECT_TRUE(add("2026-05-01T12:00:00Z", "also noon"));
  EXPECT_FALSE(add("2026-05-01T13:00:00Z", " \n "));
  EXPECT_EQ(journalCountText(entry), "3 entries");
  std::vector<std::string> texts;
  for (const TripLogEntry& line : journalInOrder(entry)) texts.push_back(line.author + ": " + line.text);
  EXPECT_EQ(texts, (std::vector<std::string>{"Jo: let go", "Jo: noon", "Jo: also noon"}));
  const ShipsLogEntry shorter = withoutJournalLine(entry, entry.tripLog[0].id);
  ASSERT_EQ(shorter.tripLog.size(), 2U);
  EXPECT_EQ(shorter.tripLog[0].text, "let go");
  EXPECT_EQ(withoutJournalLine(shorter, Uuid::random()), shorter);
}

TEST(ShipsLog, UnnamedPeopleHaveAPlaceholderAndRoutesTheKnownPort) {
  EXPECT_EQ(printedName(GuestManifestEntry{.name = "Mr Brown"}), "Mr Brown");
  EXPECT_EQ(printedName(GuestManifestEntry{.name = " \t"}), "Unnamed guest");
  EXPECT_EQ(printedName(CrewDutyEntry{}), "Unnamed crew");
  ShipsLogEntry entry;
  EXPECT_EQ(routeText(entry), "");
  entry.arrivalPort = "Calvi";
  EXPECT_EQ(routeText(entry), "Calvi");
  entry.departurePort = "Nice";
  EXPECT_EQ(routeText(entry), "Nice → Calvi");
}

}  // namespace
}  // namespace thalvorn
