#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "base/calendar.h"
#include "base/timestamp.h"

/// Dates and times as people on board read them: day before month, the month in letters, 24 hours.
namespace thalvorn {

/// "14 Jan 2026".
std::string formatDate(std::chrono::year_month_day date);

/// "2 Nov" in the year of `today`, "14 Jan 2027" in another.
std::string formatShortDate(std::chrono::year_month_day date, std::chrono::year_month_day today);

/// "08:05".
std::string formatTimeOfDay(std::chrono::seconds timeOfDay);

/// "14 Jan 2026 08:05" by the wall clock.
std::string formatDateTime(const LocalTime& time);

/// "UTC", "UTC+2", "UTC−3:30".
std::string formatUtcOffset(std::chrono::seconds offset);

/// When something falls due: "19 days past", "1 day past", "today", "tomorrow", "Wed 25 Nov" within a week, "12 Dec"
/// later, with the year when it is another one. Days are counted by the date in the calendar's zone.
std::string formatDue(Timestamp due, Timestamp now, const Calendar& calendar);

/// How far off a day is: "3 days ago", "yesterday", "today", "tomorrow", "in 4 days", and beyond 30 days the date.
std::string formatDistance(Timestamp then, Timestamp now, const Calendar& calendar);

/// A date cell that every spreadsheet understands: "2026-01-14".
std::string spreadsheetDate(std::chrono::year_month_day date);

/// A date-time cell by the wall clock, "2026-01-14 08:05", with seconds only when there are any.
std::string spreadsheetDateTime(const LocalTime& time);

/// The same for a point in time, such that it reads back as that point: in UTC where the wall clock shows it twice.
std::string spreadsheetDateTime(Timestamp time, const Calendar& calendar);

/// Reads "2026-01-14", "2026-01-14 08:05" and "2026-01-14 08:05:30" by the wall clock of the calendar's zone, and any
/// ISO 8601 time with its offset.
std::optional<Timestamp> parseSpreadsheetDateTime(std::string_view text, const Calendar& calendar);

}  // namespace thalvorn
