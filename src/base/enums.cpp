#include "base/enums.h"

#include <deque>
#include <mutex>
#include <string>
#include <unordered_map>

namespace thalvorn {
namespace {

struct Interner {
  std::mutex mutex;
  std::deque<std::string> texts;
  std::unordered_map<std::string_view, std::uint32_t> index;
};

Interner& interner() {
  static Interner table;
  return table;
}

}  // namespace

std::uint32_t internText(std::string_view text) {
  Interner& table = interner();
  const std::scoped_lock lock(table.mutex);
  if (const auto known = table.index.find(text); known != table.index.end()) return known->second;
  const auto position = static_cast<std::uint32_t>(table.texts.size());
  const std::string& stored = table.texts.emplace_back(text);
  table.index.emplace(stored, position);
  return position;
}

std::string_view internedText(std::uint32_t index) {
  Interner& table = interner();
  const std::scoped_lock lock(table.mutex);
  return table.texts.at(index);
}

}  // namespace thalvorn
