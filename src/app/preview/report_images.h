#pragma once

#include <QQuickAsyncImageProvider>

#include "app/preview/report_renderer.h"

namespace thalvorn::app {

/// The pages of the report for QML: "image://report/<report>/<page>", drawn as wide as the source size asks.
class ReportImages : public QQuickAsyncImageProvider {
 public:
  explicit ReportImages(ReportRenderer& renderer) : renderer_(renderer) {}
  QQuickImageResponse* requestImageResponse(const QString& id, const QSize& requestedSize) override;

 private:
  ReportRenderer& renderer_;
};

}  // namespace thalvorn::app
