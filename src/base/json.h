#pragma once

#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace thalvorn {

/// Which fields of a record a JSON text holds. A record may name fields that its own JSON form leaves out
/// (`JsonForm<T>::extra`): `own` is without them, `extra` only them and `id`, `full` everything.
enum class JsonFields { own, extra, full };

/// How the JSON form of a record differs from "keys are the field names, all of them". Specialise beside the record:
///   static constexpr std::array<std::string_view, N> extra{…};   fields that the own form leaves out
///   static constexpr bool snakeCase = true;                       keys in snake case
///   static constexpr bool nulls = true;                           absent optional values are null, not left out
template <class T>
struct JsonForm {};

/// Why a text could not be read: the field (empty for the whole text) and the reason.
struct JsonError {
  std::string field;
  std::string reason;
  std::string message() const { return field.empty() ? reason : field + ": " + reason; }
};

/// A record of a list that could not be read: its bytes as stored and the reason.
struct SetAside {
  std::string bytes;
  JsonError error;
};

template <class T>
struct DecodedList {
  std::vector<T> records;
  std::vector<SetAside> setAside;
};

/// Reads one record. Absent keys and nulls leave the field's initial value, except `id` and `vesselID`, which must be
/// there; unknown keys are passed over; a value of the wrong type is an error.
template <class T>
std::expected<T, JsonError> recordFromJson(std::string_view json, JsonFields fields = JsonFields::full);

/// As `recordFromJson`, but fields that the text does not mention keep their value in `record`. After an error `record`
/// may hold part of the text.
template <class T>
std::expected<void, JsonError> updateFromJson(T& record, std::string_view json, JsonFields fields = JsonFields::full);

/// Reads a JSON list of records; a record that cannot be read is set aside alone. Fails only when the text is not a
/// list.
template <class T>
std::expected<DecodedList<T>, JsonError> listFromJson(std::string_view json, JsonFields fields = JsonFields::own);

/// Compact JSON with the keys in field order; absent optional values have no key; a number that is not finite is null.
template <class T>
void appendJson(std::string& out, const T& record, JsonFields fields = JsonFields::own);

template <class T>
std::string toJson(const T& record, JsonFields fields = JsonFields::own) {
  std::string out;
  appendJson(out, record, fields);
  return out;
}

template <class T>
std::string listToJson(const std::vector<T>& records, JsonFields fields = JsonFields::own);

/// Appends `text` as a quoted JSON string.
void appendJsonString(std::string& out, std::string_view text);

/// The shortest decimal text that reads back as the same number; "null" when it is not finite.
void appendJsonNumber(std::string& out, double number);

/// One element of a JSON list: its bytes as they stand and its "id" member (empty when it has none).
struct RawElement {
  std::string_view bytes;
  std::string id;
};

/// Splits a JSON list into its elements without decoding them; the views are into `json`.
std::expected<std::vector<RawElement>, JsonError> splitJsonList(std::string_view json);

/// One member of a JSON object: its name and its value as it stands.
struct RawMember {
  std::string name;
  std::string_view value;
};

/// Splits a JSON object into its members without decoding their values; the views are into `json`.
std::expected<std::vector<RawMember>, JsonError> splitJsonObject(std::string_view json);

/// The codec of a record type lives in the one source file that instantiates it, so that its templates are compiled
/// once.
#define THALVORN_JSON_RECORD(Type)                                                                               \
  extern template std::expected<Type, ::thalvorn::JsonError> recordFromJson<Type>(std::string_view, JsonFields); \
  extern template std::expected<void, ::thalvorn::JsonError> updateFromJson<Type>(Type&, std::string_view,       \
                                                                                  JsonFields);                   \
  extern template std::expected<DecodedList<Type>, JsonError> listFromJson<Type>(std::string_view, JsonFields);  \
  extern template void appendJson<Type>(std::string&, const Type&, JsonFields);                                  \
  extern template std::string listToJson<Type>(const std::vector<Type>&, JsonFields)

}  // namespace thalvorn
