#pragma once

#include <optional>
#include <string>

#include "base/bytes.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"
#include "compliance/crew_enums.h"

namespace thalvorn {

/// One certificate, licence or travel paper of a crew member.
struct CrewCertification {
  Uuid id;
  Choice<CertificationType> type;
  std::string customName;  ///< when the type is `custom`
  std::optional<Timestamp> issueDate;
  std::optional<Timestamp> expiryDate;
  std::string issuingBody;
  std::string certNumber;
  std::string notes;
  std::optional<Bytes> documentData;  ///< scan held inline (legacy form)
  std::string documentPath;           ///< scan held in storage
  std::string documentName;
  bool isArchived = false;

  friend bool operator==(const CrewCertification&, const CrewCertification&) = default;
};
BOOST_DESCRIBE_STRUCT(CrewCertification, (),
                      (id, type, customName, issueDate, expiryDate, issuingBody, certNumber, notes, documentData,
                       documentPath, documentName, isArchived))
THALVORN_JSON_RECORD(CrewCertification);

template <>
struct RecordFacts<CrewCertification> {
  static constexpr std::array facts{
      FieldFacts{.name = "type", .label = "Certificate"},
      FieldFacts{.name = "customName", .label = "Certificate Name"},
      FieldFacts{.name = "issueDate", .label = "Issued", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "expiryDate", .label = "Expires", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "issuingBody", .label = "Issuing body", .placeholder = "e.g. MCA, USCG, Flag State"},
      FieldFacts{.name = "certNumber", .label = "Certificate number"},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "documentName", .label = "File"},
      FieldFacts{.name = "isArchived", .label = "Archived"}};
};
static_assert(factsNameFields<CrewCertification>());

}  // namespace thalvorn
