#include "base/timestamp.h"

#include <charconv>
#include <cstdint>

namespace thalvorn {
namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::year_month_day;

/// Reads text from left to right; every step says whether it found what was asked for.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  bool atEnd() const { return rest_.empty(); }
  char peek() const { return rest_.empty() ? '\0' : rest_.front(); }

  bool take(char c) {
    if (peek() != c || rest_.empty()) return false;
    rest_.remove_prefix(1);
    return true;
  }

  bool digits(std::size_t count, int& value) {
    if (rest_.size() < count) return false;
    value = 0;
    for (std::size_t i = 0; i < count; ++i) {
      if (rest_[i] < '0' || rest_[i] > '9') return false;
      value = value * 10 + (rest_[i] - '0');
    }
    rest_.remove_prefix(count);
    return true;
  }

  std::size_t skipDigits() {
    std::size_t count = 0;
    while (count < rest_.size() && rest_[count] >= '0' && rest_[count] <= '9') ++count;
    rest_.remove_prefix(count);
    return count;
  }

 private:
  std::string_view rest_;
};

bool readOffset(Reader& reader, seconds& offset) {
  offset = seconds{0};
  if (reader.take('Z') || reader.take('z')) return true;
  const bool negative = reader.peek() == '-';
  if (!reader.take('+') && !reader.take('-')) return false;
  int offsetHours = 0;
  int offsetMinutes = 0;
  if (!reader.digits(2, offsetHours)) return false;
  const bool colon = reader.take(':');
  if ((colon || !reader.atEnd()) && !reader.digits(2, offsetMinutes)) return false;
  // Local mean times of long ago have seconds.
  int offsetSeconds = 0;
  if (colon && reader.take(':') && !reader.digits(2, offsetSeconds)) return false;
  if (offsetHours > 23 || offsetMinutes > 59 || offsetSeconds > 59) return false;
  offset = hours{offsetHours} + minutes{offsetMinutes} + seconds{offsetSeconds};
  if (negative) offset = -offset;
  return true;
}

void appendPadded(std::string& out, std::int64_t value, int width) {
  char buffer[24];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  for (auto length = end - buffer; length < width; ++length) out.push_back('0');
  out.append(buffer, end);
}

}  // namespace

std::optional<Timestamp> parseTimestamp(std::string_view text) {
  Reader reader(text);
  const bool signedYear = reader.peek() == '+' || reader.peek() == '-';
  const bool negativeYear = reader.peek() == '-';
  if (signedYear) reader.take(reader.peek());
  int y = 0;
  int m = 0;
  int d = 0;
  if (signedYear ? !reader.digits(6, y) : !reader.digits(4, y)) return std::nullopt;
  if (!reader.take('-') || !reader.digits(2, m) || !reader.take('-') || !reader.digits(2, d)) return std::nullopt;
  if (y > 32000) return std::nullopt;
  const year_month_day date{std::chrono::year{negativeYear ? -y : y}, std::chrono::month(static_cast<unsigned>(m)),
                            std::chrono::day(static_cast<unsigned>(d))};
  if (!date.ok()) return std::nullopt;
  const Timestamp midnight = sys_days{date};
  if (reader.atEnd()) return midnight;

  if (!reader.take('T') && !reader.take('t') && !reader.take(' ')) return std::nullopt;
  int hh = 0;
  int mm = 0;
  int ss = 0;
  if (!reader.digits(2, hh) || !reader.take(':') || !reader.digits(2, mm)) return std::nullopt;
  if (reader.take(':') && !reader.digits(2, ss)) return std::nullopt;
  if (hh > 24 || mm > 59 || ss > 60 || (hh == 24 && (mm != 0 || ss != 0))) return std::nullopt;
  if ((reader.take('.') || reader.take(',')) && reader.skipDigits() == 0) return std::nullopt;
  seconds offset{0};
  if (!reader.atEnd() && !readOffset(reader, offset)) return std::nullopt;
  if (!reader.atEnd()) return std::nullopt;
  return midnight + hours{hh} + minutes{mm} + seconds{ss} - offset;
}

void appendTimestamp(std::string& out, Timestamp time) {
  const auto day = std::chrono::floor<days>(time);
  const year_month_day date{day};
  const auto ofDay = (time - day).count();
  const int y = int{date.year()};
  if (y < 0 || y > 9999) {
    out.push_back(y < 0 ? '-' : '+');
    appendPadded(out, y < 0 ? -y : y, 6);
  } else {
    appendPadded(out, y, 4);
  }
  const auto month = unsigned{date.month()};
  const auto mday = unsigned{date.day()};
  const auto two = [](char* at, std::int64_t value) {
    at[0] = static_cast<char>('0' + value / 10);
    at[1] = static_cast<char>('0' + value % 10);
  };
  char rest[] = "-00-00T00:00:00Z";
  two(rest + 1, month);
  two(rest + 4, mday);
  two(rest + 7, ofDay / 3600);
  two(rest + 10, ofDay / 60 % 60);
  two(rest + 13, ofDay % 60);
  out.append(rest, 16);
}

std::string formatTimestamp(Timestamp time) {
  std::string out;
  appendTimestamp(out, time);
  return out;
}

bool isCalendarTime(Timestamp time) {
  using namespace std::chrono_literals;
  constexpr Timestamp first = sys_days{std::chrono::year{1} / 1 / 1};
  constexpr Timestamp last = sys_days{std::chrono::year{10000} / 1 / 1};
  return time >= first && time < last;
}

}  // namespace thalvorn
