#include "compliance/permissions.h"

namespace thalvorn {

ModuleRights commonRightsOf(const AccountMember& member) {
  if (!member.isActive) return {};
  return {.read = true, .write = member.isOwner || member.role == TeamRole::admin || member.role == TeamRole::editor};
}

ModuleRights rightsOf(const AccountMember& member, AppTabPermissionKey module) {
  ModuleRights rights = commonRightsOf(member);
  if (module == AppTabPermissionKey::admin) {
    if (member.isOwner) return rights;
    if (member.role != TeamRole::admin) return {};
  }
  const auto exception = member.moduleOverrides.find(module);
  if (exception == member.moduleOverrides.end()) return rights;
  if (exception->second == ModuleAccess::hidden) return {};
  if (exception->second == ModuleAccess::readOnly) rights.write = false;
  return rights;
}

std::vector<AppTabPermissionKey> changedCrewParts(const CrewMember& before, const CrewMember& after) {
  std::vector<AppTabPermissionKey> parts;
  if (before.certifications != after.certifications) parts.push_back(AppTabPermissionKey::crewCerts);
  if (before.employmentStatus != after.employmentStatus) parts.push_back(AppTabPermissionKey::crewLeave);
  if (static_cast<const CrewTravelDocuments&>(before) != static_cast<const CrewTravelDocuments&>(after))
    parts.push_back(AppTabPermissionKey::crewDocs);
  return parts;
}

bool differInAcknowledgmentsAlone(const CrewBoardPost& before, const CrewBoardPost& after) {
  CrewBoardPost acknowledged = before;
  acknowledged.acknowledgments = after.acknowledgments;
  return acknowledged == after;
}

}  // namespace thalvorn
