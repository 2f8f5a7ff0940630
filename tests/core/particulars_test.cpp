#include "core/particulars.h"

#include <gtest/gtest.h>

namespace thalvorn {
namespace {

TEST(Particulars, ImoNumbersCarryTheirCheckDigit) {
  for (const auto* text : {"9074729", "IMO 9074729", "imo9074729", " IMO 907 4729 "}) {
    const auto number = ImoNumber::parse(text);
    ASSERT_TRUE(number) << text;
    EXPECT_EQ(number->text(), "IMO 9074729");
  }
  for (const auto* text : {"", "IMO", "907472", "90747290", "907472A", "9074728", "9704729"})
    EXPECT_FALSE(ImoNumber::parse(text)) << text;
}

TEST(Particulars, MmsiOfShipsHaveNineDigitsAndNameTheFlag) {
  EXPECT_EQ(Mmsi::parse("319 900 014")->flagDigits(), 319);
  EXPECT_EQ(Mmsi::parse("982351234")->flagDigits(), 0) << "a craft of a ship";
  for (const auto* text : {"", "31990001", "3199000140", "31990001O", "002320001", "111232500"})
    EXPECT_FALSE(Mmsi::parse(text)) << text;
}

TEST(Particulars, TimeZonesAreNamesOfTheDatabase) {
  EXPECT_EQ(TimeZoneName::parse(" Europe/Rome ")->name(), "Europe/Rome");
  EXPECT_EQ(TimeZoneName::parse("Pacific/Apia")->calendar().zoneName(), "Pacific/Apia");
  for (const auto* text : {"", "Rome", "GMT+25", "../etc/passwd"}) EXPECT_FALSE(TimeZoneName::parse(text)) << text;
}

}  // namespace
}  // namespace thalvorn
