#pragma once

#include <limits>
#include <string_view>

#include "base/describe.h"

namespace thalvorn {

/// How a field is entered where its type alone does not tell.
enum class FieldEntry { automatic, multiline, dateOnly, email, phone, url };

/// What a form, a table or a report needs to know of one field beyond its type.
struct FieldFacts {
  std::string_view name;       ///< the record's field
  std::string_view label;      ///< as a person reads it
  std::string_view unit = {};  ///< shown inside the field, e.g. "hrs"
  std::string_view help = {};  ///< one line below the field
  std::string_view placeholder = {};
  int decimals = 0;                                        ///< digits shown after the decimal point
  double minimum = std::numeric_limits<double>::lowest();  ///< of what a person may enter
  double maximum = std::numeric_limits<double>::max();
  bool required = false;
  bool sensitive = false;  ///< masked on screen, left out of exports and logs
  bool countsUp = false;   ///< a meter: two people's readings merge to the higher one
  FieldEntry entry = FieldEntry::automatic;
};

/// Specialised beside each record that people edit: `static constexpr std::array facts{FieldFacts{.name = "title", …},
/// …}`.
template <class T>
struct RecordFacts;

template <class T>
concept HasFacts = requires { RecordFacts<T>::facts; };

/// True when every entry of the record's facts names one of its fields; asserted beside each table.
template <HasFacts T>
constexpr bool factsNameFields() {
  for (const FieldFacts& facts : RecordFacts<T>::facts)
    if (fieldIndex<T>(facts.name) == fieldCount<T>) return false;
  return true;
}

/// The facts of a field; null when the field has none.
template <HasFacts T>
constexpr const FieldFacts* factsOf(std::string_view name) {
  for (const FieldFacts& facts : RecordFacts<T>::facts)
    if (facts.name == name) return &facts;
  return nullptr;
}

}  // namespace thalvorn
