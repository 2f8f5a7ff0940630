#pragma once

#include <map>
#include <optional>
#include <string>

#include "base/enums.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

enum class TeamRole : std::uint8_t { admin, editor, viewOnly };

template <>
struct EnumTexts<TeamRole> {
  static constexpr std::array<EnumText, 3> table{{{"admin", "Admin"}, {"editor", "Editor"}, {"viewOnly", "View only"}}};
};

/// An exception to a member's role in one module; `inherit` follows the role.
enum class ModuleAccess : std::uint8_t { inherit, readOnly, hidden };

template <>
struct EnumTexts<ModuleAccess> {
  static constexpr std::array<EnumText, 3> table{
      {{"inherit", "As the role"}, {"readOnly", "Read only"}, {"hidden", "Hidden"}}};
};

/// The modules whose access can be set for each member.
enum class AppTabPermissionKey : std::uint8_t {
  crew,
  crewCerts,
  crewLeave,
  crewDocs,
  guests,
  ism,
  documents,
  contacts,
  subscriptions,
  tasks,
  equipment,
  yardRefit,
  bunkering,
  voyage,
  shipslog,
  calendar,
  admin,
  marpol,
  gmdss
};

template <>
struct EnumTexts<AppTabPermissionKey> {
  static constexpr std::array<EnumText, 19> table{{{"crew", "Crew"},
                                                   {"crewCerts", "Crew certifications"},
                                                   {"crewLeave", "Crew leave"},
                                                   {"crewDocs", "Crew documents"},
                                                   {"guests", "Guests"},
                                                   {"ism", "ISM"},
                                                   {"documents", "Documents"},
                                                   {"contacts", "Contacts"},
                                                   {"subscriptions", "Subscriptions"},
                                                   {"tasks", "Maintenance"},
                                                   {"equipment", "Equipment"},
                                                   {"yardRefit", "Yard & refit"},
                                                   {"bunkering", "Fuel bunkering"},
                                                   {"voyage", "Voyage plans"},
                                                   {"shipslog", "Ship’s log"},
                                                   {"calendar", "Calendar"},
                                                   {"admin", "Administration"},
                                                   {"marpol", "MARPOL"},
                                                   {"gmdss", "GMDSS"}}};
};

/// One person's membership of the account.
struct AccountMember {
  Uuid id;
  Uuid accountId;
  std::optional<Uuid> userId;  ///< absent while the invitation is pending
  std::optional<std::string> invitedEmail;
  std::string name;
  Choice<TeamRole> role = TeamRole::viewOnly;
  bool isOwner = false;
  bool isActive = true;  ///< an inactive member keeps the row but has no access
  std::map<Choice<AppTabPermissionKey>, Choice<ModuleAccess>> moduleOverrides;
  Timestamp createdAt;

  friend bool operator==(const AccountMember&, const AccountMember&) = default;
};
BOOST_DESCRIBE_STRUCT(AccountMember, (),
                      (id, accountId, userId, invitedEmail, name, role, isOwner, isActive, moduleOverrides, createdAt))
THALVORN_JSON_RECORD(AccountMember);

template <>
struct RecordFacts<AccountMember> {
  static constexpr std::array facts{FieldFacts{.name = "invitedEmail", .label = "E-mail", .entry = FieldEntry::email},
                                    FieldFacts{.name = "name", .label = "Name", .required = true},
                                    FieldFacts{.name = "role", .label = "Role"},
                                    FieldFacts{.name = "isOwner", .label = "Owner"},
                                    FieldFacts{.name = "isActive", .label = "Active"},
                                    FieldFacts{.name = "moduleOverrides", .label = "Module access"},
                                    FieldFacts{.name = "createdAt", .label = "Since"}};
};
static_assert(factsNameFields<AccountMember>());

}  // namespace thalvorn
