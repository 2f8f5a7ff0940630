#include "core/month_sums.h"

#include <algorithm>
#include <cmath>

namespace thalvorn {

std::vector<MonthSum> monthSums(std::span<const DatedAmount> amounts, const Calendar& calendar, std::size_t most) {
  std::vector<MonthSum> sums;
  sums.reserve(amounts.size());
  for (const auto& [at, amount] : amounts) {
    if (!isCalendarTime(at) || !std::isfinite(amount)) continue;
    const auto date = calendar.date(at);
    sums.push_back({date.year() / date.month(), amount});
  }
  std::ranges::sort(sums, std::ranges::greater(), &MonthSum::month);
  std::vector<MonthSum> months;
  for (const auto& [month, sum] : sums) {
    while (!months.empty() && months.back().month > month && months.size() < most)
      months.push_back({months.back().month - std::chrono::months(1)});
    if (months.empty()) months.push_back({month});
    if (months.back().month != month) break;
    months.back().sum += sum;
  }
  std::ranges::reverse(months);
  return months;
}

}  // namespace thalvorn
