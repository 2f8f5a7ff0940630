#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// UTF-8 text character by character.
namespace thalvorn {

/// U+FFFD, which stands for what cannot be read.
inline constexpr char32_t replacementCharacter = 0xFFFD;

struct CodePoint {
  char32_t value = 0;
  std::size_t length = 0;  ///< bytes
  bool malformed = false;  ///< the byte belongs to no character
};

/// The character at the start of `text`, which is not empty. A byte that begins none counts as one
/// `replacementCharacter`.
inline CodePoint decodeUtf8(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const auto tail = [&](std::size_t i) { return i < text.size() && (byte(i) & 0xC0) == 0x80; };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  if (lead >= 0xC2 && lead < 0xE0 && tail(1)) return {char32_t(lead & 0x1F) << 6 | (byte(1) & 0x3F), 2};
  if ((lead & 0xF0) == 0xE0 && tail(1) && tail(2)) {
    const auto value = char32_t(lead & 0x0F) << 12 | char32_t(byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
    if (value >= 0x800 && (value < 0xD800 || value >= 0xE000)) return {value, 3};
  }
  if (lead >= 0xF0 && lead < 0xF5 && tail(1) && tail(2) && tail(3)) {
    const auto value =
        char32_t(lead & 0x07) << 18 | char32_t(byte(1) & 0x3F) << 12 | char32_t(byte(2) & 0x3F) << 6 | (byte(3) & 0x3F);
    if (value >= 0x10000 && value < 0x110000) return {value, 4};
  }
  return {replacementCharacter, 1, true};
}

inline void appendUtf8(std::string& out, char32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (code >> 18));
    out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

inline bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const auto code = decodeUtf8(text);
    if (code.malformed) return false;
    text.remove_prefix(code.length);
  }
  return true;
}

}  // namespace thalvorn
