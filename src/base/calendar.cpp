#include "base/calendar.h"

#include <date/tz.h>

#include <cstdlib>
#include <exception>

namespace thalvorn {
namespace {

using std::chrono::days;
using std::chrono::seconds;

const date::time_zone* zoneNamed(std::string_view name) {
  try {
    return date::locate_zone(std::string(name));
  } catch (const std::exception&) {
    return nullptr;
  }
}

const date::time_zone* utcZone() {
  const auto* zone = zoneNamed("Etc/UTC");
  return zone ? zone : zoneNamed("UTC");
}

const date::time_zone* computerZone() {
  if (const char* environment = std::getenv("TZ"); environment && *environment) {
    std::string_view name(environment);
    if (name.starts_with(':')) name.remove_prefix(1);
    if (const auto* zone = zoneNamed(name)) return zone;
  }
  try {
    return date::current_zone();
  } catch (const std::exception&) {
    return utcZone();
  }
}

}  // namespace

std::expected<Calendar, std::string> Calendar::inZone(std::string_view name) {
  if (const auto* zone = zoneNamed(name)) return Calendar(zone);
  return std::unexpected("“" + std::string(name) + "” is not a time zone; use a name such as Europe/Rome.");
}

Calendar Calendar::ofThisComputer() {
  static const date::time_zone* zone = computerZone();
  return Calendar(zone);
}

Calendar Calendar::utc() {
  static const date::time_zone* zone = utcZone();
  return Calendar(zone);
}

std::string Calendar::zoneName() const { return zone_->name(); }

LocalTime Calendar::local(Timestamp time) const {
  const auto info = zone_->get_info(time);
  const auto local = time.time_since_epoch() + info.offset;
  const auto day = std::chrono::floor<days>(local);
  return {.date = std::chrono::year_month_day{std::chrono::sys_days{day}},
          .timeOfDay = local - day,
          .utcOffset = info.offset,
          .abbreviation = info.abbrev};
}

std::chrono::year_month_day Calendar::date(Timestamp time) const {
  const auto local = time.time_since_epoch() + zone_->get_info(time).offset;
  return std::chrono::year_month_day{std::chrono::sys_days{std::chrono::floor<days>(local)}};
}

Timestamp Calendar::at(std::chrono::year_month_day date, seconds timeOfDay) const {
  const date::local_seconds local{std::chrono::sys_days{date}.time_since_epoch() + timeOfDay};
  const auto info = zone_->get_info(local);
  // In a gap the earlier offset lands as far behind the gap as the reading stood in it.
  return Timestamp{local.time_since_epoch() - info.first.offset};
}

Timestamp Calendar::startOfDay(Timestamp time) const { return at(date(time)); }

std::optional<Timestamp> Calendar::addDays(Timestamp time, std::int64_t count) const {
  constexpr std::int64_t span = 3'660'000;  // more days than ten thousand years have
  if (!isCalendarTime(time) || count < -span || count > span) return std::nullopt;
  const LocalTime start = local(time);
  const Timestamp movedDay = std::chrono::sys_days{start.date} + days{count};
  if (!isCalendarTime(movedDay)) return std::nullopt;
  return at(std::chrono::floor<days>(movedDay), start.timeOfDay);
}

std::optional<std::int64_t> Calendar::dayComponent(Timestamp from, Timestamp to) const {
  if (!isCalendarTime(from) || !isCalendarTime(to)) return std::nullopt;
  std::int64_t count = (std::chrono::sys_days{date(to)} - std::chrono::sys_days{date(from)}).count();
  // The calendar dates are at most one day off the full days between the two moments.
  const auto reached = addDays(from, count);
  if (!reached) return std::nullopt;
  if (count > 0 && *reached > to) --count;
  if (count < 0 && *reached < to) ++count;
  return count;
}

Timestamp SystemClock::now() const { return std::chrono::floor<seconds>(std::chrono::system_clock::now()); }

Calendar SystemClock::calendar() const { return Calendar::ofThisComputer(); }

}  // namespace thalvorn
