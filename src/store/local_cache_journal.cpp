#include "store/local_cache_journal.h"

#include "base/json_codec.h"

namespace thalvorn::cache_detail {
namespace {

namespace ondemand = simdjson::ondemand;

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && (text.back() == ' ' || text.back() == '\n' || text.back() == '\r' || text.back() == '\t'))
    text.remove_suffix(1);
  return text;
}

bool decodeChange(ondemand::object object, EntryChange& change) {
  bool named = false;
  bool identified = false;
  for (auto field : object) {
    std::string_view key;
    std::string_view text;
    ondemand::value value;
    if (field.unescaped_key().get(key) || field.value().get(value)) return false;
    if (key == "suffix") {
      if (value.get_string().get(text)) return false;
      change.suffix.assign(text);
      named = true;
    } else if (key == "id") {
      if (value.get_string().get(text)) return false;
      const auto id = Uuid::parse(text);
      if (!id) return false;
      change.id = *id;
      identified = true;
    } else if (key == "sent") {
      if (value.get_bool().get(change.sent)) return false;
    } else if (key == "revived") {
      if (value.get_bool().get(change.revived)) return false;
    } else if (key == "before" || key == "after") {
      std::string& record = key == "before" ? change.before : change.after;
      ondemand::object content;
      if (value.get_object().get(content) || content.raw_json().get(text)) return false;
      record.assign(trimmed(text));
    }
  }
  return named && identified;
}

}  // namespace

std::string encodeChanges(const std::vector<EntryChange>& changes) {
  std::string out = "[";
  for (const EntryChange& change : changes) {
    if (out.size() > 1) out += ',';
    out += "{\"suffix\":";
    appendJsonString(out, change.suffix);
    out += ",\"id\":\"" + change.id.toString() + '"';
    if (change.sent) out += ",\"sent\":true";
    if (change.revived) out += ",\"revived\":true";
    if (!change.before.empty()) out.append(",\"before\":").append(change.before);
    if (!change.after.empty()) out.append(",\"after\":").append(change.after);
    out += '}';
  }
  out += ']';
  return out;
}

std::optional<std::vector<EntryChange>> decodeChanges(std::string_view json) {
  json_detail::Scratch& scratch = json_detail::scratch();
  ondemand::document document;
  ondemand::array list;
  if (scratch.parser.iterate(scratch.pad(json)).get(document) || document.get_array().get(list)) return std::nullopt;
  std::vector<EntryChange> changes;
  for (auto element : list) {
    ondemand::object object;
    if (element.get_object().get(object) || !decodeChange(object, changes.emplace_back())) return std::nullopt;
  }
  if (!json_detail::atEnd(document)) return std::nullopt;
  return changes;
}

}  // namespace thalvorn::cache_detail
