#pragma once

#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "base/calendar.h"
#include "cli/command_line.h"
#include "store/local_cache.h"

/// Carrying out a command line, whoever holds the store.
namespace thalvorn::cli {

/// What surrounds a command line.
struct Surroundings {
  std::shared_ptr<const std::string> input = std::make_shared<const std::string>();
  std::filesystem::path workingDirectory;
  std::filesystem::path storeFile;
};

/// Whose records a command works on: `--user`, else the signed-in user, else the computer-only fleet when it has
/// records, else the demo fleet.
std::string choosePrefix(const LocalCache& cache, const CommandLine& line);

/// The moment that `--at` names, if it is given.
std::expected<std::optional<Timestamp>, CommandResult> moment(const CommandLine& line, const Calendar& calendar);

/// The answer to a line that needs no store (help, version); nothing for one that runs a command.
std::optional<CommandResult> answerWithoutStore(const CommandLine& line);

/// Carries the command out; an exception that leaves it becomes a refusal.
QCoro::Task<CommandResult> runCommand(const Command* command, CommandContext context, Arguments arguments);

/// Opens the store, carries out the command and closes the store. A command that only reads finds no records where
/// there is no store yet, and says so. The caller holds the store's lock. Needs a QCoreApplication; the answer is not
/// `explained` yet.
CommandResult runInThisProcess(const CommandLine& line, const Surroundings& surroundings);

}  // namespace thalvorn::cli
