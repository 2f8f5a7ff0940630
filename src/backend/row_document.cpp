#include "backend/row_document.h"

#include <simdjson.h>

namespace thalvorn::row_detail {
namespace {

/// The length of the well-formed UTF-8 sequence at the start of `text`; 0 when there is none.
std::size_t sequenceLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead < 0x80   ? 1
                             : lead < 0xC2 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
  return length != 0 && length <= text.size() && simdjson::validate_utf8(text.substr(0, length)) ? length : 0;
}

}  // namespace

void cleanText(std::string& text) {
  if (text.find('\0') == std::string::npos && simdjson::validate_utf8(text.data(), text.size())) return;
  std::string clean;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t length = sequenceLength(rest);
    if (length == 0)
      clean += "\uFFFD";
    else if (rest.front() != '\0')
      clean += rest.substr(0, length);
    rest.remove_prefix(std::max<std::size_t>(length, 1));
  }
  text = std::move(clean);
}

std::string_view memberOf(const std::vector<RawMember>& members, std::string_view name) {
  const auto found = std::ranges::find(members, name, &RawMember::name);
  return found == members.end() ? std::string_view() : found->value;
}

std::vector<RawMember> membersOf(std::string_view json) {
  if (json.empty()) return {};
  return splitJsonObject(json).value_or(std::vector<RawMember>{});
}

std::vector<RawElement> elementsOf(std::string_view json) {
  if (json.empty()) return {};
  return splitJsonList(json).value_or(std::vector<RawElement>{});
}

}  // namespace thalvorn::row_detail
