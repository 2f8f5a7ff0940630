#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <set>
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
/// A file appears whole or not at all: it is written beside its place, made durable, then renamed. Because undo may
/// bring a record back, deleting a record removes no file; `removeUnused` does, later.
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
  /// Removes the files that `used` does not name and that are older than `age`, and remains of interrupted writing.
  /// Gives how many.
  std::size_t removeUnused(const std::set<std::string, std::less<>>& used, std::chrono::hours age) const;

  const std::filesystem::path& root() const { return root_; }

 private:
  class Incoming;
  std::expected<std::string, AttachmentError> settle(Incoming& incoming, std::string_view bucket,
                                                     std::string_view extension) const;

  std::filesystem::path root_;
  std::uintmax_t maxBytes_;
};

}  // namespace thalvorn
