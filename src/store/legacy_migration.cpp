#include "store/legacy_migration.h"

#include <fmt/format.h>

#include <QtCore/QLoggingCategory>
#include <QtCore/QSettings>
#include <QtCore/QStringList>
#include <array>
#include <future>
#include <set>

namespace thalvorn {
namespace {

Q_LOGGING_CATEGORY(logMigration, "thalvorn.store.migration")

constexpr std::string_view kMarker = "thalvorn.preferencesMigrated";

/// What is logged for the collections that held photos and files inline.
struct BlobTexts {
  std::string_view suffix;
  std::string_view collection;
  std::string_view moved;
};
constexpr std::array kBlobs{
    BlobTexts{"_tasks", "tasks", ""}, BlobTexts{"_documents", "documents", "📦 migrated legacy ship documents to disk"},
    BlobTexts{"_guests", "guests", "📦 migrated legacy guest photos to disk"}, BlobTexts{"_crew", "crew", ""}};

const BlobTexts* blobTexts(std::string_view suffix) {
  const auto found = std::ranges::find(kBlobs, suffix, &BlobTexts::suffix);
  return found == kBlobs.end() ? nullptr : &*found;
}

void logLine(const std::string& line) { qCInfo(logMigration).noquote() << QString::fromStdString(line); }

void logPurged(std::string_view suffix, const std::string& key, std::size_t bytes) {
  if (const BlobTexts* texts = blobTexts(suffix))
    logLine(fmt::format("🧹 purged {} blob: {} → {} bytes", texts->collection, key, bytes));
}

/// Moves content of one record after the other and remembers what became of it.
template <class T>
class Mover {
 public:
  explicit Mover(const AttachmentStore& files) : files_(files) {}

  /// True when `content` now lies in a file named by `path`, and was emptied.
  bool move(std::string_view bucket, Bytes& content, std::string& path, std::string_view extension = {}) {
    const auto stored = files_.put(bucket, content.data, extension);
    if (!stored) {
      moves_.failures.push_back(stored.error().message);
      return false;
    }
    path = *stored;
    moves_.bytes += content.data.size();
    content.data.clear();
    return true;
  }

  /// As above for a record that holds its content in an optional field. A path that is there already names the newer
  /// file; the inline remains of it go.
  bool move(std::string_view bucket, std::optional<Bytes>& content, std::string& path,
            std::string_view extension = {}) {
    if (!content) return false;
    if (path.empty() && !content->data.empty() && !move(bucket, *content, path, extension)) return false;
    content.reset();
    return true;
  }

  template <class MoveOne>
  ContentMoves<T> all(const std::vector<T>& records, MoveOne move_one) {
    for (const T& record : records) {
      T after = record;
      if (move_one(after)) moves_.records.emplace_back(record, std::move(after));
    }
    return std::move(moves_);
  }

 private:
  const AttachmentStore& files_;
  ContentMoves<T> moves_;
};

std::string extensionOf(const std::string& file_name) {
  const std::size_t dot = file_name.rfind('.');
  return dot == std::string::npos ? std::string{} : file_name.substr(dot + 1);
}

std::string textOf(const QVariant& value) {
  if (value.typeId() == QMetaType::QStringList) return value.toStringList().join(QLatin1Char(',')).toStdString();
  if (value.typeId() == QMetaType::QByteArray) return value.toByteArray().toStdString();
  return value.toString().toStdString();
}

std::set<std::string> idsIn(const StoredState& state, const std::string& suffix) {
  std::set<std::string> ids;
  const auto segments = state.segments.find(suffix);
  if (segments != state.segments.end())
    for (const std::string& segment : segments->second)
      if (const auto elements = splitJsonList(segment))
        for (const RawElement& element : *elements) ids.insert(element.id);
  // A record that was deleted since must not come back either.
  for (const JournalEntry& entry : state.journal)
    for (const EntryChange& change : entry.changes)
      if (change.suffix == suffix) ids.insert(change.id.toString());
  return ids;
}

/// Calls an operation of the cache that ends in `done` and waits; true when it is on disk.
template <class Operation>
bool isDone(Operation operation) {
  const auto written = std::make_shared<std::promise<bool>>();
  operation([written](const auto& outcome) { written->set_value(outcome.has_value()); });
  return written->get_future().get();
}

/// False when the blob has to stay.
bool adopt(LocalCache& cache, const std::string& prefix, const std::string& suffix, const std::string& blob,
           Timestamp now) {
  const std::string key = prefix + suffix;
  const auto elements = splitJsonList(blob);
  if (!elements) {
    logLine(fmt::format("❌ decode failed for {}, key={}, bytes={}", suffix, key, blob.size()));
    return isDone([&](const auto& done) { cache.keepCorrupt(key, blob, elements.error().message(), done); });
  }
  const auto state = cache.load(prefix);
  if (!state) return false;
  const std::set<std::string> present = idsIn(*state, suffix);
  JournalEntry entry{.prefix = prefix, .at = now, .label = "Data of an earlier version", .changes = {}};
  for (const RawElement& element : *elements) {
    const auto id = Uuid::parse(element.id);
    if (!id) {
      const bool kept =
          isDone([&](const auto& done) { cache.keepCorrupt(key, std::string(element.bytes), "no identifier", done); });
      if (!kept) return false;
    } else if (!present.contains(id->toString())) {
      entry.changes.push_back({.suffix = suffix, .id = *id, .before = {}, .after = std::string(element.bytes)});
    }
  }
  if (entry.changes.empty()) return true;
  return isDone([&](const auto& done) { cache.append(std::move(entry), done); });
}

}  // namespace

ContentMoves<MaintenanceTask> moveInlineContent(const std::vector<MaintenanceTask>& tasks,
                                                const AttachmentStore& files) {
  Mover<MaintenanceTask> mover(files);
  return mover.all(tasks, [&](MaintenanceTask& task) {
    bool changed = false;
    for (Bytes& photo : task.photoData) {
      std::string path;
      if (photo.data.empty() || !mover.move("task_photos", photo, path)) continue;
      task.photoPaths.push_back(std::move(path));
      changed = true;
    }
    const auto emptied = std::erase_if(task.photoData, [](const Bytes& photo) { return photo.data.empty(); });
    return changed || emptied > 0;
  });
}

ContentMoves<ShipDocument> moveInlineContent(const std::vector<ShipDocument>& documents, const AttachmentStore& files) {
  Mover<ShipDocument> mover(files);
  return mover.all(documents, [&](ShipDocument& document) {
    return mover.move("ship_documents", document.fileData, document.filePath, extensionOf(document.fileName));
  });
}

ContentMoves<GuestProfile> moveInlineContent(const std::vector<GuestProfile>& guests, const AttachmentStore& files) {
  Mover<GuestProfile> mover(files);
  return mover.all(guests, [&](GuestProfile& guest) {
    bool changed = mover.move("guest_photos", guest.photoData, guest.photoPath);
    for (GuestDocument& document : guest.documents)
      changed |= mover.move("guest_documents", document.documentData, document.documentPath,
                            extensionOf(document.documentName));
    return changed;
  });
}

ContentMoves<CrewMember> moveInlineContent(const std::vector<CrewMember>& crew, const AttachmentStore& files) {
  Mover<CrewMember> mover(files);
  return mover.all(crew, [&](CrewMember& member) {
    bool changed = false;
    for (CrewCertification& certificate : member.certifications)
      changed |= mover.move("cert_attachments", certificate.documentData, certificate.documentPath,
                            extensionOf(certificate.documentName));
    return changed;
  });
}

ContentMoves<ShipContact> moveInlineContent(const std::vector<ShipContact>& contacts, const AttachmentStore& files) {
  Mover<ShipContact> mover(files);
  return mover.all(contacts, [&](ShipContact& contact) {
    bool changed = false;
    for (VendorComplianceDocument& document : contact.complianceDocuments)
      changed |= mover.move("vendor_compliance", document.documentData, document.documentPath,
                            extensionOf(document.documentName));
    return changed;
  });
}

void logMovedContent(std::string_view suffix, const std::string& key, std::size_t bytes) {
  const BlobTexts* texts = blobTexts(suffix);
  if (!texts || bytes == 0) return;
  if (!texts->moved.empty()) logLine(std::string(texts->moved));
  logPurged(suffix, key, bytes);
}

std::map<std::string, std::string> preferencesOfDomain(const std::string& domain) {
  const QSettings settings(QSettings::IniFormat, QSettings::UserScope, QString::fromStdString(domain));
  std::map<std::string, std::string> values;
  for (const QString& key : settings.allKeys()) values[key.toStdString()] = textOf(settings.value(key));
  return values;
}

void migratePreferences(LocalCache& cache, const std::string& previous_domain) {
  if (previous_domain.empty() || cache.isReadOnly() || cache.preference(kMarker)) return;
  const auto values = preferencesOfDomain(previous_domain);
  for (const auto& [key, value] : values) cache.setPreference(key, value);
  if (!values.empty()) logLine("✅ Migrated UserDefaults from " + previous_domain);
  cache.setPreference(std::string(kMarker), previous_domain);
}

void adoptLegacyEntries(LocalCache& cache, const std::string& prefix, std::span<const std::string_view> suffixes,
                        Timestamp now) {
  for (const std::string_view suffix : suffixes) {
    const std::string key = prefix + std::string(suffix);
    const auto blob = cache.preference(key);
    if (!blob || !adopt(cache, prefix, std::string(suffix), *blob, now)) continue;
    cache.setPreference(key, std::nullopt);
    logPurged(suffix, key, blob->size());
  }
}

}  // namespace thalvorn
