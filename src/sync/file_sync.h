#pragma once

#include <QJsonArray>
#include <QObject>
#include <QTimer>
#include <filesystem>
#include <map>
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
  /// Goes on with what waits, both ways; after every exchange of records.
  void goOn();
  /// Deletes from the buckets what edits made here took out of their records, once all that was done here has been
  /// sent, unless a record names it again or a conflict that is open could bring it back. After a whole exchange alone:
  /// what others named since is known then.
  void deleteTakenOut();
  /// Another user may sign in next: nothing that was fetched for this one stays in the cache of downloads.
  void forgetDownloads() { cache_.clear(); }

  /// What of the user whose fleet is open has not gone up yet, oldest first.
  std::vector<FileTransfer> transfers() const;
  /// How many of them go up by themselves, and how many cannot as things are.
  int waitingCount() const;
  int failedCount() const;
  /// Files are on their way at this moment, up or down.
  bool isMoving() const { return fetching_ || fetchSoon_.isActive() || (queue_->isRunning() && !queue_->isPausing()); }
  /// Tries one again at once, or all.
  void retry(const Uuid& id) { queue_->retry(id); }
  void retryAll() { queue_->retryParked(); }
  /// Gives an upload up. The file stays on this computer.
  bool discard(const Uuid& id) { return queue_->discard(id); }

  /// A file that a record names.
  struct NamedFile {
    std::string path;  ///< as the record has it: "<bucket>/<name>"
    std::string bucket;
    std::string objectPath;  ///< inside the bucket
    std::string owner;       ///< what a person calls the record
    friend auto operator<=>(const NamedFile&, const NamedFile&) = default;
  };

 Q_SIGNALS:
  /// What waits is other than it was, or all is done that can be.
  void changed();

 private:
  /// Whether it belongs to the fleet that is open.
  bool isOwn(const FileTransfer& transfer) const;
  void onEdited(const Edit& edit);
  void noteDocument(const RecordChange& change) const;
  bool queueUpload(const NamedFile& file, const std::filesystem::path& local);
  /// Remembers, also over a restart, the files that no longer belong to a record that was edited here.
  void noteTakenOut(const Edit& edit);
  QJsonArray takenOut() const;
  void keepTakenOut(const QJsonArray& files);
  QCoro::Task<void> fetchMissing();
  std::vector<NamedFile> missingFiles() const;
  /// Uploads of records that wait themselves, and were not queued: added before the account was known, or moved out of
  /// the record as the fleet was opened.
  void queueUnsent();
  bool isQueued(const NamedFile& file) const;
  /// Sends the photos again that are here and that the server has lost.
  QCoro::Task<void> restoreVesselPhotos();
  bool isPutOff(const std::string& path) const;
  void putOff(const std::string& path);

  AppViewModel& model_;
  SupabaseClient& client_;
  SyncLog& log_;
  Timing& timing_;
  DownloadCache cache_;
  SupabaseStorage storage_;
  std::unique_ptr<FileTransferQueue> queue_;
  QTimer fetchSoon_;
  bool fetching_ = false;
  struct Absence {
    int times = 0;
    std::chrono::milliseconds notBefore{0};  ///< in `Timing` time
  };
  std::map<std::string, Absence> notThere_;  ///< by path: files that could not be fetched yet
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace thalvorn
