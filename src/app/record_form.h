#pragma once

#include <QObject>
#include <QVariant>
#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/format.h"
#include "base/describe.h"
#include "base/enums.h"
#include "base/fields.h"
#include "base/uuid.h"

namespace thalvorn::app {

/// The editing form of one record: what is typed into each field, what it means, and what is wrong with it.
/// It edits a copy; the owner takes `record()` of a RecordFormOf<T> when `check()` holds, so leaving costs nothing.
/// Text that cannot be read stays in its field with a message, and the record keeps its last good value.
class RecordForm : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool dirty READ dirty NOTIFY changed)
  Q_PROPERTY(bool valid READ valid NOTIFY changed)
  Q_PROPERTY(int revision READ revision NOTIFY changed)

 public:
  /// Something was entered that the record does not have, or that cannot stand.
  bool dirty() const;
  bool valid() const;
  /// Counts every change; bindings that call the functions below depend on it.
  int revision() const { return revision_; }

  /// {label, unit, help, placeholder, decimals, minimum, maximum, required, optional, sensitive, choices, entry}.
  /// `entry` is line, multiline, number, choice, yesno, date, dateTime, email, phone or url.
  Q_INVOKABLE QVariantMap facts(const QString& name) const;
  /// What stands in the field: as typed, else the value in the user's form. A choice is its stored text.
  Q_INVOKABLE QString text(const QString& name) const;
  Q_INVOKABLE void setText(const QString& name, const QString& text);
  /// The value itself: text, number, true or false, or a date; undefined when there is none.
  Q_INVOKABLE QVariant value(const QString& name) const;
  Q_INVOKABLE void setValue(const QString& name, const QVariant& value);
  /// What is wrong with the field; empty when nothing is, and while a required field has not been touched.
  Q_INVOKABLE QString message(const QString& name) const;
  /// Shows every message, and tells whether the record can be saved.
  Q_INVOKABLE bool check();
  /// The first field that has a message, to put the focus there.
  Q_INVOKABLE QString firstWrong() const;

  /// A field name that no record has ends the program when strict (the self-test), else it is logged.
  static void setStrict(bool strict);

 Q_SIGNALS:
  void changed();
  void edited(const QString& name);

 protected:
  using Read = std::expected<void, QString>;

  RecordForm(const Format& format, QObject* parent) : QObject(parent), format_(format) {}

  virtual std::size_t fieldCount() const = 0;
  virtual std::size_t fieldAt(std::string_view name) const = 0;
  virtual FieldFacts factsAt(std::size_t field) const = 0;
  virtual QString entryAt(std::size_t field) const = 0;
  virtual bool optionalAt(std::size_t field) const = 0;
  virtual QVariantList choicesAt(std::size_t field) const = 0;
  virtual QString textAt(std::size_t field) const = 0;
  virtual QVariant valueAt(std::size_t field) const = 0;
  virtual Read assign(std::size_t field, const QString& text) = 0;
  virtual void assignTime(std::size_t field, const QDateTime& time) = 0;
  virtual bool changedAt(std::size_t field) const = 0;
  virtual QString ruleFault(std::size_t field) const = 0;

  /// Forgets what was typed: the record was replaced.
  void forgetTyping();

  const Format& format_;

 private:
  struct Typing {
    std::optional<QString> text;  ///< as typed, while it stands in the field
    QString fault;                ///< why it could not be read
    bool touched = false;
  };

  std::optional<std::size_t> find(const QString& name) const;
  Typing& typing(std::size_t field) const;
  QString faultAt(std::size_t field) const;
  void touch(std::size_t field);

  mutable std::vector<Typing> typing_;
  bool allShown_ = false;
  int revision_ = 0;
};

/// How one field's text becomes its value and back, by the field's type.
namespace fields {

QString show(const std::string& value, const FieldFacts& facts, const Format& format);
QString show(double value, const FieldFacts& facts, const Format& format);
QString show(std::int64_t value, const FieldFacts& facts, const Format& format);
QString show(bool value, const FieldFacts& facts, const Format& format);
QString show(Timestamp value, const FieldFacts& facts, const Format& format);
QString show(const Uuid& value, const FieldFacts& facts, const Format& format);

std::expected<void, QString> read(const QString& text, std::string& value, const FieldFacts& facts,
                                  const Format& format);
std::expected<void, QString> read(const QString& text, double& value, const FieldFacts& facts, const Format& format);
std::expected<void, QString> read(const QString& text, std::int64_t& value, const FieldFacts& facts,
                                  const Format& format);
std::expected<void, QString> read(const QString& text, bool& value, const FieldFacts& facts, const Format& format);
std::expected<void, QString> read(const QString& text, Timestamp& value, const FieldFacts& facts, const Format& format);
std::expected<void, QString> read(const QString& text, Uuid& value, const FieldFacts& facts, const Format& format);

QVariant variant(const std::string& value);
QVariant variant(double value);
QVariant variant(std::int64_t value);
QVariant variant(bool value);
QVariant variant(Timestamp value);
QVariant variant(const Uuid& value);

/// What the form calls the entry of a type: "number", "yesno", "date" …
QString entryOf(const std::string*, const FieldFacts& facts);
QString entryOf(const double*, const FieldFacts& facts);
QString entryOf(const std::int64_t*, const FieldFacts& facts);
QString entryOf(const bool*, const FieldFacts& facts);
QString entryOf(const Timestamp*, const FieldFacts& facts);
QString entryOf(const Uuid*, const FieldFacts& facts);

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

/// True for the types that a form can edit; lists and nested records have editors of their own.
template <class T>
concept Editable =
    requires(const T& value, const FieldFacts& facts, const Format& format) { show(value, facts, format); };

}  // namespace fields

/// The form of records of type T, whose fields and facts it reads from their description.
template <HasFacts T>
class RecordFormOf : public RecordForm {
 public:
  /// A rule over the whole record that concerns one field; an empty text means it holds.
  using Rule = std::function<QString(const T&)>;

  RecordFormOf(T record, const Format& format, QObject* parent = nullptr)
      : RecordForm(format, parent), original_(record), record_(std::move(record)) {}

  const T& record() const { return record_; }
  const T& original() const { return original_; }
  /// Begins again with another record; nothing counts as changed.
  void reset(T record) {
    original_ = record;
    record_ = std::move(record);
    forgetTyping();
  }
  /// Changes the record from outside a field; what is typed elsewhere stays.
  void edit(const std::function<void(T&)>& change) {
    change(record_);
    Q_EMIT changed();
  }
  void addRule(std::string_view name, Rule rule) { rules_.emplace_back(fieldIndex<T>(name), std::move(rule)); }

 protected:
  std::size_t fieldCount() const override { return thalvorn::fieldCount<T>; }
  std::size_t fieldAt(std::string_view name) const override { return fieldIndex<T>(name); }
  FieldFacts factsAt(std::size_t field) const override {
    const std::string_view name = fieldNames<T>[field];
    const FieldFacts* facts = factsOf<T>(name);
    return facts ? *facts : FieldFacts{.name = name, .label = name};
  }
  QString entryAt(std::size_t field) const override {
    return visit(field, QString(), [&]<class V>(const V& value) { return entry(value, factsAt(field)); });
  }
  bool optionalAt(std::size_t field) const override {
    return visit(field, false, []<class V>(const V&) { return fields::isOptional<V>; });
  }
  QVariantList choicesAt(std::size_t field) const override {
    return visit(field, QVariantList(), []<class V>(const V& value) { return choices(value); });
  }
  QString textAt(std::size_t field) const override {
    return visit(field, QString(), [&](const auto& value) { return shown(value, factsAt(field)); });
  }
  QVariant valueAt(std::size_t field) const override {
    return visit(field, QVariant(), [](const auto& value) { return toVariant(value); });
  }
  Read assign(std::size_t field, const QString& text) override {
    Read result;
    change(field, [&](auto& value) { result = readInto(text, value, factsAt(field)); });
    return result;
  }
  void assignTime(std::size_t field, const QDateTime& time) override {
    change(field, [&]<class V>(V& value) {
      if constexpr (std::is_same_v<V, std::optional<Timestamp>>) {
        value = time.isValid() ? std::optional(Format::fromQml(time)) : std::nullopt;
      } else if constexpr (std::is_same_v<V, Timestamp>) {
        if (time.isValid()) value = Format::fromQml(time);
      }
    });
  }
  bool changedAt(std::size_t field) const override { return changedFields(original_, record_) >> field & 1; }
  QString ruleFault(std::size_t field) const override {
    for (const auto& [of, rule] : rules_) {
      if (of != field) continue;
      if (QString fault = rule(record_); !fault.isEmpty()) return fault;
    }
    return {};
  }

 private:
  template <class Result, class Visitor>
  Result visit(std::size_t field, Result result, Visitor&& visitor) const {
    std::size_t at = 0;
    forEachField(record_, [&](std::string_view, const auto& value) {
      if (at++ == field) result = visitor(value);
    });
    return result;
  }
  template <class Visitor>
  void change(std::size_t field, Visitor&& visitor) {
    std::size_t at = 0;
    forEachField(record_, [&](std::string_view, auto& value) {
      if (at++ == field) visitor(value);
    });
  }

  template <class V>
  static QString entry(const V& value, const FieldFacts& facts) {
    if constexpr (isChoice<V>) {
      return QStringLiteral("choice");
    } else if constexpr (fields::isOptional<V>) {
      return entry(typename V::value_type(), facts);
    } else if constexpr (fields::Editable<V>) {
      return fields::entryOf(&value, facts);
    } else {
      return {};
    }
  }
  template <class V>
  static QVariantList choices(const V& value) {
    QVariantList list;
    if constexpr (isChoice<V>) {
      const auto add = [&](std::string_view raw, std::string_view display) {
        list.append(QVariantMap{{QStringLiteral("value"), fields::variant(std::string(raw))},
                                {QStringLiteral("text"), fields::variant(std::string(display))}});
      };
      for (const EnumText& text : enumTable(value)) add(text.raw, text.display);
      if (!value.isKnown()) add(value.raw(), value.display());
    }
    return list;
  }
  template <class E>
  static const auto& enumTable(const Choice<E>&) {
    return EnumTexts<E>::table;
  }
  template <class V>
  QString shown(const V& value, const FieldFacts& facts) const {
    if constexpr (isChoice<V>) {
      return fields::variant(std::string(value.raw())).toString();
    } else if constexpr (fields::isOptional<V>) {
      return value ? shown(*value, facts) : QString();
    } else if constexpr (fields::Editable<V>) {
      return fields::show(value, facts, format_);
    } else {
      return {};
    }
  }
  template <class V>
  static QVariant toVariant(const V& value) {
    if constexpr (isChoice<V>) {
      return fields::variant(std::string(value.raw()));
    } else if constexpr (fields::isOptional<V>) {
      return value ? toVariant(*value) : QVariant();
    } else if constexpr (fields::Editable<V>) {
      return fields::variant(value);
    } else {
      return {};
    }
  }
  template <class V>
  Read readInto(const QString& text, V& value, const FieldFacts& facts) const {
    if constexpr (isChoice<V>) {
      value = V::fromRaw(text.toStdString());
      return {};
    } else if constexpr (fields::isOptional<V>) {
      if (text.trimmed().isEmpty()) {
        value.reset();
        return {};
      }
      typename V::value_type inner = value.value_or(typename V::value_type());
      Read result = readInto(text, inner, facts);
      if (result) value = inner;
      return result;
    } else if constexpr (fields::Editable<V>) {
      return fields::read(text, value, facts, format_);
    } else {
      return {};
    }
  }

  T original_;
  T record_;
  std::vector<std::pair<std::size_t, Rule>> rules_;
};

}  // namespace thalvorn::app
