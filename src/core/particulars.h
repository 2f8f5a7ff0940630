#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>

#include "base/calendar.h"

/// Particulars of a vessel that have a form of their own. Each is made by `parse` alone, whose error is a sentence to
/// show beside the field.
namespace thalvorn {

/// The number of a ship for life: seven digits, the last a check digit (IMO Resolution A.1117(30)).
class ImoNumber {
 public:
  /// Takes the digits with or without "IMO" before them.
  static std::expected<ImoNumber, std::string> parse(std::string_view text);
  /// The check digit that belongs to the first six digits: their sum weighted 7 to 2, last digit.
  static char checkDigit(std::string_view sixDigits);

  const std::string& digits() const { return digits_; }
  /// "IMO 9990014".
  std::string text() const { return "IMO " + digits_; }

 private:
  explicit ImoNumber(std::string digits) : digits_(std::move(digits)) {}
  std::string digits_;
};

/// A Maritime Mobile Service Identity of a ship or her craft: nine digits (ITU-R M.585).
class Mmsi {
 public:
  static std::expected<Mmsi, std::string> parse(std::string_view text);

  const std::string& digits() const { return digits_; }
  /// The maritime identification digits, which name the flag (201 to 775); 0 for a craft's or handheld's number.
  int flagDigits() const;

 private:
  explicit Mmsi(std::string digits) : digits_(std::move(digits)) {}
  std::string digits_;
};

/// The name of a time zone of the IANA database, such as Europe/Rome.
class TimeZoneName {
 public:
  static std::expected<TimeZoneName, std::string> parse(std::string_view text);

  const std::string& name() const { return name_; }
  const Calendar& calendar() const { return calendar_; }

 private:
  TimeZoneName(std::string name, Calendar calendar) : name_(std::move(name)), calendar_(calendar) {}
  std::string name_;
  Calendar calendar_;
};

}  // namespace thalvorn
