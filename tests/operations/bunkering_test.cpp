#include "operations/bunkering.h"

#include <gtest/gtest.h>

#include <set>

#include "operations/bunkering_report.h"

namespace thalvorn {
namespace {

Timestamp at(std::string_view text) { return parseTimestamp(text).value(); }

const Uuid kVessel = Uuid::named(Uuid{}, "Aurelia");

BunkeringRecord delivery(double gallons, double price, double charge, std::string currency = "USD") {
  return {.id = Uuid::random(),
          .vesselID = kVessel,
          .date = at("2026-05-06"),
          .quantityGallons = gallons,
          .pricePerGallon = price,
          .totalCharge = charge,
          .currency = std::move(currency)};
}

TEST(Bunkering, TotalsAddWhatWasInvoicedNotQuantityTimesPrice) {
  EXPECT_EQ(calculatedTotal(100, 4.5), 450);
  const std::vector<BunkeringRecord> records{delivery(100, 4.5, 512.25), delivery(50, 4, 210),
                                             delivery(10, 5, 60, "EUR"), delivery(1, 1, 2, "")};
  const BunkeringTotals totals = totalsOf(records);
  EXPECT_EQ(totals.records, 4U);
  EXPECT_EQ(totals.gallons, 161);
  EXPECT_EQ(totals.charge, 784.25);
  EXPECT_TRUE(totals.hasOtherCurrencies());
  EXPECT_EQ(totals.charges.text({}), "EUR 60.00 + USD 724.25");
  EXPECT_FALSE(totalsOf(std::span(records).first(2)).hasOtherCurrencies());
}

TEST(Bunkering, ANewRecordCopiesTheVesselAndTheLastDeliverysFuelAndCurrency) {
  const Vessel vessel{.id = kVessel, .name = "M/Y Aurelia"};
  VesselProfile profile;
  profile.imoNumber = "9990014";
  const Timestamp now = at("2026-05-07T09:00:00Z");
  BunkeringRecord made = newBunkeringRecord(vessel, profile, {}, now);
  EXPECT_EQ(made.vesselName, "M/Y Aurelia");
  EXPECT_EQ(made.vesselIMO, "9990014");
  EXPECT_EQ(made.date, now);
  EXPECT_EQ(made.currency, "USD");
  profile.currency = "GBP";
  EXPECT_EQ(newBunkeringRecord(vessel, profile, {}, now).currency, "GBP");

  std::vector<BunkeringRecord> records{delivery(1, 1, 1, "EUR"), delivery(1, 1, 1, "CHF"), delivery(1, 1, 1, "JPY")};
  records[0].fuelType = FuelType::mgo;
  records[1].date = at("2026-01-01");
  records[2].vesselID = Uuid::random();
  made = newBunkeringRecord(vessel, profile, records, now);
  EXPECT_EQ(made.currency, "EUR");
  EXPECT_EQ(made.fuelType, FuelType::mgo);
  EXPECT_EQ(made.quantityGallons, 0);
}

TEST(Bunkering, FileNameAndCsvSums) {
  const Calendar rome = Calendar::inZone("Europe/Rome").value();
  EXPECT_EQ(bunkeringFileName(at("2026-11-21T08:40:05Z"), rome), "BunkeringReport_20261121_094005");
  std::vector<BunkeringRecord> records{delivery(100, 4.5, 512.25), delivery(50.5, 4, 210)};
  EXPECT_TRUE(bunkeringCsv(records, rome)
                  .ends_with("\"SUMMARY\"\r\n\"Total Records\",2\r\n\"Total Quantity (Gallons)\",150.5\r\n"
                             "\"Total Cost (USD)\",722.25\r\n"));
  records.push_back(delivery(10, 5, 6000, "JPY"));
  EXPECT_TRUE(
      bunkeringCsv(records, rome)
          .ends_with("\"Total Cost (USD)\",6722.25\r\n\"Invoiced in JPY\",6000\r\n\"Invoiced in USD\",722.25\r\n"));
  EXPECT_EQ(recordsFromCsv<BunkeringRecord>(bunkeringCsv(records, rome), kVessel, rome).records, records);
  EXPECT_EQ(recordsFromCsv<BunkeringRecord>(bunkeringCsv({}, rome), kVessel, rome).problems.size(), 0U);
}

TEST(Bunkering, OffersEveryCurrencyOnce) {
  const std::set<std::string_view> codes(currencyCodes().begin(), currencyCodes().end());
  EXPECT_EQ(codes.size(), currencyCodes().size());
  EXPECT_TRUE(codes.contains("USD") && codes.contains("EUR") && codes.contains("GBP"));
  EXPECT_FALSE(codes.contains("HRK")) << "gone since 2023";
  for (const std::string_view code : codes) EXPECT_EQ(code.size(), 3U);
}

}  // namespace
}  // namespace thalvorn
