#pragma once

#include <array>
#include <boost/describe.hpp>
#include <boost/mp11.hpp>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace thalvorn {

/// The described members of a record, bases first, in declared order.
template <class T>
using FieldList = boost::describe::describe_members<T, boost::describe::mod_public | boost::describe::mod_inherited>;

template <class T>
concept DescribedRecord = std::is_class_v<T> && boost::describe::has_describe_members<T>::value;

template <class T>
inline constexpr std::size_t fieldCount = boost::mp11::mp_size<FieldList<T>>::value;

/// The field names of a record in order.
template <class T>
inline constexpr std::array<std::string_view, fieldCount<T>> fieldNames = [] {
  std::array<std::string_view, fieldCount<T>> names{};
  std::size_t i = 0;
  boost::mp11::mp_for_each<FieldList<T>>([&](auto field) { names[i++] = field.name; });
  return names;
}();

/// The position of a field by name; `fieldCount<T>` when there is none.
template <class T>
constexpr std::size_t fieldIndex(std::string_view name) {
  for (std::size_t i = 0; i < fieldCount<T>; ++i)
    if (fieldNames<T>[i] == name) return i;
  return fieldCount<T>;
}

/// A set of fields of one record, by position (a record has at most 64).
using FieldSet = std::uint64_t;

template <class T>
constexpr FieldSet fieldSetOf(std::initializer_list<std::string_view> names) {
  FieldSet set = 0;
  for (const auto name : names) set |= FieldSet{1} << fieldIndex<T>(name);
  return set;
}

/// Calls `visit(name, reference)` for every field in order.
template <class T, class Visitor>
constexpr void forEachField(T& record, Visitor&& visit) {
  boost::mp11::mp_for_each<FieldList<std::remove_const_t<T>>>(
      [&](auto field) { visit(std::string_view(field.name), record.*field.pointer); });
}

/// The fields in which two records differ.
template <class T>
FieldSet changedFields(const T& before, const T& after) {
  FieldSet changed = 0;
  std::size_t i = 0;
  boost::mp11::mp_for_each<FieldList<T>>([&](auto field) {
    if (!(before.*field.pointer == after.*field.pointer)) changed |= FieldSet{1} << i;
    ++i;
  });
  return changed;
}

/// Copies the named fields from one record to another.
template <class T>
void copyFields(const T& from, T& to, FieldSet fields) {
  std::size_t i = 0;
  boost::mp11::mp_for_each<FieldList<T>>([&](auto field) {
    if (fields >> i & 1) to.*field.pointer = from.*field.pointer;
    ++i;
  });
}

}  // namespace thalvorn
