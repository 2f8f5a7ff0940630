#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace thalvorn::cli {

/// Writes the JSON objects that wrap records, member by member.
class JsonObject {
 public:
  JsonObject() = default;
  /// Goes on with an object that is there already, such as a record in its own form.
  explicit JsonObject(std::string object);

  JsonObject& text(std::string_view key, std::string_view value);
  JsonObject& number(std::string_view key, double value);
  JsonObject& count(std::string_view key, std::size_t value);
  JsonObject& flag(std::string_view key, bool value);
  /// A value that is JSON already.
  JsonObject& json(std::string_view key, std::string_view value);

  std::string take();

 private:
  void key(std::string_view name);

  std::string out_ = "{";
};

/// A JSON list on one line.
std::string jsonList(const std::vector<std::string>& elements);

/// A JSON list with one element per line, so that tools that work by line can use it.
std::string jsonLines(const std::vector<std::string>& elements);

}  // namespace thalvorn::cli
