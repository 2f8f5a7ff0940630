#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "backend/sb_row.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// Table "crew_members".
struct SBCrewMemberRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string firstName;
  std::string lastName;
  std::string role;
  std::string nationality;
  std::string phone;
  std::string email;
  std::string emergencyName;
  std::string emergencyPhone;
  std::optional<Timestamp> embarkDate;
  std::optional<Timestamp> disembarkDate;
  bool isActive = true;
  std::string notes;
  std::string certificationsJson;
  std::string extendedJson;
  Timestamp updatedAt;
  friend bool operator==(const SBCrewMemberRow&, const SBCrewMemberRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBCrewMemberRow, (RegisterRow),
                      (id, userId, accountId, vesselId, firstName, lastName, role, nationality, phone, email,
                       emergencyName, emergencyPhone, embarkDate, disembarkDate, isActive, notes, certificationsJson,
                       extendedJson, updatedAt))
THALVORN_JSON_RECORD(SBCrewMemberRow);

/// Table "ism_records".
struct SBISMRecordRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::optional<Uuid> checkDefinitionId;
  std::string checkTitle;
  std::string checkCategory;
  std::string checkIcon;
  Timestamp completedDate;
  std::string completedBy;
  std::string crewPresent;
  std::string location;
  std::string notes;
  bool passed = true;
  std::string correctiveAction;
  std::optional<Timestamp> nextDueDate;
  std::optional<std::string> checkType;
  std::string customTitle;
  Timestamp updatedAt;
  friend bool operator==(const SBISMRecordRow&, const SBISMRecordRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBISMRecordRow, (RegisterRow),
                      (id, userId, accountId, vesselId, checkDefinitionId, checkTitle, checkCategory, checkIcon,
                       completedDate, completedBy, crewPresent, location, notes, passed, correctiveAction, nextDueDate,
                       checkType, customTitle, updatedAt))
THALVORN_JSON_RECORD(SBISMRecordRow);

/// Table "ism_check_definitions".
struct SBISMCheckDefinitionRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  std::string title;
  std::string category;
  std::string icon;
  std::int64_t intervalDays = 0;
  bool isEnabled = true;
  bool isBuiltIn = false;
  std::string notes;
  Timestamp updatedAt;
  friend bool operator==(const SBISMCheckDefinitionRow&, const SBISMCheckDefinitionRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBISMCheckDefinitionRow, (RegisterRow),
                      (id, userId, accountId, title, category, icon, intervalDays, isEnabled, isBuiltIn, notes,
                       updatedAt))
THALVORN_JSON_RECORD(SBISMCheckDefinitionRow);

/// Table "marpol_records".
struct SBMarpolRecordRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string recordType;
  Timestamp date;
  std::string operationCategory;
  std::string quantity;
  std::string disposalMethod;
  std::string port;
  std::string latitude;
  std::string longitude;
  std::string receiptNumber;
  std::string signedBy;
  std::string notes;
  Timestamp createdAt;
  Timestamp updatedAt;
  friend bool operator==(const SBMarpolRecordRow&, const SBMarpolRecordRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBMarpolRecordRow, (RegisterRow),
                      (id, userId, accountId, vesselId, recordType, date, operationCategory, quantity, disposalMethod,
                       port, latitude, longitude, receiptNumber, signedBy, notes, createdAt, updatedAt))
THALVORN_JSON_RECORD(SBMarpolRecordRow);

/// Table "gmdss_test_logs".
struct SBGMDSSTestLogRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string testType;
  Timestamp date;
  std::string result;
  std::string performedBy;
  std::string notes;
  Timestamp createdAt;
  Timestamp updatedAt;
  friend bool operator==(const SBGMDSSTestLogRow&, const SBGMDSSTestLogRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBGMDSSTestLogRow, (RegisterRow),
                      (id, userId, accountId, vesselId, testType, date, result, performedBy, notes, createdAt,
                       updatedAt))
THALVORN_JSON_RECORD(SBGMDSSTestLogRow);

/// Table "crew_board_posts".
struct SBCrewBoardPostRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  std::string authorName;
  std::string type;
  std::string department;
  std::string priority;
  std::string title;
  std::string body;
  bool isPinned = false;
  std::optional<Timestamp> expiresAt;
  bool requiresAcknowledgment = false;
  std::optional<std::string> photoPathsJson;
  std::optional<std::string> documentPathsJson;
  Timestamp createdAt;
  Timestamp updatedAt;
  friend bool operator==(const SBCrewBoardPostRow&, const SBCrewBoardPostRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBCrewBoardPostRow, (RegisterRow),
                      (id, userId, accountId, authorName, type, department, priority, title, body, isPinned, expiresAt,
                       requiresAcknowledgment, photoPathsJson, documentPathsJson, createdAt, updatedAt))
THALVORN_JSON_RECORD(SBCrewBoardPostRow);

}  // namespace thalvorn
