#pragma once

#include <QString>
#include <expected>
#include <optional>

#include "backend/backend_config.h"

namespace thalvorn {

/// Where the fleet server is, told on the command line; empty texts are not told.
struct BackendChoice {
  QString url;
  QString key;
};

/// The fleet server to use: as told; else from THALVORN_BACKEND_URL and THALVORN_BACKEND_KEY; else from the first
/// deployment file there is: "backend.json" in the user's configuration folder of the program, then in the system's
/// ("/etc/xdg/thalvorn"), with {"url": …, "anonKey": …}. Empty when nothing tells; the error is for the user.
std::expected<std::optional<BackendConfig>, QString> deployedBackend(const BackendChoice& told);

}  // namespace thalvorn
