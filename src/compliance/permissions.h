#pragma once

#include <vector>

#include "compliance/account_member.h"
#include "compliance/crew_board_post.h"
#include "compliance/crew_member.h"

namespace thalvorn {

/// What a member may do in a module.
struct ModuleRights {
  bool read = false;
  bool write = false;
  friend bool operator==(const ModuleRights&, const ModuleRights&) = default;
};

/// The member's rights in a module: the role gives them (admin everything; editor and view-only everything but
/// administration, view-only without writing), an exception "read only" or "hidden" narrows them. The owner cannot be
/// shut out of administration. An inactive member has none. A role of a newer program counts as view-only.
ModuleRights rightsOf(const AccountMember& member, AppTabPermissionKey module);

/// Rights in what belongs to every member, such as the crew board.
ModuleRights commonRightsOf(const AccountMember& member);

/// The parts of a crew member, each with an access of its own, in which two records differ: certifications, travel
/// documents, and leave, which is an employment status.
std::vector<AppTabPermissionKey> changedCrewParts(const CrewMember& before, const CrewMember& after);

/// Whether two states of a post differ in nothing but who has acknowledged it, which every member may do.
bool differInAcknowledgmentsAlone(const CrewBoardPost& before, const CrewBoardPost& after);

}  // namespace thalvorn
