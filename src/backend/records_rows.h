#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "backend/sb_row.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// Table "ship_documents".
struct SBDocumentRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string title;
  std::string category;
  std::string documentNumber;
  std::string issuingAuthority;
  std::optional<Timestamp> issueDate;
  std::optional<Timestamp> expiryDate;
  std::string notes;
  std::optional<std::string> fileName;
  std::optional<std::string> fileType;
  std::optional<std::string> filePath;
  Timestamp updatedAt;
  friend bool operator==(const SBDocumentRow&, const SBDocumentRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBDocumentRow, (RegisterRow),
                      (id, userId, accountId, vesselId, title, category, documentNumber, issuingAuthority, issueDate,
                       expiryDate, notes, fileName, fileType, filePath, updatedAt))
THALVORN_JSON_RECORD(SBDocumentRow);

/// Table "ship_contacts".
struct SBContactRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string firstName;
  std::string lastName;
  std::string company;
  std::string role;
  std::string phone;
  std::string mobile;
  std::string email;
  std::string vhfChannel;
  std::string port;
  std::string country;
  std::string notes;
  std::optional<std::string> complianceDocumentsJson;
  std::optional<bool> isAuthorizedDealer;
  Timestamp updatedAt;
  friend bool operator==(const SBContactRow&, const SBContactRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBContactRow, (RegisterRow),
                      (id, userId, accountId, vesselId, firstName, lastName, company, role, phone, mobile, email,
                       vhfChannel, port, country, notes, complianceDocumentsJson, isAuthorizedDealer, updatedAt))
THALVORN_JSON_RECORD(SBContactRow);

/// Table "equipment".
struct SBEquipmentRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string component;
  std::string make;
  std::string model;
  std::string serialNumber;
  std::string system;
  bool isCritical = false;
  std::string location;
  std::string yearInstalled;
  std::string notes;
  std::optional<Timestamp> warrantyStart;
  std::optional<Timestamp> warrantyExpiry;
  std::optional<std::string> warrantyNotes;
  std::optional<std::string> documentIdsJson;
  Timestamp updatedAt;
  friend bool operator==(const SBEquipmentRow&, const SBEquipmentRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBEquipmentRow, (RegisterRow),
                      (id, userId, accountId, vesselId, component, make, model, serialNumber, system, isCritical,
                       location, yearInstalled, notes, warrantyStart, warrantyExpiry, warrantyNotes, documentIdsJson,
                       updatedAt))
THALVORN_JSON_RECORD(SBEquipmentRow);

/// Table "guest_profiles".
struct SBGuestProfileRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string firstName;
  std::string lastName;
  std::string title;
  std::string nationality;
  std::optional<Timestamp> dateOfBirth;
  std::string phone;
  std::string email;
  std::optional<std::string> passportNumber;
  std::optional<std::string> passportCountry;
  std::optional<Timestamp> passportExpiry;
  bool isVip = false;
  std::string partyGroup;
  std::string likes;
  std::string dislikes;
  std::string notes;
  std::string medical;
  std::string foodJson;
  std::string allergiesJson;
  std::string watersportsJson;
  std::string sundriesJson;
  std::string beveragesJson;
  std::optional<std::string> photoPath;
  std::optional<std::string> documentsJson;
  Timestamp createdAt;
  Timestamp updatedAt;
  friend bool operator==(const SBGuestProfileRow&, const SBGuestProfileRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBGuestProfileRow, (RegisterRow),
                      (id, userId, accountId, vesselId, firstName, lastName, title, nationality, dateOfBirth, phone,
                       email, passportNumber, passportCountry, passportExpiry, isVip, partyGroup, likes, dislikes,
                       notes, medical, foodJson, allergiesJson, watersportsJson, sundriesJson, beveragesJson, photoPath,
                       documentsJson, createdAt, updatedAt))
THALVORN_JSON_RECORD(SBGuestProfileRow);

/// Table "calendar_events".
struct SBCalendarEventRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string title;
  Timestamp startDate;
  std::optional<Timestamp> endDate;
  bool isAllDay = false;
  std::string location;
  std::string notes;
  Timestamp updatedAt;
  friend bool operator==(const SBCalendarEventRow&, const SBCalendarEventRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBCalendarEventRow, (RegisterRow),
                      (id, userId, accountId, vesselId, title, startDate, endDate, isAllDay, location, notes,
                       updatedAt))
THALVORN_JSON_RECORD(SBCalendarEventRow);

/// Table "subscription_accounts".
struct SBSubscriptionAccountRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  std::optional<Uuid> vesselId;
  std::string serviceName;
  std::string provider;
  std::string category;
  std::string username;
  std::string accountNumber;
  std::string loginUrl;
  std::string recoveryEmail;
  std::string mfaNotes;
  std::optional<double> monthlyCost;
  std::string currency;
  std::string billingCycle;
  std::optional<Timestamp> renewalDate;
  std::string contactPhone;
  std::string notes;
  bool isArchived = false;
  Timestamp updatedAt;
  friend bool operator==(const SBSubscriptionAccountRow&, const SBSubscriptionAccountRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBSubscriptionAccountRow, (RegisterRow),
                      (id, userId, accountId, vesselId, serviceName, provider, category, username, accountNumber,
                       loginUrl, recoveryEmail, mfaNotes, monthlyCost, currency, billingCycle, renewalDate,
                       contactPhone, notes, isArchived, updatedAt))
THALVORN_JSON_RECORD(SBSubscriptionAccountRow);

}  // namespace thalvorn
