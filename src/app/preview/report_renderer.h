#pragma once

#include <QImage>
#include <QObject>
#include <QSizeF>
#include <QThread>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>

#include "reports/pdf_renderer.h"

namespace thalvorn::app {

/// Makes a document; runs on the renderer's thread.
using DocumentMaker = std::function<Document()>;

/// What is known of a report once it is laid out.
struct ReportPages {
  int count = 0;
  QSizeF size;  ///< of a page, points
  QString missingCharacters;
  QString fileName;  ///< that the document asks for, without ending; empty when it does not
};

/// Lays a report out and draws its pages on a thread of its own. A new report cancels the one that is being made.
/// Answers come as signals on the owner's thread, with the number of the report they belong to.
class ReportRenderer : public QObject {
  Q_OBJECT

 public:
  explicit ReportRenderer(QObject* parent = nullptr);
  ~ReportRenderer() override;

  /// Begins a report and returns its number.
  int begin(DocumentMaker make);
  /// Stops what is being made. A report that is laid out already stays: its PDF can be made again.
  void cancel();

  /// Draws a page `width` pixels wide; `done` is called on the renderer's thread, with a null image for a report that
  /// is no longer shown. May be called from any thread.
  void drawPage(int report, int page, int width, std::function<void(QImage)> done);
  /// Makes the PDF file of the report.
  void makePdf(int report, std::function<void(std::expected<QByteArray, ReportError>)> done);

 Q_SIGNALS:
  void progressed(int report, double share);
  void ready(int report, const thalvorn::app::ReportPages& pages);
  void failed(int report, const QString& message);

 private:
  struct Work;
  RenderOptions options(int report, int stops);

  QThread thread_;
  std::unique_ptr<QObject> onThread_;  ///< lives on the thread; calls to it run there
  std::shared_ptr<Work> work_;         ///< touched only on the thread
  std::atomic<int> current_ = 0;       ///< the report that is wanted
  std::atomic<int> stops_ = 0;         ///< how often work was stopped
};

}  // namespace thalvorn::app
