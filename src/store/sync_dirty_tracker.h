#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "store/local_cache.h"

namespace thalvorn {

/// The edits of one record in one entry that the backend does not have yet.
struct UnsentMark {
  Revision revision = 0;  ///< of the newest of them
  Timestamp at;           ///< when that was made
  std::string before;     ///< the record's JSON as both sides last knew it; empty when it was made here
  bool revived = false;   ///< a deletion was taken back after it had been sent
};

/// Which records wait for upload, by entry and identity; derived from the journal, so that it outlives the program.
class SyncDirtyTracker {
 public:
  using OfEntry = std::unordered_map<Uuid, UnsentMark>;

  /// Notes an edit that is on disk, oldest first. A change that came from the backend is what both sides know: edits
  /// before it wait no longer, those behind it are made on top of it.
  void note(const JournalEntry& edit, Revision revision);

  /// The backend holds the record as `json` (empty: not at all) since the edit `upTo`; later edits stay marked, on top
  /// of that.
  void sent(std::string_view suffix, const Uuid& id, Revision upTo, std::string json);

  const UnsentMark* find(std::string_view suffix, const Uuid& id) const;
  /// Empty when nothing of the entry waits.
  const OfEntry& of(std::string_view suffix) const;
  /// How many records of an entry wait, each counted once even if its side entry waits too.
  std::size_t records(std::string_view suffix) const;
  /// The same over all entries.
  std::size_t records() const;
  void clear() { sets_.clear(); }

 private:
  std::map<std::string, OfEntry, std::less<>> sets_;
};

}  // namespace thalvorn
