#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace thalvorn {

/// Binary content held inside a record (the legacy form of photos and files); base64 (RFC 4648) in JSON.
struct Bytes {
  std::vector<std::uint8_t> data;
  friend bool operator==(const Bytes&, const Bytes&) = default;
};

void appendBase64(std::string& out, const Bytes& bytes);
/// Reads base64 with or without padding; empty for other characters.
std::optional<Bytes> parseBase64(std::string_view text);

}  // namespace thalvorn
