#pragma once

#include <string>
#include <string_view>

#include "backend/file_transfer_queue.h"

namespace thalvorn {

/// What a file of this bucket is, as a person calls it: "Task photo".
std::string_view fileKind(std::string_view bucket);

// ---- what the log says of files on their way
std::string queuedLine(std::string_view bucket, const std::string& objectPath, std::uintmax_t bytes);
std::string doneLine(const FileTransfer& transfer);
std::string failedLine(const FileTransfer& transfer, const StorageError& error);

}  // namespace thalvorn
