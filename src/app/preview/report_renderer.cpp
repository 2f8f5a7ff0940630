#include "app/preview/report_renderer.h"

#include "reports/document/document_text.h"

namespace thalvorn::app {

/// The report as it stands on the thread.
struct ReportRenderer::Work {
  int number = 0;
  std::optional<PagedReport> report;
};

ReportRenderer::ReportRenderer(QObject* parent)
    : QObject(parent), onThread_(std::make_unique<QObject>()), work_(std::make_shared<Work>()) {
  thread_.setObjectName(QStringLiteral("reports"));
  onThread_->moveToThread(&thread_);
  thread_.start(QThread::LowPriority);
}

ReportRenderer::~ReportRenderer() {
  current_ = -1;
  // The laid-out report goes on the thread that made it.
  QMetaObject::invokeMethod(onThread_.get(), [work = work_] { work->report.reset(); });
  QMetaObject::invokeMethod(onThread_.get(), [this] { thread_.quit(); });
  thread_.wait();
}

RenderOptions ReportRenderer::options(int report, int stops) {
  return {.progress = [this, report, stops](double share) {
    Q_EMIT progressed(report, share);
    return current_ == report && stops_ == stops;
  }};
}

int ReportRenderer::begin(DocumentMaker make) {
  const int number = ++current_;
  QMetaObject::invokeMethod(
      onThread_.get(), [this, number, stops = stops_.load(), work = work_, make = std::move(make)] {
        work->report.reset();
        work->number = number;
        if (current_ != number || stops_ != stops) return;
        Document document = make();
        const QString fileName =
            document.fileName.empty() ? QString() : QString::fromStdString(safeFileName(document.fileName));
        auto laidOut = PagedReport::layOut(std::move(document), options(number, stops));
        if (!laidOut) {
          if (laidOut.error().kind != ReportError::Kind::cancelled) Q_EMIT failed(number, laidOut.error().message);
          return;
        }
        work->report.emplace(std::move(*laidOut));
        Q_EMIT ready(
            number, {work->report->pageCount(), work->report->pageSize(), work->report->missingCharacters(), fileName});
      });
  return number;
}

void ReportRenderer::cancel() { ++stops_; }

void ReportRenderer::drawPage(int report, int page, int width, std::function<void(QImage)> done) {
  QMetaObject::invokeMethod(onThread_.get(), [work = work_, report, page, width, done = std::move(done)] {
    QImage image;
    if (work->report && work->number == report)
      image = work->report->image(page, width / work->report->pageSize().width());
    done(image);
  });
}

void ReportRenderer::makePdf(int report, std::function<void(std::expected<QByteArray, ReportError>)> done) {
  QMetaObject::invokeMethod(onThread_.get(),
                            [this, stops = stops_.load(), work = work_, report, done = std::move(done)] {
                              if (work->report && work->number == report) {
                                done(work->report->pdf(options(report, stops)));
                              } else {
                                done(std::unexpected(ReportError{ReportError::Kind::cancelled, {}}));
                              }
                            });
}

}  // namespace thalvorn::app
