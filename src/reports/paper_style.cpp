#include "reports/paper_style.h"

#include <QFontDatabase>
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
  result.setFamilies({QStringLiteral("Inter"), QStringLiteral("Noto Sans"), QStringLiteral("Noto Sans Arabic"),
                      QStringLiteral("Noto Sans Hebrew"), han, QStringLiteral("Noto Sans Symbols2"),
                      QStringLiteral("Noto Sans Symbols"), QStringLiteral("Noto Sans Math")});
  result.setWeight(heavy ? QFont::DemiBold : QFont::Normal);
  result.setHintingPreference(QFont::PreferNoHinting);
  return result;
}

QString blankFamily() { return QStringLiteral("Thalvorn Blank"); }

QString emojiFamily() { return QStringLiteral("Noto Color Emoji"); }

}  // namespace thalvorn::paper
