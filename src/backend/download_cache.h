#pragma once

#include <QByteArray>
#include <QDir>
#include <QString>
#include <optional>

namespace thalvorn {

/// Files that were downloaded before, by bucket and path, in a folder of their own (files 0600). A file appears whole
/// or not at all; when all of them are larger than the limit, those not used for longest go. Losing the folder loses
/// nothing. Each user of the program needs a folder of his own.
class DownloadCache {
 public:
  struct Entry {
    QByteArray content;
    QByteArray etag;  ///< by which the server tells whether it has changed; may be empty
  };

  explicit DownloadCache(const QString& folder, qint64 max_bytes = 512LL * 1024 * 1024);

  std::optional<Entry> find(const QString& bucket, const QString& path) const;
  /// A file that cannot be written is not kept; nothing depends on it.
  void keep(const QString& bucket, const QString& path, const Entry& entry);
  void remove(const QString& bucket, const QString& path);
  void clear();

 private:
  QString fileFor(const QString& bucket, const QString& path) const;
  void makeRoom() const;

  QDir folder_;
  qint64 maxBytes_;
};

}  // namespace thalvorn
