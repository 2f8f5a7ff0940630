#include "app/preview/report_images.h"

#include <QPointer>

namespace thalvorn::app {

namespace {

constexpr int kUsualWidth = 800;

/// A page that is being drawn.
class PageResponse : public QQuickImageResponse {
 public:
  QQuickTextureFactory* textureFactory() const override { return QQuickTextureFactory::textureFactoryForImage(image_); }
  void take(const QImage& image) {
    image_ = image;
    Q_EMIT finished();
  }

 private:
  QImage image_;
};

}  // namespace

QQuickImageResponse* ReportImages::requestImageResponse(const QString& id, const QSize& requestedSize) {
  auto* response = new PageResponse;
  const QStringList parts = id.split(u'/');
  const int width = requestedSize.width() > 0 ? requestedSize.width() : kUsualWidth;
  renderer_.drawPage(parts.value(0).toInt(), parts.value(1).toInt(), width,
                     [response = QPointer<PageResponse>(response)](const QImage& image) {
                       // The answer is given on the response's own thread, unless nobody waits for it any more.
                       if (!response) return;
                       QMetaObject::invokeMethod(response.get(), [response, image] {
                         if (response) response->take(image);
                       });
                     });
  return response;
}

}  // namespace thalvorn::app
