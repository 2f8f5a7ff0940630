#pragma once

#include <chrono>
#include <span>
#include <vector>

#include "base/calendar.h"

/// What adds up month by month, for charts.
namespace thalvorn {

struct MonthSum {
  std::chrono::year_month month;
  double sum = 0;
  friend bool operator==(const MonthSum&, const MonthSum&) = default;
};

/// An amount at a point in time.
struct DatedAmount {
  Timestamp at;
  double amount = 0;
};

/// The sums from the first month that has an amount to the last, earliest first, with 0 for the months between that
/// have none. Months are those of the calendar; of more than `most` months the latest are kept.
std::vector<MonthSum> monthSums(std::span<const DatedAmount> amounts, const Calendar& calendar, std::size_t most = 24);

}  // namespace thalvorn
