#include "reports/typesetter.h"

#include <QGlyphRun>
#include <QPaintEngine>
#include <QPainter>
#include <QRawFont>
#include <QScopeGuard>
#include <QTextBoundaryFinder>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

#include "base/utf8.h"

namespace thalvorn {
namespace {

using paper::Letters;
using paper::TextStyle;

/// Size in pixels at which shaped text is measured; unhinted advances scale to any other.
constexpr double referenceSize = 100;
/// Side of an emoji's picture, and where its baseline is.
constexpr int pictureSize = 128;
constexpr double pictureBaseline = 0.8;
/// Wider than any line, so that a line already wrapped is not broken again.
constexpr double unlimited = 1e6;

/// Combining marks, joiners and direction marks: characters that act on their neighbours.
bool actsOnNeighbours(char32_t code) {
  return (code >= 0x300 && code < 0x370) || (code >= 0x200B && code < 0x2010) || (code >= 0x2028 && code < 0x202F) ||
         (code >= 0x2060 && code < 0x2070);
}

bool breaksAfter(char32_t code) {
  return code == ' ' || code == '-' || code == '/' || code == '|' || code == 0x2013 || code == 0x2014;
}

QString toQString(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

/// Bytes of the UTF-8 `text` that make `units` UTF-16 units.
std::size_t bytesOf(std::string_view text, qsizetype units) {
  std::size_t bytes = 0;
  while (units > 0 && bytes < text.size()) {
    const auto code = decodeUtf8(text.substr(bytes));
    units -= code.value >= 0x10000 ? 2 : 1;
    bytes += code.length;
  }
  return bytes;
}

/// The text with a blank one em wide in place of each emoji, unit for unit: the toolkit is not sure how wide they are.
template <class Parts>
QString withBlanks(QString text, const Parts& emojis) {
  constexpr QChar emSpace(0x2003);
  constexpr QChar noWidth(0x200B);
  for (const auto& emoji : emojis) {
    text[emoji.at] = emSpace;
    for (int i = 1; i < emoji.length; ++i) text[emoji.at + i] = noWidth;
  }
  return text;
}

bool isAccent(char32_t code) { return code >= 0x300 && code < 0x370; }

QTextOption leftAligned() {
  QTextOption option;
  option.setAlignment(Qt::AlignLeft | Qt::AlignAbsolute);
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  option.setTextDirection(Qt::LayoutDirectionAuto);
  return option;
}

}  // namespace

Typesetter::Typesetter(const QString& language) {
  for (const bool heavy : {false, true}) {
    fonts_[heavy] = paper::font(heavy, language);
    QFont bundled = fonts_[heavy];
    bundled.setFamilies({bundled.families().constFirst()});
    bundled.setPixelSize(static_cast<int>(referenceSize));
    const QRawFont raw = QRawFont::fromFont(bundled);
    auto& advances = advances_[heavy];
    advances.assign(tableSize, -1);
    glyphs_[heavy].assign(tableSize, 0);
    QString characters;
    for (std::size_t code = 0x20; code < tableSize; ++code) characters += QChar(static_cast<char16_t>(code));
    const auto glyphs = raw.glyphIndexesForString(characters);
    const auto widths = raw.advancesForGlyphIndexes(glyphs, QRawFont::SeparateAdvances | QRawFont::UseDesignMetrics);
    for (std::size_t code = 0x20; code < tableSize; ++code) {
      const auto i = static_cast<qsizetype>(code - 0x20);
      if (glyphs.size() == characters.size() && glyphs[i] != 0 && !actsOnNeighbours(static_cast<char32_t>(code))) {
        advances[code] = static_cast<float>(widths[i].x() / referenceSize);
        glyphs_[heavy][code] = glyphs[i];
      }
    }
  }
  QFont emoji(paper::emojiFamily());
  emoji.setPixelSize(static_cast<int>(referenceSize));
  emojiFont_ = QRawFont::fromFont(emoji);
  blankFont_ = QFont(paper::blankFamily());
  blankFont_.setStyleStrategy(QFont::PreferNoShaping);
}

QFont Typesetter::fontAt(TextStyle style, double pointSize) const {
  QFont font = fonts_[paper::facts(style).heavy];
  font.setPointSizeF(pointSize);
  return font;
}

Typesetter::Measured Typesetter::measure(std::string_view text, TextStyle style) const {
  const auto& facts = paper::facts(style);
  const auto& advances = advances_[facts.heavy];
  double em = 0;
  for (std::size_t at = 0; at < text.size();) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const auto code = lead < 0x80 ? CodePoint{lead, 1} : decodeUtf8(text.substr(at));
    if (code.value >= tableSize || advances[code.value] < 0) return {};
    em += static_cast<double>(advances[code.value]);
    at += code.length;
  }
  return {em * facts.size, true};
}

double Typesetter::width(std::string_view text, TextStyle style) const {
  const auto measured = measure(text, style);
  if (measured.plain) return measured.width;
  std::vector<TextLine> lines;
  wrap(text, style, unlimited, lines);
  double widest = 0;
  for (const auto& line : lines) widest = std::max(widest, line.width);
  return widest;
}

void Typesetter::wrap(std::string_view text, TextStyle style, double width, std::vector<TextLine>& lines) const {
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    auto paragraph = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    while (paragraph.ends_with('\r') || paragraph.ends_with(' ')) paragraph.remove_suffix(1);
    const auto measured = measure(paragraph, style);
    if (measured.plain && measured.width <= width) {
      lines.push_back({paragraph, measured.width, true});
    } else if (measured.plain) {
      wrapPlain(paragraph, style, width, lines);
    } else {
      wrapShaped(paragraph, style, width, lines);
    }
  }
}

void Typesetter::wrapPlain(std::string_view text, TextStyle style, double width, std::vector<TextLine>& lines) const {
  const auto& facts = paper::facts(style);
  const auto& advances = advances_[facts.heavy];
  const auto put = [&](std::string_view line) {
    while (line.ends_with(' ')) line.remove_suffix(1);
    if (!line.empty()) lines.push_back({line, measure(line, style).width, true});
  };
  std::size_t start = 0;
  std::size_t lastBreak = 0;  // where a next line could start
  double used = 0;
  double usedAtBreak = 0;
  for (std::size_t at = 0; at < text.size();) {
    const auto code = decodeUtf8(text.substr(at));
    const double advance = static_cast<double>(advances[code.value]) * facts.size;
    if (used + advance > width && code.value != ' ' && at > start) {
      const bool wordFits = lastBreak > start;
      const std::size_t next = wordFits ? lastBreak : at;
      put(text.substr(start, next - start));
      used -= wordFits ? usedAtBreak : used;
      start = next;
      usedAtBreak = 0;
    }
    used += advance;
    at += code.length;
    if (breaksAfter(code.value)) {
      lastBreak = at;
      usedAtBreak = used;
    }
  }
  put(text.substr(start));
}

void Typesetter::wrapShaped(std::string_view text, TextStyle style, double width, std::vector<TextLine>& lines) const {
  const auto& facts = paper::facts(style);
  const double scale = facts.size / referenceSize;
  QFont font = fonts_[facts.heavy];
  font.setPixelSize(static_cast<int>(referenceSize));
  const QString whole = toQString(text);
  QTextLayout layout(withBlanks(whole, emojiIn(whole)), font);
  layout.setTextOption(leftAligned());
  setFonts(layout, stretchesIn(layout.text()));
  layout.beginLayout();
  for (auto line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width / scale);
    const auto from = bytesOf(text, line.textStart());
    auto part = text.substr(from, bytesOf(text.substr(from), line.textLength()));
    while (part.ends_with(' ')) part.remove_suffix(1);
    lines.push_back({part, line.naturalTextWidth() * scale, false});
  }
  layout.endLayout();
  noteMissing(layout);
}

void Typesetter::noteMissing(const QTextLayout& layout) const {
  const auto text = layout.text();
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
  for (qsizetype from = 0, to = finder.toNextBoundary(); to > from; from = to, to = finder.toNextBoundary()) {
    const auto character = text.mid(from, to - from);
    const auto code = character.toUcs4().front();
    const bool bundled = code < tableSize && advances_[0][code] >= 0;
    if (bundled || QChar::isSpace(code) || QChar::category(code) == QChar::Other_Format || seen_.contains(character))
      continue;
    seen_.insert(character);
    // A letter that is not shaped and that no typeface has leaves no glyph at all.
    const auto runs = layout.glyphRuns(static_cast<int>(from), static_cast<int>(to - from));
    const auto isDrawn = [](const QGlyphRun& run) {
      return !run.glyphIndexes().isEmpty() && !run.glyphIndexes().contains(0);
    };
    if (runs.isEmpty() || !std::ranges::all_of(runs, isDrawn)) missing_ += character;
  }
}

void Typesetter::draw(QPainter& painter, QPointF at, std::string_view text, bool plain, TextStyle style) {
  if (style != pendingStyle_ || !plain) flush(painter);
  if (!plain) return drawShaped(painter, at, toQString(text), style);
  pendingStyle_ = style;
  const auto& facts = paper::facts(style);
  const auto& glyphs = glyphs_[facts.heavy];
  const auto& advances = advances_[facts.heavy];
  const double size = facts.size * painter.device()->logicalDpiY() / 72;
  while (!text.empty()) {
    const auto code = decodeUtf8(text);
    pendingGlyphs_.push_back(glyphs[code.value]);
    pendingPlaces_.push_back(at);
    at.rx() += static_cast<double>(advances[code.value]) * size;
    text.remove_prefix(code.length);
  }
}

void Typesetter::flush(QPainter& painter) {
  if (pendingGlyphs_.empty()) return;
  if (const int dpi = painter.device()->logicalDpiY(); dpi != plainFontsDpi_) {
    plainFonts_ = {};
    plainFontsDpi_ = dpi;
  }
  auto& font = plainFonts_[static_cast<std::size_t>(pendingStyle_)];
  if (!font.isValid()) {
    QFont bundled = fontAt(pendingStyle_, paper::facts(pendingStyle_).size);
    bundled.setFamilies({bundled.families().constFirst()});
    font = QRawFont::fromFont(QFont(bundled, painter.device()));
  }
  QGlyphRun run;
  run.setRawFont(font);
  run.setRawData(pendingGlyphs_.data(), pendingPlaces_.data(), static_cast<int>(pendingGlyphs_.size()));
  painter.drawGlyphRun({}, run);
  pendingGlyphs_.clear();
  pendingPlaces_.clear();
}

std::vector<Typesetter::Part> Typesetter::emojiIn(const QString& text) const {
  std::vector<Part> found;
  if (emojiFont_.familyName() != paper::emojiFamily()) return found;
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
  for (qsizetype from = 0, to = finder.toNextBoundary(); to > from; from = to, to = finder.toNextBoundary()) {
    const bool pair = text[from].isHighSurrogate() && from + 1 < to;
    const char32_t code = pair ? QChar::surrogateToUcs4(text[from], text[from + 1]) : text[from].unicode();
    const bool bundled = code < tableSize && advances_[0][code] >= 0;
    const bool asPicture = text.mid(from, to - from).contains(QChar(0xFE0F));
    if ((asPicture || (code > 0x203B && !bundled)) && emojiFont_.supportsCharacter(code)) {
      found.push_back({static_cast<int>(from), static_cast<int>(to - from)});
    }
  }
  return found;
}

std::vector<Typesetter::Stretch> Typesetter::stretchesIn(const QString& text) {
  std::vector<Stretch> stretches;
  int word = 0;  // where the current word begins; each is a stretch of its own at least
  for (int at = 0; at < text.size(); ++at) {
    const char32_t code = text[at].unicode();
    const auto* script = paper::scriptOf(code);
    auto letters = script ? script->letters : Letters::alone;
    if (code == ' ') word = at + 1;
    auto* last = stretches.empty() ? nullptr : &stretches.back();
    if (last && isAccent(code) && word < at) last->letters = Letters::stacked;  // they shape the word they are in
    if (last && !script) {
      const bool inWord = word < at && (last->script ? actsOnNeighbours(code) : last->letters != Letters::alone);
      // To the toolkit blanks and digits behind a script are of that script, and it looks for one typeface for all.
      const bool behind = last->script && last->script->letters == Letters::stacked && !QChar::isLetter(code);
      if (inWord || behind) script = last->script;
      if (inWord) letters = last->letters;
    }
    if (last && word != at && last->script == script && last->letters == letters) {
      ++last->length;
    } else {
      stretches.push_back({{at, 1}, script, letters});
    }
  }
  return stretches;
}

void Typesetter::setFonts(QTextLayout& layout, const std::vector<Stretch>& stretches) {
  // Letters that stand alone are not shaped: each glyph then reads as the letter it is.
  QFont font = layout.font();
  font.setStyleStrategy(QFont::PreferNoShaping);
  layout.setFont(font);
  QList<QTextLayout::FormatRange> formats;
  for (const auto& stretch : stretches) {
    if (!stretch.script && stretch.letters == Letters::alone) continue;
    QTextCharFormat own;
    if (stretch.letters != Letters::alone) own.setFontStyleStrategy(QFont::PreferDefault);
    if (stretch.script) own.setFontFamilies({QString::fromLatin1(stretch.script->family)});
    formats.append({stretch.at, stretch.length, own});
  }
  layout.setFormats(formats);
}

void Typesetter::drawShaped(QPainter& painter, QPointF at, const QString& text, TextStyle style) {
  const bool onPaper = painter.paintEngine()->type() == QPaintEngine::Pdf;
  // The few dots of a screen would round each advance: there the text is set large and drawn smaller.
  QFont font = fontAt(style, paper::facts(style).size);
  if (onPaper) {
    font = QFont(font, painter.device());
  } else {
    const double scale = paper::facts(style).size * painter.device()->logicalDpiY() / 72 / referenceSize;
    font.setPixelSize(static_cast<int>(referenceSize));
    painter.save();
    painter.translate(at);
    painter.scale(scale, scale);
    at = {};
  }
  const auto restored = qScopeGuard([&] {
    if (!onPaper) painter.restore();
  });

  const auto emojis = emojiIn(text);
  QTextLayout layout(withBlanks(text, emojis), font);
  layout.setTextOption(leftAligned());
  const auto stretches = stretchesIn(layout.text());
  setFonts(layout, stretches);
  layout.beginLayout();
  auto line = layout.createLine();
  if (line.isValid()) line.setLineWidth(unlimited);
  layout.endLayout();
  if (!line.isValid()) return;
  const QPointF origin(at.x(), at.y() - line.ascent());
  for (const auto& stretch : stretches) {
    auto runs = layout.glyphRuns(stretch.at, stretch.length);
    runs.removeIf([](const QGlyphRun& run) { return run.positions().isEmpty(); });
    // They come in an order of chance.
    std::ranges::sort(runs, {}, [](const QGlyphRun& run) { return run.positions().constFirst().x(); });
    const bool marked = onPaper && stretch.letters == Letters::stacked && drawBlank(painter, at, wordBegin(), 1);
    for (const auto& run : runs) painter.drawGlyphRun(origin, run);
    if (!marked) continue;
    drawBlank(painter, at, wordEnd(), 1);
    words_.push_back(text.mid(stretch.at, stretch.length).normalized(QString::NormalizationForm_C));
  }
  for (const auto& emoji : emojis) {
    const double begin = line.cursorToX(emoji.at);
    const double end = line.cursorToX(emoji.at + emoji.length);
    drawEmoji(painter, QPointF(at.x() + std::min(begin, end), at.y()), text.mid(emoji.at, emoji.length),
              std::abs(end - begin));
  }
}

void Typesetter::drawEmoji(QPainter& painter, QPointF baseline, const QString& emoji, double em) {
  constexpr double size = 1.15;  // of the blank left for it: the picture has a margin of its own
  painter.drawImage(QRectF(baseline.x() - (size - 1) / 2 * em, baseline.y() - 0.93 * em, size * em, size * em),
                    pictureOf(emoji));
  if (painter.paintEngine()->type() == QPaintEngine::Pdf) drawBlank(painter, baseline, emoji, em);
}

bool Typesetter::drawBlank(QPainter& painter, QPointF baseline, const QString& text, double em) {
  const auto known = std::ranges::find(blanksDrawn_, text);
  const auto index = known - blanksDrawn_.begin();
  const bool mark = text == wordBegin() || text == wordEnd();
  if (index >= (mark ? paper::blankCount : paper::blankCount - 2)) return false;
  if (known == blanksDrawn_.end()) blanksDrawn_.push_back(text);
  blankFont_.setPixelSize(std::max(1, static_cast<int>(em)));
  painter.setFont(blankFont_);
  painter.drawText(baseline, QString(QChar(static_cast<char16_t>(paper::firstBlank + index))));
  return true;
}

const QImage& Typesetter::pictureOf(const QString& emoji) {
  auto found = emojiPictures_.find(emoji);
  if (found != emojiPictures_.end()) return *found;
  QImage picture(pictureSize, pictureSize, QImage::Format_ARGB32_Premultiplied);
  picture.fill(0);
  QFont font(paper::emojiFamily());
  // These typefaces are 1.25 em wide.
  font.setPixelSize(static_cast<int>(pictureSize * pictureBaseline));
  QPainter painter(&picture);
  painter.setFont(font);
  painter.drawText(QPointF(0, pictureSize * pictureBaseline), emoji);
  painter.end();
  return *emojiPictures_.insert(emoji, picture);
}

}  // namespace thalvorn
