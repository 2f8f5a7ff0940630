#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/uuid.h"
#include "store/local_cache.h"

namespace thalvorn {

/// What preferences are called.
namespace preference_keys {
inline constexpr std::string_view accessToken = "sb_access_token";
inline constexpr std::string_view refreshToken = "sb_refresh_token";
inline constexpr std::string_view userID = "sb_user_id";
inline constexpr std::string_view userEmail = "sb_user_email";
inline constexpr std::string_view selectedVesselID = "_selectedVesselID";  ///< behind the user's prefix
inline constexpr std::string_view lastFleet = "thalvorn.lastFleet";        ///< the prefix of the fleet opened last
inline constexpr std::string_view meteredConnection = "thalvorn.meteredConnection";
inline constexpr std::string_view appearance = "thalvorn.appearance";
inline constexpr std::string_view hiddenModules = "thalvorn.hiddenModulesRaw";
inline constexpr std::string_view onboardingComplete = "onboardingComplete_";  ///< before the user's identity
inline constexpr std::string_view userDisplayName = "user_display_name";
inline constexpr std::string_view weatherLocation = "weather_location";
inline constexpr std::string_view tideStationID = "tide_station_id";
inline constexpr std::string_view tideStationName = "tide_station_name";
}  // namespace preference_keys

/// The user's preferences: texts by key in the local cache, read as what they mean. A value that cannot be read as
/// asked counts as absent.
class Preferences {
 public:
  explicit Preferences(LocalCache& cache) : cache_(&cache) {}

  std::optional<std::string> value(std::string_view key) const { return cache_->preference(key); }
  std::string text(std::string_view key, std::string_view otherwise = {}) const;
  bool flag(std::string_view key, bool otherwise = false) const;
  std::optional<std::int64_t> integer(std::string_view key) const;
  std::optional<double> number(std::string_view key) const;
  std::optional<Uuid> id(std::string_view key) const;
  /// Texts parted by commas.
  std::vector<std::string> list(std::string_view key) const;

  void setText(std::string_view key, std::string value);
  void setFlag(std::string_view key, bool value);
  void setInteger(std::string_view key, std::int64_t value);
  void setNumber(std::string_view key, double value);
  /// Absent: forgets the key.
  void setId(std::string_view key, const std::optional<Uuid>& value);
  /// The texts must not hold commas.
  void setList(std::string_view key, const std::vector<std::string>& values);
  void remove(std::string_view key);

 private:
  LocalCache* cache_;
};

}  // namespace thalvorn
