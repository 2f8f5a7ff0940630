#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/local_cache.h"

namespace thalvorn::cache_detail {

/// The changes of an edit as the journal's column holds them: a JSON list of
/// {"suffix":…,"id":…,"sent":true,"before":{…},"after":{…}}; absent keys are false or "not there".
std::string encodeChanges(const std::vector<EntryChange>& changes);

/// Empty when the text is not such a list.
std::optional<std::vector<EntryChange>> decodeChanges(std::string_view json);

}  // namespace thalvorn::cache_detail
