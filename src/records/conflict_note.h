#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// What was not taken when two people changed one record at the same time: kept, so that both see it and can take it
/// back.
struct ConflictNote {
  Uuid id;
  std::optional<Uuid> vesselID;
  std::string tableName;  ///< of the backend, naming the kind of record
  Uuid recordID;
  std::string recordName;
  std::vector<std::string> fields;  ///< in which the two differ: "notes", or "workOrders/<id>/title"
  bool deleted = false;             ///< one side deleted the record, and it stays deleted
  std::string keptBy;               ///< user id; also of `otherBy`
  Timestamp keptAt;
  std::string otherBy;
  Timestamp otherAt;
  std::string other;     ///< the record as the other side had it, its whole JSON form
  bool settled = false;  ///< taken back, or put away by someone who looked at it
  Timestamp createdAt;

  friend bool operator==(const ConflictNote&, const ConflictNote&) = default;
};
BOOST_DESCRIBE_STRUCT(ConflictNote, (),
                      (id, vesselID, tableName, recordID, recordName, fields, deleted, keptBy, keptAt, otherBy, otherAt,
                       other, settled, createdAt))
template <>
struct JsonForm<ConflictNote> {
  static constexpr bool vesselOptional = true;
};
THALVORN_JSON_RECORD(ConflictNote);

template <>
struct RecordFacts<ConflictNote> {
  static constexpr std::array facts{FieldFacts{.name = "recordName", .label = "Record"},
                                    FieldFacts{.name = "fields", .label = "Differs in"},
                                    FieldFacts{.name = "deleted", .label = "Deleted"},
                                    FieldFacts{.name = "keptAt", .label = "Kept change of"},
                                    FieldFacts{.name = "otherAt", .label = "Other change of"},
                                    FieldFacts{.name = "settled", .label = "Settled"}};
};
static_assert(factsNameFields<ConflictNote>());

}  // namespace thalvorn
