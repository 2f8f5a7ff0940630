#pragma once

// The templates behind backend/row_kind.h. Include this only in a source file that instantiates conversions
// (THALVORN_ROW_INSTANTIATE).

#include <cmath>
#include <map>

#include "backend/row_document.h"
#include "backend/row_kind.h"

namespace thalvorn::row_detail {

template <class T>
concept HasWhole = requires { RowKind<T>::whole; };
template <class T>
concept HasPart = requires { typename RowKind<T>::Part; };
template <class T>
concept HasElsewhere = requires { RowKind<T>::elsewhere; };

constexpr bool sameName(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) { return json_detail::lower(x) == json_detail::lower(y); });
}

/// The position of the field that a column holds; `fieldCount<T>` when it holds none.
template <class T>
constexpr std::size_t fieldOfColumn(std::string_view column) {
  const auto find = [](std::string_view name) {
    std::size_t i = 0;
    while (i < fieldCount<T> && !sameName(fieldNames<T>[i], name)) ++i;
    return i;
  };
  const std::size_t exact = find(column);
  return exact == fieldCount<T> && column.ends_with("Json") ? find(column.substr(0, column.size() - 4)) : exact;
}

template <class T>
inline constexpr FieldSet allFields = fieldCount<T> == 64 ? ~FieldSet{0} : (FieldSet{1} << fieldCount<T>)-1;

/// The fields of a record that no column of its row holds, and that therefore travel in `extraJson`.
template <class T>
inline constexpr FieldSet extraFields = [] {
  if (HasWhole<T>) return FieldSet{0};
  FieldSet held = 0;
  for (const auto column : fieldNames<RowOf<T>>)
    if (const std::size_t i = fieldOfColumn<T>(column); i < fieldCount<T>) held |= FieldSet{1} << i;
  if constexpr (HasPart<T>)
    for (const auto name : fieldNames<typename RowKind<T>::Part>) held |= FieldSet{1} << fieldIndex<T>(name);
  if constexpr (HasElsewhere<T>)
    for (const auto name : RowKind<T>::elsewhere) held |= FieldSet{1} << fieldIndex<T>(name);
  return allFields<T> & ~held;
}();

// ---- one value ---------------------------------------------------------------------------------------------------

template <class L>
bool isAbsent(const L& value) {
  if constexpr (requires { value.empty(); })
    return value.empty();
  else
    return false;
}

/// Puts a field's value into a column; `stored` is what the server has there.
template <class L, class R>
void toColumn(const L& value, R& column, const R* stored) {
  if constexpr (json_detail::isOptional<R>) {
    using Held = typename R::value_type;
    const Held* held = stored && *stored ? &**stored : nullptr;
    column.reset();
    if constexpr (json_detail::isOptional<L>) {
      if (value) toColumn(*value, column.emplace(), held);
    } else {
      if (!isAbsent(value)) toColumn(value, column.emplace(), held);
    }
    if constexpr (std::floating_point<Held>)
      if (column && !std::isfinite(*column)) column.reset();
  } else if constexpr (json_detail::isOptional<L>) {
    column = R{};
    if (value) toColumn(*value, column, stored);
  } else if constexpr (std::is_same_v<R, std::string>) {
    if constexpr (std::is_same_v<L, std::string>) {
      column = value;
    } else if constexpr (isChoice<L>) {
      column = value.raw();
    } else {
      column.clear();
      appendDocument(column, value, stored ? std::string_view(*stored) : std::string_view());
    }
  } else if constexpr (std::is_same_v<L, std::string> && std::is_same_v<R, Uuid>) {
    column = Uuid::parse(value).value_or(Uuid{});
  } else if constexpr (json_detail::isMap<R>) {
    column.clear();
    for (const auto& [key, held] : value) column.emplace(key.raw(), held.raw());
  } else {
    column = value;
    if constexpr (std::floating_point<R>)
      if (!std::isfinite(column)) column = 0;
  }
}

/// Takes a field's value from a column; an absent one leaves the field at `initial`. False when a document in it cannot
/// be read, with the field as it was.
template <class L, class R>
bool fromColumn(const R& column, L& value, const L& initial, JsonError& error) {
  if constexpr (json_detail::isOptional<R>) {
    if (column) return fromColumn(*column, value, initial, error);
    value = initial;
    return true;
  } else if constexpr (json_detail::isOptional<L>) {
    using Held = typename L::value_type;
    Held held{};
    if constexpr (std::floating_point<Held>) {
      if (!std::isfinite(column)) {
        value.reset();
        return true;
      }
    }
    if (!fromColumn(column, held, Held{}, error)) return false;
    value = std::move(held);
    return true;
  } else if constexpr (std::is_same_v<R, std::string>) {
    if constexpr (std::is_same_v<L, std::string>) {
      value = column;
      return true;
    } else if constexpr (isChoice<L>) {
      value = column.empty() ? initial : L::fromRaw(column);
      return true;
    } else {
      if (column.empty() || column == "null") {
        value = initial;
        return true;
      }
      return readDocument(column, value, error);
    }
  } else if constexpr (std::is_same_v<L, std::string> && std::is_same_v<R, Uuid>) {
    value = column.isNil() ? std::string() : column.toString();
    return true;
  } else if constexpr (json_detail::isMap<R>) {
    value.clear();
    for (const auto& [key, held] : column) value.emplace(L::key_type::fromRaw(key), L::mapped_type::fromRaw(held));
    return true;
  } else {
    value = column;
    if constexpr (std::floating_point<R>)
      if (!std::isfinite(column)) value = initial;
    return true;
  }
}

// ---- whole records --------------------------------------------------------------------------------------------------

/// Calls `visit(column index, column)` for the columns of a row that are not `RegisterRow`'s own.
template <class Row, class Visitor>
void forEachColumn(Row& row, Visitor&& visit) {
  boost::mp11::mp_for_each<boost::mp11::mp_iota_c<fieldCount<std::remove_const_t<Row>>>>([&](auto i) {
    using Fields = FieldList<std::remove_const_t<Row>>;
    constexpr std::string_view name = fieldNames<std::remove_const_t<Row>>[i];
    if constexpr (name != "extraJson" && name != "serverVersion" && name != "seenVersion")
      visit(i, row.*boost::mp11::mp_at_c<Fields, i>::pointer);
  });
}

template <class T>
void stampRow(const T& record, const RowContext& context, RowOf<T>& row) {
  if constexpr (requires { row.userId = context.userID; }) {
    constexpr bool own = fieldOfColumn<T>("userId") < fieldCount<T>;
    if constexpr (!own)
      row.userId = context.userID;
    else if constexpr (std::is_same_v<decltype(row.userId), Uuid>)
      if (row.userId.isNil()) row.userId = context.userID;
  }
  if constexpr (requires { row.accountId; }) {
    if constexpr (fieldOfColumn<T>("accountId") == fieldCount<T>) row.accountId = context.accountID;
  }
  if constexpr (requires { row.updatedAt; }) {
    row.updatedAt = context.updatedAt;
    if constexpr (requires { record.updatedAt.time_since_epoch(); }) {
      if (record.updatedAt != Timestamp{}) row.updatedAt = record.updatedAt;
    } else if constexpr (requires { record.updatedAt; }) {
      row.updatedAt = record.updatedAt.value_or(context.updatedAt);
    }
  }
}

}  // namespace thalvorn::row_detail

namespace thalvorn {

template <class T>
RowOf<T> rowFromRecord(const T& record, const RowContext& context, const RowOf<T>* stored) {
  using namespace row_detail;
  using Row = RowOf<T>;
  Row row;
  forEachColumn(row, [&](auto i, auto& column) {
    constexpr std::string_view name = fieldNames<Row>[i];
    const auto* was = stored ? &(stored->*boost::mp11::mp_at_c<FieldList<Row>, i>::pointer) : nullptr;
    constexpr std::size_t field = fieldOfColumn<T>(name);
    if constexpr (HasWhole<T>) {
      if constexpr (name == RowKind<T>::whole) {
        appendDocument(column, record, was ? std::string_view(*was) : std::string_view());
        return;
      }
    }
    if constexpr (HasPart<T>) {
      if constexpr (name == RowKind<T>::partColumn) {
        appendDocument(column, RowKind<T>::partOf(record), was ? std::string_view(*was) : std::string_view());
        return;
      }
    }
    if constexpr (field < fieldCount<T>)
      toColumn(record.*boost::mp11::mp_at_c<FieldList<T>, field>::pointer, column, was);
  });
  if constexpr (requires { RowKind<T>::finishRow(record, row); }) RowKind<T>::finishRow(record, row);
  stampRow(record, context, row);
  if constexpr (TableRegisterRow<Row>) {
    if constexpr (extraFields<T> != 0) {
      const std::string_view was = stored && stored->extraJson ? std::string_view(*stored->extraJson) : "";
      appendDocument(row.extraJson.emplace(), record, was, extraFields<T>);
    } else if (stored) {
      row.extraJson = stored->extraJson;
    }
    row.seenVersion = context.seenVersion;
  } else {
    static_assert(extraFields<T> == 0, "a field that would not travel");
  }
  forEachField(row, [](std::string_view, auto& column) { cleanText(column); });
  return row;
}

template <class T>
std::expected<FromRow<T>, JsonError> recordFromRow(const RowOf<T>& row, const T* known) {
  using namespace row_detail;
  using Row = RowOf<T>;
  const T initial{};
  FromRow<T> made{known ? *known : initial, {}};
  JsonError fault;
  if constexpr (HasWhole<T>) {
    constexpr auto column = boost::mp11::mp_at_c<FieldList<Row>, fieldIndex<Row>(RowKind<T>::whole)>{};
    T whole{};
    if (!readDocument(row.*column.pointer, whole, fault)) {
      const std::string name(json_detail::keys<Row>[fieldIndex<Row>(RowKind<T>::whole)].name());
      return std::unexpected(JsonError{fault.field.empty() ? name : name + "." + fault.field, fault.reason});
    }
    made.record = std::move(whole);
  }
  forEachColumn(row, [&](auto i, const auto& column) {
    constexpr std::string_view name = fieldNames<Row>[i];
    constexpr std::size_t field = fieldOfColumn<T>(name);
    JsonError error;
    bool readable = true;
    if constexpr (HasPart<T>) {
      if constexpr (name == RowKind<T>::partColumn) {
        typename RowKind<T>::Part part{};
        readable = column.empty() || column == "null" || readDocument(column, part, error);
        if (readable) {
          RowKind<T>::applyPart(RowKind<T>::partOf(initial), made.record);
          RowKind<T>::applyPart(part, made.record);
        }
      }
    }
    if constexpr (field < fieldCount<T>) {
      constexpr auto pointer = boost::mp11::mp_at_c<FieldList<T>, field>::pointer;
      readable = fromColumn(column, made.record.*pointer, initial.*pointer, error);
    }
    if (!readable) made.unreadable.push_back({std::string(json_detail::keys<Row>[i].name()), error.message()});
  });
  if constexpr (requires { RowKind<T>::finishRecord(row, made.record); }) RowKind<T>::finishRecord(row, made.record);
  if constexpr (TableRegisterRow<Row> && extraFields<T> != 0) {
    if (row.extraJson && *row.extraJson != "null") {
      T read = made.record;
      if (readDocument(*row.extraJson, read, fault, extraFields<T>))
        made.record = std::move(read);
      else
        made.unreadable.push_back({"extra_json", fault.message()});
    }
  }
  return made;
}

template <class Row>
bool sameColumn(const Row& one, const Row& other, std::string_view column) {
  bool same = true;
  boost::mp11::mp_for_each<boost::mp11::mp_iota_c<fieldCount<Row>>>([&](auto i) {
    constexpr auto pointer = boost::mp11::mp_at_c<FieldList<Row>, i>::pointer;
    if (json_detail::keys<Row>[i].name() == column) same = one.*pointer == other.*pointer;
  });
  return same;
}

template <class Row>
void copyColumn(const Row& from, Row& to, std::string_view column) {
  boost::mp11::mp_for_each<boost::mp11::mp_iota_c<fieldCount<Row>>>([&](auto i) {
    constexpr auto pointer = boost::mp11::mp_at_c<FieldList<Row>, i>::pointer;
    if (json_detail::keys<Row>[i].name() == column) to.*pointer = from.*pointer;
  });
}

template <class Row>
std::string rowsToJson(const std::vector<Row>& rows, RowColumns columns) {
  FieldSet fields = json_detail::fieldsOf<Row>(columns == RowColumns::all ? JsonFields::full : JsonFields::own);
  if constexpr (TableRegisterRow<Row>) fields &= ~fieldSetOf<Row>({"serverVersion"});
  std::string out = "[";
  for (const Row& row : rows) {
    if (out.size() > 1) out.push_back(',');
    json_detail::encodeRecord(out, row, fields);
  }
  out.push_back(']');
  return out;
}

}  // namespace thalvorn

/// The codec of a row.
#define THALVORN_ROW_CODEC(Row)                                            \
  THALVORN_JSON_INSTANTIATE(Row);                                          \
  template bool sameColumn<Row>(const Row&, const Row&, std::string_view); \
  template void copyColumn<Row>(const Row&, Row&, std::string_view);       \
  template std::string rowsToJson<Row>(const std::vector<Row>&, RowColumns)

/// The conversions of a record, with the codec of its row.
#define THALVORN_ROW_INSTANTIATE(Type)                                                          \
  THALVORN_ROW_CODEC(RowOf<Type>);                                                              \
  template RowOf<Type> rowFromRecord<Type>(const Type&, const RowContext&, const RowOf<Type>*); \
  template std::expected<FromRow<Type>, JsonError> recordFromRow<Type>(const RowOf<Type>&, const Type*)
