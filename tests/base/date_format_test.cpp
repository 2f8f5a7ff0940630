#include "base/date_format.h"

#include <gtest/gtest.h>

namespace thalvorn {
namespace {

using namespace std::chrono_literals;

Timestamp at(std::string_view text) { return parseTimestamp(text).value(); }

TEST(DateFormat, WritesDatesAndTimes) {
  const auto rome = Calendar::inZone("Europe/Rome").value();
  EXPECT_EQ(formatDate(2026y / 1 / 14), "14 Jan 2026");
  EXPECT_EQ(formatShortDate(2026y / 11 / 2, 2026y / 11 / 21), "2 Nov");
  EXPECT_EQ(formatShortDate(2027y / 2 / 12, 2026y / 11 / 21), "12 Feb 2027");
  EXPECT_EQ(formatDateTime(rome.local(at("2026-07-04T22:05:59Z"))), "5 Jul 2026 00:05");
  EXPECT_EQ(formatUtcOffset(rome.local(at("2026-07-04T22:05:59Z")).utcOffset), "UTC+2");
  EXPECT_EQ(formatUtcOffset(-(3h + 30min)), "UTC−3:30");
  EXPECT_EQ(formatUtcOffset(0s), "UTC");
}

TEST(DateFormat, SaysNearDaysInWords) {
  const auto rome = Calendar::inZone("Europe/Rome").value();
  const auto now = at("2026-11-21T09:40:00Z");
  struct Case {
    const char* time;
    const char* due;
    const char* distance;
  };
  for (const auto& [time, due, distance] :
       {Case{"2026-11-02T12:00:00Z", "19 days past", "19 days ago"},
        Case{"2026-11-20T22:30:00Z", "1 day past", "yesterday"}, Case{"2026-11-20T23:30:00Z", "today", "today"},
        Case{"2026-11-21T23:30:00Z", "tomorrow", "tomorrow"}, Case{"2026-11-25T12:00:00Z", "Wed 25 Nov", "in 4 days"},
        Case{"2026-11-29T12:00:00Z", "29 Nov", "in 8 days"},
        Case{"2027-02-12T12:00:00Z", "12 Feb 2027", "12 Feb 2027"}}) {
    EXPECT_EQ(formatDue(at(time), now, rome), due);
    EXPECT_EQ(formatDistance(at(time), now, rome), distance);
  }
}

TEST(DateFormat, SpreadsheetCellsReadBack) {
  const auto rome = Calendar::inZone("Europe/Rome").value();
  for (const auto* time : {"2026-01-14T07:05:00Z", "2026-07-14T07:05:09Z", "2024-02-29T00:00:00Z"}) {
    EXPECT_EQ(parseSpreadsheetDateTime(spreadsheetDateTime(rome.local(at(time))), rome), at(time));
    EXPECT_EQ(parseSpreadsheetDateTime(time, rome), at(time));
  }
  EXPECT_EQ(spreadsheetDateTime(rome.local(at("2026-01-14T07:05:00Z"))), "2026-01-14 08:05");
  EXPECT_EQ(parseSpreadsheetDateTime("2026-07-01", rome), at("2026-06-30T22:00:00Z"));
  for (const auto* text :
       {"", "2026-02-30", "2026-1-4", "14/01/2026", "2026-01-14 25:00", "2026-01-14x08:00", "2026-01-14 8:000"}) {
    EXPECT_FALSE(parseSpreadsheetDateTime(text, rome)) << text;
  }
}

}  // namespace
}  // namespace thalvorn
