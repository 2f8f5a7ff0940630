#include "store/attachments.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QtCore/QCryptographicHash>
#include <QtCore/QMimeDatabase>
#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <vector>

#include "base/uuid.h"

namespace thalvorn {
namespace {

namespace fs = std::filesystem;
using Kind = AttachmentError::Kind;

constexpr std::size_t kChunk = 1'048'576;
/// Enough of a file to tell what it is.
constexpr std::size_t kSniffed = 4096;
constexpr std::string_view kIncoming = ".incoming";

std::unexpected<AttachmentError> failed(Kind kind, std::string message) {
  return std::unexpected(AttachmentError{kind, std::move(message)});
}

std::unexpected<AttachmentError> failedSystem(const fs::path& file, int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return failed(Kind::diskFull, "The disk is full: the file was not stored. Free some space, then add it again.");
    case EACCES:
    case EPERM:
    case EROFS:
      return failed(Kind::readOnly,
                    fmt::format("“{}” cannot be written. Allow writing, then try again.", file.string()));
    case ENOENT:
      return failed(Kind::notFound, fmt::format("There is no file “{}”.", file.string()));
    default:
      return failed(Kind::other, fmt::format("“{}”: {}.", file.string(), std::generic_category().message(error)));
  }
}

bool isPlainName(std::string_view name) {
  return !name.empty() && name.size() <= 200 && name.front() != '.' && std::ranges::all_of(name, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
           c == '.';
  });
}

bool isExtension(std::string_view text) {
  return !text.empty() && text.size() <= 8 &&
         std::ranges::all_of(text, [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); });
}

/// "<bucket>/<name>", nothing else.
bool isStoredPath(std::string_view path) {
  const std::size_t slash = path.find('/');
  return slash != std::string_view::npos && isPlainName(path.substr(0, slash)) && isPlainName(path.substr(slash + 1));
}

std::error_code makePrivateFolders(const fs::path& folder) {
  std::error_code error;
  if (folder.empty() || fs::is_directory(folder, error)) return {};
  if (const auto above = makePrivateFolders(folder.parent_path())) return above;
  if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) return {errno, std::generic_category()};
  return {};
}

void syncFolder(const fs::path& folder) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return text;
}

std::string extensionOf(std::string_view content) {
  const QMimeType type =
      QMimeDatabase().mimeTypeForData(QByteArray::fromRawData(content.data(), static_cast<qsizetype>(content.size())));
  const std::string suffix = type.preferredSuffix().toStdString();
  return isExtension(suffix) ? suffix : "bin";
}

class Descriptor {
 public:
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  ~Descriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return descriptor_; }

 private:
  int descriptor_;
};

}  // namespace

/// A file being written; removed again unless it has been given its place.
class AttachmentStore::Incoming {
 public:
  explicit Incoming(const fs::path& root)
      : path_(root / kIncoming / Uuid::random().toString()),
        folderError_(makePrivateFolders(path_.parent_path())),
        descriptor_(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600)),
        openError_(descriptor_.get() < 0 ? errno : 0) {}
  ~Incoming() {
    if (!placed_) ::unlink(path_.c_str());
  }
  Incoming(const Incoming&) = delete;
  Incoming& operator=(const Incoming&) = delete;

  /// The system's error, or 0.
  int error() const { return folderError_ ? folderError_.value() : openError_; }
  int write(std::span<const std::uint8_t> bytes) {
    hash_.addData(
        QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())));
    if (head_.size() < kSniffed)
      head_.append(reinterpret_cast<const char*>(bytes.data()), std::min(bytes.size(), kSniffed - head_.size()));
    while (!bytes.empty()) {
      const ssize_t written = ::write(descriptor_.get(), bytes.data(), bytes.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) return errno;
      bytes = bytes.subspan(static_cast<std::size_t>(written));
      size_ += static_cast<std::uintmax_t>(written);
    }
    return 0;
  }
  int sync() const { return ::fsync(descriptor_.get()) == 0 ? 0 : errno; }
  int place(const fs::path& where) {
    if (::rename(path_.c_str(), where.c_str()) != 0) return errno;
    placed_ = true;
    return 0;
  }
  std::string name() const { return Uuid::named(Uuid{}, hash_.result().toHex().toStdString()).toString(); }
  std::string_view head() const { return head_; }
  std::uintmax_t size() const { return size_; }

 private:
  fs::path path_;
  std::error_code folderError_;
  Descriptor descriptor_;
  int openError_;
  QCryptographicHash hash_{QCryptographicHash::Sha256};
  std::string head_;
  std::uintmax_t size_ = 0;
  bool placed_ = false;
};

std::expected<std::string, AttachmentError> AttachmentStore::settle(Incoming& incoming, std::string_view bucket,
                                                                    std::string_view extension) const {
  if (!isPlainName(bucket)) return failed(Kind::badPath, fmt::format("“{}” is no folder for files.", bucket));
  const std::string suffix = isExtension(extension) ? std::string(extension) : extensionOf(incoming.head());
  std::string path = fmt::format("{}/{}.{}", bucket, incoming.name(), suffix);
  const fs::path target = root_ / path;
  struct stat there{};
  const bool stored = ::lstat(target.c_str(), &there) == 0 && S_ISREG(there.st_mode) &&
                      static_cast<std::uintmax_t>(there.st_size) == incoming.size();
  if (stored) return path;
  if (const auto error = makePrivateFolders(target.parent_path())) return failedSystem(target, error.value());
  if (const int error = incoming.sync()) return failedSystem(target, error);
  if (const int error = incoming.place(target)) return failedSystem(target, error);
  syncFolder(target.parent_path());
  syncFolder(root_);
  return path;
}

std::expected<std::string, AttachmentError> AttachmentStore::put(std::string_view bucket,
                                                                 std::span<const std::uint8_t> bytes,
                                                                 std::string_view extension) const {
  if (bytes.size() > maxBytes_)
    return failed(Kind::tooLarge, fmt::format("The file is larger than {} MB.", maxBytes_ / 1024 / 1024));
  Incoming incoming(root_);
  if (incoming.error() != 0) return failedSystem(root_, incoming.error());
  if (const int error = incoming.write(bytes)) return failedSystem(root_, error);
  return settle(incoming, bucket, lowerCase(std::string(extension)));
}

std::expected<std::string, AttachmentError> AttachmentStore::putFile(std::string_view bucket,
                                                                     const fs::path& source) const {
  // Without O_NONBLOCK a named pipe in the file's place would hold the program up.
  const Descriptor from(::open(source.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (from.get() < 0) return failedSystem(source, errno);
  struct stat status{};
  if (::fstat(from.get(), &status) != 0) return failedSystem(source, errno);
  if (!S_ISREG(status.st_mode)) return failed(Kind::other, fmt::format("“{}” is not a file.", source.string()));
  const auto too_large = [&] {
    return failed(Kind::tooLarge,
                  fmt::format("“{}” is larger than {} MB.", source.filename().string(), maxBytes_ / 1024 / 1024));
  };
  if (static_cast<std::uintmax_t>(status.st_size) > maxBytes_) return too_large();
  Incoming incoming(root_);
  if (incoming.error() != 0) return failedSystem(root_, incoming.error());
  std::vector<std::uint8_t> chunk(kChunk);
  for (;;) {
    const ssize_t count = ::read(from.get(), chunk.data(), chunk.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return failedSystem(source, errno);
    if (count == 0) break;
    if (incoming.size() + static_cast<std::uintmax_t>(count) > maxBytes_) return too_large();
    if (const int error = incoming.write(std::span(chunk).first(static_cast<std::size_t>(count))))
      return failedSystem(root_, error);
  }
  std::string extension = lowerCase(source.extension().string());
  if (!extension.empty()) extension.erase(0, 1);
  return settle(incoming, bucket, extension);
}

std::expected<fs::path, AttachmentError> AttachmentStore::absolute(std::string_view path) const {
  if (!isStoredPath(path)) return failed(Kind::badPath, fmt::format("“{}” is not the path of a stored file.", path));
  fs::path file = root_ / path;
  // A link in a folder's place could lead anywhere.
  for (const fs::path& place : {file.parent_path(), file}) {
    struct stat status{};
    if (::lstat(place.c_str(), &status) != 0) return failedSystem(file, errno);
    if (!(place == file ? S_ISREG(status.st_mode) : S_ISDIR(status.st_mode)))
      return failed(Kind::badPath, fmt::format("“{}” is not the path of a stored file.", path));
  }
  return file;
}

std::expected<void, AttachmentError> AttachmentStore::remove(std::string_view path) const {
  const auto file = absolute(path);
  if (!file) return std::unexpected(file.error());
  if (::unlink(file->c_str()) != 0) return failedSystem(*file, errno);
  return {};
}

std::size_t AttachmentStore::removeInterrupted(std::chrono::hours age) const {
  std::size_t removed = 0;
  std::error_code error;
  const auto limit = fs::file_time_type::clock::now() - age;
  for (fs::directory_iterator at(root_ / kIncoming, error), end; !error && at != end; at.increment(error)) {
    std::error_code ignored;
    if (!at->is_regular_file(ignored) || at->is_symlink(ignored)) continue;
    if (at->last_write_time(ignored) > limit || ignored) continue;
    if (fs::remove(at->path(), ignored)) ++removed;
  }
  return removed;
}

}  // namespace thalvorn
