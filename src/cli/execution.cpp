#include "cli/execution.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/store_use.h"
#include "cli/values.h"
#include "store/app_view_model.h"

namespace thalvorn::cli {

std::string choosePrefix(const LocalCache& cache, const CommandLine& line) {
  if (!line.command->onlyPrefix.empty()) return std::string(line.command->onlyPrefix);
  if (line.user) return *line.user;
  if (!cache.preference("sb_access_token").value_or("").empty())
    if (const std::string user = cache.preference("sb_user_id").value_or(""); !user.empty()) return user;
  const std::vector<std::string> prefixes = cache.prefixes();
  const bool local = std::ranges::find(prefixes, AppViewModel::localPrefix) != prefixes.end();
  return std::string(local ? AppViewModel::localPrefix : AppViewModel::demoPrefix);
}

std::expected<std::optional<Timestamp>, CommandResult> moment(const CommandLine& line, const Calendar& calendar) {
  if (!line.at) return std::nullopt;
  const auto at = readMoment(*line.at, calendar);
  if (!at) return std::unexpected(misused("--at: " + at.error()));
  return *at;
}

std::optional<CommandResult> answerWithoutStore(const CommandLine& line) {
  switch (line.ask) {
    case CommandLine::Ask::help:
      return done(helpText(line.command));
    case CommandLine::Ask::version:
      return done("thalvorn-cli " THALVORN_VERSION "\n");
    case CommandLine::Ask::run:
      break;
  }
  if (!line.command->onlyPrefix.empty() && line.user && *line.user != line.command->onlyPrefix)
    return misused(fmt::format("{} works on the user {} only.", line.command->name, line.command->onlyPrefix));
  return std::nullopt;
}

QCoro::Task<CommandResult> runCommand(const Command* command, CommandContext context, Arguments arguments) {
  try {
    co_return co_await command->run(std::move(context), std::move(arguments));
  } catch (const std::exception& problem) {
    co_return refused(fmt::format("The command failed: {}.", problem.what()));
  }
}

CommandResult runInThisProcess(const CommandLine& line, const Surroundings& surroundings) {
  const Command& command = *line.command;
  const SystemClock system;
  const auto at = moment(line, system.calendar());
  if (!at) return at.error();
  const FixedClock fixed(at->value_or(system.now()), system.calendar());
  CommandContext context{.store = nullptr,
                         .now = fixed.now(),
                         .calendar = fixed.calendar(),
                         .json = line.json,
                         .inWindow = false,
                         .input = surroundings.input,
                         .workingDirectory = surroundings.workingDirectory,
                         .storeFile = surroundings.storeFile};
  if (command.access == Access::replacesFile) return QCoro::waitFor(runCommand(&command, context, line.arguments));

  auto cache = LocalCache::open(surroundings.storeFile, {.create = command.createsStore});
  if (!cache) return refused(cache.error().message);
  AppViewModel store(**cache, fixed);
  context.store = &store;
  if (command.access != Access::upkeep) store.reloadNow(choosePrefix(**cache, line));
  if (!store.loadProblem().empty()) return refused(store.loadProblem());
  return QCoro::waitFor(runCommand(&command, context, line.arguments));
}

}  // namespace thalvorn::cli
