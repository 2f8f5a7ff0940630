#include "cli/period.h"

#include "cli/values.h"

namespace thalvorn::cli {

std::expected<ReportPeriod, CommandResult> readPeriod(const CommandContext& context, const Arguments& arguments) {
  ReportPeriod period;
  if (const auto from = arguments.value("--from")) {
    const auto moment = readMoment(*from, context.calendar);
    if (!moment) return std::unexpected(misused(moment.error()));
    period.first = *moment;
  }
  if (const auto to = arguments.value("--to")) {
    const auto moment = readPeriodEnd(*to, context.calendar);
    if (!moment) return std::unexpected(misused(moment.error()));
    period.last = *moment;
  }
  if (period.first && period.last && *period.last < *period.first)
    return std::unexpected(misused("--from is after --to: turn them round."));
  return period;
}

}  // namespace thalvorn::cli
