#include "base/number_format.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

namespace thalvorn {
namespace {

constexpr std::string_view emDash = "—";

/// Digits with a point, such as "-1234567.50", grouped and with the locale's decimal point.
std::string localized(std::string_view digits, const NumberLocale& locale) {
  std::string out;
  if (digits.starts_with('-')) {
    if (digits.find_first_of("123456789") != std::string_view::npos) out += '-';
    digits.remove_prefix(1);
  }
  const auto point = std::min(digits.find('.'), digits.size());
  for (std::size_t i = 0; i < point; ++i) {
    if (i > 0 && (point - i) % 3 == 0) out += locale.groupSeparator;
    out += digits[i];
  }
  if (point < digits.size()) {
    out += locale.decimalPoint;
    out += digits.substr(point + 1);
  }
  return out;
}

/// The blanks and apostrophes that group digits in some country, besides comma and point.
constexpr std::array<std::string_view, 6> groupMarks = {" ", "'", "\u00A0", "\u202F", "\u2009", "\u2019"};

/// The typed text with blanks, apostrophes and a typographic minus reduced to "-0123456789.,"; nothing when another
/// character occurs or a mark stands outside the digits.
std::optional<std::string> plainDigits(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    const auto mark = std::ranges::find_if(groupMarks, [&](auto candidate) { return text.starts_with(candidate); });
    if (mark != groupMarks.end()) {
      if (plain.empty() || !(plain.back() >= '0' && plain.back() <= '9')) return std::nullopt;
      text.remove_prefix(mark->size());
      if (text.empty() || !(text.front() >= '0' && text.front() <= '9')) return std::nullopt;
      continue;
    }
    constexpr std::string_view minus = "\u2212";
    if (text.starts_with(minus)) {
      plain += '-';
      text.remove_prefix(minus.size());
      continue;
    }
    if (!std::string_view("-+0123456789.,").contains(text.front())) return std::nullopt;
    plain += text.front();
    text.remove_prefix(1);
  }
  if (plain.starts_with('+')) plain.erase(0, 1);
  return plain;
}

/// Whether every part between the marks could be a group of thousands: a first one of 1 to 3 digits, the last of 3.
bool groupsThousands(std::string_view digits, char mark) {
  if (digits.starts_with('-')) digits.remove_prefix(1);
  const auto first = digits.find(mark);
  if (first == 0 || first > 3 || digits.front() == '0') return false;
  for (std::size_t from = first + 1;;) {
    const auto to = std::min(digits.find(mark, from), digits.size());
    const auto length = to - from;
    if (to == digits.size()) return length == 3;
    if (length != 3 && length != 2) return false;
    from = to + 1;
  }
}

/// Which of point and comma is the decimal point in this number; 0 when neither is. Nothing when it makes no sense.
std::optional<char> decimalMark(const std::string& plain, const NumberLocale& locale) {
  const auto lastPoint = plain.rfind('.');
  const auto lastComma = plain.rfind(',');
  if (lastPoint == std::string::npos && lastComma == std::string::npos) return '\0';
  if (lastPoint != std::string::npos && lastComma != std::string::npos) {
    const char mark = lastPoint > lastComma ? '.' : ',';
    const char group = mark == '.' ? ',' : '.';
    if (std::ranges::count(plain, mark) > 1 || !groupsThousands(plain.substr(0, plain.rfind(mark)), group)) {
      return std::nullopt;
    }
    return mark;
  }
  const char mark = lastPoint != std::string::npos ? '.' : ',';
  if (std::ranges::count(plain, mark) > 1) return groupsThousands(plain, mark) ? std::optional('\0') : std::nullopt;
  const bool writesDecimals = locale.decimalPoint == std::string_view(&mark, 1);
  const bool writesGroups = locale.groupSeparator == std::string_view(&mark, 1);
  return !writesDecimals && writesGroups && groupsThousands(plain, mark) ? '\0' : mark;
}

}  // namespace

std::string hoursText(double hours) { return fmt::format("{:.1f} hrs", hours); }

std::string currentHoursText(double hours) { return fmt::format("Current: {:.1f} hrs", hours); }

std::string formatNumber(double value, int decimals, const NumberLocale& locale) {
  if (!std::isfinite(value)) return std::string(emDash);
  return localized(fmt::format("{:.{}f}", value, std::clamp(decimals, 0, 15)), locale);
}

std::string formatQuantity(double value, int decimals, const NumberLocale& locale) {
  if (!std::isfinite(value)) return std::string(emDash);
  std::string digits = fmt::format("{:.{}f}", value, std::clamp(decimals, 0, 15));
  if (digits.contains('.')) {
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.ends_with('.')) digits.pop_back();
  }
  return localized(digits, locale);
}

int currencyDecimals(std::string_view currency) {
  static constexpr std::array<std::string_view, 16> whole = {"BIF", "CLP", "DJF", "GNF", "ISK", "JPY", "KMF", "KRW",
                                                             "PYG", "RWF", "UGX", "VND", "VUV", "XAF", "XOF", "XPF"};
  static constexpr std::array<std::string_view, 7> thousandths = {"BHD", "IQD", "JOD", "KWD", "LYD", "OMR", "TND"};
  if (std::ranges::find(whole, currency) != whole.end()) return 0;
  return std::ranges::find(thousandths, currency) != thousandths.end() ? 3 : 2;
}

std::string formatMoney(double amount, std::string_view currency, const NumberLocale& locale) {
  const std::string number = formatNumber(amount, currencyDecimals(currency), locale);
  return currency.empty() ? number : fmt::format("{} {}", currency, number);
}

std::expected<double, std::string> parseNumber(std::string_view text, const NumberLocale& locale) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return std::unexpected("Enter a number.");
  const auto typed = text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
  const auto refuse = [&] {
    return std::unexpected(
        fmt::format("“{}” is not a number. Write it like {}.", typed, formatNumber(1234.5, 1, locale)));
  };
  auto plain = plainDigits(typed);
  if (!plain) return refuse();
  const auto mark = decimalMark(*plain, locale);
  if (!mark) return refuse();
  std::erase_if(*plain, [&](char c) { return (c == '.' || c == ',') && c != *mark; });
  if (*mark) std::ranges::replace(*plain, *mark, '.');
  double value = 0;
  const char* const end = plain->data() + plain->size();
  const auto read = std::from_chars(plain->data(), end, value, std::chars_format::fixed);
  if (read.ec != std::errc() || read.ptr != end) return refuse();
  return value;
}

}  // namespace thalvorn
