#include <gtest/gtest.h>

#include "operations/bunkering_register.h"
#include "operations/ships_log_register.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;

Timestamp at(std::string_view text) { return parseTimestamp(text).value(); }

ShipsLogEntry passage(std::string_view from, std::string_view to, std::string_view date) {
  ShipsLogEntry entry;
  entry.id = Uuid::random();
  entry.vesselID = Uuid::named(Uuid{}, "Aurelia");
  entry.date = at(date);
  entry.departurePort = from;
  entry.arrivalPort = to;
  return entry;
}

class ShipsLogQuery : public ::testing::Test {
 protected:
  ShipsLogQuery() {
    log_ = {passage("Málaga", "Ibiza", "2026-05-01T08:00:00Z"), passage("Ibiza", "Palma", "2026-05-03T08:00:00Z"),
            passage("Palma", "Antibes", "2026-05-06T21:30:00Z")};
    log_[0].skipper = "Íñigo Vela";
    log_[0].weather = WeatherCondition::storm;
    log_[0].distanceNM = 300;
    log_[1].skipper = "R. Dunn";
    log_[1].weather = Choice<WeatherCondition>::fromRaw("Hail");
    log_[2].skipper = "R. Dunn";
    log_[2].notes = "Pilot aboard at Antibes";
    log_[2].distanceNM = 190;
    log_[2].vesselID = Uuid::named(Uuid{}, "Borealis");
  }

  std::vector<std::uint32_t> find(const RegisterQuery& query) {
    return selectRecords<ShipsLogEntry>(std::span<const ShipsLogEntry>(log_), query);
  }

  std::vector<ShipsLogEntry> log_;
  using Rows = std::vector<std::uint32_t>;
};

TEST_F(ShipsLogQuery, AnEmptyQueryGivesEverythingNewestFirst) { EXPECT_EQ(find({}), (Rows{2, 1, 0})); }

TEST_F(ShipsLogQuery, NarrowsByWordsVesselCaptainCasesAndDays) {
  EXPECT_EQ(find({.search = "malaga"}), Rows{0});
  EXPECT_EQ(find({.search = "pilot antib"}), Rows{2});
  EXPECT_EQ(find({.search = "ibiza storm"}), Rows{}) << "the weather is not searched";
  EXPECT_EQ(find({.vessels = {log_[0].vesselID}}), (Rows{1, 0}));
  EXPECT_EQ(find({.narrowings = {{"skipper", {"inigo"}}}}), Rows{0});
  EXPECT_EQ(find({.narrowings = {{"weather", {"Storm", "Hail"}}}}), (Rows{1, 0}))
      << "a case of a newer program is found by its text";
  EXPECT_EQ(find({.narrowings = {{"weather", {}}, {"seaState", {}}}}), (Rows{2, 1, 0}));

  RegisterQuery query;
  const Calendar rome = Calendar::inZone("Europe/Rome").value();
  setDays(query, at("2026-05-03T20:00:00Z"), at("2026-05-06T01:00:00Z"), rome);
  EXPECT_EQ(find(query), (Rows{2, 1})) << "both days count whole, by the wall clock";
  setDays(query, std::nullopt, at("2026-05-05T12:00:00Z"), rome);
  EXPECT_EQ(find(query), (Rows{1, 0}));
}

TEST_F(ShipsLogQuery, SortsByAnyColumnAndPutsMissingValuesLast) {
  EXPECT_EQ(find({.sort = "distanceNM", .descending = true}), (Rows{0, 2, 1}));
  EXPECT_EQ(find({.sort = "distanceNM", .descending = false}), (Rows{2, 0, 1}));
  EXPECT_EQ(find({.sort = "skipper", .descending = false}), (Rows{0, 1, 2})) << "accents do not push a name to the end";
  EXPECT_EQ(find({.sort = "no such column", .descending = false}), (Rows{0, 1, 2}));
}

TEST(Register, PaperTableFollowsTheFieldsFacts) {
  BunkeringRecord record;
  record.date = at("2026-05-06T21:30:00Z");
  record.quantityGallons = 12500.75;
  record.fuelType = FuelType::vlsfo;
  record.supplierName = "Peninsula";
  const ReportSetting setting{.calendar = Calendar::inZone("Europe/Rome").value()};
  const Table table = registerTable<BunkeringRecord>(std::span(&record, 1),
                                                     {"date", "supplierName", "fuelType", "quantityGallons"}, setting);
  ASSERT_EQ(table.columns.size(), 4U);
  EXPECT_EQ(table.columns[3].title, "Quantity (gal)");
  EXPECT_EQ(table.columns[3].alignment, Alignment::right);
  ASSERT_EQ(table.rows.size(), 1U);
  EXPECT_EQ(table.rows[0].cells[0].text, "6 May 2026");
  EXPECT_EQ(table.rows[0].cells[2].text, "VLSFO");
  EXPECT_EQ(table.rows[0].cells[3].text, "12,500.8");
}

}  // namespace
}  // namespace thalvorn
