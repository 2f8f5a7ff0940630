#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "backend/sb_row.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// Table "account_members".
struct SBAccountMemberRow : SBRow {
  Uuid id;
  Uuid accountId;
  std::optional<Uuid> userId;
  std::optional<std::string> invitedEmail;
  std::string name;
  std::string role;
  bool isOwner = false;
  bool isActive = true;
  std::map<std::string, std::string> moduleOverrides;
  Timestamp createdAt;
  friend bool operator==(const SBAccountMemberRow&, const SBAccountMemberRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBAccountMemberRow, (),
                      (id, accountId, userId, invitedEmail, name, role, isOwner, isActive, moduleOverrides, createdAt))
THALVORN_JSON_RECORD(SBAccountMemberRow);

/// Table "user_settings".
struct SBUserSettingsRow : RegisterRow {
  Uuid userId;
  std::optional<Uuid> selectedVesselId;
  std::optional<std::string> weatherLocation;
  std::optional<std::string> tideStationId;
  std::optional<std::string> tideStationName;
  bool onboardingComplete = false;
  std::optional<std::string> displayName;
  std::optional<std::string> appVersion;
  Timestamp updatedAt;
  friend bool operator==(const SBUserSettingsRow&, const SBUserSettingsRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBUserSettingsRow, (RegisterRow),
                      (userId, selectedVesselId, weatherLocation, tideStationId, tideStationName, onboardingComplete,
                       displayName, appVersion, updatedAt))
THALVORN_JSON_RECORD(SBUserSettingsRow);

/// Table "accounts".
struct SBAccountRow : SBRow {
  Uuid id;
  std::string name;
  std::string plan;                             ///< "none", "captain", "fleet", "superyacht"
  std::optional<std::int64_t> additionalSeats;  ///< bought beyond those of the plan
  friend bool operator==(const SBAccountRow&, const SBAccountRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBAccountRow, (), (id, name, plan, additionalSeats))
THALVORN_JSON_RECORD(SBAccountRow);

/// Table "crew_board_acknowledgments": who has read a post.
struct AckRow : SBRow {
  Uuid postId;
  Uuid userId;
  Uuid accountId;
  friend bool operator==(const AckRow&, const AckRow&) = default;
};
BOOST_DESCRIBE_STRUCT(AckRow, (), (postId, userId, accountId))
THALVORN_JSON_RECORD(AckRow);

/// Table "deleted_records": a record that is gone for good.
struct SBDeletedRecordRow : SBRow {
  std::string tableName;
  Uuid recordId;
  Timestamp deletedAt;
  friend bool operator==(const SBDeletedRecordRow&, const SBDeletedRecordRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBDeletedRecordRow, (), (tableName, recordId, deletedAt))
THALVORN_JSON_RECORD(SBDeletedRecordRow);

/// Table "account_changes": the version of a table as the account sees it; it grows with every change.
struct SBAccountChangeRow : SBRow {
  std::string tableName;
  std::int64_t version = 0;
  friend bool operator==(const SBAccountChangeRow&, const SBAccountChangeRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBAccountChangeRow, (), (tableName, version))
THALVORN_JSON_RECORD(SBAccountChangeRow);

}  // namespace thalvorn
