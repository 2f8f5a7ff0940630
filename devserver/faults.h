#pragma once

#include <expected>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/message.h"
#include "devserver/settings.h"

namespace thalvorn::devserver {

/// Something that goes wrong with requests, as a test orders it: "NAME[=VALUE][xTIMES][@METHOD][@/PATH]", for instance
/// "delay=250", "drop-reply x1 @POST @/rest/v1/tasks" (blanks are allowed).
struct Fault {
  enum class Kind { delay, dropRequest, dropReply, cutReply, duplicate, status };
  Kind kind = Kind::delay;
  std::string name;
  long long value = 0;             ///< milliseconds of a delay
  std::optional<long long> times;  ///< how many requests it strikes; without, all
  std::string method;              ///< only these requests; empty: all
  std::string path;                ///< only paths that begin so

  static std::expected<Fault, std::string> parse(std::string_view text);
};

/// Adds a fault, or follows one of those that change a setting: "clock-offset=SECONDS", "non-utc-zone[=ZONE]",
/// "old-errors". The error says what is wrong with the text.
std::expected<void, std::string> orderFault(std::string_view text, Settings& settings, std::vector<Fault>& faults);

/// The names of all faults with what each does, a line each.
std::string describeFaults();

/// The reply by which a fault of kind `status` stands in for the service.
Response faultyReply(const Fault& fault, const Request& request);

/// The faults in force. Safe to use from every thread.
class Faults {
 public:
  void set(std::vector<Fault> faults);
  std::vector<std::string> names() const;
  /// The faults that strike this request; those of limited times count it.
  std::vector<Fault> strike(const Request& request);

 private:
  mutable std::mutex mutex_;
  std::vector<Fault> faults_;
};

}  // namespace thalvorn::devserver
