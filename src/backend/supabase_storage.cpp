#include "backend/supabase_storage.h"

#include <QCoro/QCoroFuture>
#include <QFileInfo>
#include <QPromise>

namespace thalvorn {
namespace {

constexpr auto kAllowed = "_/!-.*'() &$@=;:+,?";

/// The encoded address below the object store, e.g. "/storage/v1/object/task_photos/<id>/photo.jpg"; empty when bucket
/// or path hold what the service refuses.
QByteArray objectPath(const QByteArray& before, const QString& bucket, const QString& path) {
  if (bucket.isEmpty() || path.isEmpty() || bucket.contains(u'/') || path.startsWith(u'/') || path.endsWith(u'/'))
    return {};
  for (const QString& segment : path.split(u'/'))
    if (segment.isEmpty() || segment == u"." || segment == u"..") return {};
  for (const QChar c : bucket + path) {
    const char16_t code = c.unicode();
    const bool letter = (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z') || (code >= '0' && code <= '9');
    if (!letter && !QLatin1String(kAllowed).contains(c)) return {};
  }
  // Guest documents lie under a name of their own.
  const QString place = bucket == u"guest_documents" ? QStringLiteral("guest-documents") : bucket;
  return "/storage/v1/object/" + before + place.toUtf8().toPercentEncoding() + '/' +
         path.toUtf8().toPercentEncoding("/");
}

StorageError badURL() {
  return {StorageError::Case::badURL,
          0,
          {},
          SBError::refused(QStringLiteral("The file's path is not one that the server takes"),
                           QStringLiteral("The file's name cannot be used on the server. It stays on this computer."))};
}

StorageError failed(StorageError::Case kind, const SBError& cause) {
  if (cause.kind == SBError::Case::notAuthenticated) return {StorageError::Case::notAuthenticated, 0, {}, cause};
  const bool replied = cause.kind == SBError::Case::serverError;
  return {kind, replied ? cause.status : 0, replied ? cause.message : QString(), cause};
}

StorageError tooLarge() {
  SBError cause = SBError::refused(
      QStringLiteral("Payload too large"),
      QStringLiteral("The file is larger than 50 MB, which the server does not take. It stays on this computer."));
  cause.status = 413;
  cause.code = QStringLiteral("EntityTooLarge");
  return {StorageError::Case::uploadFailed, 413, cause.message, cause};
}

}  // namespace

bool StorageError::isMissing() const {
  if (cause.kind != SBError::Case::serverError || kind == Case::badURL) return false;
  return cause.code == u"NoSuchKey" || (status == 404 && cause.reason == u"Object not found") ||
         (status == 404 && cause.code == u"not_found" && cause.reason != u"Bucket not found");
}

QString SupabaseStorage::contentType(const QString& path) {
  static const QHash<QString, QString> types{{QStringLiteral("jpg"), QStringLiteral("image/jpeg")},
                                             {QStringLiteral("jpeg"), QStringLiteral("image/jpeg")},
                                             {QStringLiteral("png"), QStringLiteral("image/png")},
                                             {QStringLiteral("heic"), QStringLiteral("image/heic")},
                                             {QStringLiteral("webp"), QStringLiteral("image/webp")},
                                             {QStringLiteral("pdf"), QStringLiteral("application/pdf")}};
  return types.value(QFileInfo(path).suffix().toLower(), QStringLiteral("application/octet-stream"));
}

StorageTask<QString> SupabaseStorage::upload(QString bucket, QString path, QByteArray content, QString content_type) {
  HttpRequest request;
  request.body = content.isNull() ? QByteArrayLiteral("") : std::move(content);
  const qint64 size = request.body.size();
  return send(std::move(bucket), std::move(path), std::move(request), size, std::move(content_type));
}

StorageTask<QString> SupabaseStorage::uploadFile(QString bucket, QString path, QString file, QString content_type) {
  HttpRequest request;
  const qint64 size = QFileInfo(file).size();
  request.bodyFile = std::move(file);
  return send(std::move(bucket), std::move(path), std::move(request), size, std::move(content_type));
}

StorageTask<QString> SupabaseStorage::send(QString bucket, QString path, HttpRequest request, qint64 size,
                                           QString content_type) {
  const auto alive = alive_;
  const QByteArray address = objectPath({}, bucket, path);
  if (!client_.isAuthenticated())
    co_return std::unexpected(failed(StorageError::Case::uploadFailed, SBError::notAuthenticated()));
  if (address.isEmpty()) co_return std::unexpected(badURL());
  if (size > kMaxBytes) co_return std::unexpected(tooLarge());

  // The service refuses two uploads to one path at a time.
  const QString key = bucket + u'/' + path;
  while (uploading_.contains(key)) {
    QFuture<void> before = uploading_.value(key);
    co_await before;
    if (!*alive)
      co_return std::unexpected(
          failed(StorageError::Case::uploadFailed, SBError::network(QStringLiteral("The request was given up."))));
  }
  QPromise<void> turn;
  turn.start();
  uploading_.insert(key, turn.future());

  request.method = "POST";
  request.url = client_.config().address(address);
  request.headers = {{"Content-Type", content_type.toLatin1()}, {"x-upsert", "true"}};
  request.idle = std::chrono::seconds(60);
  request.deadline = std::chrono::milliseconds(0);
  const auto reply = co_await client_.sendAuthorized(std::move(request), QStringLiteral("file upload"));
  if (*alive) uploading_.remove(key);
  turn.finish();
  if (!reply) co_return std::unexpected(failed(StorageError::Case::uploadFailed, reply.error()));
  // What the server serves may be the old bytes for a while.
  if (*alive) cache_.remove(bucket, path);
  co_return path;
}

StorageTask<StoredFile> SupabaseStorage::download(QString bucket, QString path, bool revalidate) {
  const auto alive = alive_;
  // The plain address would take an expired token for no token at all, and hide the bucket.
  const QByteArray address = objectPath("authenticated/", bucket, path);
  if (!client_.isAuthenticated())
    co_return std::unexpected(failed(StorageError::Case::downloadFailed, SBError::notAuthenticated()));
  if (address.isEmpty()) co_return std::unexpected(badURL());
  auto cached = cache_.find(bucket, path);
  if (cached && !revalidate) co_return StoredFile{cached->content};

  HttpRequest request;
  request.url = client_.config().address(address);
  request.idle = std::chrono::seconds(60);
  request.deadline = std::chrono::milliseconds(0);
  if (cached && !cached->etag.isEmpty()) request.headers = {{"If-None-Match", cached->etag}};
  auto reply = co_await client_.sendAuthorized(std::move(request), QStringLiteral("file download"), 304);
  if (!reply) {
    if (cached && reply.error().remedy == SBError::Remedy::retryLater) co_return StoredFile{cached->content};
    co_return std::unexpected(failed(StorageError::Case::downloadFailed, reply.error()));
  }
  if (reply->status == 304 && cached) co_return StoredFile{cached->content};
  if (*alive) cache_.keep(bucket, path, {reply->body, reply->header("etag")});
  co_return StoredFile{reply->body};
}

StorageTask<bool> SupabaseStorage::exists(QString bucket, QString path) {
  const QByteArray address = objectPath("authenticated/", bucket, path);
  if (!client_.isAuthenticated())
    co_return std::unexpected(failed(StorageError::Case::downloadFailed, SBError::notAuthenticated()));
  if (address.isEmpty()) co_return std::unexpected(badURL());
  HttpRequest request;
  request.url = client_.config().address(address);
  // One byte tells, with the reason in words where there is none; a HEAD request would be answered without.
  request.headers = {{"Range", "bytes=0-0"}};
  const auto reply = co_await client_.sendAuthorized(std::move(request), QStringLiteral("file check"), 416);
  if (reply) co_return true;
  StorageError error = failed(StorageError::Case::downloadFailed, reply.error());
  if (error.isMissing()) co_return false;
  co_return std::unexpected(std::move(error));
}

StorageTask<void> SupabaseStorage::remove(QString bucket, QString path) {
  const auto alive = alive_;
  const QByteArray address = objectPath({}, bucket, path);
  if (!client_.isAuthenticated())
    co_return std::unexpected(failed(StorageError::Case::uploadFailed, SBError::notAuthenticated()));
  if (address.isEmpty()) co_return std::unexpected(badURL());
  HttpRequest request;
  request.method = "DELETE";
  request.url = client_.config().address(address);
  const auto reply = co_await client_.sendAuthorized(std::move(request), QStringLiteral("file deletion"));
  if (*alive) cache_.remove(bucket, path);
  if (!reply) {
    StorageError error = failed(StorageError::Case::uploadFailed, reply.error());
    if (!error.isMissing()) co_return std::unexpected(std::move(error));
  }
  co_return std::expected<void, StorageError>{};
}

}  // namespace thalvorn
