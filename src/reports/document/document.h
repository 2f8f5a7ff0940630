#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/timestamp.h"

/// A printable report as a value. Registers build it from their records; the renderer, the preview and the tests read
/// the same value. All texts are UTF-8 in any script; a line feed in a text starts a new line.
namespace thalvorn {

enum class PaperSize : std::uint8_t { a4, letter };
enum class Orientation : std::uint8_t { portrait, landscape };
enum class Alignment : std::uint8_t { left, right, center };
enum class TickBox : std::uint8_t { none, open, ticked };

struct LabeledText {
  std::string label{};
  std::string value{};
  friend bool operator==(const LabeledText&, const LabeledText&) = default;
};

/// What an inspector looks for at the head of every paper; an empty one is printed as "n/a".
struct VesselParticulars {
  std::string flag{};
  std::string portOfRegistry{};
  std::string imoNumber{};
  std::string callSign{};
  std::string mmsi{};
  std::string grossTonnage{};
  friend bool operator==(const VesselParticulars&, const VesselParticulars&) = default;
};

/// One cell of a table.
struct Cell {
  std::string text{};
  std::string note{};            ///< printed muted on lines of its own below the text
  bool strong = false;           ///< in heavier type
  bool struck = false;           ///< struck through, as a corrected entry
  TickBox tick = TickBox::none;  ///< a box to tick before the text

  Cell() = default;
  Cell(std::string cellText) : text(std::move(cellText)) {}
  Cell(const char* cellText) : text(cellText) {}
  friend bool operator==(const Cell&, const Cell&) = default;
};

struct Column {
  std::string title{};
  /// Share of the width left over by the columns that do not wrap.
  double weight = 1;
  Alignment alignment = Alignment::left;
  /// A column that does not wrap is as wide as its widest cell: dates, numbers, codes.
  bool wraps = true;
  friend bool operator==(const Column&, const Column&) = default;
};

struct TableRow {
  enum class Kind : std::uint8_t {
    entry,  ///< an entry of the register
    group,  ///< a heading across the table: the first cell's text, its note beside it; stays with the row that follows
    total,  ///< sums in heavier type below a rule
  };
  std::vector<Cell> cells{};
  /// Remarks across the whole width below the cells; they belong to the row and are not parted from it.
  std::vector<LabeledText> details{};
  Kind kind = Kind::entry;
  friend bool operator==(const TableRow&, const TableRow&) = default;
};

/// A ruled table with its head repeated on every page.
struct Table {
  std::vector<Column> columns{};
  std::vector<TableRow> rows{};
  std::string emptyText = "No entries";
  friend bool operator==(const Table&, const Table&) = default;
};

/// The title of a section; also a bookmark of the file.
struct Heading {
  std::string text{};
  std::string aside{};  ///< muted, at the right end of the line
  friend bool operator==(const Heading&, const Heading&) = default;
};

struct Paragraph {
  std::string text{};
  bool muted = false;
  friend bool operator==(const Paragraph&, const Paragraph&) = default;
};

/// Labels with their values side by side in columns.
struct FieldGrid {
  std::vector<LabeledText> fields{};
  int columns = 2;
  friend bool operator==(const FieldGrid&, const FieldGrid&) = default;
};

/// A framed entry: title, a word at the right, fields and text. Kept on one page when it fits on one.
struct Card {
  std::string title{};
  std::string aside{};
  std::vector<LabeledText> fields{};
  std::string text{};
  int columns = 2;
  friend bool operator==(const Card&, const Card&) = default;
};

/// The sums at the end of a register, at the right, with remarks at the left of them.
struct Summary {
  struct Line {
    std::string label{};
    std::string value{};
    std::string note{};  ///< muted beside the value, e.g. the same in another unit
    friend bool operator==(const Line&, const Line&) = default;
  };
  std::string title = "SUMMARY";
  std::vector<Line> lines{};
  std::string remarks{};
  friend bool operator==(const Summary&, const Summary&) = default;
};

/// A picture file (JPEG, PNG, WebP as far as the computer reads it). One that cannot be read is named in its frame.
struct Photo {
  std::string path{};
  std::string caption{};
  friend bool operator==(const Photo&, const Photo&) = default;
};

struct PhotoGrid {
  std::vector<Photo> photos{};
  int columns = 3;
  friend bool operator==(const PhotoGrid&, const PhotoGrid&) = default;
};

/// Lines to sign on, side by side at the foot of the last page, e.g. "Master — name, signature, date".
struct Signatures {
  std::vector<std::string> captions{};
  friend bool operator==(const Signatures&, const Signatures&) = default;
};

struct PageBreak {
  friend bool operator==(const PageBreak&, const PageBreak&) = default;
};

using Block = std::variant<Heading, Paragraph, FieldGrid, Table, Card, Summary, PhotoGrid, Signatures, PageBreak>;

struct Document {
  std::string title{};                   ///< of the paper, e.g. "Fuel Bunkering Report"
  std::string vesselName{};              ///< empty for papers of the whole fleet
  std::string period{};                  ///< the days or the voyage covered
  std::vector<std::string> headNotes{};  ///< at the right of the head, e.g. "4 records, newest first"
  std::optional<VesselParticulars> particulars{};
  std::vector<Block> blocks{};
  std::string footer = "Thalvorn Yacht Systems";
  std::string generatedLine{};  ///< time of printing as people read it; see `generatedLine()`
  /// A line of the document's own below the title, which then stands alone there: in place of vessel, period and time
  /// of printing.
  std::string headLine{};
  /// The left of each foot in the document's own words, in place of footer, vessel and time of printing.
  std::string footLine{};
  /// What stands before "   |   Page 2 of 5" at the right of each foot; the title when empty.
  std::string pageLabel{};
  std::string fileName{};       ///< offered for its file, without ending, when it is not title and vessel
  Timestamp generatedAt{};      ///< the dates inside the file: the same document at the same time gives the same bytes
  std::string language = "en";  ///< BCP 47 tag for screen readers
  PaperSize paper = PaperSize::a4;
  Orientation orientation = Orientation::portrait;
  friend bool operator==(const Document&, const Document&) = default;
};

}  // namespace thalvorn
