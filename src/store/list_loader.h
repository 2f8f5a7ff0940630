#pragma once

#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "base/json.h"
#include "store/collection.h"
#include "store/local_cache.h"
#include "store/logging.h"
#include "store/record_kind.h"

namespace thalvorn {

/// Puts the records of one kind together from what the cache holds: the segments of the entry, those of its side entry,
/// then the edits of the journal in their order.
template <class T>
class ListLoader {
 public:
  /// Takes bytes that could not be read: key, bytes, reason.
  using KeepCorrupt = std::function<void(std::string, std::string, std::string)>;

  ListLoader(std::string prefix, KeepCorrupt keepCorrupt)
      : key_(std::move(prefix) + std::string(RecordKind<T>::facts.suffix)), keepCorrupt_(std::move(keepCorrupt)) {}

  void readSegments(const StoredState& state) {
    if (const auto entry = state.segments.find(RecordKind<T>::facts.suffix); entry != state.segments.end()) {
      if (entry->second.size() > 1) records_.reserve(entry->second.size() * 160);
      for (const std::string& segment : entry->second) readOwn(segment);
    }
    index_.rebuild(records_);
    dropDoubles();
    if constexpr (HasExtraFields<T>) {
      const auto side = state.segments.find(std::string(RecordKind<T>::facts.suffix) + "_extra");
      if (side == state.segments.end()) return;
      for (const std::string& segment : side->second) readExtra(segment);
    }
  }

  void replay(const std::vector<JournalEntry>& journal) {
    const std::string_view suffix = RecordKind<T>::facts.suffix;
    for (const JournalEntry& edit : journal) {
      for (const EntryChange& change : edit.changes) {
        if (change.suffix == suffix) {
          replayOwn(change);
        } else if constexpr (HasExtraFields<T>) {
          if (change.suffix.size() == suffix.size() + 6 && change.suffix.starts_with(suffix) &&
              change.suffix.ends_with("_extra"))
            replayExtra(change);
        }
      }
    }
  }

  std::vector<T> take() {
    if (!removed_.empty()) std::erase_if(records_, [&](const T& record) { return removed_.contains(record.id); });
    records_.shrink_to_fit();
    return std::move(records_);
  }

 private:
  void setAside(const SetAside& faulty) {
    qCWarning(storeLog, "⚠️ set aside a record of %s: %s", key_.c_str(), faulty.error.message().c_str());
    keepCorrupt_(key_, faulty.bytes, faulty.error.message());
  }

  void decodeFailed(std::string_view suffix, const std::string& key, const std::string& bytes, const JsonError& error) {
    qCWarning(storeLog, "❌ decode failed for %.*s, key=%s, bytes=%zu", static_cast<int>(suffix.size()), suffix.data(),
              key.c_str(), bytes.size());
    keepCorrupt_(key, bytes, error.message());
  }

  void readOwn(const std::string& segment) {
    auto list = listFromJson<T>(segment);
    if (!list) {
      decodeFailed(RecordKind<T>::facts.suffix, key_, segment, list.error());
      return;
    }
    records_.insert(records_.end(), std::make_move_iterator(list->records.begin()),
                    std::make_move_iterator(list->records.end()));
    for (const SetAside& faulty : list->setAside) setAside(faulty);
  }

  void readExtra(const std::string& segment) {
    const auto elements = splitJsonList(segment);
    if (!elements) {
      const std::string suffix = std::string(RecordKind<T>::facts.suffix) + "_extra";
      decodeFailed(suffix, key_ + "_extra", segment, elements.error());
      return;
    }
    for (const RawElement& element : *elements) {
      const auto id = Uuid::parse(element.id);
      if (!id) continue;
      applyExtra(*id, element.bytes);
    }
  }

  void applyExtra(const Uuid& id, std::string_view json) {
    const auto position = index_.find(records_, id);
    if (!position) return;
    T& record = records_[*position];
    T updated = record;
    resetExtra(updated);
    if (!json.empty()) {
      if (const auto read = updateFromJson(updated, json, JsonFields::extra); !read) {
        setAside({std::string(json), read.error()});
        return;
      }
    }
    record = std::move(updated);
  }

  static void resetExtra(T& record) {
    FieldSet extra{};
    for (const std::string_view name : JsonForm<T>::extra) extra |= fieldSetOf<T>({name});
    copyFields(T{}, record, extra);
  }

  void replayOwn(const EntryChange& change) {
    if (change.after.empty()) {
      removed_.insert(change.id);
      return;
    }
    const auto position = index_.find(records_, change.id);
    T record = position ? records_[*position] : T{};
    if (removed_.contains(change.id)) record = T{};
    auto fresh = recordFromJson<T>(change.after, JsonFields::own);
    if (!fresh) {
      setAside({change.after, fresh.error()});
      return;
    }
    if constexpr (HasExtraFields<T>) {
      FieldSet extra{};
      for (const std::string_view name : JsonForm<T>::extra) extra |= fieldSetOf<T>({name});
      copyFields(record, *fresh, extra);
    }
    if (removed_.erase(change.id) != 0 && position) {
      // A record that came back stands at the end, where the store put it.
      records_[*position].id = Uuid{};
      removed_.insert(Uuid{});
      records_.push_back(std::move(*fresh));
      index_.rebuild(records_);
    } else if (position) {
      records_[*position] = std::move(*fresh);
    } else {
      records_.push_back(std::move(*fresh));
      index_.add(records_);
    }
  }

  void replayExtra(const EntryChange& change) { applyExtra(change.id, change.after); }

  /// The later of two records with one identity wins.
  void dropDoubles() {
    std::unordered_set<Uuid> seen;
    bool doubles = false;
    for (std::size_t i = 0; i < records_.size() && !doubles; ++i) doubles = index_.find(records_, records_[i].id) != i;
    if (!doubles) return;
    std::vector<T> kept;
    for (auto record = records_.rbegin(); record != records_.rend(); ++record)
      if (seen.insert(record->id).second) kept.push_back(std::move(*record));
    qCWarning(storeLog, "⚠️ %zu records of %s stood twice", records_.size() - kept.size(), key_.c_str());
    records_.assign(std::make_move_iterator(kept.rbegin()), std::make_move_iterator(kept.rend()));
    index_.rebuild(records_);
  }

  std::string key_;
  KeepCorrupt keepCorrupt_;
  std::vector<T> records_;
  IdentityIndex index_;
  std::unordered_set<Uuid> removed_;
};

}  // namespace thalvorn
