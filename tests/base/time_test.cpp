#include <gtest/gtest.h>

#include "base/calendar.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;

Timestamp at(std::string_view text) { return parseTimestamp(text).value(); }

TEST(Timestamp, ReadsTheFormsThatServicesAndPeopleWrite) {
  const Timestamp expected = at("2026-01-31T08:00:00Z");
  for (const auto* text : {"2026-01-31T09:00:00+01:00", "2026-01-31T08:00:00.999999Z", "2026-01-31 08:00:00+00",
                           "2026-01-31T03:30:00-0430", "2026-01-31T08:00"})
    EXPECT_EQ(parseTimestamp(text), expected) << text;
  EXPECT_EQ(at("2026-01-31"), at("2026-01-31T00:00:00Z"));
  for (const auto* text : {"", "soon", "2026-02-30T00:00:00Z", "2026-01-31T25:00:00Z", "2026-01-31T08:00:00Zulu",
                           "2026-1-31", "2026-01-31T08:00:00.Z", "99999-01-01"})
    EXPECT_FALSE(parseTimestamp(text)) << text;
}

TEST(Timestamp, WritesWhatItReads) {
  for (const auto* text :
       {"2026-01-31T08:00:00Z", "1969-12-31T23:59:59Z", "0001-01-01T00:00:00Z", "+012345-06-07T08:09:10Z"})
    EXPECT_EQ(formatTimestamp(at(text)), text);
}

TEST(Calendar, DayComponentTruncatesTowardZero) {
  const Calendar rome = Calendar::inZone("Europe/Rome").value();
  const Timestamp now = at("2026-06-15T12:00:00Z");
  EXPECT_EQ(rome.dayComponent(now, now - 23h), 0);
  EXPECT_EQ(rome.dayComponent(now, now - 24h), -1);
  EXPECT_EQ(rome.dayComponent(now, now - 25h), -1);
  EXPECT_EQ(rome.dayComponent(now, now + 7 * 24h + 23h), 7);
  EXPECT_EQ(rome.dayComponent(now, now + 8 * 24h - 1s), 7);
  EXPECT_EQ(rome.dayComponent(now, now + 8 * 24h), 8);
}

TEST(Calendar, DaysFollowTheWallClockThroughDaylightSaving) {
  const Calendar rome = Calendar::inZone("Europe/Rome").value();
  // Noon to noon over the spring change is 23 hours, over the autumn change 25.
  const Timestamp beforeSpring = at("2026-03-28T11:00:00Z");
  EXPECT_EQ(rome.dayComponent(beforeSpring, beforeSpring + 23h), 1);
  EXPECT_EQ(rome.addDays(beforeSpring, 1), beforeSpring + 23h);
  const Timestamp beforeAutumn = at("2026-10-24T10:00:00Z");
  EXPECT_EQ(rome.dayComponent(beforeAutumn, beforeAutumn + 24h), 0);
  EXPECT_EQ(rome.dayComponent(beforeAutumn, beforeAutumn + 25h), 1);
  // 02:30 does not exist on 29 March: the clock shows 03:30; on 25 October it comes twice and the first is meant.
  using std::chrono::year;
  EXPECT_EQ(rome.at(year{2026} / 3 / 29, 2h + 30min), at("2026-03-29T01:30:00Z"));
  EXPECT_EQ(rome.at(year{2026} / 10 / 25, 2h + 30min), at("2026-10-25T00:30:00Z"));
  EXPECT_EQ(rome.local(at("2026-07-01T10:15:00Z")).abbreviation, "CEST");
}

TEST(Calendar, RefusesTimesOutsideTheCalendar) {
  const Calendar utc = Calendar::utc();
  EXPECT_FALSE(utc.addDays(at("2026-01-01"), 4'000'000'000'000));
  EXPECT_FALSE(utc.addDays(at("9999-12-31"), 1));
  EXPECT_FALSE(utc.dayComponent(at("2026-01-01"), at("+012345-06-07T08:09:10Z")));
  EXPECT_FALSE(Calendar::inZone("Mare/Nostrum"));
}

TEST(UuidText, ReadsEitherCaseAndNamesAreStable) {
  EXPECT_EQ(Uuid::parse("C232AB00-9414-11EC-B3C8-9F6BDECED846")->toString(), "c232ab00-9414-11ec-b3c8-9f6bdeced846");
  EXPECT_FALSE(Uuid::parse("c232ab00-9414-11ec-b3c8-9f6bdeced84"));
  EXPECT_FALSE(Uuid::parse("c232ab00+9414-11ec-b3c8-9f6bdeced846"));
  EXPECT_NE(Uuid::random(), Uuid::random());
  // RFC 4122's DNS space: the published example of a version 5 name.
  EXPECT_EQ(Uuid::named(*Uuid::parse("6ba7b810-9dad-11d1-80b4-00c04fd430c8"), "www.example.com").toString(),
            "2ed6657d-e927-568b-95e1-2665a8aea6a2");
}

}  // namespace
}  // namespace thalvorn
