#pragma once

#include <QObject>
#include <QTimer>
#include <memory>
#include <set>
#include <string>

#include "backend/download_cache.h"
#include "backend/file_transfer_queue.h"
#include "backend/supabase_storage.h"
#include "store/app_view_model.h"
#include "sync/sync_log.h"

namespace thalvorn {

/// Moves the photos and papers that records name between this computer and the buckets, apart from the records
/// themselves: what is added here goes up by itself, if need be after the next start; what others added comes down once
/// their records name it.
///
/// A file is named by its content ("task_photos/<digest>.jpg") and lies in the bucket below the account
/// ("<account>/<digest>.jpg"); a vessel's photo lies below the vessel, as "<vessel>/photo.jpg".
class FileSync : public QObject {
  Q_OBJECT

 public:
  FileSync(AppViewModel& model, SupabaseClient& client, SyncLog& log, const Clock& clock, Timing& timing,
           QObject* parent = nullptr);
  ~FileSync() override;

  /// Starts on what waits, both ways; when somebody has signed in, or the network has come back.
  void start();
  /// Another user may sign in next: nothing that was fetched for this one stays in the cache of downloads.
  void forgetDownloads() { cache_.clear(); }
  const FileTransferQueue& queue() const { return *queue_; }

  /// A file that a record names.
  struct NamedFile {
    std::string path;  ///< as the record has it: "<bucket>/<name>"
    std::string bucket;
    std::string objectPath;  ///< inside the bucket
    std::string owner;       ///< what a person calls the record
    friend auto operator<=>(const NamedFile&, const NamedFile&) = default;
  };

 private:
  void onEdited(const Edit& edit);
  void onUploaded(const QString& bucket, const QString& path);
  QCoro::Task<void> fetchMissing();
  std::vector<NamedFile> missingFiles() const;

  AppViewModel& model_;
  SupabaseClient& client_;
  SyncLog& log_;
  DownloadCache cache_;
  SupabaseStorage storage_;
  std::unique_ptr<FileTransferQueue> queue_;
  QTimer fetchSoon_;
  bool fetching_ = false;
  std::set<std::string> notThere_;  ///< paths that the server did not have, in this session
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace thalvorn
