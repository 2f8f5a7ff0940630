#include "reports/pdf_renderer.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>

#include "reports/page_layout.h"
#include "reports/page_painter.h"
#include "reports/pdf_finish.h"
#include "reports/typesetter.h"

namespace thalvorn {
namespace {

constexpr int resolution = 1200;
constexpr double layoutShare = 0.35;  // of the time a report takes
constexpr double paintShare = 0.9;

ReportError cancelled() { return {ReportError::Kind::cancelled, QStringLiteral("The report was cancelled.")}; }

ReportError incomplete(const QString& cause) {
  return {ReportError::Kind::incomplete,
          QStringLiteral("The report could not be made: %1 Install the program again, or export the list as CSV.")
              .arg(cause)};
}

QString qstring(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

struct PagedReport::Contents {
  Document document;
  mutable Typesetter typesetter;
  PagedLayout layout;

  explicit Contents(Document taken) : document(std::move(taken)), typesetter(qstring(document.language)) {}
};

PagedReport::PagedReport(std::unique_ptr<Contents> contents) : contents_(std::move(contents)) {}
PagedReport::PagedReport(PagedReport&&) noexcept = default;
PagedReport& PagedReport::operator=(PagedReport&&) noexcept = default;
PagedReport::~PagedReport() = default;

std::expected<PagedReport, ReportError> PagedReport::layOut(Document document, const RenderOptions& options) {
  if (!paper::loadFonts()) return std::unexpected(incomplete(QStringLiteral("its typeface is missing.")));
  auto contents = std::make_unique<Contents>(std::move(document));
  ReportProgress progress;
  if (options.progress) progress = [&](double done) { return options.progress(done * layoutShare); };
  auto layout = thalvorn::layOut(contents->document, contents->typesetter, progress);
  if (!layout) return std::unexpected(cancelled());
  contents->layout = std::move(*layout);
  return PagedReport(std::move(contents));
}

int PagedReport::pageCount() const { return static_cast<int>(contents_->layout.pages.size()); }

QSizeF PagedReport::pageSize() const { return {contents_->layout.width, contents_->layout.height}; }

QString PagedReport::missingCharacters() const { return contents_->typesetter.missing(); }

QImage PagedReport::image(int page, double scale) const {
  if (page < 0 || page >= pageCount() || !(scale > 0)) return {};
  QImage image((pageSize() * scale).toSize(), QImage::Format_RGB32);
  constexpr double pointsPerMeter = 72 / 0.0254;
  image.setDotsPerMeterX(qRound(scale * pointsPerMeter));
  image.setDotsPerMeterY(qRound(scale * pointsPerMeter));
  image.fill(QColorConstants::White);
  QPainter painter(&image);
  paintPage(painter, contents_->layout.pages[static_cast<std::size_t>(page)], contents_->typesetter, scale);
  return image;
}

std::expected<QByteArray, ReportError> PagedReport::pdf(const RenderOptions& options) const {
  const auto& [document, typesetter, layout] = *contents_;
  Typesetter drawing(qstring(document.language));
  std::vector<std::vector<QString>> words;
  const QString title =
      qstring(document.vesselName.empty() ? document.title : document.title + " — " + document.vesselName);
  QByteArray drawn;
  {
    QBuffer buffer(&drawn);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setResolution(resolution);
    writer.setPageSize(QPageSize(pageSize(), QPageSize::Point, {}, QPageSize::ExactMatch));
    writer.setPageMargins({0, 0, 0, 0});
    writer.setTitle(title);
    writer.setCreator(qstring(document.footer));
    QPainter painter;
    if (!painter.begin(&writer)) return std::unexpected(incomplete(QStringLiteral("its first page cannot be drawn.")));
    for (std::size_t i = 0; i < layout.pages.size(); ++i) {
      const double done = static_cast<double>(i) / static_cast<double>(layout.pages.size());
      if (options.progress && !options.progress(layoutShare + (paintShare - layoutShare) * done)) {
        painter.end();
        return std::unexpected(cancelled());
      }
      if (i > 0) writer.newPage();
      paintPage(painter, layout.pages[i], drawing, resolution / 72.0);
      words.push_back(drawing.takeWords());
    }
    painter.end();
  }
  auto finished = finishPdf(drawn, {.title = title,
                                    .language = qstring(document.language),
                                    .creator = qstring(document.footer),
                                    .created = document.generatedAt,
                                    .pageHeight = layout.height,
                                    .bookmarks = layout.bookmarks,
                                    .blanks = drawing.blanksDrawn(),
                                    .words = words});
  if (!finished) return std::unexpected(incomplete(finished.error()));
  if (options.progress) options.progress(1);
  return std::move(*finished);
}

std::expected<QByteArray, ReportError> renderPdf(const Document& document, const RenderOptions& options) {
  const auto report = PagedReport::layOut(document, options);
  if (!report) return std::unexpected(report.error());
  return report->pdf(options);
}

std::expected<void, ReportError> writePdf(const QString& path, const Document& document, const RenderOptions& options) {
  const auto bytes = renderPdf(document, options);
  if (!bytes) return std::unexpected(bytes.error());
  return writeReportFile(path, *bytes);
}

QImage renderPage(const Document& document, int page, double scale) {
  const auto report = PagedReport::layOut(document);
  return report ? report->image(page, scale) : QImage();
}

std::expected<void, ReportError> writeReportFile(const QString& path, const QByteArray& bytes) {
  QSaveFile file(path);
  if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit()) return {};
  const QString folder = QDir::toNativeSeparators(QFileInfo(path).absolutePath());
  return std::unexpected(ReportError{
      ReportError::Kind::notWritten,
      QStringLiteral("“%1” was not saved: %2. Choose another folder, or free some space in “%3”, and save again.")
          .arg(QFileInfo(path).fileName(), file.errorString(), folder)});
}

}  // namespace thalvorn
