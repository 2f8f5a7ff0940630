#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/timestamp.h"
#include "store/local_cache.h"

namespace thalvorn {

/// The preferences that each user, and each fleet of this computer, has for himself: the display name, the places of
/// weather and tides. They follow a user from computer to computer, so it is kept when each was changed.
class UserPreferences {
 public:
  /// `prefix` as the cache's keys have it.
  UserPreferences(LocalCache& cache, std::string prefix) : cache_(&cache), prefix_(std::move(prefix)) {}

  std::optional<std::string> value(std::string_view name) const { return cache_->preference(key(name)); }
  void set(std::string_view name, std::optional<std::string> value) const;
  /// The same by the user's own hand, at that time.
  void change(std::string_view name, std::optional<std::string> value, Timestamp at) const;

  /// When the user last changed what goes by this name; the beginning of time when that is not known.
  Timestamp changedAt(std::string_view name) const;
  void noteChange(std::string_view name, Timestamp at) const;

  /// Takes over what a program kept for all users of the store alike, if it was this user who worked with it: the one
  /// who is signed in, or the fleet of this computer where nobody is. The others start without.
  void adoptShared(std::string_view localPrefix) const;

 private:
  std::string key(std::string_view name) const { return std::string(name) + "_" + prefix_; }
  std::string timeKey(std::string_view name) const { return std::string(name) + "_changed_" + prefix_; }

  LocalCache* cache_;
  std::string prefix_;
};

}  // namespace thalvorn
