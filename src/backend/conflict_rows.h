#pragma once

#include <optional>
#include <string>

#include "backend/row_kind.h"
#include "records/conflict_note.h"

namespace thalvorn {

/// Table "conflict_notes".
struct SBConflictNoteRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  std::optional<Uuid> vesselId;
  std::string tableName;
  Uuid recordId;
  std::string recordName;
  std::string fieldsJson;
  bool deleted = false;
  std::string keptBy;
  Timestamp keptAt;
  std::string otherBy;
  Timestamp otherAt;
  std::string other;
  bool settled = false;
  Timestamp createdAt;
  Timestamp updatedAt;
  friend bool operator==(const SBConflictNoteRow&, const SBConflictNoteRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBConflictNoteRow, (RegisterRow),
                      (id, userId, accountId, vesselId, tableName, recordId, recordName, fieldsJson, deleted, keptBy,
                       keptAt, otherBy, otherAt, other, settled, createdAt, updatedAt))
THALVORN_JSON_RECORD(SBConflictNoteRow);

template <>
struct RowKind<ConflictNote> {
  using Row = SBConflictNoteRow;
  static constexpr RowFacts facts{"conflict_notes", "created_at.desc"};
};

}  // namespace thalvorn
