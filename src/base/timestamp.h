#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace thalvorn {

/// A point in time in whole seconds, UTC.
using Timestamp = std::chrono::sys_seconds;

/// Reads an ISO 8601 date-time: "2026-01-31T08:00:00Z", with an offset (+02:00, +0200, +02, +00:19:32), with a
/// fraction of a second (cut off), with a space for the "T", without seconds, or a date alone (midnight UTC). Empty for
/// anything else.
std::optional<Timestamp> parseTimestamp(std::string_view text);

/// ISO 8601 in UTC with the "Z" designator, e.g. "2026-01-31T08:00:00Z". Years outside 0–9999 are written with a sign.
std::string formatTimestamp(Timestamp time);

/// Appends `formatTimestamp(time)` to `out`.
void appendTimestamp(std::string& out, Timestamp time);

/// True for years 1 to 9999, the range in which calendars count days.
bool isCalendarTime(Timestamp time);

}  // namespace thalvorn
