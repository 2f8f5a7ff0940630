#include "sync/file_sync.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "base/describe.h"
#include "sync/file_words.h"

namespace thalvorn {
namespace {

constexpr std::chrono::milliseconds kGather{500};
constexpr std::chrono::milliseconds kFirstPause{60'000};
constexpr std::chrono::milliseconds kLongestPause{3'600'000};
constexpr std::string_view kVesselPhotos = "vessel_photos";
constexpr std::string_view kTakenOut = "_filesTakenOut";

QString qt(const std::string& text) { return QString::fromStdString(text); }

template <class V>
inline constexpr bool isRecordList = false;
template <class E>
inline constexpr bool isRecordList<std::vector<E>> = DescribedRecord<E>;

/// Every path of a file in a record and its sub-records, by the names of the fields: "photoPath", "documentPaths"…
template <class T>
void collectPaths(const T& record, std::set<std::string>& paths) {
  boost::mp11::mp_for_each<FieldList<T>>([&](auto field) {
    constexpr std::string_view name = field.name;
    const auto& value = record.*field.pointer;
    using Value = std::remove_cvref_t<decltype(value)>;
    if constexpr (std::is_same_v<Value, std::string>) {
      if (name.ends_with("Path") && !value.empty()) paths.insert(value);
    } else if constexpr (std::is_same_v<Value, std::vector<std::string>>) {
      if (name.ends_with("Paths")) paths.insert(value.begin(), value.end());
    } else if constexpr (isRecordList<Value>) {
      for (const auto& element : value) collectPaths(element, paths);
    }
  });
}

template <class T>
std::vector<FileSync::NamedFile> filesOf(const AppViewModel& model, const T& record) {
  std::set<std::string> paths;
  collectPaths(record, paths);
  std::string owner = recordName(record);
  if constexpr (std::is_same_v<T, VesselProfile>) {
    if (const Vessel* vessel = model.vessels().find(record.vesselID)) owner = vessel->name;
  }
  std::vector<FileSync::NamedFile> files;
  for (const std::string& path : paths) {
    const auto slash = path.find('/');
    if (slash == std::string::npos || slash == 0 || slash + 1 == path.size()) continue;
    const std::string bucket = path.substr(0, slash);
    std::string object = model.accountID() + path.substr(slash);
    if constexpr (std::is_same_v<T, VesselProfile>) {
      if (bucket == kVesselPhotos) object = record.vesselID.toString() + "/photo.jpg";
    }
    files.push_back({.path = path, .bucket = bucket, .objectPath = std::move(object), .owner = owner});
  }
  return files;
}

std::string folderBeside(const AppViewModel& model, const char* name) {
  return (model.cache().file().parent_path() / name).string();
}

}  // namespace

FileSync::FileSync(AppViewModel& model, SupabaseClient& client, SyncLog& log, const Clock& clock, Timing& timing,
                   QObject* parent)
    : QObject(parent),
      model_(model),
      client_(client),
      log_(log),
      timing_(timing),
      cache_(qt(folderBeside(model, "downloads"))),
      storage_(client, cache_),
      queue_(std::make_unique<FileTransferQueue>(storage_, client, clock, timing,
                                                 qt(folderBeside(model, "transfers.json")))) {
  fetchSoon_.setSingleShot(true);
  fetchSoon_.setInterval(kGather);
  connect(&fetchSoon_, &QTimer::timeout, this, [this] {
    fetchMissing();
    if (!fetching_) Q_EMIT changed();
  });
  connect(&model_, &AppViewModel::edited, this, &FileSync::onEdited);
  connect(queue_.get(), &FileTransferQueue::changed, this, &FileSync::changed);
  connect(&model_, &AppViewModel::prefixChanged, this, &FileSync::changed);
  queue_->setAccount(qt(model_.accountID()));
  connect(&model_, &AppViewModel::accountIDChanged, this, [this] {
    queue_->setAccount(qt(model_.accountID()));
    Q_EMIT changed();
  });
  connect(queue_.get(), &FileTransferQueue::done, this,
          [this](const FileTransfer& transfer) { log_.say(doneLine(transfer)); });
  connect(queue_.get(), &FileTransferQueue::failed, this,
          [this](const FileTransfer& transfer, const StorageError& error) { log_.say(failedLine(transfer, error)); });
}

FileSync::~FileSync() { *alive_ = false; }

void FileSync::start() {
  notThere_.clear();
  queueUnsent();
  goOn();
  restoreVesselPhotos();
}

QCoro::Task<void> FileSync::restoreVesselPhotos() {
  const auto alive = alive_;
  const std::string account = model_.accountID();
  if (account.empty() || !client_.isAuthenticated() || !model_.rights(AppTabPermissionKey::tasks).write) co_return;
  std::vector<NamedFile> photos;
  for (const VesselProfile& profile : model_.vesselProfiles().records())
    for (NamedFile& file : filesOf(model_, profile))
      if (file.bucket == kVesselPhotos && model_.attachments().absolute(file.path)) photos.push_back(std::move(file));
  for (const NamedFile& photo : photos) {
    const auto there = co_await storage_.exists(qt(photo.bucket), qt(photo.objectPath));
    if (!*alive || model_.accountID() != account) co_return;
    const auto local = model_.attachments().absolute(photo.path);
    if (!there || *there || !local || isQueued(photo)) continue;
    log_.say("📤 uploadVesselPhoto: " + photo.objectPath + " (force re-seed)");
    queue_->upload(qt(account), qt(photo.bucket), qt(photo.objectPath), qt(local->string()), qt(photo.owner));
  }
}

bool FileSync::isQueued(const NamedFile& file) const {
  return std::ranges::any_of(transfers(), [&](const FileTransfer& transfer) {
    return !transfer.isDeletion() && transfer.bucket == file.bucket && transfer.path == file.objectPath;
  });
}

void FileSync::goOn() {
  queue_->process();
  fetchSoon_.start();
}

void FileSync::queueUnsent() {
  if (model_.accountID().empty() || model_.staysOnThisComputer()) return;
  forEachKind([&]<class T>(std::type_identity<T>) {
    for (const Unsent<T>& record : model_.unsent<T>()) {
      if (!record.current) continue;
      std::set<std::string> known;
      if (record.base) collectPaths(*record.base, known);
      for (const NamedFile& file : filesOf(model_, *record.current)) {
        if (known.contains(file.path) || isQueued(file)) continue;
        if (const auto local = model_.attachments().absolute(file.path)) queueUpload(file, *local);
      }
    }
  });
}

std::vector<FileTransfer> FileSync::transfers() const {
  std::vector<FileTransfer> own = queue_->transfers();
  std::erase_if(own, [this](const FileTransfer& transfer) { return !isOwn(transfer); });
  return own;
}

bool FileSync::isOwn(const FileTransfer& transfer) const {
  return transfer.userID == model_.prefix() && transfer.accountID == model_.accountID();
}

int FileSync::waitingCount() const {
  return static_cast<int>(std::ranges::count_if(
      queue_->transfers(), [this](const FileTransfer& transfer) { return !transfer.isParked && isOwn(transfer); }));
}

int FileSync::failedCount() const {
  return static_cast<int>(std::ranges::count_if(
      queue_->transfers(), [this](const FileTransfer& transfer) { return transfer.isParked && isOwn(transfer); }));
}

void FileSync::noteDocument(const RecordChange& change) const {
  const auto& document = std::get<ShipDocument>(*change.after);
  const std::string operation = change.before ? "updateDocument" : "addDocument";
  log_.say("📄 addDocument: filePath='" + document.filePath +
           "', authenticated=" + (client_.isAuthenticated() ? "true" : "false"));
  if (document.filePath.empty()) return;
  if (model_.attachments().absolute(document.filePath)) {
    log_.say("📤 " + operation + ": queuing Storage upload for doc " + document.id.toString());
  } else {
    log_.say("⚠️ uploadShipDocumentFile: no disk URL for filePath '" + document.filePath + "'");
  }
}

bool FileSync::queueUpload(const NamedFile& file, const std::filesystem::path& local) {
  std::error_code ignored;
  const auto bytes = std::filesystem::file_size(local, ignored);
  log_.say(queuedLine(file.bucket, file.objectPath, ignored ? 0 : bytes));
  return queue_->upload(qt(model_.accountID()), qt(file.bucket), qt(file.objectPath), qt(local.string()),
                        qt(file.owner));
}

void FileSync::onEdited(const Edit& edit) {
  if (model_.accountID().empty() || model_.staysOnThisComputer()) return;
  bool missing = false;
  if (!edit.isReceived) noteTakenOut(edit);
  for (const RecordChange& change : edit.changes) {
    if (!change.after) continue;
    std::visit(
        [&]<class T>(const T& after) {
          std::set<std::string> before;
          if (change.before) collectPaths(std::get<T>(*change.before), before);
          const std::vector<NamedFile> files = filesOf(model_, after);
          const bool isNew =
              std::ranges::any_of(files, [&](const NamedFile& file) { return !before.contains(file.path); });
          if constexpr (std::is_same_v<T, ShipDocument>)
            if (!edit.isReceived && isNew) noteDocument(change);
          for (const NamedFile& file : files) {
            if (before.contains(file.path)) continue;
            const auto local = model_.attachments().absolute(file.path);
            if (!local) {
              missing = true;
            } else if (!edit.isReceived && !queueUpload(file, *local)) {
              log_.say("⚠️ the upload of a file could not be noted; it is tried again when the record changes");
            }
          }
        },
        *change.after);
  }
  if (missing) fetchSoon_.start();
}

void FileSync::noteTakenOut(const Edit& edit) {
  std::set<NamedFile> out;
  for (const RecordChange& change : edit.changes) {
    if (!change.before) continue;
    std::visit(
        [&]<class T>(const T& before) {
          std::set<std::string> after;
          if (change.after) collectPaths(std::get<T>(*change.after), after);
          for (NamedFile& file : filesOf(model_, before))
            if (!after.contains(file.path)) out.insert(std::move(file));
        },
        *change.before);
  }
  if (out.empty()) return;
  QJsonArray files = takenOut();
  for (const NamedFile& file : out)
    files.append(QJsonObject{{QStringLiteral("account"), qt(model_.accountID())},
                             {QStringLiteral("path"), qt(file.path)},
                             {QStringLiteral("bucket"), qt(file.bucket)},
                             {QStringLiteral("object"), qt(file.objectPath)}});
  keepTakenOut(files);
}

QJsonArray FileSync::takenOut() const {
  const auto stored = model_.cache().preference(model_.prefix() + std::string(kTakenOut));
  return stored ? QJsonDocument::fromJson(QByteArray::fromStdString(*stored)).array() : QJsonArray();
}

void FileSync::keepTakenOut(const QJsonArray& files) {
  const std::string key = model_.prefix() + std::string(kTakenOut);
  if (files.isEmpty()) {
    model_.cache().setPreference(key, std::nullopt);
  } else {
    model_.cache().setPreference(key, QJsonDocument(files).toJson(QJsonDocument::Compact).toStdString());
  }
}

void FileSync::deleteTakenOut() {
  const QJsonArray files = takenOut();
  if (files.isEmpty() || model_.accountID().empty() || model_.dirtyCount() + model_.unsavedCount() > 0) return;
  std::set<std::pair<std::string, std::string>> named;
  forEachKind([&]<class T>(std::type_identity<T>) {
    for (const T& record : model_.collection<T>().records())
      for (const NamedFile& file : filesOf(model_, record)) named.emplace(file.bucket, file.objectPath);
  });
  const auto mayComeBack = [this](const std::string& path) {
    return std::ranges::any_of(model_.conflicts().records(), [&](const ConflictNote& note) {
      return !note.settled && note.other.find(path) != std::string::npos;
    });
  };
  QJsonArray kept;
  for (const QJsonValue& file : files) {
    const QString account = file[QStringLiteral("account")].toString();
    const QString bucket = file[QStringLiteral("bucket")].toString();
    const QString object = file[QStringLiteral("object")].toString();
    if (account.toStdString() != model_.accountID() ||
        mayComeBack(file[QStringLiteral("path")].toString().toStdString())) {
      kept.append(file);
    } else if (!named.contains({bucket.toStdString(), object.toStdString()}) &&
               !queue_->remove(account, bucket, object)) {
      kept.append(file);
    }
  }
  if (kept != files) keepTakenOut(kept);
}

std::vector<FileSync::NamedFile> FileSync::missingFiles() const {
  std::set<NamedFile> missing;
  forEachKind([&]<class T>(std::type_identity<T>) {
    for (const T& record : model_.collection<T>().records())
      for (NamedFile& file : filesOf(model_, record))
        if (!isPutOff(file.path) && !model_.attachments().absolute(file.path)) missing.insert(std::move(file));
  });
  return {missing.begin(), missing.end()};
}

bool FileSync::isPutOff(const std::string& path) const {
  const auto found = notThere_.find(path);
  return found != notThere_.end() && timing_.elapsed() < found->second.notBefore;
}

void FileSync::putOff(const std::string& path) {
  Absence& absence = notThere_[path];
  absence.notBefore =
      timing_.elapsed() + std::min<std::chrono::milliseconds>(kFirstPause * (1 << absence.times), kLongestPause);
  absence.times = std::min(absence.times + 1, 6);
}

QCoro::Task<void> FileSync::fetchMissing() {
  if (fetching_ || !client_.isAuthenticated() || model_.accountID().empty() || model_.staysOnThisComputer()) co_return;
  fetching_ = true;
  const auto alive = alive_;
  const std::string account = model_.accountID();
  for (const NamedFile& file : missingFiles()) {
    // A vessel's photo changes under one path; the others are named by their content.
    const auto stored = co_await storage_.download(qt(file.bucket), qt(file.objectPath), file.bucket == kVesselPhotos);
    if (!*alive) co_return;
    if (model_.accountID() != account) break;
    if (!stored) {
      const std::string reason = stored.error().cause.logLine().toStdString();
      if (file.bucket.starts_with("yard_")) {
        log_.say("Yard file download failed (" + std::to_string(stored.error().status) + ")");
      } else if (file.bucket == kVesselPhotos) {
        log_.say(file.owner + ": photo download failed — " + reason);
      } else {
        log_.say("⚠️ download failed for " + file.bucket + ": " + reason);
      }
      // Whoever added it may still be at sea: the record comes before the file.
      putOff(file.path);
      continue;
    }
    const auto bytes = std::span(reinterpret_cast<const std::uint8_t*>(stored->content.constData()),
                                 static_cast<std::size_t>(stored->content.size()));
    const auto dot = file.path.rfind('.');
    const auto kept = model_.attachments().put(
        file.bucket, bytes,
        dot == std::string::npos ? std::string_view() : std::string_view(file.path).substr(dot + 1));
    if (!kept || *kept != file.path) {
      // Another photo lies there by now: the record that names it comes with the next exchange.
      putOff(file.path);
      continue;
    }
    notThere_.erase(file.path);
    log_.say((file.bucket == kVesselPhotos ? "⬇️ downloaded vessel photo: " : "⬇️ downloaded file: ") + file.objectPath);
  }
  fetching_ = false;
  Q_EMIT changed();
}

}  // namespace thalvorn
