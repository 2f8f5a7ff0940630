#pragma once

#include <expected>
#include <optional>
#include <string>

#include "records/conflict_note.h"
#include "store/app_view_model.h"
#include "sync/record_merge.h"

namespace thalvorn {

/// What a merge of `record` did not take: `other`, made by `otherSide`.
template <class T>
ConflictNote conflictNote(const T& kept, const MergeSide& keptSide, const T& other, const MergeSide& otherSide,
                          std::vector<std::string> fields, Timestamp now) {
  ConflictNote note;
  note.id = Uuid::random();
  note.vesselID = vesselOf(kept);
  note.tableName = RecordKind<T>::facts.table;
  note.recordID = kept.id;
  note.recordName = recordName(kept);
  note.fields = std::move(fields);
  note.keptBy = keptSide.by;
  note.keptAt = keptSide.at;
  note.otherBy = otherSide.by;
  note.otherAt = otherSide.at;
  note.other = toJson(other, JsonFields::full);
  note.createdAt = now;
  return note;
}

/// The record was deleted by one side and changed by the other: it stays deleted, `edited` is what the other had made.
template <class T>
ConflictNote deletionNote(const T& edited, const MergeSide& editor, const MergeSide& deleter, Timestamp now) {
  ConflictNote note = conflictNote(edited, deleter, edited, editor, {}, now);
  note.deleted = true;
  return note;
}

/// What a person knows the record by: its name, else its day; empty when it has neither.
std::string nameOf(const AppViewModel& model, const ConflictNote& note);

/// One field of a conflict as a person compares it.
struct ConflictLine {
  std::string field;  ///< label
  std::string now;    ///< as the record has it now, as text
  std::string other;  ///< as the note keeps it
};
/// Empty when the other version cannot be read.
std::vector<ConflictLine> conflictLines(const AppViewModel& model, const ConflictNote& note);

/// Puts the other side's values back in: the fields that conflicted, or the whole record when it was deleted; the note
/// is settled with it. The error is for the user.
std::expected<Edit, std::string> takeBack(const AppViewModel& model, const ConflictNote& note);

}  // namespace thalvorn
