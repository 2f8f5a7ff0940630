#include "app/maintenance/photos.h"

#include <QFileInfo>
#include <QImageReader>

#include "app/text.h"

namespace thalvorn::app {

std::expected<std::string, QString> keepPhoto(const AttachmentStore& attachments, const QUrl& picture) {
  const QString file = picture.toLocalFile();
  const QString name = QFileInfo(file).fileName();
  if (!picture.isLocalFile()) return std::unexpected(QStringLiteral("Only pictures on this computer can be added."));
  if (!QImageReader(file).canRead()) {
    return std::unexpected(QStringLiteral("“%1” is not a picture that can be read.").arg(name));
  }
  auto path = attachments.putFile("task_photos", std::filesystem::path(file.toStdString()));
  if (!path) return std::unexpected(toQt(path.error().message));
  return *path;
}

QString photoAddress(const AttachmentStore& attachments, const std::string& path) {
  const auto file = attachments.absolute(path);
  return file ? QUrl::fromLocalFile(toQt(file->string())).toString() : QString();
}

}  // namespace thalvorn::app
