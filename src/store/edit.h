#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/timestamp.h"
#include "base/uuid.h"
#include "store/local_cache.h"
#include "store/record_kind.h"

namespace thalvorn {

/// One record before and after: an added one has no `before`, a deleted one no `after`.
struct RecordChange {
  std::optional<AnyRecord> before;
  std::optional<AnyRecord> after;

  const AnyRecord& either() const { return after ? *after : *before; }  // NOLINT: it has one side at least
  Uuid id() const;
};

/// Everything that one action of the user changes; the store applies it whole or not at all.
struct Edit {
  Uuid id = Uuid::random();
  std::string label;  ///< what was done, as the undo bar says it: "Engine coolant check completed"
  std::vector<RecordChange> changes;
  bool takesBack = false;   ///< what it adds was deleted before, and is meant to return
  bool isReceived = false;  ///< came from the backend

  template <class T>
  void add(T record) {
    changes.push_back({std::nullopt, AnyRecord(std::move(record))});
  }
  template <class T>
  void replace(T before, T after) {
    changes.push_back({AnyRecord(std::move(before)), AnyRecord(std::move(after))});
  }
  template <class T>
  void remove(T record) {
    changes.push_back({AnyRecord(std::move(record)), std::nullopt});
  }
  bool empty() const { return changes.empty(); }
};

/// The changes of an edit as the journal keeps them: per record its own form, and its side entry where that differs.
std::vector<EntryChange> entryChanges(const Edit& edit);

/// The JSON of a record's side entry; empty when the extra fields all have their initial value.
template <class T>
std::string extraJson(const T& record);

/// A record as its entries keep it.
struct StoredForm {
  std::string own;
  std::string extra;  ///< of the side entry; empty where there is none
};

template <class T>
StoredForm storedForm(const T& record) {
  StoredForm form{.own = toJson(record), .extra = {}};
  if constexpr (HasExtraFields<T>) form.extra = extraJson(record);
  return form;
}

/// Appends the changes of one record between two forms; an empty one is a record that is not there. `sent`: the backend
/// has it so.
void appendChanges(std::vector<EntryChange>& out, std::string_view suffix, const Uuid& id, StoredForm before,
                   StoredForm after, bool sent = false);

/// The edit that takes `edit` back: fields that nobody changed since get their earlier value, deleted records return,
/// added ones go. `current` gives a record as it stands now.
Edit inverseOf(const Edit& edit, const std::function<std::optional<AnyRecord>(const AnyRecord&)>& current);

}  // namespace thalvorn
