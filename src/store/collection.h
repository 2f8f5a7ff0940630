#pragma once

#include <QObject>
#include <QSignalBlocker>
#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <unordered_set>
#include <vector>

#include "base/describe.h"
#include "base/uuid.h"

namespace thalvorn {

/// What happened to a collection, told after the fact.
class CollectionEvents : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

 Q_SIGNALS:
  /// Everything may be different.
  void reset();
  void inserted(qsizetype index);
  /// `fields`: those whose value is another.
  void changed(qsizetype index, thalvorn::FieldSet fields);
  /// The record that stood at `index` is gone; those behind it moved up by one.
  void removed(qsizetype index);
};

/// Finds the position of a record by its identity: open addressing over positions, eight bytes per record, the
/// identities themselves are read from the records.
class IdentityIndex {
 public:
  /// `expected`: as many records as there may soon be.
  template <class T>
  void rebuild(const std::vector<T>& records, std::size_t expected = 0) {
    std::size_t size = 16;
    while (size < std::max(records.size(), expected) * 2) size *= 2;
    slots_.assign(size, kFree);
    used_ = records.size();
    for (std::size_t i = 0; i < records.size(); ++i) place(records[i].id, static_cast<std::uint32_t>(i));
  }

  template <class T>
  void add(const std::vector<T>& records) {
    if ((used_ + 1) * 10 > slots_.size() * 7) {
      rebuild(records);
      return;
    }
    ++used_;
    place(records.back().id, static_cast<std::uint32_t>(records.size() - 1));
  }

  template <class T>
  std::optional<std::size_t> find(const std::vector<T>& records, const Uuid& id) const {
    if (slots_.empty()) return std::nullopt;
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t slot = std::hash<Uuid>{}(id)&mask; slots_[slot] != kFree; slot = (slot + 1) & mask)
      if (records[slots_[slot]].id == id) return slots_[slot];
    return std::nullopt;
  }

 private:
  static constexpr std::uint32_t kFree = ~std::uint32_t{0};

  void place(const Uuid& id, std::uint32_t position) {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = std::hash<Uuid>{}(id)&mask;
    while (slots_[slot] != kFree) slot = (slot + 1) & mask;
    slots_[slot] = position;
  }

  std::vector<std::uint32_t> slots_;
  std::size_t used_ = 0;
};

/// The records of one kind in list order, found by identity in constant time. Only the store changes them; everybody
/// else reads and listens to `events()`.
template <class T>
class Collection {
 public:
  std::span<const T> records() const { return records_; }
  std::size_t size() const { return records_.size(); }
  bool empty() const { return records_.empty(); }
  const T& operator[](std::size_t index) const { return records_[index]; }

  std::optional<std::size_t> indexOf(const Uuid& id) const { return index_.find(records_, id); }
  const T* find(const Uuid& id) const {
    const auto index = indexOf(id);
    return index ? &records_[*index] : nullptr;
  }

  CollectionEvents& events() const { return *events_; }

 private:
  friend class AppViewModel;

  void reset(std::vector<T> records) {
    records_ = std::move(records);
    index_.rebuild(records_);
    Q_EMIT events_->reset();
  }

  /// Makes room for so many records, so that adding them one page after another moves none.
  void reserve(std::size_t count) {
    if (count <= records_.capacity()) return;
    records_.reserve(count);
    index_.rebuild(records_, count);
  }

  /// Adds the record, or replaces the one with its identity.
  void put(T record) {
    if (const auto index = indexOf(record.id)) {
      const FieldSet fields = changedFields(records_[*index], record);
      if (fields == FieldSet{}) return;
      records_[*index] = std::move(record);
      Q_EMIT events_->changed(static_cast<qsizetype>(*index), fields);
      return;
    }
    records_.push_back(std::move(record));
    index_.add(records_);
    Q_EMIT events_->inserted(static_cast<qsizetype>(records_.size()) - 1);
  }

  void remove(const Uuid& id) {
    const auto index = indexOf(id);
    if (!index) return;
    records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(*index));
    index_.rebuild(records_);
    Q_EMIT events_->removed(static_cast<qsizetype>(*index));
  }

  /// Applies many changes, told as one `reset`.
  void applyMany(std::vector<T> puts, const std::unordered_set<Uuid>& removes) {
    {
      const QSignalBlocker quiet(events_.get());
      for (T& record : puts) put(std::move(record));
      if (!removes.empty()) {
        std::erase_if(records_, [&](const T& record) { return removes.contains(record.id); });
        index_.rebuild(records_);
      }
    }
    Q_EMIT events_->reset();
  }

  std::vector<T> records_;
  IdentityIndex index_;
  std::unique_ptr<CollectionEvents> events_ = std::make_unique<CollectionEvents>();
};

}  // namespace thalvorn
