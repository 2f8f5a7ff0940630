#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// Comma-separated text as spreadsheets write and read it: RFC 4180 with byte-order mark, CRLF, LF or CR line ends,
/// comma, semicolon or tab between the cells.
namespace thalvorn {

enum class CsvSeparator : char { comma = ',', semicolon = ';', tab = '\t' };

/// One row while it is being read. The cells are views that live until the sink returns.
struct CsvRow {
  std::span<const std::string_view> cells;
  std::size_t line = 0;  ///< physical line on which the row begins, 1 for the first line of the file

  /// The cell of a column without surrounding blanks; empty when the row is shorter or the column is not in the file.
  std::string_view cell(std::optional<std::size_t> column) const;
};

/// Where the columns of a file are, by header name without regard to case or surrounding blanks.
class CsvHeader {
 public:
  CsvHeader() = default;
  explicit CsvHeader(std::span<const std::string_view> cells);

  /// The position of the first column with this name.
  std::optional<std::size_t> column(std::string_view name) const;
  const std::vector<std::string>& names() const { return names_; }

 private:
  std::vector<std::string> names_;
};

/// What a file holds after its byte-order mark and its `sep=` line, and what separates its cells.
struct CsvSource {
  std::string_view text;
  CsvSeparator separator = CsvSeparator::comma;
  std::size_t firstLine = 1;
};

/// File bytes as UTF-8: UTF-16 with a byte-order mark is converted, and bytes that are not UTF-8 are read as
/// Windows-1252, as spreadsheets of western Europe save plain CSV.
std::string csvTextFromBytes(std::string bytes);

/// Skips the byte-order mark and honours a `sep=` line. Unless `chosen`, the separator that occurs most often outside
/// quotes in the header line is taken, comma when there is none.
CsvSource openCsv(std::string_view text, std::optional<CsvSeparator> chosen = std::nullopt);

/// Removes the apostrophe that CsvWriter puts before text a spreadsheet would run as a formula or rewrite as a number.
std::string_view withoutFormulaGuard(std::string_view cell);

namespace csv_detail {

/// A quoted cell: its text and where reading goes on.
struct QuotedCell {
  std::string_view text;
  const char* next = nullptr;
  std::size_t lineBreaks = 0;
};

/// Reads quoted cells and keeps the unescaped text of those with doubled quotes until the end of the row.
class QuoteReader {
 public:
  QuoteReader(const char* end, char separator) : end_(end), separator_(separator) {}

  /// Reads the cell whose opening quote is at `open`. A quote that no later quote closes is not an opening quote but
  /// part of the text: then nothing is returned and the cell ends at the next separator, so that no row is lost.
  std::optional<QuotedCell> read(const char* open);

  void startRow() { used_ = 0; }

 private:
  const char* lineEnd(const char* from) const;
  std::string_view unescape(std::string_view body);

  const char* end_;
  char separator_;
  bool reachedEnd_ = false;             // an earlier quote was open to the end: later ones must close on their line
  const char* literalUntil_ = nullptr;  // quotes before here are text: the line has an unclosed one
  std::deque<std::string> unescaped_;
  std::size_t used_ = 0;
};

}  // namespace csv_detail

/// Hands every row that is not an empty line to `sink(const CsvRow&)`; a sink that returns bool stops the reading with
/// false. Nothing is copied except cells with doubled quotes.
template <class Sink>
void readCsv(const CsvSource& source, Sink&& sink) {
  const char separator = static_cast<char>(source.separator);
  const char* at = source.text.data();
  const char* const end = at + source.text.size();
  std::size_t line = source.firstLine;
  std::vector<std::string_view> cells;
  csv_detail::QuoteReader quotes(end, separator);

  while (at < end) {
    const std::size_t rowLine = line;
    cells.clear();
    quotes.startRow();
    for (;;) {
      const char* start = at;
      std::optional<csv_detail::QuotedCell> quoted;
      if (at < end && *at == '"') quoted = quotes.read(at);
      if (quoted) {
        cells.push_back(quoted->text);
        at = quoted->next;
        line += quoted->lineBreaks;
      } else {
        while (at < end && *at != separator && *at != '\n' && *at != '\r') ++at;
        cells.emplace_back(start, static_cast<std::size_t>(at - start));
      }
      if (at == end || *at != separator) break;
      ++at;
    }
    if (at < end) {
      at += *at == '\r' && at + 1 < end && at[1] == '\n' ? 2 : 1;
      ++line;
    }
    if (cells.size() == 1 && cells.front().empty()) continue;
    const CsvRow row{cells, rowLine};
    if constexpr (std::is_same_v<std::invoke_result_t<Sink&, const CsvRow&>, bool>) {
      if (!sink(row)) return;
    } else {
      sink(row);
    }
  }
}

/// How a file is written. Spreadsheets of countries with a decimal comma open semicolon files on a double click.
struct CsvFormat {
  CsvSeparator separator = CsvSeparator::comma;
  char decimalPoint = '.';
};

/// Writes rows as UTF-8 with byte-order mark and CRLF, so that spreadsheets open the file rightly on a double click.
class CsvWriter {
 public:
  explicit CsvWriter(CsvFormat format = {});

  /// A text cell. Text that a spreadsheet would run as a formula or, like "00123" or "3/4", show as another number or
  /// a date gets an apostrophe before it.
  CsvWriter& text(std::string_view value);
  /// A text cell in quotation marks whether it needs them or not: the label of a figure.
  CsvWriter& label(std::string_view value);
  /// A number cell with the fewest digits that read back as the same value; not-a-number and infinity leave it empty.
  CsvWriter& number(double value);
  /// A number cell with a fixed number of decimals (0 to 15).
  CsvWriter& number(double value, int decimals);
  CsvWriter& integer(std::int64_t value);
  CsvWriter& number(const std::optional<double>& value) { return value ? number(*value) : empty(); }
  CsvWriter& empty();
  CsvWriter& endRow();
  /// A whole row of text cells, such as the header.
  CsvWriter& row(std::span<const std::string_view> cells);

  /// The file's bytes so far; the writer is spent afterwards.
  std::string take() { return std::move(out_); }

 private:
  void startCell();
  void appendQuoted(std::string_view value);
  void appendNumber(std::string_view digits);

  CsvFormat format_;
  std::string out_;
  bool rowOpen_ = false;
};

}  // namespace thalvorn
