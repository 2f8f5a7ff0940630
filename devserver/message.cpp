#include "devserver/message.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace thalvorn::devserver {
namespace {

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool isUnreserved(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
         c == '_' || c == '~';
}

}  // namespace

bool sameToken(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) { return lowered(x) == lowered(y); });
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (!text.empty()) {
    const auto end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
    if (text.empty()) parts.emplace_back();
  }
  return parts;
}

std::optional<std::string_view> Request::header(std::string_view name) const {
  const auto found = std::ranges::find_if(headers, [&](const auto& entry) { return sameToken(entry.first, name); });
  if (found == headers.end()) return std::nullopt;
  return found->second;
}

std::string_view Request::headerOr(std::string_view name, std::string_view otherwise) const {
  const auto value = header(name);
  return value ? trimmed(*value) : otherwise;
}

Response& Response::with(std::string name, std::string value) {
  headers.emplace_back(std::move(name), std::move(value));
  return *this;
}

Response jsonResponse(int status, std::string body, std::string type) {
  return {.status = status, .headers = {{"Content-Type", std::move(type)}}, .body = std::move(body)};
}

std::string percentDecoded(std::string_view text, bool plusIsSpace) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    unsigned code = 0;
    if (text[at] == '%' && at + 2 < text.size() &&
        std::from_chars(text.data() + at + 1, text.data() + at + 3, code, 16).ptr == text.data() + at + 3) {
      out += static_cast<char>(code);
      at += 2;
    } else {
      out += plusIsSpace && text[at] == '+' ? ' ' : text[at];
    }
  }
  return out;
}

std::string percentEncoded(std::string_view text, std::string_view keep) {
  std::string out;
  for (const char c : text) {
    if (isUnreserved(c) || keep.find(c) != std::string_view::npos) {
      out += c;
    } else {
      out += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
  }
  return out;
}

std::vector<std::pair<std::string, std::string>> queryPairs(std::string_view query) {
  std::vector<std::pair<std::string, std::string>> pairs;
  for (const auto part : split(query, '&')) {
    if (part.empty()) continue;
    const auto equals = part.find('=');
    const auto value = equals == std::string_view::npos ? std::string_view{} : part.substr(equals + 1);
    pairs.emplace_back(percentDecoded(part.substr(0, equals), true), percentDecoded(value, true));
  }
  return pairs;
}

std::optional<std::string> queryValue(std::string_view query, std::string_view name) {
  for (auto& [key, value] : queryPairs(query)) {
    if (key == name) return std::move(value);
  }
  return std::nullopt;
}

}  // namespace thalvorn::devserver
