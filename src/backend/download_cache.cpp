#include "backend/download_cache.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace thalvorn {
namespace {

constexpr auto kPrivate = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

}  // namespace

DownloadCache::DownloadCache(const QString& folder, qint64 max_bytes) : folder_(folder), maxBytes_(max_bytes) {}

QString DownloadCache::fileFor(const QString& bucket, const QString& path) const {
  const QByteArray name = QCryptographicHash::hash((bucket + u'/' + path).toUtf8(), QCryptographicHash::Sha256).toHex();
  return folder_.filePath(QString::fromLatin1(name));
}

std::optional<DownloadCache::Entry> DownloadCache::find(const QString& bucket, const QString& path) const {
  QFile file(fileFor(bucket, path));
  if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly)) return std::nullopt;
  // The first line is the tag, the rest the content.
  QByteArray etag = file.readLine(4096);
  if (!etag.endsWith('\n')) return std::nullopt;
  etag.chop(1);
  // The times of use decide what goes first.
  file.setFileTime(QDateTime::currentDateTimeUtc(), QFileDevice::FileModificationTime);
  return Entry{file.readAll(), etag};
}

void DownloadCache::keep(const QString& bucket, const QString& path, const Entry& entry) {
  if (entry.content.size() > maxBytes_ || entry.etag.contains('\n')) return;
  if (!folder_.exists() && folder_.mkpath(QStringLiteral(".")))
    QFile::setPermissions(folder_.path(), kPrivate | QFileDevice::ExeOwner);
  QSaveFile file(fileFor(bucket, path));
  if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(kPrivate)) return;
  file.write(entry.etag + '\n');
  file.write(entry.content);
  if (file.commit()) makeRoom();
}

void DownloadCache::remove(const QString& bucket, const QString& path) { QFile::remove(fileFor(bucket, path)); }

void DownloadCache::clear() {
  for (const QFileInfo& file : folder_.entryInfoList(QDir::Files)) QFile::remove(file.filePath());
}

void DownloadCache::makeRoom() const {
  qint64 held = 0;
  for (const QFileInfo& file : folder_.entryInfoList(QDir::Files, QDir::Time)) {
    held += file.size();
    if (held > maxBytes_) QFile::remove(file.filePath());
  }
}

}  // namespace thalvorn
