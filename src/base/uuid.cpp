#include "base/uuid.h"

#include <algorithm>
#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/random_generator.hpp>

namespace thalvorn {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

constexpr bool isDashPosition(std::size_t i) { return i == 8 || i == 13 || i == 18 || i == 23; }

Uuid fromBoost(const boost::uuids::uuid& value) {
  Uuid id;
  std::copy(value.begin(), value.end(), id.bytes.begin());
  return id;
}

}  // namespace

std::optional<Uuid> Uuid::parse(std::string_view text) {
  if (text.size() != 36) return std::nullopt;
  Uuid id;
  std::size_t byte = 0;
  for (std::size_t i = 0; i < 36;) {
    if (isDashPosition(i)) {
      if (text[i++] != '-') return std::nullopt;
      continue;
    }
    const int high = hexValue(text[i]);
    const int low = hexValue(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    id.bytes[byte++] = static_cast<std::uint8_t>(high << 4 | low);
    i += 2;
  }
  return id;
}

Uuid Uuid::random() {
  thread_local boost::uuids::random_generator generate;
  return fromBoost(generate());
}

Uuid Uuid::named(const Uuid& space, std::string_view name) {
  boost::uuids::uuid spaceValue;
  std::copy(space.bytes.begin(), space.bytes.end(), spaceValue.begin());
  boost::uuids::name_generator_sha1 generate(spaceValue);
  return fromBoost(generate(name.data(), name.size()));
}

void Uuid::write(char* out) const {
  std::size_t i = 0;
  for (const std::uint8_t byte : bytes) {
    if (isDashPosition(i)) out[i++] = '-';
    out[i++] = kHexDigits[byte >> 4];
    out[i++] = kHexDigits[byte & 15];
  }
}

std::string Uuid::toString() const {
  std::string text(36, '\0');
  write(text.data());
  return text;
}

}  // namespace thalvorn
