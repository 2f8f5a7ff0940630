#include "core/particulars.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/search_text.h"

namespace thalvorn {
namespace {

/// The text without blanks, dots and dashes, which people put between digits.
std::string withoutBlanks(std::string_view text) {
  std::string kept(text);
  std::erase_if(kept, [](char c) { return c == ' ' || c == '\t' || c == '.' || c == '-'; });
  return kept;
}

bool isDigits(std::string_view text, std::size_t count) {
  return text.size() == count && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

int number(std::string_view digits) {
  int value = 0;
  for (const char c : digits) value = value * 10 + (c - '0');
  return value;
}

}  // namespace

char ImoNumber::checkDigit(std::string_view sixDigits) {
  int sum = 0;
  int weight = 7;
  for (const char c : sixDigits.substr(0, 6)) sum += (c - '0') * weight--;
  return static_cast<char>('0' + sum % 10);
}

std::expected<ImoNumber, std::string> ImoNumber::parse(std::string_view text) {
  std::string digits = withoutBlanks(text);
  if (equalIgnoringCase(std::string_view(digits).substr(0, 3), "IMO")) digits.erase(0, 3);
  if (!isDigits(digits, 7)) return std::unexpected("An IMO number has seven digits, such as IMO 9990014.");
  if (digits.back() != checkDigit(digits))
    return std::unexpected(
        fmt::format("The last digit of {} should be {}: check for a typing error.", digits, checkDigit(digits)));
  return ImoNumber(std::move(digits));
}

std::expected<Mmsi, std::string> Mmsi::parse(std::string_view text) {
  std::string digits = withoutBlanks(text);
  if (!isDigits(digits, 9)) return std::unexpected("An MMSI has nine digits, such as 319900014.");
  if (digits[0] < '2')
    return std::unexpected("The MMSI of a ship begins with 2 to 7; 0 and 1 belong to stations ashore and aircraft.");
  return Mmsi(std::move(digits));
}

int Mmsi::flagDigits() const { return digits_[0] <= '7' ? number(std::string_view(digits_).substr(0, 3)) : 0; }

std::expected<TimeZoneName, std::string> TimeZoneName::parse(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  const auto last = text.find_last_not_of(" \t");
  std::string name(first == std::string_view::npos ? "" : text.substr(first, last - first + 1));
  auto calendar = Calendar::inZone(name);
  if (!calendar) return std::unexpected(calendar.error());
  return TimeZoneName(std::move(name), *calendar);
}

}  // namespace thalvorn
