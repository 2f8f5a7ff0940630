#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace thalvorn {

/// A UUID (RFC 4122): the identity of every record. Sixteen bytes in network order; its text is lower case.
struct Uuid {
  std::array<std::uint8_t, 16> bytes{};

  /// Reads the 36-character form in either case; empty for anything else.
  static std::optional<Uuid> parse(std::string_view text);
  /// A random (version 4) UUID from the operating system's entropy source.
  static Uuid random();
  /// A name-based (version 5, SHA-1) UUID: the same name in the same space is always the same identity.
  static Uuid named(const Uuid& space, std::string_view name);

  bool isNil() const { return *this == Uuid{}; }
  std::string toString() const;
  /// Writes the 36 characters of the text form to `out`.
  void write(char* out) const;

  friend auto operator<=>(const Uuid&, const Uuid&) = default;
};

}  // namespace thalvorn

template <>
struct std::hash<thalvorn::Uuid> {
  std::size_t operator()(const thalvorn::Uuid& id) const noexcept {
    std::uint64_t high = 0;
    std::uint64_t low = 0;
    std::memcpy(&high, id.bytes.data(), sizeof high);
    std::memcpy(&low, id.bytes.data() + sizeof high, sizeof low);
    return static_cast<std::size_t>((high ^ (low * 0x9E3779B97F4A7C15ULL)) * 0xFF51AFD7ED558CCDULL);
  }
};
