#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// A paper kept for a guest: a passport scan, a visa, a waiver.
struct GuestDocument {
  Uuid id;
  std::string title;
  std::optional<Timestamp> expiryDate;
  std::string notes;
  std::optional<Bytes> documentData;  ///< file held inline (legacy form)
  std::string documentPath;           ///< file held in storage
  std::string documentName;
  friend bool operator==(const GuestDocument&, const GuestDocument&) = default;
};
BOOST_DESCRIBE_STRUCT(GuestDocument, (), (id, title, expiryDate, notes, documentData, documentPath, documentName))
THALVORN_JSON_RECORD(GuestDocument);

/// A guest with the particulars that port papers ask for and the preferences that the interior works by.
struct GuestProfile {
  Uuid id;
  Uuid vesselID;
  std::string firstName;
  std::string lastName;
  std::string title;  ///< form of address, e.g. "Mrs"
  std::string nationality;
  std::optional<Timestamp> dateOfBirth;
  std::string phone;
  std::string email;
  std::string passportNumber;
  std::string passportCountry;
  std::optional<Timestamp> passportExpiry;
  bool isVIP = false;
  std::string partyGroup;  ///< the party a guest travels with, e.g. "Owner's family"
  std::string likes;
  std::string dislikes;
  std::string notes;
  std::string medical;
  std::vector<std::string> food;
  std::vector<std::string> allergies;
  std::vector<std::string> watersports;
  std::vector<std::string> sundries;
  std::vector<std::string> beverages;
  std::optional<Bytes> photoData;  ///< photo held inline (legacy form)
  std::string photoPath;           ///< photo held in storage
  std::vector<GuestDocument> documents;
  Timestamp createdAt;

  friend bool operator==(const GuestProfile&, const GuestProfile&) = default;
};
BOOST_DESCRIBE_STRUCT(GuestProfile, (),
                      (id, vesselID, firstName, lastName, title, nationality, dateOfBirth, phone, email, passportNumber,
                       passportCountry, passportExpiry, isVIP, partyGroup, likes, dislikes, notes, medical, food,
                       allergies, watersports, sundries, beverages, photoData, photoPath, documents, createdAt))
THALVORN_JSON_RECORD(GuestProfile);

template <>
struct RecordFacts<GuestDocument> {
  static constexpr std::array facts{FieldFacts{.name = "title", .label = "Title", .required = true},
                                    FieldFacts{.name = "expiryDate", .label = "Expires", .entry = FieldEntry::dateOnly},
                                    FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
                                    FieldFacts{.name = "documentName", .label = "File"}};
};
static_assert(factsNameFields<GuestDocument>());

template <>
struct RecordFacts<GuestProfile> {
  static constexpr std::array facts{
      FieldFacts{.name = "firstName", .label = "First name", .required = true},
      FieldFacts{.name = "lastName", .label = "Last name"},
      FieldFacts{.name = "title", .label = "Title", .placeholder = "e.g. Mr, Mrs, Dr"},
      FieldFacts{.name = "nationality", .label = "Nationality"},
      FieldFacts{.name = "dateOfBirth", .label = "Date of birth", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "phone", .label = "Telephone", .entry = FieldEntry::phone},
      FieldFacts{.name = "email", .label = "E-mail", .entry = FieldEntry::email},
      FieldFacts{.name = "passportNumber", .label = "Passport number", .sensitive = true},
      FieldFacts{.name = "passportCountry", .label = "Passport country"},
      FieldFacts{.name = "passportExpiry", .label = "Passport expires", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "isVIP", .label = "VIP"},
      FieldFacts{.name = "partyGroup", .label = "Party", .placeholder = "e.g. Owner’s family"},
      FieldFacts{.name = "likes", .label = "Likes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "dislikes", .label = "Dislikes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "medical", .label = "Medical", .entry = FieldEntry::multiline},
      FieldFacts{.name = "food", .label = "Food"},
      FieldFacts{.name = "allergies", .label = "Allergies"},
      FieldFacts{.name = "watersports", .label = "Watersports"},
      FieldFacts{.name = "sundries", .label = "Sundries"},
      FieldFacts{.name = "beverages", .label = "Beverages"},
      FieldFacts{.name = "photoPath", .label = "Photo"},
      FieldFacts{.name = "documents", .label = "Documents"},
      FieldFacts{.name = "createdAt", .label = "Added"}};
};
static_assert(factsNameFields<GuestProfile>());

}  // namespace thalvorn
