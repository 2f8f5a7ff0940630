#include "cli/execution.h"

#include <fmt/format.h>

#include <QFile>
#include <QTemporaryDir>
#include <algorithm>

#include "cli/store_use.h"
#include "cli/values.h"
#include "store/app_view_model.h"
#include "store/preferences.h"
#include "sync/cloud_session.h"
#include "sync/deployment.h"

namespace thalvorn::cli {

std::string choosePrefix(const LocalCache& cache, const CommandLine& line) {
  if (!line.command->onlyPrefix.empty()) return std::string(line.command->onlyPrefix);
  if (line.user) return *line.user;
  if (!cache.preference(preference_keys::accessToken).value_or("").empty())
    if (const std::string user = cache.preference(preference_keys::userID).value_or(""); !user.empty()) return user;
  const std::vector<std::string> prefixes = cache.prefixes();
  // A fleet that somebody has begun in the window counts before its first record.
  const bool local = std::ranges::find(prefixes, AppViewModel::localPrefix) != prefixes.end() ||
                     cache.preference(preference_keys::lastFleet) == AppViewModel::localPrefix;
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

namespace {

CommandResult runOnStore(const CommandLine& line, LocalCache& cache, const Clock& clock, CommandContext context) {
  const Command& command = *line.command;
  AppViewModel store(cache, clock);
  context.store = &store;
  if (command.access != Access::upkeep) store.reloadNow(choosePrefix(cache, line));
  if (!store.loadProblem().empty()) return refused(store.loadProblem());
  SystemTiming timing;
  std::unique_ptr<CloudSession> cloud;
  if (command.usesCloud) {
    const auto server = deployedBackend({.url = QString::fromStdString(line.backend.value_or("")),
                                         .key = QString::fromStdString(line.backendKey.value_or(""))});
    if (!server) {
      context.cloudProblem = server.error().toStdString();
    } else if (!*server) {
      context.cloudProblem = std::string(kNoServer);
    } else {
      // What a command deletes is meant; nobody takes it back within the next seconds.
      cloud = std::make_unique<CloudSession>(store, **server, clock, timing,
                                             SyncManager::Options{.deletionDelay = std::chrono::seconds(0)});
      cloud->restore();
      context.cloud = cloud.get();
    }
  }
  return QCoro::waitFor(runCommand(&command, std::move(context), line.arguments));
}

/// What the command finds in a store that nobody has made yet.
CommandResult runOnEmptyStore(const CommandLine& line, const Clock& clock, CommandContext context) {
  const QTemporaryDir folder;
  const auto cache = LocalCache::open(QFile::encodeName(folder.filePath(QStringLiteral("empty.db"))).toStdString());
  if (!cache) return refused(cache.error().message);
  std::string notice = fmt::format("There is no store {} yet.\n", context.storeFile.string());
  CommandResult result = runOnStore(line, **cache, clock, std::move(context));
  result.err = std::move(notice) + result.err;
  return result;
}

}  // namespace

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
  if (command.access == Access::none || command.access == Access::replacesFile)
    return QCoro::waitFor(runCommand(&command, context, line.arguments));

  const auto cache = LocalCache::open(surroundings.storeFile, {.create = command.createsStore});
  const Clock& clock = *at ? static_cast<const Clock&>(fixed) : system;
  if (cache) return runOnStore(line, **cache, clock, std::move(context));
  if (cache.error().kind == CacheError::Kind::notFound && command.access == Access::reads)
    return runOnEmptyStore(line, fixed, std::move(context));
  return refused(cache.error().message);
}

}  // namespace thalvorn::cli
