#pragma once

#include <string>

#include "base/enums.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// The book that a MARPOL entry belongs to.
enum class MarpolRecordType : std::uint8_t { oilRecordBook, garbageRecordBook, portReceptionReceipt };

template <>
struct EnumTexts<MarpolRecordType> {
  static constexpr std::array<EnumText, 3> table{{{"oilRecordBook", "Oil Record Book"},
                                                  {"garbageRecordBook", "Garbage Record Book"},
                                                  {"portReceptionReceipt", "Port Reception Facility Receipt"}}};
};

/// How the material left the vessel, or that it stayed.
enum class MarpolDisposalMethod : std::uint8_t {
  dischargedToSea,
  portReceptionFacility,
  incinerated,
  retainedOnBoard,
  landedAshore,
  other
};

template <>
struct EnumTexts<MarpolDisposalMethod> {
  static constexpr std::array<EnumText, 6> table{{{"dischargedToSea", "Discharged to sea (per Annex limits)"},
                                                  {"portReceptionFacility", "Port reception facility"},
                                                  {"incinerated", "Incinerated on board"},
                                                  {"retainedOnBoard", "Retained on board"},
                                                  {"landedAshore", "Landed ashore"},
                                                  {"other", "Other"}}};
};

/// One entry of the MARPOL record books. Quantity and position are free text: nothing computes with them.
struct MarpolRecord {
  Uuid id;
  Uuid vesselID;
  Choice<MarpolRecordType> recordType;
  Timestamp date;  ///< of the operation
  std::string operationCategory;
  std::string quantity;
  Choice<MarpolDisposalMethod> disposalMethod = MarpolDisposalMethod::portReceptionFacility;
  std::string port;
  std::string latitude;
  std::string longitude;
  std::string receiptNumber;
  std::string signedBy;
  std::string notes;
  Timestamp createdAt;

  friend bool operator==(const MarpolRecord&, const MarpolRecord&) = default;
};
BOOST_DESCRIBE_STRUCT(MarpolRecord, (),
                      (id, vesselID, recordType, date, operationCategory, quantity, disposalMethod, port, latitude,
                       longitude, receiptNumber, signedBy, notes, createdAt))
THALVORN_JSON_RECORD(MarpolRecord);

template <>
struct RecordFacts<MarpolRecord> {
  static constexpr std::array facts{
      FieldFacts{.name = "recordType", .label = "Book"},
      FieldFacts{.name = "date", .label = "Date", .required = true},
      FieldFacts{.name = "operationCategory", .label = "Operation", .required = true},
      FieldFacts{.name = "quantity", .label = "Quantity", .placeholder = "e.g. 50 L, 2 bags, 1.2 m³"},
      FieldFacts{.name = "disposalMethod", .label = "Disposal method"},
      FieldFacts{.name = "port", .label = "Port", .placeholder = "e.g. Port Everglades, FL"},
      FieldFacts{.name = "latitude", .label = "Latitude (if at sea)"},
      FieldFacts{.name = "longitude", .label = "Longitude (if at sea)"},
      FieldFacts{
          .name = "receiptNumber", .label = "Reference / receipt number", .placeholder = "Receipt # (if applicable)"},
      FieldFacts{.name = "signedBy", .label = "Signed by", .placeholder = "Officer name/rank"},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "createdAt", .label = "Entered"}};
};
static_assert(factsNameFields<MarpolRecord>());

}  // namespace thalvorn
