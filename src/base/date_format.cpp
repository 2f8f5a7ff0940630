#include "base/date_format.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cstdlib>

namespace thalvorn {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::array<std::string_view, 12> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<std::string_view, 7> weekdays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

std::string dayAndMonth(year_month_day date) {
  return fmt::format("{} {}", unsigned(date.day()), months[unsigned(date.month()) - 1]);
}

long long daysBetween(year_month_day from, year_month_day to) { return (sys_days(to) - sys_days(from)).count(); }

std::string dayCount(long long days) { return fmt::format("{} {}", days, days == 1 ? "day" : "days"); }

/// Reads exactly `width` digits at `at`.
std::optional<int> digitsAt(std::string_view text, std::size_t at, std::size_t width) {
  int value = 0;
  if (at + width > text.size()) return std::nullopt;
  const char* const end = text.data() + at + width;
  const auto read = std::from_chars(text.data() + at, end, value);
  if (read.ec != std::errc() || read.ptr != end || value < 0) return std::nullopt;
  return value;
}

}  // namespace

std::string formatDate(year_month_day date) { return fmt::format("{} {}", dayAndMonth(date), int(date.year())); }

std::string formatShortDate(year_month_day date, year_month_day today) {
  return date.year() == today.year() ? dayAndMonth(date) : formatDate(date);
}

std::string formatTimeOfDay(std::chrono::seconds timeOfDay) {
  const auto minutes = timeOfDay.count() / 60;
  return fmt::format("{:02}:{:02}", minutes / 60, minutes % 60);
}

std::string formatDateTime(const LocalTime& time) {
  return fmt::format("{} {}", formatDate(time.date), formatTimeOfDay(time.timeOfDay));
}

std::string formatUtcOffset(std::chrono::seconds offset) {
  const auto minutes = std::abs(offset.count()) / 60;
  if (minutes == 0) return "UTC";
  const auto hours = fmt::format("UTC{}{}", offset.count() < 0 ? "−" : "+", minutes / 60);
  return minutes % 60 == 0 ? hours : fmt::format("{}:{:02}", hours, minutes % 60);
}

std::string formatDue(Timestamp due, Timestamp now, const Calendar& calendar) {
  const auto today = calendar.date(now);
  const auto date = calendar.date(due);
  const auto days = daysBetween(today, date);
  if (days < 0) return dayCount(-days) + " past";
  if (days == 0) return "today";
  if (days == 1) return "tomorrow";
  if (days <= 7) {
    return fmt::format("{} {}", weekdays[std::chrono::weekday(sys_days(date)).c_encoding()], dayAndMonth(date));
  }
  return formatShortDate(date, today);
}

std::string formatDistance(Timestamp then, Timestamp now, const Calendar& calendar) {
  const auto today = calendar.date(now);
  const auto date = calendar.date(then);
  const auto days = daysBetween(today, date);
  if (days < -30 || days > 30) return formatShortDate(date, today);
  if (days == -1) return "yesterday";
  if (days == 0) return "today";
  if (days == 1) return "tomorrow";
  return days < 0 ? dayCount(-days) + " ago" : "in " + dayCount(days);
}

std::string spreadsheetDate(year_month_day date) {
  return fmt::format("{:04}-{:02}-{:02}", int(date.year()), unsigned(date.month()), unsigned(date.day()));
}

std::string spreadsheetDateTime(const LocalTime& time) {
  const auto seconds = time.timeOfDay.count() % 60;
  const auto minutes = fmt::format("{} {}", spreadsheetDate(time.date), formatTimeOfDay(time.timeOfDay));
  return seconds == 0 ? minutes : fmt::format("{}:{:02}", minutes, seconds);
}

std::string spreadsheetDateTime(Timestamp time, const Calendar& calendar) {
  auto cell = spreadsheetDateTime(calendar.local(time));
  return parseSpreadsheetDateTime(cell, calendar) == time ? cell : formatTimestamp(time);
}

std::optional<Timestamp> parseSpreadsheetDateTime(std::string_view text, const Calendar& calendar) {
  const bool wallClock = text.size() == 10 || ((text.size() == 16 || text.size() == 19) && text[10] == ' ');
  if (!wallClock) return parseTimestamp(text);
  const auto year = digitsAt(text, 0, 4);
  const auto month = digitsAt(text, 5, 2);
  const auto day = digitsAt(text, 8, 2);
  if (!year || !month || !day || text[4] != '-' || text[7] != '-') return std::nullopt;
  const year_month_day date{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                            std::chrono::day(static_cast<unsigned>(*day))};
  if (!date.ok()) return std::nullopt;
  const auto part = [&](std::size_t at) -> std::optional<int> {
    if (at > text.size()) return 0;
    return text[at - 1] == (at == 11 ? ' ' : ':') ? digitsAt(text, at, 2) : std::nullopt;
  };
  const auto hour = part(11);
  const auto minute = part(14);
  const auto second = part(17);
  if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
  return calendar.at(date, std::chrono::hours(*hour) + std::chrono::minutes(*minute) + std::chrono::seconds(*second));
}

}  // namespace thalvorn
