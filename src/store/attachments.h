#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace thalvorn {

/// Why a file could not be kept or found.
struct AttachmentError {
  enum class Kind { notFound, tooLarge, diskFull, readOnly, badPath, other };
  Kind kind = Kind::other;
  std::string message;  ///< for the user
};

/// Photos, scans and other files of records, on disk below the data folder; records hold only the relative path
/// "<bucket>/<name>". A file is named by its content, so the same content is stored once, and what is stored is never
/// changed. Files 0600, folders 0700.
///
/// A file appears whole or not at all: it is written beside its place, made durable, then renamed. Deleting a record
/// removes no file: undo may bring the record back, a backup may name the file, and another store in the same folder
/// may hold the same content.
class AttachmentStore {
 public:
  /// `root` is created when the first file is put.
  explicit AttachmentStore(std::filesystem::path root, std::uintmax_t max_bytes = 209'715'200)
      : root_(std::move(root)), maxBytes_(max_bytes) {}

  /// Keeps bytes. `bucket` is one of the backend's, e.g. "task_photos"; `extension` is without the dot ("jpg"), empty
  /// to have it told from the content. Gives the relative path.
  std::expected<std::string, AttachmentError> put(std::string_view bucket, std::span<const std::uint8_t> bytes,
                                                  std::string_view extension = {}) const;
  /// Keeps a copy of a file, however large, without holding it in memory.
  std::expected<std::string, AttachmentError> putFile(std::string_view bucket,
                                                      const std::filesystem::path& source) const;

  /// Where a stored file lies; an error when the path leads elsewhere or nothing is there.
  std::expected<std::filesystem::path, AttachmentError> absolute(std::string_view path) const;

  /// Removes one file, for good. No record may name it any more.
  std::expected<void, AttachmentError> remove(std::string_view path) const;
  /// Removes what interrupted writing left behind, unless it is younger than `age` and may still be written. Gives how
  /// many.
  std::size_t removeInterrupted(std::chrono::hours age = std::chrono::hours(24)) const;

  const std::filesystem::path& root() const { return root_; }

 private:
  class Incoming;
  std::expected<std::string, AttachmentError> settle(Incoming& incoming, std::string_view bucket,
                                                     std::string_view extension) const;

  std::filesystem::path root_;
  std::uintmax_t maxBytes_;
};

}  // namespace thalvorn
