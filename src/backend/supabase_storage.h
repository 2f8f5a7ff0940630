#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QHash>
#include <QObject>
#include <QString>
#include <expected>
#include <memory>

#include "backend/download_cache.h"
#include "backend/storage_error.h"
#include "backend/supabase_client.h"

namespace thalvorn {

template <class T>
using StorageTask = QCoro::Task<std::expected<T, StorageError>>;

/// The content of a file as it was stored. A type of its own because an expected QByteArray cannot be awaited:
/// libstdc++ 12 loops while comparing the coroutine's handle.
struct StoredFile {
  QByteArray content;
};

/// Moves the bytes of photos and papers between this computer and the backend's buckets. Every operation may be
/// repeated: an upload replaces what lies at its path, and deleting what is not there succeeds.
///
/// Paths are made of identifiers and letters, digits and -_.!*'() &$@=;:+,? — the user's own file name belongs into the
/// record.
class SupabaseStorage {
 public:
  /// What the buckets take by default; a larger file is refused here, since the server cuts the connection instead.
  static constexpr qint64 kMaxBytes = 50LL * 1024 * 1024;

  SupabaseStorage(SupabaseClient& client, DownloadCache& cache) : client_(client), cache_(cache) {}
  ~SupabaseStorage() { *alive_ = false; }
  SupabaseStorage(const SupabaseStorage&) = delete;
  SupabaseStorage& operator=(const SupabaseStorage&) = delete;

  /// Gives the stored path. One upload to a path goes at a time; the others wait.
  StorageTask<QString> upload(QString bucket, QString path, QByteArray content, QString content_type);
  /// The same with a file of this computer, read as it goes out.
  StorageTask<QString> uploadFile(QString bucket, QString path, QString file, QString content_type);

  /// From the cache when it holds the file. With `revalidate` the server is asked whether it has changed; a network
  /// failure then still gives what the cache holds.
  StorageTask<StoredFile> download(QString bucket, QString path, bool revalidate = false);

  /// Whether the server has the file. What the policies hide counts as missing.
  StorageTask<bool> exists(QString bucket, QString path);

  /// Also forgets the cached copy.
  StorageTask<void> remove(QString bucket, QString path);

  /// The type for a path by its ending, e.g. "image/jpeg"; "application/octet-stream" when it tells none.
  static QString contentType(const QString& path);

 private:
  StorageTask<QString> send(QString bucket, QString path, HttpRequest request, qint64 size, QString content_type);

  SupabaseClient& client_;
  DownloadCache& cache_;
  QHash<QString, QFuture<void>> uploading_;  ///< by bucket and path
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace thalvorn
