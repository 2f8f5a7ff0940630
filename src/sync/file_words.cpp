#include "sync/file_words.h"

#include <algorithm>
#include <array>

namespace thalvorn {
namespace {

struct BucketWords {
  std::string_view bucket;
  std::string_view kind;
  std::string_view done;
  std::string_view failed;
};

constexpr std::array kWords{
    BucketWords{"vessel_photos", "Vessel photo", "✅ vessel photo uploaded: ", "⚠️ vessel photo upload failed: "},
    BucketWords{"ship_documents", "Document", "✅ ship document uploaded: ", "⚠️ ship document upload failed: "},
    BucketWords{"cert_attachments", "Certificate", "📎 uploaded cert attachment: ", "⚠️ cert upload failed: "},
    BucketWords{"guest_documents", "Guest document",
                "📎 uploaded guest document: ", "⚠️ guest document upload failed: "},
    BucketWords{"guest_photos", "Guest photo", "📎 uploaded guest photo: ", "⚠️ guest photo upload failed: "},
    BucketWords{"vendor_compliance", "Vendor document",
                "📎 uploaded vendor compliance document: ", "⚠️ vendor compliance upload failed: "},
    BucketWords{"task_photos", "Task photo", "📎 uploaded task photo: ", "⚠️ task photo upload failed: "},
    BucketWords{"yard_photos", "Yard photo", "📎 uploaded yard photo: ", "⚠️ yard photo upload failed: "},
    BucketWords{"yard_docs", "Yard document", "📎 uploaded yard document: ", "⚠️ yard document upload failed: "},
    BucketWords{"crew_board_docs", "Crew board file", "📎 uploaded crew board file: ", "⚠️ crew board upload failed: "},
};
constexpr BucketWords kOther{"", "File", "📎 uploaded file: ", "⚠️ upload failed: "};

const BucketWords& wordsFor(std::string_view bucket) {
  const auto* found = std::ranges::find(kWords, bucket, &BucketWords::bucket);
  return found == kWords.end() ? kOther : *found;
}

}  // namespace

std::string_view fileKind(std::string_view bucket) { return wordsFor(bucket).kind; }

std::string queuedLine(std::string_view bucket, const std::string& objectPath, std::uintmax_t bytes) {
  if (bucket == "vessel_photos") return "📤 uploadVesselPhoto: " + objectPath;
  if (bucket == "ship_documents")
    return "📤 uploadShipDocumentFile: uploading " + std::to_string(bytes) + " bytes to ship_documents/" + objectPath;
  return "📤 queuing upload to " + std::string(bucket) + "/" + objectPath;
}

std::string doneLine(const FileTransfer& transfer) {
  if (transfer.isDeletion()) return "🗑 deleted file " + transfer.bucket + "/" + transfer.path;
  return std::string(wordsFor(transfer.bucket).done) + transfer.path;
}

std::string failedLine(const FileTransfer& transfer, const StorageError& error) {
  const std::string reason = " — " + error.cause.logLine().toStdString();
  if (transfer.isDeletion()) return "⚠️ file deletion failed: " + transfer.bucket + "/" + transfer.path + reason;
  // The bytes never left: it is this computer that does not have them.
  const bool unread = error.cause.status == 0 && error.cause.remedy == SBError::Remedy::mendRecord;
  if (unread && transfer.bucket == "ship_documents")
    return "⚠️ uploadShipDocumentFile: failed reading disk file at " + transfer.localFile + reason;
  return std::string(wordsFor(transfer.bucket).failed) + transfer.path + reason;
}

}  // namespace thalvorn
