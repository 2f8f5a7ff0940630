#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "base/timestamp.h"

namespace date {
class time_zone;
}

namespace thalvorn {

/// The clock face and date that a person in some time zone sees at a point in time.
struct LocalTime {
  std::chrono::year_month_day date;
  std::chrono::seconds timeOfDay{};  ///< since local midnight by the clock on the wall, 0 to 86,399 s
  std::chrono::seconds utcOffset{};  ///< what the wall clock is ahead of UTC
  std::string abbreviation;          ///< of the zone then, e.g. "CEST"
};

/// The Gregorian calendar in one time zone of the IANA database; days follow the wall clock through daylight-saving
/// changes.
class Calendar {
 public:
  /// The calendar of the named zone ("Europe/Rome"); an unknown name gives a message.
  static std::expected<Calendar, std::string> inZone(std::string_view name);
  /// The calendar of the computer's zone (the environment's TZ, else the system's setting; UTC when neither is
  /// readable).
  static Calendar ofThisComputer();
  static Calendar utc();

  std::string zoneName() const;

  /// What the wall clock shows at `time`.
  LocalTime local(Timestamp time) const;
  std::chrono::year_month_day date(Timestamp time) const;

  /// The point in time of a wall-clock reading. A reading skipped by a daylight-saving change moves on past the gap;
  /// one that occurs twice means the first.
  Timestamp at(std::chrono::year_month_day date, std::chrono::seconds timeOfDay = {}) const;
  Timestamp startOfDay(Timestamp time) const;

  /// The same wall-clock time `days` later (or earlier); empty when that leaves the years 1 to 9999.
  std::optional<Timestamp> addDays(Timestamp time, std::int64_t days) const;

  /// The day component of the interval: whole calendar days from `from` to `to`, truncated toward zero. A day is full
  /// when the wall clock shows the time of `from` again. Empty outside the years 1 to 9999.
  std::optional<std::int64_t> dayComponent(Timestamp from, Timestamp to) const;

 private:
  explicit Calendar(const date::time_zone* zone) : zone_(zone) {}
  const date::time_zone* zone_;
};

/// Where services learn the time and the zone; tests move it by hand.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual Timestamp now() const = 0;
  virtual Calendar calendar() const = 0;
};

/// The computer's own clock and zone.
class SystemClock : public Clock {
 public:
  Timestamp now() const override;
  Calendar calendar() const override;
};

/// A clock that stands still until told otherwise.
class FixedClock : public Clock {
 public:
  explicit FixedClock(Timestamp now, Calendar calendar = Calendar::utc()) : now_(now), calendar_(calendar) {}
  Timestamp now() const override { return now_; }
  Calendar calendar() const override { return calendar_; }
  void set(Timestamp now) { now_ = now; }
  void advance(std::chrono::seconds by) { now_ += by; }

 private:
  Timestamp now_;
  Calendar calendar_;
};

}  // namespace thalvorn
