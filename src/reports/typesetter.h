#pragma once

#include <QFont>
#include <QHash>
#include <QImage>
#include <QPointF>
#include <QRawFont>
#include <QSet>
#include <QString>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "reports/paper_style.h"

class QPainter;
class QTextLayout;

namespace thalvorn {

/// A line of wrapped text: a view into the text it was cut from.
struct TextLine {
  std::string_view text;
  double width = 0;    ///< points
  bool plain = false;  ///< every character stands alone in the bundled typeface: no shaping, no other script
};

/// Measures, wraps and draws text. Plain text, nearly all of a register, is measured by a table of advances and drawn
/// without shaping, so that its letters stay searchable one by one; any other text goes through the text layout of the
/// toolkit. One instance serves one rendering on one thread.
class Typesetter {
 public:
  explicit Typesetter(const QString& language);

  /// Width in points of the widest line of a text.
  double width(std::string_view text, paper::TextStyle style) const;

  /// Appends the lines of `text` at most `width` points wide to `lines`: broken after blanks, hyphens and slashes, a
  /// longer word between characters, never cut. An empty text gives no line.
  void wrap(std::string_view text, paper::TextStyle style, double width, std::vector<TextLine>& lines) const;

  /// Draws a line with its baseline starting at `at`, in device units and the painter's pen. Plain lines of one style
  /// are gathered and appear with the next of another style, or with `flush`: before the pen changes.
  void draw(QPainter& painter, QPointF at, std::string_view text, bool plain, paper::TextStyle style);
  void flush(QPainter& painter);

  /// What the blank glyphs drawn so far stand for, in order of their first occurrence, in which the file numbers them:
  /// the texts of emoji, and the marks around words.
  const std::vector<QString>& blanksDrawn() const { return blanksDrawn_; }
  static QString wordBegin() { return QString(QChar(0xFDD0)); }
  static QString wordEnd() { return QString(QChar(0xFDD1)); }

  /// The words of stacked letters drawn since the last call, each between a `wordBegin` and a `wordEnd`: their glyphs
  /// do not tell what they read.
  std::vector<QString> takeWords() { return std::exchange(words_, {}); }

  /// The characters measured so far that no typeface of this computer has: they would be blank on paper.
  const QString& missing() const { return missing_; }

 private:
  static constexpr std::size_t tableSize = 0x2600;  // what the bundled typeface covers lies below

  struct Measured {
    double width = 0;
    bool plain = false;
  };
  Measured measure(std::string_view text, paper::TextStyle style) const;
  void wrapPlain(std::string_view text, paper::TextStyle style, double width, std::vector<TextLine>& lines) const;
  void wrapShaped(std::string_view text, paper::TextStyle style, double width, std::vector<TextLine>& lines) const;
  void noteMissing(const QTextLayout& layout) const;
  void drawShaped(QPainter& painter, QPointF at, const QString& text, paper::TextStyle style);

  /// A part of a text: how many UTF-16 units at which place.
  struct Part {
    int at = 0;
    int length = 0;
  };
  std::vector<Part> emojiIn(const QString& text) const;
  void drawEmoji(QPainter& painter, QPointF baseline, const QString& emoji, double em);
  /// Draws the blank glyph that stands for `text`; false when there are no more of them.
  bool drawBlank(QPainter& painter, QPointF baseline, const QString& text, double em);
  const QImage& pictureOf(const QString& emoji);

  /// Part of a text in a typeface of its own.
  struct Stretch : Part {
    const paper::Script* script = nullptr;
    paper::Letters letters = paper::Letters::alone;
  };
  static std::vector<Stretch> stretchesIn(const QString& text);
  /// Gives each stretch of a layout's text the typeface of its script, the layout's own font elsewhere.
  static void setFonts(QTextLayout& layout, const std::vector<Stretch>& stretches);

  QFont fontAt(paper::TextStyle style, double pointSize) const;

  std::array<std::vector<float>, 2> advances_;  // by weight, in em; negative: not plain
  std::array<QFont, 2> fonts_;                  // by weight
  std::array<std::vector<quint32>, 2> glyphs_;
  std::array<QRawFont, paper::textStyleCount> plainFonts_;
  int plainFontsDpi_ = 0;
  paper::TextStyle pendingStyle_ = paper::TextStyle::body;
  std::vector<quint32> pendingGlyphs_;
  std::vector<QPointF> pendingPlaces_;
  QRawFont emojiFont_;
  QHash<QString, QImage> emojiPictures_;
  QFont blankFont_;
  std::vector<QString> blanksDrawn_;
  std::vector<QString> words_;
  mutable QSet<QString> seen_;  // characters that were looked for
  mutable QString missing_;
};

}  // namespace thalvorn
