#pragma once

#include <expected>
#include <filesystem>

#include "devserver/database.h"
#include "devserver/message.h"
#include "devserver/settings.h"
#include "devserver/token.h"

namespace thalvorn::devserver {

/// The file service: bytes in a folder, their description in `storage.objects` under the policies of the caller.
class StorageService {
 public:
  /// `pool` connects as the owner of the schema `storage`.
  StorageService(Pool& pool, const SharedSettings& settings, std::filesystem::path folder)
      : pool_(pool), settings_(settings), folder_(std::move(folder)) {}

  /// `request.path` is below the service's own path: "/object/task_photos/a/b.jpg".
  Response handle(const Request& request, const std::expected<json::object, TokenFault>& claims);

 private:
  Pool& pool_;
  const SharedSettings& settings_;
  std::filesystem::path folder_;
};

}  // namespace thalvorn::devserver
