#include "sync/file_sync.h"

#include <algorithm>

#include "base/describe.h"

namespace thalvorn {
namespace {

constexpr std::chrono::milliseconds kGather{500};
constexpr std::string_view kVesselPhotos = "vessel_photos";

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
std::vector<FileSync::NamedFile> filesOf(const T& record, const std::string& account) {
  std::set<std::string> paths;
  collectPaths(record, paths);
  std::vector<FileSync::NamedFile> files;
  for (const std::string& path : paths) {
    const auto slash = path.find('/');
    if (slash == std::string::npos || slash == 0 || slash + 1 == path.size()) continue;
    const std::string bucket = path.substr(0, slash);
    std::string object = account + path.substr(slash);
    if constexpr (std::is_same_v<T, VesselProfile>) {
      if (bucket == kVesselPhotos) object = record.vesselID.toString() + "/photo.jpg";
    }
    files.push_back({.path = path, .bucket = bucket, .objectPath = std::move(object), .owner = recordName(record)});
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
      cache_(qt(folderBeside(model, "downloads"))),
      storage_(client, cache_),
      queue_(std::make_unique<FileTransferQueue>(storage_, client, clock, timing,
                                                 qt(folderBeside(model, "transfers.json")))) {
  fetchSoon_.setSingleShot(true);
  fetchSoon_.setInterval(kGather);
  connect(&fetchSoon_, &QTimer::timeout, this, [this] { fetchMissing(); });
  connect(&model_, &AppViewModel::edited, this, &FileSync::onEdited);
  connect(queue_.get(), &FileTransferQueue::uploaded, this, &FileSync::onUploaded);
}

FileSync::~FileSync() { *alive_ = false; }

void FileSync::start() {
  notThere_.clear();
  queue_->process();
  fetchSoon_.start();
}

void FileSync::onEdited(const Edit& edit) {
  if (model_.accountID().empty() || model_.staysOnThisComputer()) return;
  const std::string account = model_.accountID();
  bool missing = false;
  for (const RecordChange& change : edit.changes) {
    if (!change.after) continue;
    std::visit(
        [&]<class T>(const T& after) {
          std::set<std::string> before;
          if (change.before) collectPaths(std::get<T>(*change.before), before);
          for (const NamedFile& file : filesOf(after, account)) {
            if (before.contains(file.path)) continue;
            const auto local = model_.attachments().absolute(file.path);
            if (!local) {
              missing = true;
              continue;
            }
            log_.say("📤 queuing upload of " + file.bucket + " for " + file.owner);
            if (!queue_->upload(qt(account), qt(file.bucket), qt(file.objectPath), qt(local->string())))
              log_.say("⚠️ the upload of a file could not be noted; it is tried again when the record changes");
          }
        },
        *change.after);
  }
  if (missing) fetchSoon_.start();
}

void FileSync::onUploaded(const QString& bucket, const QString& path) {
  const QString what = bucket == u"vessel_photos"       ? QStringLiteral("✅ vessel photo uploaded: ")
                       : bucket == u"cert_attachments"  ? QStringLiteral("📎 uploaded cert attachment: ")
                       : bucket == u"guest_documents"   ? QStringLiteral("📎 uploaded guest document: ")
                       : bucket == u"vendor_compliance" ? QStringLiteral("📎 uploaded vendor compliance document: ")
                                                        : QStringLiteral("📎 uploaded file of %1: ").arg(bucket);
  log_.say(what + path);
}

std::vector<FileSync::NamedFile> FileSync::missingFiles() const {
  std::set<NamedFile> missing;
  forEachKind([&]<class T>(std::type_identity<T>) {
    for (const T& record : model_.collection<T>().records())
      for (NamedFile& file : filesOf(record, model_.accountID()))
        if (!notThere_.contains(file.path) && !model_.attachments().absolute(file.path))
          missing.insert(std::move(file));
  });
  return {missing.begin(), missing.end()};
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
      notThere_.insert(file.path);
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
      notThere_.insert(file.path);
      continue;
    }
    log_.say((file.bucket == kVesselPhotos ? "⬇️ downloaded vessel photo: " : "⬇️ downloaded file: ") + file.objectPath);
  }
  fetching_ = false;
}

}  // namespace thalvorn
