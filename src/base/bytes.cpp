#include "base/bytes.h"

#include <array>

namespace thalvorn {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr auto kValues = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(-1);
  for (std::size_t i = 0; i < kAlphabet.size(); ++i)
    values[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::int8_t>(i);
  return values;
}();

}  // namespace

void appendBase64(std::string& out, const Bytes& bytes) {
  const auto& data = bytes.data;
  for (std::size_t i = 0; i < data.size(); i += 3) {
    const std::size_t left = data.size() - i;
    const std::uint32_t group = static_cast<std::uint32_t>(data[i]) << 16 |
                                (left > 1 ? static_cast<std::uint32_t>(data[i + 1]) << 8 : 0U) |
                                (left > 2 ? static_cast<std::uint32_t>(data[i + 2]) : 0U);
    out.push_back(kAlphabet[group >> 18]);
    out.push_back(kAlphabet[group >> 12 & 63]);
    out.push_back(left > 1 ? kAlphabet[group >> 6 & 63] : '=');
    out.push_back(left > 2 ? kAlphabet[group & 63] : '=');
  }
}

std::optional<Bytes> parseBase64(std::string_view text) {
  while (text.ends_with('=')) text.remove_suffix(1);
  if (text.size() % 4 == 1) return std::nullopt;
  Bytes bytes;
  bytes.data.reserve(text.size() * 3 / 4);
  std::uint32_t group = 0;
  int bits = 0;
  for (const char c : text) {
    const auto value = kValues[static_cast<unsigned char>(c)];
    if (value < 0) return std::nullopt;
    group = group << 6 | static_cast<std::uint32_t>(value);
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      bytes.data.push_back(static_cast<std::uint8_t>(group >> bits & 0xFF));
    }
  }
  return bytes;
}

}  // namespace thalvorn
