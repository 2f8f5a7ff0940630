#pragma once

#include <QCoro/QCoroTask>
#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backend/supabase_storage.h"
#include "base/describe.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// A file that has to go up, or an object that has to go.
struct FileTransfer {
  Uuid id;
  std::string userID;  ///< who asked; another user's session never carries it out
  std::string accountID;
  std::string bucket;
  std::string path;
  std::string localFile;  ///< empty for a deletion
  Timestamp addedAt;
  std::int64_t attempts = 0;
  std::string problem;    ///< why the last attempt failed, for the user
  bool isParked = false;  ///< failed in a way that trying again does not mend
  std::string name;       ///< what a person calls the record that the file belongs to

  bool isDeletion() const { return localFile.empty(); }
  friend bool operator==(const FileTransfer&, const FileTransfer&) = default;
};
BOOST_DESCRIBE_STRUCT(FileTransfer, (),
                      (id, userID, accountID, bucket, path, localFile, addedAt, attempts, problem, isParked, name))
THALVORN_JSON_RECORD(FileTransfer);

/// What waits to be moved to the buckets, kept in a file of its own (mode 0600) so that a photo taken offline goes up
/// by itself, if need be after the next start. Works one transfer at a time, apart from the records' sync; failures
/// that pass are tried again after growing pauses of at most five minutes.
///
/// A later transfer for a path takes the place of an earlier one. The local file must stay until it is uploaded.
class FileTransferQueue : public QObject {
  Q_OBJECT

 public:
  /// Reads what an earlier run left. A file that cannot be read is put aside, not written over.
  FileTransferQueue(SupabaseStorage& storage, SupabaseClient& client, const Clock& clock, Timing& timing,
                    const QString& file, QObject* parent = nullptr);
  ~FileTransferQueue() override;

  /// Both are durable when they return true. False: the file could not be written, and nothing is queued.
  bool upload(const QString& account, const QString& bucket, const QString& path, const QString& local_file,
              const QString& name = {});
  bool remove(const QString& account, const QString& bucket, const QString& path);

  /// Has only what goes to this account be worked off; what was queued for another one stays until he is in it again.
  void setAccount(const QString& account);
  /// Starts on what waits for the signed-in user; called by itself after `upload`, `remove` and signing in. Call it
  /// when the network returns.
  void process();
  /// Tries a transfer at once, before the others, also a parked one.
  void retry(const Uuid& id);
  /// Gives the parked transfers another chance.
  void retryParked();
  /// Forgets a transfer, for instance a parked one that the user gives up.
  bool discard(const Uuid& id);

  const std::vector<FileTransfer>& transfers() const { return transfers_; }
  bool isRunning() const { return running_; }
  /// Waits before it tries again.
  bool isPausing() const { return pausing_; }

 Q_SIGNALS:
  /// Something was queued, done, parked or put off.
  void changed();
  void done(const thalvorn::FileTransfer& transfer);
  /// Not done this time; the transfer says in `changed` whether it is parked.
  void failed(const thalvorn::FileTransfer& transfer, const thalvorn::StorageError& error);

 private:
  bool add(FileTransfer transfer);
  bool save() const;
  void load();
  QCoro::Task<void> run();
  std::optional<FileTransfer> next() const;
  std::vector<FileTransfer>::iterator find(const Uuid& id);

  SupabaseStorage& storage_;
  SupabaseClient& client_;
  const Clock& clock_;
  Timing& timing_;
  QString file_;
  std::vector<FileTransfer> transfers_;
  std::optional<std::string> account_;  ///< empty: of every account
  bool running_ = false;
  bool pausing_ = false;
  int turn_ = 0;  ///< of `run`; one that wakes from its pause to find a later one does nothing more
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace thalvorn
