#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/calendar.h"
#include "core/service_log.h"

/// The service history as lists and reports show it: which services, in which order, and what they cost.
namespace thalvorn {

/// Which services to show; what is not set does not matter.
struct ServiceHistoryFilter {
  std::optional<Uuid> vesselID = {};
  std::optional<Choice<TaskCategory>> category = {};
  std::optional<Choice<TaskKind>> kind = {};
  std::optional<Timestamp> from = {};   ///< done at this time or later
  std::optional<Timestamp> until = {};  ///< done before this time
  std::optional<std::string> person = {};
  std::string search = {};  ///< words found in title, notes, person, category or parts
};

enum class ServiceHistorySort : std::uint8_t { date, task, category, person, cost };

template <>
struct EnumTexts<ServiceHistorySort> {
  static constexpr std::array<EnumText, 5> table{
      {{"date", "Date"}, {"task", "Task"}, {"category", "Category"}, {"person", "Person"}, {"cost", "Cost"}}};
};

/// The positions of the services that pass the filter, in order; equal ones stand newest first.
std::vector<std::uint32_t> selectServices(std::span<const ServiceLog> logs, const ServiceHistoryFilter& filter,
                                          ServiceHistorySort sort, bool descending);

/// What services cost, in the vessel's currency.
struct ServiceCosts {
  std::size_t services = 0;
  double labour = 0;
  double parts = 0;

  double total() const { return labour + parts; }
  void add(const ServiceLog& log);
  friend bool operator==(const ServiceCosts&, const ServiceCosts&) = default;
};

/// What the parts of a service cost; empty when none has a cost.
std::optional<double> partsCost(const ServiceLog& log);

struct ServiceYear {
  int year = 0;
  ServiceCosts costs;
  friend bool operator==(const ServiceYear&, const ServiceYear&) = default;
};

/// The costs of the selected services by calendar year, latest first; years without services are left out.
std::vector<ServiceYear> costsByYear(std::span<const ServiceLog> logs, std::span<const std::uint32_t> selected,
                                     const Calendar& calendar);

/// Everybody who did a service of the vessel, by name, each once.
std::vector<std::string> peopleOfServices(std::span<const ServiceLog> logs, const Uuid& vesselID);

/// A period that lists offer.
enum class ServicePeriod : std::uint8_t { all, last30Days, last12Months, thisYear, lastYear };

template <>
struct EnumTexts<ServicePeriod> {
  static constexpr std::array<EnumText, 5> table{{{"all", "All years"},
                                                  {"last30Days", "Last 30 days"},
                                                  {"last12Months", "Last 12 months"},
                                                  {"thisYear", "This year"},
                                                  {"lastYear", "Last year"}}};
};

/// Sets `from` and `until` of the filter to a period that ends now.
void setPeriod(ServiceHistoryFilter& filter, ServicePeriod period, Timestamp now, const Calendar& calendar);

}  // namespace thalvorn
