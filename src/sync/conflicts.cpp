#include "sync/conflicts.h"

#include <fmt/format.h>

#include <algorithm>

namespace thalvorn {
namespace {

std::string_view upToSlash(std::string_view text) { return text.substr(0, text.find('/')); }

/// The element that the path names below its list; nil when it names none.
Uuid elementOf(std::string_view path) {
  const auto slash = path.find('/');
  if (slash == std::string_view::npos) return {};
  return Uuid::parse(upToSlash(path.substr(slash + 1))).value_or(Uuid{});
}

/// A whole element is put back even when only one of its fields conflicted: half an element would be nobody's.
template <class V>
void copyElement(const std::vector<V>& from, std::vector<V>& to, const Uuid& id) {
  const auto element = std::ranges::find(from, id, &V::id);
  if (element == from.end()) return;
  const auto place = std::ranges::find(to, id, &V::id);
  if (place == to.end()) {
    to.push_back(*element);
  } else {
    *place = *element;
  }
}

template <class T>
void copyPath(const T& from, T& to, std::string_view path) {
  const Uuid element = elementOf(path);
  boost::mp11::mp_for_each<FieldList<T>>([&](auto field) {
    if (upToSlash(path) != field.name) return;
    auto& target = to.*field.pointer;
    const auto& source = from.*field.pointer;
    using Value = std::remove_cvref_t<decltype(target)>;
    if constexpr (merge_detail::isVector<Value>) {
      if constexpr (merge_detail::Identified<typename Value::value_type>) {
        if (!element.isNil()) {
          copyElement(source, target, element);
          return;
        }
      }
    }
    target = source;
  });
}

/// A value as a person compares it; times by the computer's clock.
template <class V>
std::string shown(const V& value, const Calendar& calendar) {
  if constexpr (std::is_same_v<V, std::string>) {
    return value;
  } else if constexpr (std::is_same_v<V, bool>) {
    return value ? "yes" : "no";
  } else if constexpr (std::is_arithmetic_v<V>) {
    return fmt::format("{}", value);
  } else if constexpr (std::is_same_v<V, Timestamp>) {
    return formatDateTime(calendar.local(value));
  } else if constexpr (requires { value.display(); }) {
    return std::string(value.display());
  } else if constexpr (requires { value.has_value(); }) {
    return value ? shown(*value, calendar) : std::string();
  } else if constexpr (std::is_same_v<V, std::vector<std::string>>) {
    return fmt::format("{}", fmt::join(value, ", "));
  } else if constexpr (merge_detail::isVector<V>) {
    return value.size() == 1 ? "1 entry" : fmt::format("{} entries", value.size());
  } else {
    return "…";
  }
}

template <class T>
std::string label(std::string_view field) {
  if constexpr (HasFacts<T>) {
    if (const FieldFacts* facts = factsOf<T>(field)) return std::string(facts->label);
  }
  return std::string(field);
}

template <class T>
std::vector<ConflictLine> linesOf(const T* current, const T& other, const ConflictNote& note,
                                  const Calendar& calendar) {
  std::vector<ConflictLine> lines;
  boost::mp11::mp_for_each<FieldList<T>>([&](auto field) {
    if (!std::ranges::any_of(note.fields, [&](const std::string& path) { return upToSlash(path) == field.name; }))
      return;
    if constexpr (HasFacts<T>) {
      const FieldFacts* facts = factsOf<T>(field.name);
      if (facts && facts->sensitive) {
        lines.push_back({label<T>(field.name), "••••", "••••"});
        return;
      }
    }
    lines.push_back({label<T>(field.name), current ? shown(current->*field.pointer, calendar) : std::string(),
                     shown(other.*field.pointer, calendar)});
  });
  return lines;
}

/// Calls `visit` with the record that the note keeps, of whichever kind its table holds.
template <class Visitor>
void visitOther(const ConflictNote& note, Visitor visit) {
  forEachKind([&]<class T>(std::type_identity<T>) {
    if (RecordKind<T>::facts.table != note.tableName) return;
    if (auto other = recordFromJson<T>(note.other, JsonFields::full)) visit(*other);
  });
}

}  // namespace

std::vector<ConflictLine> conflictLines(const AppViewModel& model, const ConflictNote& note) {
  std::vector<ConflictLine> lines;
  visitOther(note, [&]<class T>(const T& other) {
    lines = linesOf(model.collection<T>().find(note.recordID), other, note, model.calendar());
  });
  return lines;
}

std::string nameOf(const AppViewModel& model, const ConflictNote& note) {
  std::string name = note.recordName;
  if (name.empty()) visitOther(note, [&]<class T>(const T& other) { name = recordNameOrDay(other, model.calendar()); });
  return name;
}

std::expected<Edit, std::string> takeBack(const AppViewModel& model, const ConflictNote& note) {
  Edit edit{.label = "“" + nameOf(model, note) + "” taken back", .changes = {}, .takesBack = true};
  visitOther(note, [&]<class T>(const T& other) {
    const T* current = model.collection<T>().find(note.recordID);
    if (current) {
      T restored = *current;
      for (const std::string& path : note.fields) copyPath(other, restored, path);
      edit.replace(*current, std::move(restored));
    } else if (note.deleted) {
      edit.add(other);
    }
  });
  if (edit.empty())
    return std::unexpected(
        "This " + std::string(note.deleted
                                  ? "version cannot be read by this program."
                                  : "record is not there any more; there is nothing to put the earlier text into."));
  ConflictNote settled = note;
  settled.settled = true;
  edit.replace(note, std::move(settled));
  return edit;
}

}  // namespace thalvorn
