#pragma once

#include <QDateTime>
#include <QObject>
#include <QVariant>

#include "base/calendar.h"
#include "base/number_format.h"

namespace thalvorn::app {

/// Numbers, dates and their reading by the rules of the user's locale. QML sees it as `Format`.
/// Points in time cross into QML as its dates; an absent one is undefined.
class Format : public QObject {
  Q_OBJECT

 public:
  explicit Format(const Clock& clock, QObject* parent = nullptr);

  /// "12,345.6" with exactly `decimals` decimals; an em dash for what is not a number.
  Q_INVOKABLE QString number(double value, int decimals = 0) const;
  /// NaN when the text is not a number.
  Q_INVOKABLE double parseNumber(const QString& text) const;
  /// "4,812.4 h".
  Q_INVOKABLE QString hours(double value) const;
  Q_INVOKABLE QString money(double amount, const QString& currency = {}) const;

  Q_INVOKABLE QDateTime now() const;
  /// "14 Jan 2026".
  Q_INVOKABLE QString date(const QDateTime& time) const;
  /// "14 Jan 2026 08:05".
  Q_INVOKABLE QString dateTime(const QDateTime& time) const;
  /// "in 4 days", "yesterday", and beyond 30 days the date.
  Q_INVOKABLE QString distance(const QDateTime& time) const;
  /// "19 days past", "today", "Wed 25 Nov", "12 Dec".
  Q_INVOKABLE QString due(const QDateTime& time) const;
  /// "January 2026".
  Q_INVOKABLE QString month(const QDateTime& time) const;
  Q_INVOKABLE QDateTime addDays(const QDateTime& time, int days) const;
  /// Reads a day as people type it: "21 Nov 2026", "21.11.26", "2026-11-21", "today", "tomorrow", "+14"; with a time
  /// "21 Nov 09:40". What is not given is taken from `otherwise`, else from now. Undefined when it cannot be read.
  Q_INVOKABLE QVariant parseDate(const QString& text, const QVariant& otherwise = {}, bool withTime = false) const;

  /// Stretches of days that lists are narrowed to: [{text, first, last}], "This month", "Last month", "This year" ….
  Q_INVOKABLE QVariantList periods() const;

  /// Whether the user's country measures in litres and metres.
  bool metric() const;

  const NumberLocale& numbers() const { return numbers_; }
  const Clock& clock() const { return clock_; }

  static QDateTime toQml(Timestamp time);
  static Timestamp fromQml(const QDateTime& time);

 private:
  const Clock& clock_;
  NumberLocale numbers_;
};

}  // namespace thalvorn::app
