#include "devserver/preferences.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <initializer_list>

namespace thalvorn::devserver {

Preferences Preferences::read(const Request& request) {
  Preferences out;
  const auto keepOneOf = [](std::optional<std::string>& kept, std::string_view value,
                            std::initializer_list<std::string_view> known) {
    if (std::ranges::find(known, value) == known.end()) return false;
    if (!kept) kept = value;
    return true;
  };
  for (const auto& [name, line] : request.headers) {
    if (!sameToken(name, "Prefer")) continue;
    for (const auto part : split(line, ',')) {
      const auto preference = trimmed(part);
      const auto equals = std::min(preference.find('='), preference.size());
      const auto key = trimmed(preference.substr(0, equals));
      const auto value = trimmed(preference.substr(std::min(equals + 1, preference.size())));
      bool known = false;
      if (key == "resolution") {
        known = keepOneOf(out.resolution, value, {"merge-duplicates", "ignore-duplicates"});
      } else if (key == "missing") {
        known = keepOneOf(out.missing, value, {"default", "null"});
      } else if (key == "return") {
        known = keepOneOf(out.returning, value, {"representation", "minimal", "headers-only"});
      } else if (key == "count") {
        known = keepOneOf(out.count, value, {"exact", "planned", "estimated"});
      } else if (key == "handling") {
        known = keepOneOf(out.handling, value, {"strict", "lenient"});
      } else if (key == "timezone") {
        known = true;
        if (!out.timezone) out.timezone = value;
      } else if (key == "max-affected") {
        long long number = 0;
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
        known = error == std::errc() && end == value.data() + value.size();
        if (known && !out.maxAffected) out.maxAffected = number;
      } else if (key == "tx") {
        known = value == "commit" || value == "rollback";  // understood, but a client may not choose
      }
      if (!known && !preference.empty()) out.unknown.emplace_back(preference);
    }
  }
  return out;
}

std::string Preferences::applied() const {
  std::string out;
  const auto add = [&](std::string_view key, const std::optional<std::string>& value) {
    if (value) out += fmt::format("{}{}={}", out.empty() ? "" : ", ", key, *value);
  };
  add("resolution", resolution);
  add("missing", missing);
  add("return", returning);
  add("count", count);
  add("handling", handling);
  add("timezone", timezone);
  if (maxAffected && strict()) add("max-affected", std::to_string(*maxAffected));
  return out;
}

}  // namespace thalvorn::devserver
