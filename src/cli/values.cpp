#include "cli/values.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <QString>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <span>
#include <vector>

#include "base/date_format.h"

namespace thalvorn::cli {
namespace {

constexpr double kMostHours = 1e6;

QString text(std::string_view utf8) { return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size())); }

template <class E>
struct Alias {
  std::string_view name;
  E value;
};

/// The case that goes by `name`: its stored text, its display text or another name it has.
template <class E>
std::optional<E> namedCase(std::string_view name, std::span<const Alias<E>> aliases = {}) {
  for (const E each : allCases<E>())
    if (equalIgnoringCase(name, rawText(each)) || equalIgnoringCase(name, displayText(each))) return each;
  for (const Alias<E>& alias : aliases)
    if (equalIgnoringCase(name, alias.name)) return alias.value;
  return std::nullopt;
}

template <class E>
std::string storedNames() {
  std::vector<std::string_view> names;
  names.reserve(caseCount<E>);
  for (const EnumText& each : EnumTexts<E>::table) names.push_back(each.raw);
  return fmt::format("{}", fmt::join(names, ", "));
}

}  // namespace

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return QString::compare(text(a), text(b), Qt::CaseInsensitive) == 0;
}

bool startsIgnoringCase(std::string_view whole, std::string_view beginning) {
  return text(whole).startsWith(text(beginning), Qt::CaseInsensitive);
}

bool aWordStartsIgnoringCase(std::string_view whole, std::string_view beginning) {
  for (std::size_t blank = whole.find(' '); blank != std::string_view::npos; blank = whole.find(' ', blank + 1))
    if (startsIgnoringCase(whole.substr(blank + 1), beginning)) return true;
  return false;
}

Read<Timestamp> readMoment(std::string_view written, const Calendar& calendar) {
  std::string moment(written);
  if ((moment.size() == 16 || moment.size() == 19) && (moment[10] == 'T' || moment[10] == 't')) moment[10] = ' ';
  const auto time = parseSpreadsheetDateTime(moment, calendar);
  if (time && isCalendarTime(*time)) return *time;
  return std::unexpected(
      fmt::format("“{}” is not a time; write 2026-01-31, \"2026-01-31 08:00\" or 2026-01-31T08:00:00Z.", written));
}

Read<Timestamp> readPeriodEnd(std::string_view written, const Calendar& calendar) {
  const auto moment = readMoment(written, calendar);
  constexpr std::size_t dateLength = 10;
  if (!moment || written.size() != dateLength) return moment;
  return calendar.addDays(*moment, 1).value_or(*moment) - std::chrono::seconds(1);
}

Read<double> readNumber(std::string_view written, std::string_view what, double minimum, double maximum) {
  double number = 0;
  const char* const begin = std::to_address(written.begin());
  const char* const end = begin + written.size();
  const auto [stopped, problem] = std::from_chars(begin, end, number);
  if (written.empty() || stopped != end || (problem != std::errc{} && problem != std::errc::result_out_of_range))
    return std::unexpected(fmt::format("“{}” is not a number for {}; write it like 1234.5.", written, what));
  if (problem == std::errc::result_out_of_range || !std::isfinite(number) || number < minimum || number > maximum)
    return std::unexpected(
        fmt::format("{} must lie between {} and {}, and {} does not.", what, minimum, maximum, written));
  return number;
}

Read<HourSource> readHourSource(std::string_view name) {
  using enum HourSource;
  static constexpr std::array<Alias<HourSource>, 5> aliases{
      {{"engine1", engine}, {"gen1", generator1}, {"gen2", generator2}, {"Gen 1", generator1}, {"Gen 2", generator2}}};
  if (const auto source = namedCase<HourSource>(name, aliases)) return *source;
  return std::unexpected(fmt::format("There is no meter “{}”; the meters are {}.", name, storedNames<HourSource>()));
}

Read<std::pair<HourSource, double>> readMeter(std::string_view written) {
  const std::size_t equals = written.find('=');
  if (equals == std::string_view::npos)
    return std::unexpected(fmt::format("“{}” is not a meter reading; write it like engine2=1234.5.", written));
  const auto source = readHourSource(written.substr(0, equals));
  if (!source) return std::unexpected(source.error());
  const auto hours = readNumber(written.substr(equals + 1), "the reading", 0, kMostHours);
  if (!hours) return std::unexpected(hours.error());
  return std::pair{*source, *hours};
}

Read<TaskKind> readKind(std::string_view name) {
  static constexpr std::array<Alias<TaskKind>, 2> aliases{
      {{"plannedMaintenance", TaskKind::plannedMaintenance}, {"deficiencySquawk", TaskKind::deficiencySquawk}}};
  if (const auto kind = namedCase<TaskKind>(name, aliases)) return *kind;
  return std::unexpected(fmt::format("There is no kind “{}”; the kinds are {}.", name, storedNames<TaskKind>()));
}

Read<TaskCategory> readCategory(std::string_view name) {
  if (const auto category = namedCase<TaskCategory>(name)) return *category;
  std::vector<TaskCategory> found;
  std::vector<std::string_view> begun;
  for (const TaskCategory category : allCases<TaskCategory>()) {
    if (name.empty() || !startsIgnoringCase(rawText(category), name)) continue;
    found.push_back(category);
    begun.push_back(rawText(category));
  }
  if (found.size() == 1) return found.front();
  if (begun.empty())
    return std::unexpected(
        fmt::format("There is no category “{}”; the categories are {}.", name, storedNames<TaskCategory>()));
  return std::unexpected(fmt::format("“{}” may mean {}; write more of the name.", name, fmt::join(begun, " or ")));
}

}  // namespace thalvorn::cli
