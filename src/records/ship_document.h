#pragma once

#include <optional>
#include <string>

#include "base/bytes.h"
#include "base/enums.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

enum class DocumentCategory : std::uint8_t {
  registration,
  permit,
  insurance,
  safety,
  survey,
  customs,
  crew,
  radio,
  environmental,
  maintenance,
  manual,
  warranty,
  invoice,
  other
};

template <>
struct EnumTexts<DocumentCategory> {
  static constexpr std::array<EnumText, 14> table{{{"registration", "Registration"},
                                                   {"permit", "Permit"},
                                                   {"insurance", "Insurance"},
                                                   {"safety", "Safety"},
                                                   {"survey", "Survey"},
                                                   {"customs", "Customs"},
                                                   {"crew", "Crew"},
                                                   {"radio", "Radio"},
                                                   {"environmental", "Environmental"},
                                                   {"maintenance", "Maintenance"},
                                                   {"manual", "Manual"},
                                                   {"warranty", "Warranty"},
                                                   {"invoice", "Invoice"},
                                                   {"other", "Other"}}};
};

enum class DocFileType : std::uint8_t { pdf, image, other };

template <>
struct EnumTexts<DocFileType> {
  static constexpr std::array<EnumText, 3> table{{{"pdf", "PDF"}, {"image", "Image"}, {"other", "Other"}}};
};

/// One paper of the vessel: a certificate, a permit, a manual.
struct ShipDocument {
  Uuid id;
  Uuid vesselID;
  std::string title;
  Choice<DocumentCategory> category = DocumentCategory::other;
  std::string documentNumber;
  std::string issuingAuthority;
  std::optional<Timestamp> issueDate;
  std::optional<Timestamp> expiryDate;
  std::string notes;
  Timestamp dateAdded;
  std::string fileName;  ///< as the attached file was called; empty without one
  Choice<DocFileType> fileType = DocFileType::other;
  std::optional<Bytes> fileData;  ///< file held inline (legacy form)
  std::string filePath;           ///< file held in storage

  friend bool operator==(const ShipDocument&, const ShipDocument&) = default;
};
BOOST_DESCRIBE_STRUCT(ShipDocument, (),
                      (id, vesselID, title, category, documentNumber, issuingAuthority, issueDate, expiryDate, notes,
                       dateAdded, fileName, fileType, fileData, filePath))
THALVORN_JSON_RECORD(ShipDocument);

template <>
struct RecordFacts<ShipDocument> {
  static constexpr std::array facts{
      FieldFacts{.name = "title", .label = "Title", .placeholder = "e.g. Certificate of Registry", .required = true},
      FieldFacts{.name = "category", .label = "Category"},
      FieldFacts{.name = "documentNumber", .label = "Number"},
      FieldFacts{.name = "issuingAuthority", .label = "Issuer"},
      FieldFacts{.name = "issueDate", .label = "Issued", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "expiryDate", .label = "Expires", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "dateAdded", .label = "Added"},
      FieldFacts{.name = "fileName", .label = "File"}};
};
static_assert(factsNameFields<ShipDocument>());

}  // namespace thalvorn
