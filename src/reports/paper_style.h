#pragma once

#include <QFont>
#include <QRgb>
#include <QString>
#include <QStringList>
#include <cstdint>

/// How paper looks: the one home of its type, colours and measures. All lengths are in points (1/72 inch).
namespace thalvorn::paper {

enum class TextStyle : std::uint8_t {
  title,
  subtitle,
  heading,
  cardTitle,
  columnHead,
  body,
  strong,
  muted,
  caption,
  captionStrong,
};
inline constexpr int textStyleCount = 10;

struct StyleFacts {
  double size;
  double lineHeight;
  bool heavy;  ///< the heavier of the two weights in use
  QRgb colour;
};

const StyleFacts& facts(TextStyle style);

enum class LineStyle : std::uint8_t { hairline, rule, frame, mark };

struct LineFacts {
  double width;
  QRgb colour;
};

const LineFacts& facts(LineStyle style);

inline constexpr double sideMargin = 36;
inline constexpr double topMargin = 32;
inline constexpr double bottomMargin = 24;
inline constexpr double footHeight = 22;
inline constexpr double cellPadding = 6;   ///< left and right in a table's cell
inline constexpr double rowPadding = 4.6;  ///< above and below the text of a row
inline constexpr double blockGap = 14;     ///< between blocks
inline constexpr double framePadding = 9;  ///< inside a frame
inline constexpr double tickBoxSize = 7.5;
inline constexpr double tickBoxIndent = 13;     ///< from a tick box's left edge to the text after it
inline constexpr double photoResolution = 200;  ///< dots per inch kept of a photo

/// Loads the bundled typefaces once; false when one is missing from the program.
bool loadFonts();

/// The font of a weight for scripts whose letters stand alone: the bundled typeface first, then named ones, the Han
/// characters in the form of the document's language.
QFont font(bool heavy, const QString& language);

/// What letters do in a word.
enum class Letters : std::uint8_t {
  alone,    ///< each is drawn by itself
  joined,   ///< each has a form for its place in the word; the glyphs still tell the letters
  stacked,  ///< they merge, stack or change places: a file that shows the word says what it reads
};

/// A script that the bundled typeface lacks, and the typeface that has it.
struct Script {
  char32_t first = 0;  ///< of its characters
  char32_t last = 0;
  const char* family = nullptr;
  Letters letters = Letters::alone;
};

/// The script of a character; none for one that `font` writes.
const Script* scriptOf(char32_t code);

/// The typeface of emoji, as pictures: a printer's file cannot hold its glyphs, and the toolkit, asked to try, loses
/// them for the screen too.
QString emojiFamily();

/// A bundled typeface whose glyphs from `firstBlank` on are one em wide and show nothing: what stands in the text for
/// pictures.
QString blankFamily();
inline constexpr char16_t firstBlank = 0xA000;
inline constexpr int blankCount = 1024;

}  // namespace thalvorn::paper
