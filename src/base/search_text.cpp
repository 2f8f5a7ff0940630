#include "base/search_text.h"

#include <algorithm>
#include <cstdint>

namespace thalvorn {
namespace {

/// The base letters of U+00C0 to U+017F. Capitals stand for two letters (see `kPairs`), the star for no letter.
constexpr std::string_view kLatin =
    "aaaaaaAceeeeiiiidnooooo*ouuuuyTSaaaaaaAceeeeiiiidnooooo*ouuuuyTy"
    "aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiiiJJjjkkklllllll"
    "lllnnnnnnnnnooooooOOrrrrrrssssssssttttttuuuuuuuuuuuuwwyyyzzzzzzs";

struct Pair {
  char mark;
  std::string_view letters;
};
constexpr Pair kPairs[] = {{'A', "ae"}, {'S', "ss"}, {'T', "th"}, {'O', "oe"}, {'J', "ij"}};

/// The lower-case letter without its accent of a Greek or Cyrillic character; others unchanged.
constexpr std::uint32_t foldedLetter(std::uint32_t c) {
  struct Range {
    std::uint32_t first, last, lower;
  };
  constexpr Range ranges[] = {{0x0391, 0x03A9, 0x03B1}, {0x0410, 0x042F, 0x0430}, {0x0400, 0x040F, 0x0450}};
  for (const Range& range : ranges)
    if (c >= range.first && c <= range.last) c += range.lower - range.first;
  struct Letter {
    std::uint32_t accented, plain;
  };
  constexpr Letter letters[] = {
      {0x0386, 0x03B1}, {0x0388, 0x03B5}, {0x0389, 0x03B7}, {0x038A, 0x03B9}, {0x038C, 0x03BF}, {0x038E, 0x03C5},
      {0x038F, 0x03C9}, {0x0390, 0x03B9}, {0x03AA, 0x03B9}, {0x03AB, 0x03C5}, {0x03AC, 0x03B1}, {0x03AD, 0x03B5},
      {0x03AE, 0x03B7}, {0x03AF, 0x03B9}, {0x03B0, 0x03C5}, {0x03C2, 0x03C3}, {0x03CA, 0x03B9}, {0x03CB, 0x03C5},
      {0x03CC, 0x03BF}, {0x03CD, 0x03C5}, {0x03CE, 0x03C9}, {0x0450, 0x0435}, {0x0451, 0x0435}, {0x0439, 0x0438}};
  for (const Letter& letter : letters)
    if (c == letter.accented) return letter.plain;
  return c;
}

/// Folds a character of two bytes, which is where all alphabets with case and accents that we fold stand.
char* foldTwoBytes(unsigned char lead, unsigned char next, char* out) {
  std::uint32_t c = (lead & 0x1FU) << 6 | (next & 0x3FU);
  if (c >= 0x0300 && c <= 0x036F) return out;  // a combining accent
  if (c >= 0x00C0 && c < 0x00C0 + kLatin.size()) {
    const char base = kLatin[c - 0x00C0];
    if (base >= 'a') {
      *out++ = base;
      return out;
    }
    for (const Pair& pair : kPairs)
      if (pair.mark == base) return std::copy(pair.letters.begin(), pair.letters.end(), out);
  }
  c = foldedLetter(c);
  *out++ = static_cast<char>(0xC0 | c >> 6);
  *out++ = static_cast<char>(0x80 | (c & 0x3F));
  return out;
}

char lowerAscii(char c) { return static_cast<char>(c + (c >= 'A' && c <= 'Z') * ('a' - 'A')); }

}  // namespace

void appendFolded(std::string& out, std::string_view text) {
  const std::size_t before = out.size();
  out.resize(before + text.size());
  char* to = out.data() + before;
  unsigned char seen = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    seen |= static_cast<unsigned char>(text[i]);
    to[i] = lowerAscii(text[i]);
  }
  if (seen < 0x80) return;

  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto lead = static_cast<unsigned char>(text[i]);
    const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0U;
    if (lead >= 0xC2 && lead <= 0xDF && (next & 0xC0U) == 0x80U) {
      to = foldTwoBytes(lead, static_cast<unsigned char>(next), to);
      ++i;
    } else {
      *to++ = lowerAscii(text[i]);
    }
  }
  out.resize(static_cast<std::size_t>(to - out.data()));
}

std::string foldText(std::string_view text) {
  std::string folded;
  appendFolded(folded, text);
  return folded;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) { return lowerAscii(x) == lowerAscii(y); });
}

SearchWords::SearchWords(std::string_view query) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::string folded = foldText(query);
  for (std::size_t begin = folded.find_first_not_of(blanks); begin != std::string::npos;) {
    const std::size_t end = std::min(folded.find_first_of(blanks, begin), folded.size());
    words_.push_back(folded.substr(begin, end - begin));
    begin = folded.find_first_not_of(blanks, end);
  }
}

bool SearchWords::matches(std::initializer_list<std::string_view> texts) {
  if (words_.empty()) return true;
  folded_.clear();
  for (const std::string_view text : texts) {
    appendFolded(folded_, text);
    folded_ += '\n';
  }
  return std::ranges::all_of(words_, [&](const std::string& word) { return folded_.contains(word); });
}

}  // namespace thalvorn
