#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/calendar.h"
#include "base/enums.h"
#include "base/timestamp.h"
#include "core/maintenance_enums.h"

/// Values as they are written on a command line. Errors are sentences that say what to write instead.
namespace thalvorn::cli {

template <class T>
using Read = std::expected<T, std::string>;

/// "2026-01-31" (its beginning), "2026-01-31 08:00", with a "T" for the blank, by the calendar's wall clock; with "Z"
/// or an offset the point in time it names.
Read<Timestamp> readMoment(std::string_view text, const Calendar& calendar);

/// The moment at which a period that is said to last "to" this moment is over: for a date alone the end of that day.
Read<Timestamp> readPeriodEnd(std::string_view text, const Calendar& calendar);

/// A decimal number within the limits; `what` names it in the message.
Read<double> readNumber(std::string_view text, std::string_view what, double minimum, double maximum);

/// A meter with its reading: "engine2=1234.5". Meters go by their stored name, "engine1" or display name.
Read<std::pair<HourSource, double>> readMeter(std::string_view text);

/// A meter by name.
Read<HourSource> readHourSource(std::string_view text);

/// A task kind by stored name, case name or display name.
Read<TaskKind> readKind(std::string_view text);

/// A category by name or the unmistakable beginning of one.
Read<TaskCategory> readCategory(std::string_view text);

bool equalIgnoringCase(std::string_view a, std::string_view b);
bool startsIgnoringCase(std::string_view text, std::string_view beginning);
/// Whether a word behind the first begins so: "mer" in "M/Y Meridian".
bool aWordStartsIgnoringCase(std::string_view text, std::string_view beginning);

}  // namespace thalvorn::cli
