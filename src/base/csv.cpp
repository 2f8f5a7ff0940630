#include "base/csv.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "base/utf8.h"

namespace thalvorn {
namespace {

constexpr std::string_view utf8Bom = "\xEF\xBB\xBF";

char lowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

std::string_view trimmed(std::string_view text) {
  const auto isInk = [](char c) { return static_cast<unsigned char>(c) > ' '; };
  if (text.empty() || (isInk(text.front()) && isInk(text.back()))) return text;  // as almost every cell is
  constexpr std::string_view blanks = " \t\r\n";
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string lowered(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), lowerAscii);
  return result;
}

bool startsFormula(char c) { return c == '=' || c == '+' || c == '-' || c == '@' || c == '\t' || c == '\r'; }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// The lengths of the digits between separators.
struct DigitRuns {
  std::array<std::size_t, 4> lengths{};
  std::size_t count = 0;  ///< 0 when there is anything else, or more of them
};

DigitRuns digitRuns(std::string_view text, std::string_view separators) {
  DigitRuns runs{.count = 1};
  for (const char c : text) {
    if (isDigit(c)) {
      ++runs.lengths[runs.count - 1];
    } else if (separators.contains(c) && runs.count < runs.lengths.size()) {
      ++runs.count;
    } else {
      return {};
    }
  }
  return runs;
}

/// Whether a spreadsheet reads the text as a number or a date and then shows another one: "00123", "1.10", "12E5",
/// "1,234", "3/4", sixteen digits. Days as this program writes them are meant as such.
bool isRewritten(std::string_view text) {
  if (text.empty() || !isDigit(text.front()) || !isDigit(text.back())) return false;
  constexpr std::size_t mostDigits = 15;
  if (const auto exponent = text.find_first_of("eE"); exponent != text.npos) {
    auto power = text.substr(exponent + 1);
    if (power.starts_with('+') || power.starts_with('-')) power.remove_prefix(1);
    const auto mantissa = digitRuns(text.substr(0, exponent), ".");
    return std::ranges::all_of(power, isDigit) && (mantissa.count == 1 || mantissa.count == 2);
  }
  const auto number = digitRuns(text, ".");
  if (number.count == 1 || number.count == 2) {
    const bool leadingZero = text.front() == '0' && text.size() > 1 && isDigit(text[1]);
    return leadingZero || text.size() > mostDigits || (number.count == 2 && text.back() == '0');
  }
  if (digitRuns(text, ",").count > 0) return true;
  const auto date = digitRuns(text, "-/.");
  const bool ours = date.lengths == std::array<std::size_t, 4>{4, 2, 2} && text[4] == '-' && text[7] == '-';
  return (date.count == 2 || date.count == 3) && !ours &&
         std::ranges::all_of(date.lengths, [](std::size_t digits) { return digits <= 4; });
}

/// Whether what follows any number of apostrophes would be run or rewritten: guarded or not, the text is told apart by
/// their count.
bool needsGuard(std::string_view text) {
  const auto first = text.find_first_not_of('\'');
  return first != text.npos && (startsFormula(text[first]) || isRewritten(text.substr(first)));
}

std::string fromUtf16(std::string_view bytes, bool bigEndian) {
  const auto unit = [&](std::size_t i) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    return static_cast<char32_t>(bigEndian ? first << 8 | second : second << 8 | first);
  };
  std::string out;
  out.reserve(bytes.size());
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    char32_t code = unit(i);
    if (code >= 0xD800 && code < 0xDC00 && i + 3 < bytes.size() && (unit(i + 2) & 0xFC00) == 0xDC00) {
      code = 0x10000 + ((code - 0xD800) << 10) + (unit(i + 2) - 0xDC00);
      i += 2;
    }
    appendUtf8(out, code >= 0xD800 && code < 0xE000 ? replacementCharacter : code);
  }
  return out;
}

std::string fromWindows1252(std::string_view bytes) {
  // The bytes 0x80 to 0x9F; the others equal their code point.
  static constexpr std::array<char16_t, 32> upper = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                                     0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 8);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    appendUtf8(out, byte >= 0x80 && byte < 0xA0 ? upper[byte - 0x80] : byte);
  }
  return out;
}

CsvSeparator detectSeparator(std::string_view text) {
  std::size_t commas = 0;
  std::size_t semicolons = 0;
  std::size_t tabs = 0;
  bool quoted = false;
  for (const char c : text) {
    if (c == '"') quoted = !quoted;
    if (quoted) continue;
    if (c == '\n' || c == '\r') {
      if (commas + semicolons + tabs > 0) break;
      continue;
    }
    commas += c == ',';
    semicolons += c == ';';
    tabs += c == '\t';
  }
  if (tabs > commas && tabs >= semicolons) return CsvSeparator::tab;
  return semicolons > commas ? CsvSeparator::semicolon : CsvSeparator::comma;
}

/// The separator named by a first line such as "sep=;", which some spreadsheets write and obey.
std::optional<CsvSeparator> namedSeparator(std::string_view line) {
  if (line.size() != 5 || lowered(line.substr(0, 4)) != "sep=") return std::nullopt;
  for (const auto separator : {CsvSeparator::comma, CsvSeparator::semicolon, CsvSeparator::tab}) {
    if (line[4] == static_cast<char>(separator)) return separator;
  }
  return std::nullopt;
}

}  // namespace

std::string_view CsvRow::cell(std::optional<std::size_t> column) const {
  return column && *column < cells.size() ? trimmed(cells[*column]) : std::string_view{};
}

CsvHeader::CsvHeader(std::span<const std::string_view> cells) {
  names_.reserve(cells.size());
  for (const auto cell : cells) names_.push_back(lowered(trimmed(cell)));
}

std::optional<std::size_t> CsvHeader::column(std::string_view name) const {
  const auto found = std::ranges::find(names_, lowered(trimmed(name)));
  if (found == names_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - names_.begin());
}

std::string csvTextFromBytes(std::string bytes) {
  const std::string_view view = bytes;
  if (view.starts_with("\xFF\xFE")) return fromUtf16(view.substr(2), false);
  if (view.starts_with("\xFE\xFF")) return fromUtf16(view.substr(2), true);
  if (!isUtf8(view)) return fromWindows1252(view);
  return bytes;
}

CsvSource openCsv(std::string_view text, std::optional<CsvSeparator> chosen) {
  CsvSource source{.text = text};
  if (source.text.starts_with(utf8Bom)) source.text.remove_prefix(utf8Bom.size());
  const auto lineEnd = std::min(source.text.find_first_of("\r\n"), source.text.size());
  const auto named = namedSeparator(source.text.substr(0, lineEnd));
  if (named) {
    source.text.remove_prefix(lineEnd);
    source.text.remove_prefix(source.text.starts_with("\r\n") ? 2 : std::min<std::size_t>(1, source.text.size()));
    source.firstLine = 2;
  }
  source.separator = chosen ? *chosen : named ? *named : detectSeparator(source.text);
  return source;
}

std::string_view withoutFormulaGuard(std::string_view cell) {
  if (cell.starts_with('\'') && needsGuard(cell)) cell.remove_prefix(1);
  return cell;
}

namespace csv_detail {

const char* QuoteReader::lineEnd(const char* from) const {
  return std::find_if(from, end_, [](char c) { return c == '\n' || c == '\r'; });
}

std::string_view QuoteReader::unescape(std::string_view body) {
  if (used_ == unescaped_.size()) unescaped_.emplace_back();
  std::string& text = unescaped_[used_++];
  text.clear();
  for (std::size_t i = 0; i < body.size(); ++i) {
    text += body[i];
    if (body[i] == '"' && i + 1 < body.size() && body[i + 1] == '"') ++i;
  }
  return text;
}

std::optional<QuotedCell> QuoteReader::read(const char* open) {
  if (literalUntil_ && open < literalUntil_) return std::nullopt;
  const char* const limit = reachedEnd_ ? lineEnd(open) : end_;
  std::size_t lineBreaks = 0;
  bool doubled = false;
  for (const char* at = open + 1; at < limit; ++at) {
    if (*at == '\n' || (*at == '\r' && (at + 1 == limit || at[1] != '\n'))) {
      ++lineBreaks;
    } else if (*at == '"') {
      const bool last = at + 1 == end_;
      if (!last && at[1] == '"' && at + 1 < limit) {
        doubled = true;
        ++at;
      } else if (last || at[1] == separator_ || at[1] == '\n' || at[1] == '\r') {
        const std::string_view body(open + 1, static_cast<std::size_t>(at - open - 1));
        return QuotedCell{doubled ? unescape(body) : body, at + 1, lineBreaks};
      } else if (lineBreaks > 0) {
        // On a later line a quote inside a cell is that line's own: the one at `open` was never closed.
        literalUntil_ = lineEnd(open);
        return std::nullopt;
      }
    }
  }
  reachedEnd_ = true;
  literalUntil_ = lineEnd(open);
  return std::nullopt;
}

}  // namespace csv_detail

CsvWriter::CsvWriter(CsvFormat format) : format_(format), out_(utf8Bom) {}

void CsvWriter::startCell() {
  if (rowOpen_) out_ += static_cast<char>(format_.separator);
  rowOpen_ = true;
}

CsvWriter& CsvWriter::text(std::string_view value) {
  startCell();
  const bool padded = !value.empty() && (value.front() == ' ' || value.back() == ' ');
  const char special[] = {static_cast<char>(format_.separator), '"', '\r', '\n'};
  if (!padded && value.find_first_of(std::string_view(special, sizeof special)) == std::string_view::npos) {
    if (needsGuard(value)) out_ += '\'';
    out_ += value;
    return *this;
  }
  appendQuoted(value);
  return *this;
}

CsvWriter& CsvWriter::label(std::string_view value) {
  startCell();
  appendQuoted(value);
  return *this;
}

void CsvWriter::appendQuoted(std::string_view value) {
  out_ += '"';
  if (needsGuard(value)) out_ += '\'';
  for (const char c : value) {
    if (c == '"') out_ += '"';
    out_ += c;
  }
  out_ += '"';
}

void CsvWriter::appendNumber(std::string_view digits) {
  startCell();
  const bool quoted = format_.decimalPoint == static_cast<char>(format_.separator) && digits.contains('.');
  if (quoted) out_ += '"';
  for (const char c : digits) out_ += c == '.' ? format_.decimalPoint : c;
  if (quoted) out_ += '"';
}

CsvWriter& CsvWriter::number(double value) {
  if (!std::isfinite(value)) return empty();
  char buffer[64];
  // Beyond 15 digits a spreadsheet rounds anyway; there the exponent keeps the cell short.
  const bool plain = std::abs(value) < 1e15 && (value == 0 || std::abs(value) >= 1e-6);
  const auto written = plain ? std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed)
                             : std::to_chars(buffer, buffer + sizeof buffer, value);
  appendNumber({buffer, written.ptr});
  return *this;
}

CsvWriter& CsvWriter::number(double value, int decimals) {
  if (!std::isfinite(value)) return empty();
  char buffer[384];
  const auto written = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
  appendNumber({buffer, written.ptr});
  return *this;
}

CsvWriter& CsvWriter::integer(std::int64_t value) {
  char buffer[24];
  const auto written = std::to_chars(buffer, buffer + sizeof buffer, value);
  appendNumber({buffer, written.ptr});
  return *this;
}

CsvWriter& CsvWriter::empty() {
  startCell();
  return *this;
}

CsvWriter& CsvWriter::endRow() {
  out_ += "\r\n";
  rowOpen_ = false;
  return *this;
}

CsvWriter& CsvWriter::row(std::span<const std::string_view> cells) {
  for (const auto cell : cells) text(cell);
  return endRow();
}

}  // namespace thalvorn
