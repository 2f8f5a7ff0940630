#pragma once

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "backend/row_kind.h"
#include "sync/sync_run.h"

namespace thalvorn {

/// Who has read a post of the crew board lies in a table of its own, a row per post and person. Everybody adds and
/// takes back his own row alone, also who may change nothing else.
inline constexpr std::array<std::string_view, 1> kAcknowledgmentTables{"crew_board_acknowledgments"};

/// Users who have acknowledged, by post, in the order of their identities.
using Acknowledgments = std::unordered_map<Uuid, std::vector<std::string>>;

/// Who has acknowledged these posts. A post that nobody has is not among them.
SBTask<Acknowledgments> readAcknowledgments(SyncRunPtr run, std::vector<Uuid> posts);

/// What `stored` becomes when the user's own acknowledgment is as in `wanted`; those of others are theirs.
std::vector<std::string> withOwnAcknowledgment(const std::vector<std::string>& stored,
                                               const std::vector<std::string>& wanted, const std::string& userID);

/// Adds the user's acknowledgment of a post, or takes it back.
SBTask<void> sendAcknowledgment(SyncRunPtr run, Uuid post, bool acknowledged);

}  // namespace thalvorn
