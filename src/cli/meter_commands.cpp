// meters, correct-meter and replace-meter.

#include <fmt/format.h>

#include "base/date_format.h"
#include "base/number_format.h"
#include "cli/commands.h"
#include "cli/json_text.h"
#include "cli/store_use.h"
#include "cli/text_table.h"
#include "cli/values.h"
#include "core/meters.h"

namespace thalvorn::cli {
namespace {

std::string metersText(const CommandContext& context, const Vessel& vessel) {
  if (context.json) {
    JsonObject meters;
    for (const HourSource source : allCases<HourSource>()) meters.number(rawText(source), vessel.reading(source));
    return JsonObject().json("vessel", toJson(vessel)).json("meters", meters.take()).take() + "\n";
  }
  TextTable table({TextTable::Align::left, TextTable::Align::left, TextTable::Align::right});
  for (const HourSource source : allCases<HourSource>())
    if (vessel.hasMeter(source) || vessel.reading(source) != 0)
      table.row({std::string(rawText(source)), std::string(meterLabel(source)), hoursText(vessel.reading(source))});
  return fmt::format("{}, meters {}\n{}", printable(vessel.name),
                     vessel.engineHoursUpdatedAt
                         ? "as of " + formatDateTime(context.calendar.local(*vessel.engineHoursUpdatedAt))
                         : "never updated",
                     table.take());
}

QCoro::Task<CommandResult> storedMeters(CommandContext context, Saving saving, Uuid vesselID, std::string notices) {
  const auto saved = co_await whenSaved(context, saving);
  if (!saved) co_return saved.error();
  const Vessel* vessel = context.store->vessels().find(vesselID);
  if (vessel == nullptr) co_return refused("This vessel was deleted meanwhile.");
  co_return CommandResult{kDone, metersText(context, *vessel), std::move(notices)};
}

QCoro::Task<CommandResult> adjust(CommandContext context, Arguments arguments, MeterChange change) {
  const auto vessel = findVessel(*context.store, arguments.operands.front());
  if (!vessel) co_return refused(vessel.error());
  const auto meter = readMeter(arguments.operands[1]);
  if (!meter) co_return misused(meter.error());
  const Uuid id = (*vessel)->id;
  const MeterAdjustment adjustment{
      .source = meter->first, .hours = meter->second, .reason = arguments.required("--reason")};
  co_return co_await storedMeters(context, context.store->correctMeter(id, change, adjustment), id, {});
}

}  // namespace

QCoro::Task<CommandResult> showOrRaiseMeters(CommandContext context, Arguments arguments) {
  AppViewModel& store = *context.store;
  const auto vessel = findVessel(store, arguments.operands.front());
  if (!vessel) co_return refused(vessel.error());
  std::vector<MeterReading> readings;
  std::string notices;
  for (std::size_t i = 1; i < arguments.operands.size(); ++i) {
    const auto meter = readMeter(arguments.operands[i]);
    if (!meter) co_return misused(meter.error());
    readings.push_back({meter->first, meter->second});
    if (const auto notice = checkReading(**vessel, meter->first, meter->second, context.now))
      notices += noticeText(*notice) + "\n";
  }
  if (readings.empty()) co_return done(metersText(context, **vessel));
  const Uuid id = (*vessel)->id;
  co_return co_await storedMeters(context, store.updateMeters(id, readings), id, std::move(notices));
}

QCoro::Task<CommandResult> correctMeterReading(CommandContext context, Arguments arguments) {
  return adjust(std::move(context), std::move(arguments), MeterChange::corrected);
}

QCoro::Task<CommandResult> recordMeterReplacement(CommandContext context, Arguments arguments) {
  return adjust(std::move(context), std::move(arguments), MeterChange::replaced);
}

}  // namespace thalvorn::cli
