#include "reports/paper_style.h"

#include <QFontDatabase>
#include <algorithm>
#include <array>

namespace thalvorn::paper {
namespace {

constexpr QRgb ink = 0xFF142231;
constexpr QRgb mute = 0xFF5D6B7A;
constexpr QRgb line = 0xFFD3DAE2;

constexpr std::array<StyleFacts, textStyleCount> styles = {{
    {15, 19, true, ink},       // title
    {8.4, 12, false, mute},    // subtitle
    {10.5, 14, true, ink},     // heading
    {9.2, 13, true, ink},      // cardTitle
    {7.1, 10, true, mute},     // columnHead
    {8.4, 11.6, false, ink},   // body
    {8.4, 11.6, true, ink},    // strong
    {8.4, 11.6, false, mute},  // muted
    {7.4, 10.4, false, mute},  // caption
    {7.4, 10.4, true, ink},    // captionStrong
}};

/// In the order of their characters.
constexpr Script scripts[] = {
    {0x0530, 0x058F, "Noto Sans Armenian", Letters::alone},
    {0x0590, 0x05FF, "Noto Sans Hebrew", Letters::joined},
    {0x0600, 0x06FF, "Noto Sans Arabic", Letters::joined},
    {0x0700, 0x074F, "Noto Sans Syriac", Letters::joined},
    {0x0750, 0x077F, "Noto Sans Arabic", Letters::joined},
    {0x0780, 0x07BF, "Noto Sans Thaana", Letters::joined},
    {0x07C0, 0x07FF, "Noto Sans NKo", Letters::joined},
    {0x08A0, 0x08FF, "Noto Sans Arabic", Letters::joined},
    {0x0900, 0x097F, "Noto Sans Devanagari", Letters::stacked},
    {0x0980, 0x09FF, "Noto Sans Bengali", Letters::stacked},
    {0x0A00, 0x0A7F, "Noto Sans Gurmukhi", Letters::stacked},
    {0x0A80, 0x0AFF, "Noto Sans Gujarati", Letters::stacked},
    {0x0B00, 0x0B7F, "Noto Sans Oriya", Letters::stacked},
    {0x0B80, 0x0BFF, "Noto Sans Tamil", Letters::stacked},
    {0x0C00, 0x0C7F, "Noto Sans Telugu", Letters::stacked},
    {0x0C80, 0x0CFF, "Noto Sans Kannada", Letters::stacked},
    {0x0D00, 0x0D7F, "Noto Sans Malayalam", Letters::stacked},
    {0x0D80, 0x0DFF, "Noto Sans Sinhala", Letters::stacked},
    {0x0E00, 0x0E7F, "Noto Sans Thai", Letters::stacked},
    {0x0E80, 0x0EFF, "Noto Sans Lao", Letters::stacked},
    {0x0F00, 0x0FFF, "Noto Serif Tibetan", Letters::stacked},
    {0x1000, 0x109F, "Noto Sans Myanmar", Letters::stacked},
    {0x10A0, 0x10FF, "Noto Sans Georgian", Letters::alone},
    {0x1200, 0x139F, "Noto Sans Ethiopic", Letters::alone},
    {0x13A0, 0x13FF, "Noto Sans Cherokee", Letters::alone},
    {0x1400, 0x167F, "Noto Sans Canadian Aboriginal", Letters::alone},
    {0x1780, 0x17FF, "Noto Sans Khmer", Letters::stacked},
    {0x1800, 0x18AF, "Noto Sans Mongolian", Letters::stacked},
    {0xFB1D, 0xFB4F, "Noto Sans Hebrew", Letters::joined},
    {0xFB50, 0xFDFF, "Noto Sans Arabic", Letters::joined},
    {0xFE70, 0xFEFE, "Noto Sans Arabic", Letters::joined},
};

constexpr std::array<LineFacts, 4> lines = {{{0.6, line}, {0.9, ink}, {0.75, line}, {2.2, ink}}};

}  // namespace

const StyleFacts& facts(TextStyle style) { return styles[static_cast<std::size_t>(style)]; }

const LineFacts& facts(LineStyle style) { return lines[static_cast<std::size_t>(style)]; }

bool loadFonts() {
  static const bool loaded = [] {
    for (const auto* file : {":/fonts/Inter-Regular.ttf", ":/fonts/Inter-SemiBold.ttf", ":/fonts/Blank.ttf"}) {
      if (QFontDatabase::addApplicationFont(QString::fromLatin1(file)) < 0) return false;
    }
    return true;
  }();
  return loaded;
}

QFont font(bool heavy, const QString& language) {
  const QString han = language.startsWith(QLatin1String("ja"))   ? QStringLiteral("Noto Sans CJK JP")
                      : language.startsWith(QLatin1String("ko")) ? QStringLiteral("Noto Sans CJK KR")
                      : language.startsWith(QLatin1String("zh-Hant")) || language == QLatin1String("zh-TW")
                          ? QStringLiteral("Noto Sans CJK TC")
                          : QStringLiteral("Noto Sans CJK SC");
  QFont result;
  result.setFamilies({QStringLiteral("Inter"), QStringLiteral("Noto Sans"), han, QStringLiteral("Noto Sans Symbols2"),
                      QStringLiteral("Noto Sans Symbols"), QStringLiteral("Noto Sans Math")});
  result.setWeight(heavy ? QFont::DemiBold : QFont::Normal);
  result.setHintingPreference(QFont::PreferNoHinting);
  return result;
}

const Script* scriptOf(char32_t code) {
  const auto* after = std::ranges::upper_bound(scripts, code, {}, &Script::first);
  return after != scripts && code <= (after - 1)->last ? after - 1 : nullptr;
}

QString blankFamily() { return QStringLiteral("Thalvorn Blank"); }

QString emojiFamily() { return QStringLiteral("Noto Color Emoji"); }

}  // namespace thalvorn::paper
