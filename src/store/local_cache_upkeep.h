#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include "store/local_cache.h"

namespace thalvorn::cache_detail {

/// See `LocalCache::check`; reads within one transaction of `reader`.
CacheReport checkFile(SQLite::Database& reader, const std::filesystem::path& file);

/// See `LocalCache::backup`.
std::expected<void, CacheError> backupFile(SQLite::Database& reader, const std::filesystem::path& file,
                                           const std::filesystem::path& to);

/// See `LocalCache::restore`.
std::expected<std::filesystem::path, CacheError> restoreFile(const std::filesystem::path& backup,
                                                             const std::filesystem::path& file);

}  // namespace thalvorn::cache_detail
