#include "store/user_preferences.h"

#include <array>

#include "store/preferences.h"

namespace thalvorn {
namespace {

constexpr std::array kOnceShared{preference_keys::userDisplayName, preference_keys::weatherLocation,
                                 preference_keys::tideStationID, preference_keys::tideStationName};

}  // namespace

void UserPreferences::set(std::string_view name, std::optional<std::string> value) const {
  cache_->setPreference(key(name), std::move(value));
}

void UserPreferences::change(std::string_view name, std::optional<std::string> value, Timestamp at) const {
  set(name, std::move(value));
  noteChange(name, at);
}

Timestamp UserPreferences::changedAt(std::string_view name) const {
  return parseTimestamp(cache_->preference(timeKey(name)).value_or("")).value_or(Timestamp{});
}

void UserPreferences::noteChange(std::string_view name, Timestamp at) const {
  cache_->setPreference(timeKey(name), formatTimestamp(at));
}

void UserPreferences::adoptShared(std::string_view localPrefix) const {
  if (cache_->isReadOnly() || prefix_.empty()) return;
  const std::string signedIn = cache_->preference(preference_keys::userID).value_or("");
  if (prefix_ != (signedIn.empty() ? localPrefix : std::string_view(signedIn))) return;
  for (const std::string_view name : kOnceShared) {
    auto shared = cache_->preference(name);
    if (!shared) continue;
    if (!value(name)) set(name, std::move(shared));
    cache_->setPreference(std::string(name), std::nullopt);
  }
}

}  // namespace thalvorn
