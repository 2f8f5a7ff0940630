#include "base/number_format.h"

#include <gtest/gtest.h>

#include <cmath>

namespace thalvorn {
namespace {

const NumberLocale german{",", "."};
const NumberLocale french{",", "\u202F"};

TEST(NumberFormat, WritesMeterReadings) {
  EXPECT_EQ(hoursText(1234.56), "1234.6 hrs");
  EXPECT_EQ(hoursText(0), "0.0 hrs");
  EXPECT_EQ(currentHoursText(99.95), "Current: 100.0 hrs");
}

TEST(NumberFormat, GroupsByTheLocale) {
  EXPECT_EQ(formatNumber(1234567.5, 2), "1,234,567.50");
  EXPECT_EQ(formatNumber(-999, 0), "-999");
  EXPECT_EQ(formatNumber(-1000, 0, german), "-1.000");
  EXPECT_EQ(formatNumber(1234567.5, 1, french), "1\u202F234\u202F567,5");
  EXPECT_EQ(formatNumber(-0.04, 1), "0.0");
  EXPECT_EQ(formatNumber(NAN, 1), "—");
  EXPECT_EQ(formatQuantity(2.0), "2");
  EXPECT_EQ(formatQuantity(1500.75, 3, german), "1.500,75");
  EXPECT_EQ(formatQuantity(100, 0), "100");
}

TEST(NumberFormat, WritesMoneyWithTheCurrencysDecimals) {
  EXPECT_EQ(formatMoney(41249.35, "USD"), "USD 41,249.35");
  EXPECT_EQ(formatMoney(1250, "EUR", german), "EUR 1.250,00");
  EXPECT_EQ(formatMoney(1250.4, "JPY"), "JPY 1,250");
  EXPECT_EQ(formatMoney(12.5, ""), "12.50");
}

TEST(ParseNumber, ReadsWhatPeopleType) {
  struct Case {
    const char* typed;
    double english;
    double german;
  };
  for (const auto& [typed, en, de] :
       {Case{"1234.5", 1234.5, 1234.5}, Case{" 1,234.5 ", 1234.5, 1234.5}, Case{"1.234,5", 1234.5, 1234.5},
        Case{"1,5", 1.5, 1.5}, Case{"1.5", 1.5, 1.5}, Case{"1.234", 1.234, 1234}, Case{"1,234", 1234, 1.234},
        Case{"0,125", 0.125, 0.125}, Case{"0.125", 0.125, 0.125}, Case{"1.234.567", 1234567, 1234567},
        Case{"12 345.5", 12345.5, 12345.5}, Case{"12'345", 12345, 12345}, Case{"1\u202F234,5", 1234.5, 1234.5},
        Case{"\u22123,5", -3.5, -3.5}, Case{"+7", 7, 7}, Case{".5", 0.5, 0.5}, Case{"1234,567", 1234.567, 1234.567}}) {
    EXPECT_EQ(parseNumber(typed), en) << typed;
    EXPECT_EQ(parseNumber(typed, german), de) << typed;
  }
}

TEST(ParseNumber, RefusesWithASentence) {
  for (const auto* typed :
       {"12a", "1,2,3", "1.2.3", "--1", "1-2", "- ", "1..5", "nan", "inf", "0x10", "1e5", ".", "1 ,5"}) {
    EXPECT_FALSE(parseNumber(typed)) << typed;
  }
  EXPECT_EQ(parseNumber("  ").error(), "Enter a number.");
  EXPECT_EQ(parseNumber("abc", german).error(), "“abc” is not a number. Write it like 1.234,5.");
}

}  // namespace
}  // namespace thalvorn
