#include "core/service_history.h"

#include <algorithm>
#include <unordered_map>

#include "base/search_text.h"

namespace thalvorn {
namespace {

bool passes(const ServiceLog& log, const ServiceHistoryFilter& filter) {
  return (!filter.vesselID || log.vesselID == *filter.vesselID) &&
         (!filter.category || log.category == *filter.category) && (!filter.kind || log.kind == *filter.kind) &&
         (!filter.from || log.completedDate >= *filter.from) && (!filter.until || log.completedDate < *filter.until) &&
         (!filter.person || log.completedBy == *filter.person);
}

bool found(const ServiceLog& log, SearchWords& words) {
  if (words.empty()) return true;
  std::string parts;
  for (const PartUsage& part : log.partsUsed) parts += part.name + ' ' + part.partNumber + ' ';
  return words.matches({log.taskTitle, log.technicianNotes, log.completedBy, log.category.display(), parts});
}

Timestamp startOfYear(int year, const Calendar& calendar) {
  return calendar.at(std::chrono::year(year) / std::chrono::January / 1);
}

}  // namespace

std::vector<std::uint32_t> selectServices(std::span<const ServiceLog> logs, const ServiceHistoryFilter& filter,
                                          ServiceHistorySort sort, bool descending) {
  std::vector<std::uint32_t> selected;
  SearchWords words(filter.search);
  for (std::uint32_t i = 0; i < logs.size(); ++i)
    if (passes(logs[i], filter) && found(logs[i], words)) selected.push_back(i);

  const auto newerFirst = [&](std::uint32_t a, std::uint32_t b) {
    return logs[a].completedDate != logs[b].completedDate ? logs[a].completedDate > logs[b].completedDate : a > b;
  };
  const auto sortBy = [&](auto&& key) {
    using Key = std::remove_cvref_t<decltype(key(logs[0]))>;
    std::vector<std::pair<Key, std::uint32_t>> keyed;
    keyed.reserve(selected.size());
    for (const std::uint32_t at : selected) keyed.emplace_back(key(logs[at]), at);
    std::ranges::sort(keyed, [&](const auto& a, const auto& b) {
      if (a.first != b.first) return descending ? b.first < a.first : a.first < b.first;
      return newerFirst(a.second, b.second);
    });
    std::ranges::transform(keyed, selected.begin(), [](const auto& entry) { return entry.second; });
  };
  switch (sort) {
    case ServiceHistorySort::date:
      sortBy([](const ServiceLog& log) { return log.completedDate; });
      break;
    case ServiceHistorySort::task:
      sortBy([](const ServiceLog& log) { return foldText(log.taskTitle); });
      break;
    case ServiceHistorySort::category:
      sortBy([](const ServiceLog& log) { return log.category.order(); });
      break;
    case ServiceHistorySort::person:
      sortBy([](const ServiceLog& log) { return foldText(log.completedBy); });
      break;
    case ServiceHistorySort::cost:
      sortBy([](const ServiceLog& log) { return totalCost(log).value_or(0); });
      break;
  }
  return selected;
}

void ServiceCosts::add(const ServiceLog& log) {
  ++services;
  labour += log.cost.value_or(0);
  parts += partsCost(log).value_or(0);
}

std::optional<double> partsCost(const ServiceLog& log) {
  std::optional<double> sum;
  for (const PartUsage& part : log.partsUsed)
    if (part.cost) sum = sum.value_or(0) + *part.cost;
  return sum;
}

std::vector<ServiceYear> costsByYear(std::span<const ServiceLog> logs, std::span<const std::uint32_t> selected,
                                     const Calendar& calendar) {
  std::vector<ServiceYear> years;
  std::optional<std::size_t> current;
  Timestamp from{};
  Timestamp until{};
  for (const std::uint32_t at : selected) {
    const ServiceLog& log = logs[at];
    // Services mostly follow each other by date: the year is asked for only when it may be another one.
    if (!current || log.completedDate < from || log.completedDate >= until) {
      const int year = static_cast<int>(calendar.date(log.completedDate).year());
      from = startOfYear(year, calendar);
      until = startOfYear(year + 1, calendar);
      const auto place = std::ranges::find(years, year, &ServiceYear::year);
      current = static_cast<std::size_t>(place - years.begin());
      if (place == years.end()) years.push_back({year, {}});
    }
    years[*current].costs.add(log);
  }
  std::ranges::sort(years, std::ranges::greater(), &ServiceYear::year);
  return years;
}

std::vector<std::string> peopleOfServices(std::span<const ServiceLog> logs, const Uuid& vesselID) {
  std::unordered_map<std::string_view, std::string> people;
  for (const ServiceLog& log : logs) {
    if (log.vesselID == vesselID && !log.completedBy.empty() && !people.contains(log.completedBy))
      people.emplace(log.completedBy, foldText(log.completedBy));
  }
  std::vector<std::pair<std::string, std::string>> sorted;
  for (const auto& [name, folded] : people) sorted.emplace_back(folded, name);
  std::ranges::sort(sorted);
  std::vector<std::string> names;
  for (auto& [folded, name] : sorted) names.push_back(std::move(name));
  return names;
}

void setPeriod(ServiceHistoryFilter& filter, ServicePeriod period, Timestamp now, const Calendar& calendar) {
  const int year = static_cast<int>(calendar.date(now).year());
  filter.from.reset();
  filter.until.reset();
  switch (period) {
    case ServicePeriod::all:
      break;
    case ServicePeriod::last30Days:
      filter.from = calendar.addDays(calendar.startOfDay(now), -30);
      break;
    case ServicePeriod::last12Months: {
      const auto today = calendar.date(now);
      const std::chrono::year_month_day before{today.year() - std::chrono::years(1), today.month(), today.day()};
      filter.from = calendar.at(before.ok() ? before : before.year() / before.month() / std::chrono::day(28));
      break;
    }
    case ServicePeriod::thisYear:
      filter.from = startOfYear(year, calendar);
      break;
    case ServicePeriod::lastYear:
      filter.from = startOfYear(year - 1, calendar);
      filter.until = startOfYear(year, calendar);
      break;
  }
}

}  // namespace thalvorn
