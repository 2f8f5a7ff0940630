#include "store/preferences.h"

#include <charconv>

#include "base/json.h"

namespace thalvorn {
namespace {

template <class Number>
std::optional<Number> parsed(const std::optional<std::string>& text) {
  Number number{};
  if (!text) return std::nullopt;
  const char* end = text->data() + text->size();
  const auto [stopped, error] = std::from_chars(text->data(), end, number);
  return error == std::errc{} && stopped == end ? std::optional(number) : std::nullopt;
}

}  // namespace

std::string Preferences::text(std::string_view key, std::string_view otherwise) const {
  return value(key).value_or(std::string(otherwise));
}

bool Preferences::flag(std::string_view key, bool otherwise) const {
  const auto stored = value(key);
  if (stored == "true" || stored == "1") return true;
  if (stored == "false" || stored == "0") return false;
  return otherwise;
}

std::optional<std::int64_t> Preferences::integer(std::string_view key) const {
  return parsed<std::int64_t>(value(key));
}

std::optional<double> Preferences::number(std::string_view key) const { return parsed<double>(value(key)); }

std::optional<Uuid> Preferences::id(std::string_view key) const {
  const auto stored = value(key);
  return stored ? Uuid::parse(*stored) : std::nullopt;
}

std::vector<std::string> Preferences::list(std::string_view key) const {
  std::vector<std::string> values;
  const std::string stored = text(key);
  for (std::size_t begin = 0; begin < stored.size();) {
    const std::size_t end = std::min(stored.find(',', begin), stored.size());
    if (end > begin) values.push_back(stored.substr(begin, end - begin));
    begin = end + 1;
  }
  return values;
}

void Preferences::setText(std::string_view key, std::string value) {
  cache_->setPreference(std::string(key), std::move(value));
}

void Preferences::setFlag(std::string_view key, bool value) { setText(key, value ? "true" : "false"); }

void Preferences::setInteger(std::string_view key, std::int64_t value) { setText(key, std::to_string(value)); }

void Preferences::setNumber(std::string_view key, double value) {
  std::string text;
  appendJsonNumber(text, value);
  setText(key, std::move(text));
}

void Preferences::setId(std::string_view key, const std::optional<Uuid>& value) {
  if (value)
    setText(key, value->toString());
  else
    remove(key);
}

void Preferences::setList(std::string_view key, const std::vector<std::string>& values) {
  std::string joined;
  for (const std::string& value : values) joined.append(joined.empty() ? "" : ",").append(value);
  setText(key, std::move(joined));
}

void Preferences::remove(std::string_view key) { cache_->setPreference(std::string(key), std::nullopt); }

}  // namespace thalvorn
