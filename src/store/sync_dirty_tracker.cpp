#include "store/sync_dirty_tracker.h"

namespace thalvorn {
namespace {

constexpr std::string_view kSideEntry = "_extra";

}  // namespace

void SyncDirtyTracker::note(const JournalEntry& edit, Revision revision) {
  for (const EntryChange& change : edit.changes) {
    if (change.sent) {
      sent(change.suffix, change.id, revision, change.after);
      continue;
    }
    const auto [mark, added] = sets_[change.suffix].try_emplace(change.id);
    if (added) mark->second.before = change.before;
    mark->second.revived = mark->second.revived || change.revived;
    mark->second.revision = revision;
    mark->second.at = edit.at;
  }
}

void SyncDirtyTracker::sent(std::string_view suffix, const Uuid& id, Revision upTo, std::string json) {
  const auto entry = sets_.find(suffix);
  if (entry == sets_.end()) return;
  const auto mark = entry->second.find(id);
  if (mark == entry->second.end()) return;
  if (mark->second.revision <= upTo) {
    entry->second.erase(mark);
  } else {
    mark->second.revived = mark->second.revived && json.empty();
    mark->second.before = std::move(json);
  }
}

const UnsentMark* SyncDirtyTracker::find(std::string_view suffix, const Uuid& id) const {
  const OfEntry& entry = of(suffix);
  const auto mark = entry.find(id);
  return mark == entry.end() ? nullptr : &mark->second;
}

const SyncDirtyTracker::OfEntry& SyncDirtyTracker::of(std::string_view suffix) const {
  static const OfEntry none;
  const auto entry = sets_.find(suffix);
  return entry == sets_.end() ? none : entry->second;
}

std::size_t SyncDirtyTracker::records(std::string_view suffix) const {
  const OfEntry& own = of(suffix);
  std::size_t count = own.size();
  for (const auto& mark : of(std::string(suffix) + std::string(kSideEntry))) count += own.contains(mark.first) ? 0 : 1;
  return count;
}

std::size_t SyncDirtyTracker::records() const {
  std::size_t count = 0;
  for (const auto& entry : sets_) {
    std::string_view suffix = entry.first;
    if (suffix.ends_with(kSideEntry)) {
      suffix.remove_suffix(kSideEntry.size());
      if (sets_.contains(suffix)) continue;
    }
    count += records(suffix);
  }
  return count;
}

}  // namespace thalvorn
