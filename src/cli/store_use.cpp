#include "cli/store_use.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <QCoroFuture>

#include "backend/next_emission.h"
#include "cli/values.h"
#include "core/report_basics.h"

namespace thalvorn::cli {
namespace {

constexpr std::chrono::milliseconds kSavingPatience = std::chrono::minutes(5);

}  // namespace

QCoro::Task<std::expected<void, CommandResult>> whenSaved(CommandContext context, Saving saving) {
  using Outcome = std::expected<void, CommandResult>;
  while (!saving.isFinished()) {
    if (const std::string& problem = context.store->saveProblem(); !problem.empty()) {
      const char* const then =
          context.inWindow ? "It is not saved yet; the window keeps it and tries again." : "Nothing was changed.";
      co_return Outcome(std::unexpect, refused(fmt::format("{} {}", problem, then)));
    }
    const auto changed = co_await nextEmission(context.store, &AppViewModel::unsavedChanged, kSavingPatience);
    if (!changed && !saving.isFinished())
      co_return Outcome(std::unexpect,
                        refused("The disk does not answer; it is not certain that the change is saved."));
  }
  const SaveResult result = saving.result();
  if (!result) co_return Outcome(std::unexpect, refused(result.error().message));
  co_return Outcome();
}

std::expected<const Vessel*, std::string> findVessel(const AppViewModel& store, std::string_view nameOrID) {
  if (const auto id = Uuid::parse(nameOrID)) {
    if (const Vessel* vessel = store.vessels().find(*id)) return vessel;
  }
  // The better the name fits, the sooner it decides: whole, from its beginning, from the beginning of a word.
  using Fits = bool (*)(std::string_view, std::string_view);
  std::vector<const Vessel*> candidates;
  for (const Fits fits : {Fits{equalIgnoringCase}, Fits{startsIgnoringCase}, Fits{aWordStartsIgnoringCase}}) {
    for (const Vessel* vessel : store.vesselsInOrder())
      if (!nameOrID.empty() && fits(vessel->name, nameOrID)) candidates.push_back(vessel);
    if (!candidates.empty()) break;
  }
  if (candidates.size() == 1) return candidates.front();
  std::vector<std::string> names;
  if (candidates.empty()) {
    for (const Vessel* vessel : store.vesselsInOrder()) names.push_back(fmt::format("“{}”", vessel->name));
    return std::unexpected(
        names.empty() ? fmt::format("There is no vessel “{}”: the fleet has no vessels.", nameOrID)
                      : fmt::format("There is no vessel “{}”. The fleet has {}.", nameOrID, fmt::join(names, ", ")));
  }
  for (const Vessel* vessel : candidates)
    names.push_back(fmt::format("“{}” ({})", vessel->name, vessel->id.toString()));
  return std::unexpected(
      fmt::format("“{}” may mean {}. Write more of the name, or the id.", nameOrID, fmt::join(names, " or ")));
}

std::expected<const Vessel*, CommandResult> vesselOption(const AppViewModel& store, const Arguments& arguments) {
  const auto name = arguments.value("--vessel");
  if (!name) return nullptr;
  const auto vessel = findVessel(store, *name);
  if (!vessel) return std::unexpected(refused(vessel.error()));
  return *vessel;
}

std::expected<const MaintenanceTask*, CommandResult> findTask(const AppViewModel& store, std::string_view written) {
  const auto id = Uuid::parse(written);
  if (!id)
    return std::unexpected(refused(fmt::format("“{}” is not an identifier; board --json shows the tasks’.", written)));
  const MaintenanceTask* task = store.tasks().find(*id);
  if (task == nullptr) return std::unexpected(refused(fmt::format("There is no task {}.", id->toString())));
  return task;
}

Calendar calendarAboard(const CommandContext& context, const Uuid& vesselID) {
  const VesselProfile* profile = context.store->profileOf(vesselID);
  return profile != nullptr ? aboard(*profile, context.calendar) : context.calendar;
}

std::string vesselName(const AppViewModel& store, const Uuid& id) {
  const Vessel* vessel = store.vessels().find(id);
  return vessel != nullptr ? vessel->name : std::string();
}

}  // namespace thalvorn::cli
