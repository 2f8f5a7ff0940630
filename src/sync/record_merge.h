#pragma once

#include <algorithm>
#include <concepts>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "base/describe.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// When a side of a merge was last changed, and by whom. Times that come from a clock of the crew are held back to the
/// server's present before they get here, so that a fast clock wins nothing.
struct MergeSide {
  Timestamp at;
  std::string by;  ///< user id
};

/// What two people did to one record since the last state both knew.
template <class T>
struct Merge {
  T record;
  /// The fields that both changed to different values, e.g. "notes" or "workOrders/<id>/title". A path ending in "/"
  /// names an element that one side took out and the other changed.
  std::vector<std::string> conflicts;
  bool mineKept = true;  ///< whose value stands where they conflict
  /// What did not stand: the other side's record, with the elements that one side took out as the other had changed
  /// them.
  T lost;
};

namespace merge_detail {

template <class V>
concept Identified = requires(const V& value) {
  { value.id } -> std::convertible_to<Uuid>;
} && DescribedRecord<V>;

template <class V>
inline constexpr bool isVector = false;
template <class V>
inline constexpr bool isVector<std::vector<V>> = true;
template <class V>
inline constexpr bool isMap = false;
template <class K, class V>
inline constexpr bool isMap<std::map<K, V>> = true;

struct Run {
  bool mineKept;
  std::vector<std::string> conflicts;
};

/// A meter: the higher reading wins, unless one side turned it back, which is a correction and conflicts like any
/// field.
template <class T>
constexpr bool countsUp(std::string_view name) {
  if constexpr (HasFacts<T>) {
    const FieldFacts* facts = factsOf<T>(name);
    return facts && facts->countsUp;
  } else {
    return false;
  }
}

/// `lost` is the side that gives way, and takes what else does not stand.
template <class V>
V mergeValue(Run& run, const std::string& path, const V* base, const V& mine, const V& theirs, V* lost);

template <class List>
auto* findById(List& list, const Uuid& id) {
  const auto found = std::ranges::find(list, id, &List::value_type::id);
  return found == list.end() ? nullptr : &*found;
}

/// An element that one side took out stays out; that the other changed it is told.
template <Identified T>
std::vector<T> mergeElements(Run& run, const std::string& path, const std::vector<T>* base, const std::vector<T>& mine,
                             const std::vector<T>& theirs, std::vector<T>* lost) {
  std::vector<T> merged;
  const auto consider = [&](const T& element, const std::vector<T>& others, bool isMine) {
    const T* before = base ? findById(*base, element.id) : nullptr;
    const T* other = findById(others, element.id);
    const std::string place = path + '/' + element.id.toString() + '/';
    if (other) {
      T* inLost = lost ? findById(*lost, element.id) : nullptr;
      merged.push_back(isMine ? mergeValue(run, place, before, element, *other, inLost)
                              : mergeValue(run, place, before, *other, element, inLost));
    } else if (!before) {
      merged.push_back(element);
    } else if (!(*before == element)) {
      run.conflicts.push_back(place);
      if (lost && !findById(*lost, element.id)) lost->push_back(element);
    }
  };
  for (const T& element : theirs) consider(element, mine, false);
  for (const T& element : mine)
    if (!findById(theirs, element.id)) consider(element, theirs, true);
  return merged;
}

/// Values without identity merge as a set: what either side added is in, what either took out is out.
template <class V>
std::vector<V> mergeSet(const std::vector<V>* base, const std::vector<V>& mine, const std::vector<V>& theirs) {
  const auto holds = [](const std::vector<V>& list, const V& value) {
    return std::ranges::find(list, value) != list.end();
  };
  std::vector<V> merged;
  for (const V& value : theirs)
    if (holds(mine, value) || !base || !holds(*base, value)) merged.push_back(value);
  for (const V& value : mine)
    if (!holds(theirs, value) && (!base || !holds(*base, value))) merged.push_back(value);
  return merged;
}

template <class K, class V>
std::map<K, V> mergeMap(Run& run, const std::string& path, const std::map<K, V>* base, const std::map<K, V>& mine,
                        const std::map<K, V>& theirs) {
  const auto at = [](const std::map<K, V>& map, const K& key) -> std::optional<V> {
    const auto found = map.find(key);
    return found == map.end() ? std::nullopt : std::optional(found->second);
  };
  std::map<K, V> merged;
  const auto consider = [&](const K& key) {
    const std::optional<V> before = base ? at(*base, key) : std::nullopt;
    if (auto value =
            mergeValue<std::optional<V>>(run, path, base ? &before : nullptr, at(mine, key), at(theirs, key), nullptr))
      merged.emplace(key, *std::move(value));
  };
  for (const auto& entry : theirs) consider(entry.first);
  for (const auto& entry : mine)
    if (!theirs.contains(entry.first)) consider(entry.first);
  return merged;
}

template <class T>
T mergeFields(Run& run, const std::string& path, const T* base, const T& mine, const T& theirs, T* lost) {
  T merged = mine;
  boost::mp11::mp_for_each<FieldList<T>>([&](auto field) {
    constexpr std::string_view name = field.name;
    const auto& own = mine.*field.pointer;
    const auto& other = theirs.*field.pointer;
    const auto* before = base ? &(base->*field.pointer) : nullptr;
    if constexpr (countsUp<T>(name)) {
      if (before && own >= *before && other >= *before) {
        merged.*field.pointer = std::max(own, other);
        return;
      }
    }
    if constexpr (name == "updatedAt" || name == "engineHoursUpdatedAt") {
      merged.*field.pointer = std::max(own, other);
    } else {
      merged.*field.pointer =
          mergeValue(run, path + std::string(name), before, own, other, lost ? &(lost->*field.pointer) : nullptr);
    }
  });
  return merged;
}

template <class V>
V mergeValue(Run& run, const std::string& path, const V* base, const V& mine, const V& theirs, V* lost) {
  if (mine == theirs || (base && theirs == *base)) return mine;
  if (base && mine == *base) return theirs;
  if constexpr (DescribedRecord<V>) {
    return mergeFields(run, path, base, mine, theirs, lost);
  } else if constexpr (isVector<V>) {
    if constexpr (Identified<typename V::value_type>) {
      return mergeElements(run, path, base, mine, theirs, lost);
    } else {
      return mergeSet(base, mine, theirs);
    }
  } else if constexpr (isMap<V>) {
    return mergeMap(run, path, base, mine, theirs);
  } else {
    run.conflicts.push_back(path);
    return run.mineKept ? mine : theirs;
  }
}

}  // namespace merge_detail

/// Brings together what two sides made of one record. A field that one side changed takes that change; a field that
/// both changed takes the later side's value, of equal times that of the greater user id, then of the greater record;
/// lists of sub-records merge by element, lists of plain values as sets. Without a `base` (both sides made the record)
/// every difference is a conflict. The result is the same wherever it is worked out and whichever side is called
/// "mine", but for `mineKept`.
template <class T>
Merge<T> mergeRecords(const T* base, const T& mine, const MergeSide& mySide, const T& theirs,
                      const MergeSide& theirSide) {
  const auto order = std::tie(mySide.at, mySide.by) <=> std::tie(theirSide.at, theirSide.by);
  // One user on two computers within one second: the greater record, as both write it.
  const bool mineKept = order == 0 ? toJson(mine, JsonFields::full) >= toJson(theirs, JsonFields::full) : order > 0;
  merge_detail::Run run{.mineKept = mineKept, .conflicts = {}};
  T lost = mineKept ? theirs : mine;
  T record = merge_detail::mergeFields(run, {}, base, mine, theirs, &lost);
  std::ranges::sort(run.conflicts);
  run.conflicts.erase(std::ranges::unique(run.conflicts).begin(), run.conflicts.end());
  return {std::move(record), std::move(run.conflicts), run.mineKept, std::move(lost)};
}

}  // namespace thalvorn
