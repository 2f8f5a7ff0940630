#pragma once

#include <QVariant>

#include "app/format.h"
#include "app/text.h"
#include "base/fields.h"
#include "core/register.h"

namespace thalvorn::app {

/// One field as a detail page shows it: "12 kts", "14 Jan 2026 08:05"; empty when there is nothing.
QString detailText(const RegisterValue& value, const ColumnFacts& column, const Format& format);

/// The same in the user's other unit where he reads metric ones: "47 L" below gallons; empty when there is none.
QString otherUnitText(const RegisterValue& value, const ColumnFacts& column, const Format& format);

namespace detail_page {

template <class V>
inline constexpr bool isRecordList = false;
template <class S>
inline constexpr bool isRecordList<std::vector<S>> = HasFacts<S>;

/// What one line can show: neither lists nor identities.
template <class V>
inline constexpr bool isLine = !std::is_same_v<V, Uuid> && !std::is_same_v<V, std::optional<Uuid>>;
template <class E>
inline constexpr bool isLine<std::vector<E>> = false;

template <class R, class V>
ColumnFacts columnFor(std::string_view name) {
  const FieldFacts* facts = factsOf<R>(name);
  ColumnFacts column{.key = name, .title = name, .form = register_detail::formOf<V>(facts)};
  if (facts) {
    column.title = facts->label;
    column.unit = facts->unit;
    column.decimals = facts->decimals;
  }
  return column;
}

template <class S>
struct ChildFields {
  const Format& format;
  QVariantMap fields{};

  template <class V>
  void operator()(std::string_view name, const V& value) {
    if constexpr (std::is_same_v<V, Uuid>) {
      fields.insert(toQt(name), toQt(value.toString()));
    } else if constexpr (isLine<V>) {
      fields.insert(toQt(name), detailText(register_detail::shownValue(value), columnFor<S, V>(name), format));
    }
  }
};

/// A record that holds the litres itself has nothing to convert.
template <class T>
constexpr bool holdsLitres() {
  for (const FieldFacts& facts : RecordFacts<T>::facts)
    if (facts.unit == "L") return true;
  return false;
}

template <class T>
struct Fields {
  const Format& format;
  QVariantMap described{};
  QVariantList list{};

  template <class V>
  void operator()(std::string_view name, const V& value) {
    const FieldFacts* facts = factsOf<T>(name);
    if (!facts || facts->sensitive) return;
    if constexpr (isRecordList<V>) {
      QVariantList children;
      for (const auto& child : value) {
        ChildFields<typename V::value_type> fields{format};
        forEachField(child, fields);
        children.append(fields.fields);
      }
      described.insert(toQt(name), children);
    } else if constexpr (isLine<V>) {
      const ColumnFacts column = columnFor<T, V>(name);
      const RegisterValue held = register_detail::shownValue(value);
      list.append(
          QVariantMap{{QStringLiteral("key"), toQt(name)},
                      {QStringLiteral("label"), toQt(column.title)},
                      {QStringLiteral("value"), detailText(held, column, format)},
                      {QStringLiteral("note"), holdsLitres<T>() ? QString() : otherUnitText(held, column, format)},
                      {QStringLiteral("multiline"), facts->entry == FieldEntry::multiline}});
    }
  }
};

}  // namespace detail_page

/// Every described field of a record to read: {key, label, value, note, multiline} in `facts`, and each list of
/// sub-records under its name, as maps of their fields' texts.
template <HasFacts T>
QVariantMap describeRecord(const T& record, const Format& format) {
  detail_page::Fields<T> fields{format};
  forEachField(record, fields);
  fields.described.insert(QStringLiteral("id"), toQt(record.id.toString()));
  fields.described.insert(QStringLiteral("facts"), fields.list);
  return fields.described;
}

}  // namespace thalvorn::app
