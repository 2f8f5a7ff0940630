#include "app/record_form.h"

#include <QLoggingCategory>
#include <cmath>

#include "app/text.h"

namespace thalvorn::app {

namespace {

bool strictNames = false;

QString withUnit(QString number, const FieldFacts& facts) {
  return facts.unit.empty() ? number : number + u' ' + toQt(facts.unit);
}

/// Why a number is out of the field's range; empty when it is within.
QString rangeFault(double value, const FieldFacts& facts, const Format& format) {
  const bool low = facts.minimum > std::numeric_limits<double>::lowest();
  const bool high = facts.maximum < std::numeric_limits<double>::max();
  if ((!low || value >= facts.minimum) && (!high || value <= facts.maximum)) return {};
  const QString least = format.number(facts.minimum, facts.minimum == std::floor(facts.minimum) ? 0 : facts.decimals);
  const QString most =
      withUnit(format.number(facts.maximum, facts.maximum == std::floor(facts.maximum) ? 0 : facts.decimals), facts);
  if (low && high) return QStringLiteral("Enter a number from %1 to %2.").arg(least, most);
  if (low) return QStringLiteral("Enter %1 or more.").arg(withUnit(least, facts));
  return QStringLiteral("Enter %1 or less.").arg(most);
}

}  // namespace

namespace fields {

QString show(const std::string& value, const FieldFacts&, const Format&) { return toQt(value); }
QString show(double value, const FieldFacts& facts, const Format& format) {
  return format.number(value, facts.decimals);
}
QString show(std::int64_t value, const FieldFacts&, const Format& format) {
  return format.number(static_cast<double>(value), 0);
}
QString show(bool value, const FieldFacts&, const Format&) {
  return value ? QStringLiteral("true") : QStringLiteral("false");
}
QString show(Timestamp value, const FieldFacts& facts, const Format& format) {
  const QDateTime time = Format::toQml(value);
  return facts.entry == FieldEntry::dateOnly ? format.date(time) : format.dateTime(time);
}
QString show(const Uuid& value, const FieldFacts&, const Format&) { return toQt(value.toString()); }

std::expected<void, QString> read(const QString& text, std::string& value, const FieldFacts&, const Format&) {
  value = text.toStdString();
  return {};
}

std::expected<void, QString> read(const QString& text, double& value, const FieldFacts& facts, const Format& format) {
  if (text.trimmed().isEmpty()) {
    if (facts.required) return {};
    value = std::max(0.0, facts.minimum);
    return {};
  }
  const auto number = parseNumber(text.toStdString(), format.numbers());
  if (!number) return std::unexpected(toQt(number.error()));
  if (QString fault = rangeFault(*number, facts, format); !fault.isEmpty()) return std::unexpected(fault);
  value = *number;
  return {};
}

std::expected<void, QString> read(const QString& text, std::int64_t& value, const FieldFacts& facts,
                                  const Format& format) {
  double number = static_cast<double>(value);
  if (auto result = read(text, number, facts, format); !result) return result;
  if (number != std::floor(number)) return std::unexpected(QStringLiteral("Enter a whole number."));
  if (std::abs(number) > 1e15) return std::unexpected(QStringLiteral("This number is too large."));
  value = static_cast<std::int64_t>(number);
  return {};
}

std::expected<void, QString> read(const QString& text, bool& value, const FieldFacts&, const Format&) {
  value = text == u"true";
  return {};
}

std::expected<void, QString> read(const QString& text, Timestamp& value, const FieldFacts& facts,
                                  const Format& format) {
  const QVariant time = format.parseDate(text, Format::toQml(value), facts.entry != FieldEntry::dateOnly);
  if (!time.isValid()) {
    return std::unexpected(QStringLiteral("This is not a date. Try “21 Nov 2026”, “tomorrow” or “+14”."));
  }
  value = Format::fromQml(time.toDateTime());
  return {};
}

std::expected<void, QString> read(const QString& text, Uuid& value, const FieldFacts&, const Format&) {
  const auto id = Uuid::parse(text.toStdString());
  if (!id) return std::unexpected(QStringLiteral("Choose one of the list."));
  value = *id;
  return {};
}

QVariant variant(const std::string& value) { return toQt(value); }
QVariant variant(double value) { return value; }
QVariant variant(std::int64_t value) { return static_cast<qlonglong>(value); }
QVariant variant(bool value) { return value; }
QVariant variant(Timestamp value) { return Format::toQml(value); }
QVariant variant(const Uuid& value) { return toQt(value.toString()); }

QString entryOf(const std::string*, const FieldFacts& facts) {
  switch (facts.entry) {
    case FieldEntry::multiline:
      return QStringLiteral("multiline");
    case FieldEntry::email:
      return QStringLiteral("email");
    case FieldEntry::phone:
      return QStringLiteral("phone");
    case FieldEntry::url:
      return QStringLiteral("url");
    default:
      return QStringLiteral("line");
  }
}
QString entryOf(const double*, const FieldFacts&) { return QStringLiteral("number"); }
QString entryOf(const std::int64_t*, const FieldFacts&) { return QStringLiteral("number"); }
QString entryOf(const bool*, const FieldFacts&) { return QStringLiteral("yesno"); }
QString entryOf(const Timestamp*, const FieldFacts& facts) {
  return facts.entry == FieldEntry::dateOnly ? QStringLiteral("date") : QStringLiteral("dateTime");
}
QString entryOf(const Uuid*, const FieldFacts&) { return QStringLiteral("line"); }

}  // namespace fields

void RecordForm::setStrict(bool strict) { strictNames = strict; }

std::optional<std::size_t> RecordForm::find(const QString& name) const {
  const std::size_t field = fieldAt(name.toStdString());
  if (field < fieldCount()) return field;
  if (strictNames) qFatal("A form asks for the field %s, which its record does not have", qUtf8Printable(name));
  qCritical("A form asks for the field %s, which its record does not have", qUtf8Printable(name));
  return std::nullopt;
}

RecordForm::Typing& RecordForm::typing(std::size_t field) const {
  if (typing_.size() <= field) typing_.resize(fieldCount());
  return typing_[field];
}

void RecordForm::forgetTyping() {
  typing_.clear();
  allShown_ = false;
  ++revision_;
  Q_EMIT changed();
}

QString RecordForm::faultAt(std::size_t field) const {
  const Typing& typed = typing(field);
  if (!typed.fault.isEmpty()) return typed.fault;
  const FieldFacts facts = factsAt(field);
  if (facts.required && typed.text.value_or(textAt(field)).trimmed().isEmpty()) {
    return QStringLiteral("%1 is needed.").arg(toQt(facts.label));
  }
  return ruleFault(field);
}

bool RecordForm::dirty() const {
  for (std::size_t field = 0; field < fieldCount(); ++field) {
    if (changedAt(field) || !typing(field).fault.isEmpty()) return true;
  }
  return false;
}

bool RecordForm::valid() const {
  for (std::size_t field = 0; field < fieldCount(); ++field) {
    if (!faultAt(field).isEmpty()) return false;
  }
  return true;
}

QVariantMap RecordForm::facts(const QString& name) const {
  const auto field = find(name);
  if (!field) return {};
  const FieldFacts facts = factsAt(*field);
  return {
      {QStringLiteral("label"), toQt(facts.label)},     {QStringLiteral("unit"), toQt(facts.unit)},
      {QStringLiteral("help"), toQt(facts.help)},       {QStringLiteral("placeholder"), toQt(facts.placeholder)},
      {QStringLiteral("decimals"), facts.decimals},     {QStringLiteral("minimum"), facts.minimum},
      {QStringLiteral("maximum"), facts.maximum},       {QStringLiteral("required"), facts.required},
      {QStringLiteral("optional"), optionalAt(*field)}, {QStringLiteral("sensitive"), facts.sensitive},
      {QStringLiteral("choices"), choicesAt(*field)},   {QStringLiteral("entry"), entryAt(*field)},
  };
}

QString RecordForm::text(const QString& name) const {
  const auto field = find(name);
  if (!field) return {};
  const Typing& typed = typing(*field);
  return typed.text ? *typed.text : textAt(*field);
}

void RecordForm::touch(std::size_t field) {
  typing(field).touched = true;
  ++revision_;
  Q_EMIT changed();
  Q_EMIT edited(toQt(factsAt(field).name));
}

void RecordForm::setText(const QString& name, const QString& text) {
  const auto field = find(name);
  if (!field) return;
  Typing& typed = typing(*field);
  typed.text = text;
  const Read result = assign(*field, text);
  typed.fault = result ? QString() : result.error();
  touch(*field);
}

QVariant RecordForm::value(const QString& name) const {
  const auto field = find(name);
  return field ? valueAt(*field) : QVariant();
}

void RecordForm::setValue(const QString& name, const QVariant& value) {
  const auto field = find(name);
  if (!field) return;
  const QString entry = entryAt(*field);
  if (entry != u"date" && entry != u"dateTime") {
    setText(name, value.isValid() ? value.toString() : QString());
    return;
  }
  assignTime(*field, value.toDateTime());
  typing(*field) = {};
  touch(*field);
}

QString RecordForm::message(const QString& name) const {
  const auto field = find(name);
  if (!field) return {};
  return typing(*field).touched || allShown_ ? faultAt(*field) : QString();
}

bool RecordForm::check() {
  allShown_ = true;
  ++revision_;
  Q_EMIT changed();
  return valid();
}

QString RecordForm::firstWrong() const {
  for (std::size_t field = 0; field < fieldCount(); ++field) {
    if (!faultAt(field).isEmpty()) return toQt(factsAt(field).name);
  }
  return {};
}

}  // namespace thalvorn::app
