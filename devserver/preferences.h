#pragma once

#include <optional>
#include <string>
#include <vector>

#include "devserver/message.h"

namespace thalvorn::devserver {

/// The `Prefer` headers of a request to a table or function; of each kind the first counts.
struct Preferences {
  std::optional<std::string> resolution;  ///< merge-duplicates, ignore-duplicates
  std::optional<std::string> missing;     ///< default, null
  std::optional<std::string> returning;   ///< representation, minimal, headers-only
  std::optional<std::string> count;       ///< exact, planned, estimated
  std::optional<std::string> handling;    ///< strict, lenient
  std::optional<std::string> timezone;
  std::optional<long long> maxAffected;
  std::vector<std::string> unknown;

  static Preferences read(const Request& request);
  bool strict() const { return handling == "strict"; }
  /// The value of `Preference-Applied`, empty when nothing applies.
  std::string applied() const;
};

}  // namespace thalvorn::devserver
