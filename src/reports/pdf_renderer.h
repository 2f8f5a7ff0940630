#pragma once

#include <QByteArray>
#include <QImage>
#include <QSizeF>
#include <QString>
#include <cstdint>
#include <expected>
#include <memory>

#include "reports/document/document.h"
#include "reports/page.h"

namespace thalvorn {

struct ReportError {
  enum class Kind : std::uint8_t { cancelled, incomplete, notWritten };
  Kind kind = Kind::incomplete;
  QString message;  ///< says what to do
};

struct RenderOptions {
  /// Called from the rendering thread; returning false stops the rendering with `cancelled`.
  ReportProgress progress;
};

/// A document laid out on its pages: the same pages for the file, the printer and the screen. Belongs to the thread
/// that made it; any thread may.
class PagedReport {
 public:
  static std::expected<PagedReport, ReportError> layOut(Document document, const RenderOptions& options = {});
  PagedReport(PagedReport&&) noexcept;
  PagedReport& operator=(PagedReport&&) noexcept;
  ~PagedReport();

  int pageCount() const;
  /// Of every page, in points (1/72 inch).
  QSizeF pageSize() const;
  /// The characters that no typeface of this computer has: they would be blank on paper.
  QString missingCharacters() const;
  /// A page as it will look on paper, `scale` pixels to the point; null when there is no such page (0 is the first).
  QImage image(int page, double scale) const;
  /// The PDF file: selectable text, embedded fonts, language, bookmarks. The same document gives the same bytes.
  std::expected<QByteArray, ReportError> pdf(const RenderOptions& options = {}) const;

 private:
  struct Contents;
  explicit PagedReport(std::unique_ptr<Contents> contents);
  std::unique_ptr<Contents> contents_;
};

/// The PDF file of a document.
std::expected<QByteArray, ReportError> renderPdf(const Document& document, const RenderOptions& options = {});

/// Writes the PDF file whole or not at all; a file already there stays until the new one is complete.
std::expected<void, ReportError> writePdf(const QString& path, const Document& document,
                                          const RenderOptions& options = {});

/// One page as a picture; null when there is no such page. For several pages of one document use PagedReport.
QImage renderPage(const Document& document, int page, double scale);

/// Writes a report's bytes, a CSV file for instance, whole or not at all.
std::expected<void, ReportError> writeReportFile(const QString& path, const QByteArray& bytes);

}  // namespace thalvorn
