#pragma once

// The templates behind base/json.h. Include this only in a source file that instantiates codecs
// (THALVORN_JSON_INSTANTIATE) or that converts a record of its own.

#include <simdjson.h>

#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "base/bytes.h"
#include "base/describe.h"
#include "base/enums.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn::json_detail {

namespace ondemand = simdjson::ondemand;

// ---- keys -----------------------------------------------------------------------------------------------------------

struct Key {
  char text[64]{};  // ,"key":
  std::size_t size = 0;
  constexpr std::string_view withComma() const { return {text, size}; }
  constexpr std::string_view member() const { return {text + 1, size - 1}; }
  constexpr std::string_view name() const { return {text + 2, size - 4}; }
};

constexpr bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
constexpr char lower(char c) { return isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c; }

/// "fuelTankGallons" → "fuel_tank_gallons", "vesselID" → "vessel_id", "engineBurnGPH" → "engine_burn_gph": a run of
/// capitals is one word.
constexpr void appendSnakeCase(Key& key, std::string_view name) {
  for (std::size_t i = 0; i < name.size(); ++i) {
    const bool startsWord =
        isUpper(name[i]) && i > 0 && (!isUpper(name[i - 1]) || (i + 1 < name.size() && !isUpper(name[i + 1])));
    if (startsWord) key.text[key.size++] = '_';
    key.text[key.size++] = lower(name[i]);
  }
}

template <class T>
concept HasSnakeCase = requires { JsonForm<T>::snakeCase; };
template <class T>
concept HasExtra = requires { JsonForm<T>::extra; };
template <class T>
concept WritesNulls = requires { JsonForm<T>::nulls; };

template <class T>
inline constexpr auto keys = [] {
  std::array<Key, fieldCount<T>> all{};
  for (std::size_t i = 0; i < all.size(); ++i) {
    Key& key = all[i];
    key.text[key.size++] = ',';
    key.text[key.size++] = '"';
    if constexpr (HasSnakeCase<T>) {
      appendSnakeCase(key, fieldNames<T>[i]);
    } else {
      for (const char c : fieldNames<T>[i]) key.text[key.size++] = c;
    }
    key.text[key.size++] = '"';
    key.text[key.size++] = ':';
  }
  return all;
}();

/// The fields that a form of the record holds.
template <class T>
constexpr FieldSet fieldsOf(JsonFields fields) {
  constexpr FieldSet all = fieldCount<T> == 64 ? ~FieldSet{0} : (FieldSet{1} << fieldCount<T>)-1;
  if constexpr (HasExtra<T>) {
    constexpr FieldSet extra = [] {
      FieldSet set = 0;
      for (const auto name : JsonForm<T>::extra) set |= FieldSet{1} << fieldIndex<T>(name);
      return set;
    }();
    constexpr FieldSet id = fieldSetOf<T>({"id"});
    if (fields == JsonFields::own) return all & ~extra;
    if (fields == JsonFields::extra) return extra | id;
  }
  return all;
}

// ---- decoding -------------------------------------------------------------------------------------------------------

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;
template <class T>
inline constexpr bool isVector = false;
template <class T>
inline constexpr bool isVector<std::vector<T>> = true;
template <class T>
inline constexpr bool isMap = false;
template <class K, class V>
inline constexpr bool isMap<std::map<K, V>> = true;

inline bool fail(JsonError& error, std::string_view reason) {
  error.reason = reason;
  return false;
}

/// Reads a value that nothing wants to its end. simdjson's own skipping passes over broken nesting, and with it over
/// the elements that follow; here it is an error.
inline bool readPast(ondemand::value value, int depth = 0) {
  ondemand::json_type type{};
  if (depth > 64 || value.type().get(type)) return false;
  switch (type) {
    case ondemand::json_type::array: {
      ondemand::array array;
      if (value.get_array().get(array)) return false;
      for (auto element : array) {
        ondemand::value item;
        if (element.get(item) || !readPast(item, depth + 1)) return false;
      }
      return true;
    }
    case ondemand::json_type::object: {
      ondemand::object object;
      if (value.get_object().get(object)) return false;
      for (auto member : object) {
        ondemand::value item;
        if (member.value().get(item) || !readPast(item, depth + 1)) return false;
      }
      return true;
    }
    case ondemand::json_type::string:
      return !value.get_string().error();
    case ondemand::json_type::number:
      return !value.get_double().error();
    case ondemand::json_type::boolean:
      return !value.get_bool().error();
    case ondemand::json_type::null:
      return !value.is_null().error();
  }
  return false;
}

template <class T>
bool decodeRecord(ondemand::object object, T& out, JsonError& error, FieldSet fields, FieldSet& seen);

template <class T>
bool decode(ondemand::value value, T& out, JsonError& error) {
  if constexpr (isOptional<T>) {
    bool null = false;
    if (value.is_null().get(null)) return fail(error, "is not well-formed");
    if (null) {
      out.reset();
      return true;
    }
    return decode(value, out.emplace(), error);
  } else if constexpr (std::is_same_v<T, std::string>) {
    std::string_view text;
    if (value.get_string().get(text)) return fail(error, "is not text");
    out.assign(text);
    return true;
  } else if constexpr (std::is_same_v<T, bool>) {
    if (value.get_bool().get(out)) return fail(error, "is neither true nor false");
    return true;
  } else if constexpr (std::floating_point<T>) {
    double number = 0;
    std::string_view text;
    // JSON has no number for these; databases write them as texts.
    if (!value.get_string().get(text) && (text == "NaN" || text == "Infinity" || text == "-Infinity"))
      number = std::numeric_limits<double>::quiet_NaN();
    else if (value.get_double().get(number))
      return fail(error, "is not a number");
    out = number;
    return true;
  } else if constexpr (std::integral<T>) {
    std::int64_t number = 0;
    if (value.get_int64().get(number)) {
      double real = 0;
      if (value.get_double().get(real)) return fail(error, "is not a whole number");
      if (std::abs(real) > 9.0e15 || real != std::floor(real)) return fail(error, "is not a whole number");
      number = static_cast<std::int64_t>(real);
    }
    if (number < std::numeric_limits<T>::min() || number > std::numeric_limits<T>::max())
      return fail(error, "is out of range");
    out = static_cast<T>(number);
    return true;
  } else if constexpr (std::is_same_v<T, Uuid>) {
    std::string_view text;
    if (value.get_string().get(text)) return fail(error, "is not an identifier");
    const auto id = Uuid::parse(text);
    if (!id) return fail(error, "is not an identifier");
    out = *id;
    return true;
  } else if constexpr (std::is_same_v<T, Timestamp>) {
    std::string_view text;
    if (value.get_string().get(text)) return fail(error, "is not a date");
    const auto time = parseTimestamp(text);
    if (!time) return fail(error, "is not a date");
    out = *time;
    return true;
  } else if constexpr (isChoice<T>) {
    std::string_view text;
    if (value.get_string().get(text)) return fail(error, "is not text");
    out = T::fromRaw(text);
    return true;
  } else if constexpr (std::is_same_v<T, Bytes>) {
    std::string_view text;
    if (value.get_string().get(text)) return fail(error, "is not base64");
    auto bytes = parseBase64(text);
    if (!bytes) return fail(error, "is not base64");
    out = std::move(*bytes);
    return true;
  } else if constexpr (isVector<T>) {
    ondemand::array array;
    if (value.get_array().get(array)) return fail(error, "is not a list");
    out.clear();
    for (auto element : array) {
      ondemand::value item;
      if (element.get(item)) return fail(error, "is not well-formed");
      if (!decode(item, out.emplace_back(), error)) return false;
    }
    return true;
  } else if constexpr (isMap<T>) {
    ondemand::object object;
    if (value.get_object().get(object)) return fail(error, "is not an object");
    out.clear();
    for (auto member : object) {
      std::string_view text;
      if (member.unescaped_key().get(text)) return fail(error, "is not well-formed");
      typename T::key_type key;
      if constexpr (isChoice<typename T::key_type>) {
        key = T::key_type::fromRaw(text);
      } else {
        key = typename T::key_type(text);
      }
      ondemand::value item;
      if (member.value().get(item)) return fail(error, "is not well-formed");
      if (!decode(item, out[key], error)) return false;
    }
    return true;
  } else {
    static_assert(DescribedRecord<T>, "a field type without a JSON form");
    ondemand::object object;
    if (value.get_object().get(object)) return fail(error, "is not an object");
    FieldSet seen = 0;
    return decodeRecord(object, out, error, ~FieldSet{0}, seen);
  }
}

template <class T>
bool decodeRecord(ondemand::object object, T& out, JsonError& error, FieldSet fields, FieldSet& seen) {
  std::size_t expected = 0;
  for (auto member : object) {
    simdjson::ondemand::raw_json_string key;
    ondemand::value value;
    if (member.key().get(key) || member.value().get(value)) return fail(error, "is not well-formed");
    // Members mostly come in field order, so the next field is tried before the others.
    std::size_t index = expected;
    if (index >= fieldCount<T> || !key.unsafe_is_equal(keys<T>[index].name())) {
      index = 0;
      while (index < fieldCount<T> && !key.unsafe_is_equal(keys<T>[index].name())) ++index;
    }
    if (index < fieldCount<T>) expected = index + 1;
    if (index == fieldCount<T> || !(fields >> index & 1)) {
      if (!readPast(value)) return fail(error, "is not well-formed");
      continue;
    }
    bool decoded = true;
    boost::mp11::mp_with_index<fieldCount<T>>(index, [&](auto i) {
      constexpr auto field = boost::mp11::mp_at<FieldList<T>, decltype(i)>{};
      using Value = std::remove_cvref_t<decltype(out.*field.pointer)>;
      if constexpr (!isOptional<Value>) {
        bool null = false;
        if (value.is_null().get(null)) {
          decoded = fail(error, "is not well-formed");
          return;
        }
        if (null) return;
      }
      seen |= FieldSet{1} << i;
      decoded = decode(value, out.*field.pointer, error);
    });
    if (!decoded) {
      const std::string_view name = keys<T>[index].name();
      error.field = error.field.empty() ? std::string(name) : std::string(name) + "." + error.field;
      return false;
    }
  }
  return true;
}

template <class T>
bool requireIdentity(FieldSet seen, JsonError& error) {
  for (const std::string_view name : {"id", "vesselID"}) {
    const std::size_t index = fieldIndex<T>(name);
    if (index == fieldCount<T> || seen >> index & 1) continue;
    constexpr bool accountWide = requires { JsonForm<T>::vesselOptional; };
    if (name == "vesselID" && accountWide) continue;
    error = {std::string(keys<T>[index].name()), "is missing"};
    return false;
  }
  return true;
}

/// The parser of this thread and a scratch buffer with the padding that simdjson reads past the end.
struct Scratch {
  ondemand::parser parser;
  std::string padded;
  simdjson::padded_string_view pad(std::string_view json) {
    padded.reserve(json.size() + simdjson::SIMDJSON_PADDING);
    padded.assign(json);
    return simdjson::padded_string_view(padded.data(), padded.size(), padded.capacity());
  }
};
Scratch& scratch();

inline bool atEnd(ondemand::document& document) {
  return document.current_location().error() == simdjson::OUT_OF_BOUNDS;
}

template <class T>
bool decodeWhole(std::string_view json, T& out, JsonError& error, JsonFields fields, FieldSet& seen) {
  Scratch& mine = scratch();
  ondemand::document document;
  ondemand::object object;
  if (mine.parser.iterate(mine.pad(json)).get(document)) return fail(error, "is not JSON");
  if (document.get_object().get(object)) return fail(error, "is not an object");
  if (!decodeRecord(object, out, error, fieldsOf<T>(fields), seen)) return false;
  if (!atEnd(document)) return fail(error, "has text after the object");
  return true;
}

// ---- encoding -------------------------------------------------------------------------------------------------------

template <class T>
void encodeRecord(std::string& out, const T& record, FieldSet fields);

template <class T>
void encode(std::string& out, const T& value) {
  if constexpr (std::is_same_v<T, std::string>) {
    appendJsonString(out, value);
  } else if constexpr (std::is_same_v<T, bool>) {
    out += value ? "true" : "false";
  } else if constexpr (std::floating_point<T>) {
    appendJsonNumber(out, value);
  } else if constexpr (std::integral<T>) {
    out += std::to_string(value);
  } else if constexpr (std::is_same_v<T, Uuid>) {
    const std::size_t at = out.size();
    out.resize(at + 38);
    out[at] = '"';
    value.write(out.data() + at + 1);
    out[at + 37] = '"';
  } else if constexpr (std::is_same_v<T, Timestamp>) {
    out.push_back('"');
    appendTimestamp(out, value);
    out.push_back('"');
  } else if constexpr (isChoice<T>) {
    appendJsonString(out, value.raw());
  } else if constexpr (std::is_same_v<T, Bytes>) {
    out.push_back('"');
    appendBase64(out, value);
    out.push_back('"');
  } else if constexpr (isVector<T>) {
    out.push_back('[');
    bool first = true;
    for (const auto& element : value) {
      if (!first) out.push_back(',');
      first = false;
      encode(out, element);
    }
    out.push_back(']');
  } else if constexpr (isMap<T>) {
    out.push_back('{');
    bool first = true;
    for (const auto& [key, element] : value) {
      if (!first) out.push_back(',');
      first = false;
      if constexpr (isChoice<std::remove_cvref_t<decltype(key)>>) {
        appendJsonString(out, key.raw());
      } else {
        appendJsonString(out, key);
      }
      out.push_back(':');
      encode(out, element);
    }
    out.push_back('}');
  } else {
    static_assert(DescribedRecord<T>, "a field type without a JSON form");
    encodeRecord(out, value, ~FieldSet{0});
  }
}

template <class T>
void encodeRecord(std::string& out, const T& record, FieldSet fields) {
  out.push_back('{');
  bool first = true;
  boost::mp11::mp_for_each<boost::mp11::mp_iota_c<fieldCount<T>>>([&](auto i) {
    if (!(fields >> i & 1)) return;
    constexpr auto field = boost::mp11::mp_at<FieldList<T>, decltype(i)>{};
    const auto& value = record.*field.pointer;
    const auto key = [&] {
      out.append(first ? keys<T>[i].member() : keys<T>[i].withComma());
      first = false;
    };
    if constexpr (isOptional<std::remove_cvref_t<decltype(value)>>) {
      if (!value) {
        if constexpr (WritesNulls<T>) {
          key();
          out += "null";
        }
        return;
      }
      key();
      encode(out, *value);
    } else {
      key();
      encode(out, value);
    }
  });
  out.push_back('}');
}

}  // namespace thalvorn::json_detail

namespace thalvorn {

template <class T>
std::expected<T, JsonError> recordFromJson(std::string_view json, JsonFields fields) {
  T record{};
  JsonError error;
  FieldSet seen = 0;
  if (!json_detail::decodeWhole(json, record, error, fields, seen) || !json_detail::requireIdentity<T>(seen, error))
    return std::unexpected(std::move(error));
  return record;
}

template <class T>
std::expected<void, JsonError> updateFromJson(T& record, std::string_view json, JsonFields fields) {
  JsonError error;
  FieldSet seen = 0;
  if (!json_detail::decodeWhole(json, record, error, fields, seen)) return std::unexpected(std::move(error));
  return {};
}

template <class T>
std::expected<DecodedList<T>, JsonError> listFromJson(std::string_view json, JsonFields fields) {
  namespace ondemand = simdjson::ondemand;
  const FieldSet wanted = json_detail::fieldsOf<T>(fields);
  json_detail::Scratch& scratch = json_detail::scratch();
  DecodedList<T> list;
  const bool clean = [&] {
    ondemand::document document;
    ondemand::array array;
    if (scratch.parser.iterate(scratch.pad(json)).get(document) || document.get_array().get(array)) return false;
    for (auto element : array) {
      ondemand::object object;
      JsonError error;
      FieldSet seen = 0;
      if (element.get_object().get(object)) return false;
      if (!json_detail::decodeRecord(object, list.records.emplace_back(), error, wanted, seen)) return false;
      if (!json_detail::requireIdentity<T>(seen, error)) return false;
    }
    return json_detail::atEnd(document);
  }();
  if (clean) return list;

  // Something in the list is not right: take it element by element, so that only the faulty ones are set aside.
  list.records.clear();
  auto elements = splitJsonList(json);
  if (!elements) return std::unexpected(std::move(elements.error()));
  for (const RawElement& element : *elements) {
    auto record = recordFromJson<T>(element.bytes, fields);
    if (record) {
      list.records.push_back(std::move(*record));
    } else {
      list.setAside.push_back({std::string(element.bytes), std::move(record.error())});
    }
  }
  return list;
}

template <class T>
void appendJson(std::string& out, const T& record, JsonFields fields) {
  json_detail::encodeRecord(out, record, json_detail::fieldsOf<T>(fields));
}

template <class T>
std::string listToJson(const std::vector<T>& records, JsonFields fields) {
  std::string out;
  out.push_back('[');
  for (const T& record : records) {
    if (out.size() > 1) {
      if (out.capacity() - out.size() < 1024) out.reserve(out.capacity() * 2);
      out.push_back(',');
    }
    appendJson(out, record, fields);
  }
  out.push_back(']');
  return out;
}

}  // namespace thalvorn

#define THALVORN_JSON_INSTANTIATE(Type)                                                                  \
  template std::expected<Type, JsonError> recordFromJson<Type>(std::string_view, JsonFields);            \
  template std::expected<void, JsonError> updateFromJson<Type>(Type&, std::string_view, JsonFields);     \
  template std::expected<DecodedList<Type>, JsonError> listFromJson<Type>(std::string_view, JsonFields); \
  template void appendJson<Type>(std::string&, const Type&, JsonFields);                                 \
  template std::string listToJson<Type>(const std::vector<Type>&, JsonFields)
