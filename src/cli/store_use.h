#pragma once

#include <QCoroTask>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command.h"
#include "core/maintenance_task.h"
#include "core/vessel.h"
#include "store/app_view_model.h"

/// What several commands ask of the store.
namespace thalvorn::cli {

/// Finishes when the edit is on disk. The error is the refusal to print: the store's own, or why it cannot be saved.
QCoro::Task<std::expected<void, CommandResult>> whenSaved(CommandContext context, Saving saving);

/// The refusal when the records of a kind are closed to the user, though the computer has them; empty when he may read
/// them.
template <class T>
std::optional<CommandResult> closed(const AppViewModel& store) {
  if (store.rights(RecordKind<T>::facts.permission).read) return std::nullopt;
  return refused("The " + std::string(RecordKind<T>::facts.plural) + " are closed to you in this account.");
}

/// The vessel by id, by name without regard to case, or by the unmistakable beginning of its name.
std::expected<const Vessel*, std::string> findVessel(const AppViewModel& store, std::string_view nameOrID);

/// The value of `--vessel`; null when it is not given.
std::expected<const Vessel*, CommandResult> vesselOption(const AppViewModel& store, const Arguments& arguments);

std::expected<const MaintenanceTask*, CommandResult> findTask(const AppViewModel& store, std::string_view id);

/// The calendar of the vessel's time zone; the command's own where she has none.
Calendar calendarAboard(const CommandContext& context, const Uuid& vesselID);

/// The name of a vessel; empty when it is not in the fleet.
std::string vesselName(const AppViewModel& store, const Uuid& id);

}  // namespace thalvorn::cli
