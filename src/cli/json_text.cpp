#include "cli/json_text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "base/json.h"

namespace thalvorn::cli {

JsonObject::JsonObject(std::string object) : out_(std::move(object)) { out_.pop_back(); }

void JsonObject::key(std::string_view name) {
  if (out_.size() > 1) out_.push_back(',');
  appendJsonString(out_, name);
  out_.push_back(':');
}

JsonObject& JsonObject::text(std::string_view name, std::string_view value) {
  key(name);
  appendJsonString(out_, value);
  return *this;
}

JsonObject& JsonObject::number(std::string_view name, double value) {
  key(name);
  appendJsonNumber(out_, value);
  return *this;
}

JsonObject& JsonObject::count(std::string_view name, std::size_t value) {
  key(name);
  out_ += std::to_string(value);
  return *this;
}

JsonObject& JsonObject::flag(std::string_view name, bool value) {
  key(name);
  out_ += value ? "true" : "false";
  return *this;
}

JsonObject& JsonObject::json(std::string_view name, std::string_view value) {
  key(name);
  out_ += value;
  return *this;
}

std::string JsonObject::take() {
  out_.push_back('}');
  return std::move(out_);
}

std::string jsonList(const std::vector<std::string>& elements) { return fmt::format("[{}]", fmt::join(elements, ",")); }

std::string jsonLines(const std::vector<std::string>& elements) {
  return elements.empty() ? "[]\n" : fmt::format("[\n{}\n]\n", fmt::join(elements, ",\n"));
}

}  // namespace thalvorn::cli
