#pragma once

// The JSON documents inside text columns: a field's or a record's JSON form, in which keys of a newer program survive.

#include <algorithm>
#include <string>
#include <string_view>
#include <type_traits>

#include "base/json_codec.h"

namespace thalvorn::row_detail {

/// Takes out NUL characters and mends what is no valid UTF-8: the database refuses a whole request for one of them.
void cleanText(std::string& text);
inline void cleanText(std::optional<std::string>& text) {
  if (text) cleanText(*text);
}
template <class T>
void cleanText(T&) {}

/// The value of a member of a split object; empty when it is not there.
std::string_view memberOf(const std::vector<RawMember>& members, std::string_view name);

/// The members of a JSON object, none when the text is something else.
std::vector<RawMember> membersOf(std::string_view json);

/// The elements of a JSON list, none when the text is something else.
std::vector<RawElement> elementsOf(std::string_view json);

template <class T>
concept Identified = DescribedRecord<T> && requires(const T& record) {
  { record.id } -> std::convertible_to<const Uuid&>;
};

/// Appends the JSON form of a value. Keys in `stored`, the document that this one replaces, which the description does
/// not know are taken over, in list elements of the same identity too. With `fields` only these are written, and the
/// absent ones among them as null.
template <class T>
void appendDocument(std::string& out, const T& value, std::string_view stored,
                    std::optional<FieldSet> fields = std::nullopt) {
  if constexpr (json_detail::isOptional<T>) {
    if (value)
      appendDocument(out, *value, stored);
    else
      out += "null";
  } else if constexpr (json_detail::isVector<T>) {
    if constexpr (Identified<typename T::value_type>) {
      const auto elements = elementsOf(stored);
      out.push_back('[');
      for (const auto& element : value) {
        if (out.back() != '[') out.push_back(',');
        const auto same =
            std::ranges::find_if(elements, [&](const RawElement& raw) { return Uuid::parse(raw.id) == element.id; });
        appendDocument(out, element, same == elements.end() ? std::string_view() : same->bytes);
      }
      out.push_back(']');
    } else {
      json_detail::encode(out, value);
    }
  } else if constexpr (DescribedRecord<T>) {
    const auto members = membersOf(stored);
    bool first = true;
    const auto separate = [&] {
      out.push_back(first ? '{' : ',');
      first = false;
    };
    boost::mp11::mp_for_each<boost::mp11::mp_iota_c<fieldCount<T>>>([&](auto i) {
      constexpr auto field = boost::mp11::mp_at<FieldList<T>, decltype(i)>{};
      if (fields && !(*fields >> i & 1)) return;
      const auto& held = value.*field.pointer;
      if constexpr (json_detail::isOptional<std::remove_cvref_t<decltype(held)>>)
        if (!held && !fields) return;
      separate();
      out += json_detail::keys<T>[i].member();
      appendDocument(out, held, memberOf(members, json_detail::keys<T>[i].name()));
    });
    for (const RawMember& member : members) {
      const bool known =
          std::ranges::any_of(json_detail::keys<T>, [&](const auto& key) { return key.name() == member.name; });
      if (known) continue;
      separate();
      appendJsonString(out, member.name);
      out.push_back(':');
      out += member.value;
    }
    out += first ? "{}" : "}";
  } else {
    json_detail::encode(out, value);
  }
}

/// Reads a document into a value; only `fields` of a record where given. After an error `out` is as it was.
template <class T>
bool readDocument(std::string_view json, T& out, JsonError& error, std::optional<FieldSet> fields = std::nullopt) {
  namespace ondemand = simdjson::ondemand;
  json_detail::Scratch& mine = json_detail::scratch();
  T read = out;
  ondemand::document document;
  ondemand::value value;
  if (mine.parser.iterate(mine.pad(json)).get(document) || document.get_value().get(value))
    return json_detail::fail(error, "is not JSON");
  if constexpr (DescribedRecord<T>) {
    ondemand::object object;
    FieldSet seen = 0;
    if (value.get_object().get(object)) return json_detail::fail(error, "is not an object");
    if (!json_detail::decodeRecord(object, read, error, fields.value_or(~FieldSet{0}), seen)) return false;
  } else {
    if (!json_detail::decode(value, read, error)) return false;
  }
  if (!json_detail::atEnd(document)) return json_detail::fail(error, "has text after its end");
  out = std::move(read);
  return true;
}

}  // namespace thalvorn::row_detail
