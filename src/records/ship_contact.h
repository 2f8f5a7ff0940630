#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "base/enums.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

enum class ContactRole : std::uint8_t {
  marina,
  mechanic,
  rigger,
  electrician,
  diver,
  chandlery,
  insurance,
  harbormaster,
  coastGuard,
  customs,
  fuel,
  doctor,
  towing,
  captain,
  agent,
  weather,
  charter,
  emergency,
  other
};

template <>
struct EnumTexts<ContactRole> {
  static constexpr std::array<EnumText, 19> table{{{"marina", "Marina"},
                                                   {"mechanic", "Mechanic"},
                                                   {"rigger", "Rigger"},
                                                   {"electrician", "Electrician"},
                                                   {"diver", "Diver"},
                                                   {"chandlery", "Chandlery"},
                                                   {"insurance", "Insurance"},
                                                   {"harbormaster", "Harbormaster"},
                                                   {"coastGuard", "Coast guard"},
                                                   {"customs", "Customs"},
                                                   {"fuel", "Fuel"},
                                                   {"doctor", "Doctor"},
                                                   {"towing", "Towing"},
                                                   {"captain", "Captain"},
                                                   {"agent", "Agent"},
                                                   {"weather", "Weather"},
                                                   {"charter", "Charter"},
                                                   {"emergency", "Emergency"},
                                                   {"other", "Other"}}};
};

enum class VendorComplianceDocType : std::uint8_t {
  insuranceCertificate,
  taxForm,
  serviceAgreement,
  nda,
  safetyDocument,
  technicianCertification,
  authorizedDealerStatus,
  other
};

template <>
struct EnumTexts<VendorComplianceDocType> {
  static constexpr std::array<EnumText, 8> table{{{"insuranceCertificate", "Insurance Certificate"},
                                                  {"taxForm", "Tax Form"},
                                                  {"serviceAgreement", "Service Agreement"},
                                                  {"nda", "Non-Disclosure Agreement"},
                                                  {"safetyDocument", "Safety Document"},
                                                  {"technicianCertification", "Technician Certification"},
                                                  {"authorizedDealerStatus", "Authorized Dealer Status"},
                                                  {"other", "Other"}}};
};

/// A paper that a vendor has to hold before working on board.
struct VendorComplianceDocument {
  Uuid id;
  Choice<VendorComplianceDocType> docType;
  std::string customName;  ///< when the type is `other`
  std::optional<Timestamp> issueDate;
  std::optional<Timestamp> expiryDate;
  std::string issuingBody;
  std::string documentNumber;
  std::string notes;
  std::optional<Bytes> documentData;  ///< file held inline (legacy form)
  std::string documentPath;           ///< file held in storage
  std::string documentName;
  bool isArchived = false;
  friend bool operator==(const VendorComplianceDocument&, const VendorComplianceDocument&) = default;
};
BOOST_DESCRIBE_STRUCT(VendorComplianceDocument, (),
                      (id, docType, customName, issueDate, expiryDate, issuingBody, documentNumber, notes, documentData,
                       documentPath, documentName, isArchived))
THALVORN_JSON_RECORD(VendorComplianceDocument);

/// A person or firm ashore.
struct ShipContact {
  Uuid id;
  Uuid vesselID;
  std::string firstName;
  std::string lastName;
  std::string company;
  Choice<ContactRole> role = ContactRole::other;
  std::string phone;
  std::string mobile;
  std::string email;
  std::string vhfChannel;
  std::string satPhone;
  std::string address;
  std::string port;
  std::string country;
  std::string website;
  std::string notes;
  bool isFavorite = false;
  Timestamp dateAdded;
  std::vector<VendorComplianceDocument> complianceDocuments;
  bool isAuthorizedDealer = false;

  friend bool operator==(const ShipContact&, const ShipContact&) = default;
};
BOOST_DESCRIBE_STRUCT(ShipContact, (),
                      (id, vesselID, firstName, lastName, company, role, phone, mobile, email, vhfChannel, satPhone,
                       address, port, country, website, notes, isFavorite, dateAdded, complianceDocuments,
                       isAuthorizedDealer))
THALVORN_JSON_RECORD(ShipContact);

template <>
struct RecordFacts<VendorComplianceDocument> {
  static constexpr std::array facts{FieldFacts{.name = "docType", .label = "Document"},
                                    FieldFacts{.name = "customName", .label = "Document name"},
                                    FieldFacts{.name = "issueDate", .label = "Issued", .entry = FieldEntry::dateOnly},
                                    FieldFacts{.name = "expiryDate", .label = "Expires", .entry = FieldEntry::dateOnly},
                                    FieldFacts{.name = "issuingBody", .label = "Issuing body"},
                                    FieldFacts{.name = "documentNumber", .label = "Number"},
                                    FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
                                    FieldFacts{.name = "documentName", .label = "File"},
                                    FieldFacts{.name = "isArchived", .label = "Archived"}};
};
static_assert(factsNameFields<VendorComplianceDocument>());

template <>
struct RecordFacts<ShipContact> {
  static constexpr std::array facts{
      FieldFacts{.name = "firstName", .label = "First name"},
      FieldFacts{.name = "lastName", .label = "Last name"},
      FieldFacts{.name = "company", .label = "Company"},
      FieldFacts{.name = "role", .label = "Role"},
      FieldFacts{.name = "phone", .label = "Telephone", .entry = FieldEntry::phone},
      FieldFacts{.name = "mobile", .label = "Mobile", .entry = FieldEntry::phone},
      FieldFacts{.name = "email", .label = "E-mail", .entry = FieldEntry::email},
      FieldFacts{.name = "vhfChannel", .label = "VHF channel", .placeholder = "e.g. 16"},
      FieldFacts{.name = "satPhone", .label = "Satellite telephone", .entry = FieldEntry::phone},
      FieldFacts{.name = "address", .label = "Address", .entry = FieldEntry::multiline},
      FieldFacts{.name = "port", .label = "Port"},
      FieldFacts{.name = "country", .label = "Country"},
      FieldFacts{.name = "website", .label = "Website", .entry = FieldEntry::url},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "isFavorite", .label = "Favorite"},
      FieldFacts{.name = "dateAdded", .label = "Added"},
      FieldFacts{.name = "complianceDocuments", .label = "Compliance documents"},
      FieldFacts{.name = "isAuthorizedDealer", .label = "Authorized Dealer"}};
};
static_assert(factsNameFields<ShipContact>());

}  // namespace thalvorn
