#include "base/json.h"

#include <charconv>
#include <cmath>

#include "base/json_codec.h"

namespace thalvorn {
namespace {

constexpr std::string_view kBlanks = " \n\r\t";

constexpr auto kNeedsEscape = [] {
  std::array<bool, 256> table{};
  for (std::size_t c = 0; c < 0x20; ++c) table[c] = true;
  table['"'] = true;
  table['\\'] = true;
  return table;
}();

void appendEscape(std::string& out, char c) {
  constexpr std::string_view digits = "0123456789abcdef";
  switch (c) {
    case '"':
      out += "\\\"";
      return;
    case '\\':
      out += "\\\\";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default:
      out += "\\u00";
      out.push_back(digits[static_cast<unsigned char>(c) >> 4]);
      out.push_back(digits[static_cast<unsigned char>(c) & 15]);
  }
}

// Whether between two elements of a list there is a comma and blanks, and nothing else that would be lost.
bool isSeparator(std::string_view between, bool first) {
  const auto at = between.find_first_not_of(kBlanks);
  if (first) return at == std::string_view::npos;
  return at != std::string_view::npos && between[at] == ',' &&
         between.find_first_not_of(kBlanks, at + 1) == std::string_view::npos;
}

}  // namespace

namespace json_detail {

Scratch& scratch() {
  thread_local Scratch mine;
  return mine;
}

}  // namespace json_detail

void appendJsonString(std::string& out, std::string_view text) {
  out.push_back('"');
  std::size_t clean = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!kNeedsEscape[static_cast<unsigned char>(text[i])]) continue;
    out.append(text, clean, i - clean);
    appendEscape(out, text[i]);
    clean = i + 1;
  }
  out.append(text, clean);
  out.push_back('"');
}

void appendJsonNumber(std::string& out, double number) {
  if (!std::isfinite(number)) {
    out += "null";
    return;
  }
  char buffer[32];
  // Whole readings such as 4812 and intervals are by far the commonest; they need no digit search.
  if (std::abs(number) < 1e15 && number == std::floor(number) && !(number == 0 && std::signbit(number))) {
    out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, static_cast<std::int64_t>(number)).ptr);
    return;
  }
  out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr);
}

std::expected<std::vector<RawElement>, JsonError> splitJsonList(std::string_view json) {
  namespace ondemand = simdjson::ondemand;
  json_detail::Scratch& scratch = json_detail::scratch();
  const auto padded = scratch.pad(json);
  thread_local ondemand::parser idParser;
  ondemand::document document;
  ondemand::array array;
  if (scratch.parser.iterate(padded).get(document)) return std::unexpected(JsonError{"", "is not JSON"});
  if (document.get_array().get(array)) return std::unexpected(JsonError{"", "is not a list"});
  std::vector<RawElement> elements;
  std::size_t readTo = json.find('[') + 1;
  for (auto element : array) {
    ondemand::value value;
    if (element.get(value)) return std::unexpected(JsonError{"", "is not well-formed"});
    RawElement raw;
    std::string_view bytes;
    ondemand::object object;
    ondemand::array list;
    if (!value.get_array().get(list)) {
      if (list.raw_json().get(bytes)) return std::unexpected(JsonError{"", "is not well-formed"});
    } else if (!value.get_object().get(object)) {
      if (object.raw_json().get(bytes)) return std::unexpected(JsonError{"", "is not well-formed"});
      ondemand::document elementDocument;
      std::string_view id;
      const simdjson::padded_string_view view(bytes.data(), bytes.size(), bytes.size() + simdjson::SIMDJSON_PADDING);
      if (!idParser.iterate(view).get(elementDocument) &&
          !elementDocument.find_field_unordered("id").get_string().get(id))
        raw.id.assign(id);
    } else {
      bytes = value.raw_json_token();
    }
    bytes = bytes.substr(0, bytes.find_last_not_of(kBlanks) + 1);
    const auto start = static_cast<std::size_t>(bytes.data() - padded.data());
    if (start < readTo || !isSeparator(json.substr(readTo, start - readTo), elements.empty()))
      return std::unexpected(JsonError{"", "is not well-formed"});
    readTo = start + bytes.size();
    raw.bytes = json.substr(start, bytes.size());
    elements.push_back(std::move(raw));
  }
  if (!json_detail::atEnd(document)) return std::unexpected(JsonError{"", "has text after the list"});
  if (json.substr(readTo).find_first_not_of(kBlanks) != json.rfind(']') - readTo)
    return std::unexpected(JsonError{"", "is not well-formed"});
  return elements;
}

std::expected<std::vector<RawMember>, JsonError> splitJsonObject(std::string_view json) {
  namespace ondemand = simdjson::ondemand;
  json_detail::Scratch& scratch = json_detail::scratch();
  const auto padded = scratch.pad(json);
  ondemand::document document;
  ondemand::object object;
  if (scratch.parser.iterate(padded).get(document)) return std::unexpected(JsonError{"", "is not JSON"});
  if (document.get_object().get(object)) return std::unexpected(JsonError{"", "is not an object"});
  std::vector<RawMember> members;
  for (auto member : object) {
    std::string_view name;
    ondemand::value value;
    if (member.unescaped_key().get(name) || member.value().get(value))
      return std::unexpected(JsonError{"", "is not well-formed"});
    RawMember& raw = members.emplace_back(std::string(name));
    std::string_view bytes;
    ondemand::object nested;
    ondemand::array list;
    if (!value.get_array().get(list)) {
      if (list.raw_json().get(bytes)) return std::unexpected(JsonError{"", "is not well-formed"});
    } else if (!value.get_object().get(nested)) {
      if (nested.raw_json().get(bytes)) return std::unexpected(JsonError{"", "is not well-formed"});
    } else {
      bytes = value.raw_json_token();
    }
    bytes = bytes.substr(0, bytes.find_last_not_of(kBlanks) + 1);
    raw.value = json.substr(static_cast<std::size_t>(bytes.data() - padded.data()), bytes.size());
  }
  if (!json_detail::atEnd(document)) return std::unexpected(JsonError{"", "has text after the object"});
  return members;
}

}  // namespace thalvorn
