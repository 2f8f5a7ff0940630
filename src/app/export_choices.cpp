#include "app/export_choices.h"

#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>

#include "app/text.h"
#include "base/date_format.h"
#include "base/search_text.h"

namespace thalvorn::app {

CsvFormat csvFormat(const PreferenceStore& preferences) {
  const QString chosen = preferences.preference(QString::fromUtf16(kCsvSeparatorKey));
  if (chosen == u"comma") return {};
  if (chosen == u"tab") return {.separator = CsvSeparator::tab};
  if (chosen == u"semicolon" || QLocale().decimalPoint() == u",")
    return {.separator = CsvSeparator::semicolon, .decimalPoint = ','};
  return {};
}

QString paperSize(const PreferenceStore& preferences) {
  const QString chosen = preferences.preference(QString::fromUtf16(kPaperSizeKey));
  if (chosen == u"a4" || chosen == u"letter") return chosen;
  return QLocale().measurementSystem() == QLocale::ImperialUSSystem ? QStringLiteral("letter") : QStringLiteral("a4");
}

QString fileNameFor(const QString& what, const QString& vessel, Timestamp now, const Calendar& calendar,
                    const QString& ending) {
  static const QRegularExpression strange(QStringLiteral("[^a-z0-9]+"));
  const auto plain = [](const QString& text) {
    QString name = toQt(foldText(text.toStdString())).replace(strange, QStringLiteral("-"));
    while (name.startsWith(u'-')) name.remove(0, 1);
    while (name.endsWith(u'-')) name.chop(1);
    return name;
  };
  QStringList parts{plain(what), plain(vessel), toQt(spreadsheetDate(calendar.date(now)))};
  parts.removeAll(QString());
  return parts.join(u'-') + u'.' + ending;
}

QString withEnding(const QString& path, const QString& ending) {
  return QFileInfo(path).suffix().isEmpty() ? path + u'.' + ending : path;
}

}  // namespace thalvorn::app
