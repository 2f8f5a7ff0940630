#include "devserver/payload.h"

#include <simdjson.h>

#include <algorithm>

namespace thalvorn::devserver {
namespace {

namespace ondemand = simdjson::ondemand;

// What follows throws simdjson's error; readPayload catches it.

void readThrough(ondemand::value value) {
  switch (value.type().value()) {
    case ondemand::json_type::array:
      for (auto element : value.get_array()) readThrough(element.value());
      break;
    case ondemand::json_type::object:
      for (auto member : value.get_object()) readThrough(member.value().value());
      break;
    case ondemand::json_type::boolean:
      (void)value.get_bool().value();
      break;
    case ondemand::json_type::null:
      if (!bool(value.is_null())) throw simdjson::simdjson_error(simdjson::TAPE_ERROR);
      break;
    case ondemand::json_type::number:
    case ondemand::json_type::string:
      break;  // PostgreSQL judges their range and escapes
  }
}

std::vector<std::string> readObject(ondemand::object object) {
  std::vector<std::string> keys;
  for (auto member : object) {
    std::string key(std::string_view(member.unescaped_key()));
    if (std::ranges::find(keys, key) == keys.end()) keys.push_back(std::move(key));
    readThrough(member.value().value());
  }
  return keys;
}

RestError badBody(std::string message) {
  return {.status = 400, .code = "PGRST102", .message = std::move(message), .details = {}, .hint = {}, .headers = {}};
}

}  // namespace

std::expected<Payload, RestError> readPayload(const std::string& body, bool sameKeys) {
  try {
    ondemand::parser parser;
    const simdjson::padded_string padded(body);
    ondemand::document document = parser.iterate(padded);
    Payload payload;
    if (document.type().value() == ondemand::json_type::object) {
      payload.keys = readObject(document.get_object());
    } else {
      payload.isArray = true;
      bool first = true;
      std::vector<std::string> sorted;
      for (auto element : document.get_array()) {
        auto keys = readObject(element.get_object());
        if (first) payload.keys = keys;
        std::ranges::sort(keys);
        if (sameKeys && !first && keys != sorted) return std::unexpected(badBody("All object keys must match"));
        sorted = std::move(keys);
        first = false;
      }
    }
    if (document.current_location().error() != simdjson::OUT_OF_BOUNDS)
      return std::unexpected(badBody("Empty or invalid json"));
    return payload;
  } catch (const simdjson::simdjson_error&) {
    return std::unexpected(badBody("Empty or invalid json"));
  }
}

}  // namespace thalvorn::devserver
