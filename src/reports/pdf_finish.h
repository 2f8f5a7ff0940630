#pragma once

#include <QByteArray>
#include <QString>
#include <expected>
#include <vector>

#include "base/timestamp.h"
#include "reports/page.h"

namespace thalvorn {

/// What the toolkit leaves out of a PDF file.
struct PdfFacts {
  QString title;
  QString language;  ///< BCP 47
  QString creator;
  Timestamp created{};
  double pageHeight = 0;  ///< points
  const std::vector<Bookmark>& bookmarks;
  /// What the blank glyphs stand for, as `Typesetter::blanksDrawn`, so that emoji are found and copied.
  const std::vector<QString>& blanks;
  /// Page by page what `Typesetter::takeWords` gave.
  const std::vector<std::vector<QString>>& words;
};

/// The file with title, language, bookmarks and the dates and identifier that follow from its contents alone. The
/// error names the cause.
std::expected<QByteArray, QString> finishPdf(const QByteArray& drawn, const PdfFacts& facts);

}  // namespace thalvorn
