#pragma once

#include <chrono>
#include <mutex>
#include <string>

namespace thalvorn::devserver {

/// What a test may vary while the server runs.
struct Settings {
  long long maxRows = 1000;
  std::chrono::seconds tokenLifetime{3600};
  std::chrono::seconds reuseInterval{10};  ///< how long a spent refresh token still works
  std::chrono::seconds mailInterval{60};   ///< between two mails to one person
  std::chrono::seconds clockOffset{0};     ///< of this server's clock: tokens and Date
  bool confirmEmail = false;
  bool olderErrors = false;      ///< error forms and codes of earlier versions of the services
  std::string timeZone = "UTC";  ///< in which the table interface writes times
};

/// The settings shared by all requests. Safe to use from every thread.
class SharedSettings {
 public:
  explicit SharedSettings(Settings initial) : settings_(std::move(initial)) {}
  Settings get() const {
    const std::lock_guard lock(mutex_);
    return settings_;
  }
  void set(Settings settings) {
    const std::lock_guard lock(mutex_);
    settings_ = std::move(settings);
  }
  /// Seconds since 1970 by this server's clock.
  std::int64_t now() const {
    using std::chrono::system_clock;
    return system_clock::to_time_t(system_clock::now()) + get().clockOffset.count();
  }

 private:
  mutable std::mutex mutex_;
  Settings settings_;
};

}  // namespace thalvorn::devserver
