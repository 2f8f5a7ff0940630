#pragma once

#include <QCoroTask>
#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/calendar.h"
#include "base/timestamp.h"

namespace thalvorn {
class AppViewModel;
class CloudSession;
}  // namespace thalvorn

/// The command line as functions over the store: what a command is, what it is given and what it gives back. The same
/// commands run in a process of their own and in the window that holds the store.
namespace thalvorn::cli {

inline constexpr int kDone = 0;
inline constexpr int kRefused = 1;
inline constexpr int kUsage = 2;

/// What a command prints and how it ended.
struct CommandResult {
  int exit = kDone;
  std::string out;
  std::string err;
};

inline CommandResult done(std::string out) { return {kDone, std::move(out), {}}; }
/// Nothing was changed; `message` is a sentence for the user.
inline CommandResult refused(std::string message) { return {kRefused, {}, std::move(message) + "\n"}; }
/// The line was not understood; whoever runs the command adds its usage.
inline CommandResult misused(std::string message) { return {kUsage, {}, std::move(message) + "\n"}; }

/// Why there is no fleet server to speak with.
inline constexpr std::string_view kNoServer =
    "No fleet server is set up on this computer. Name one with --backend URL --key KEY, or with THALVORN_BACKEND_URL "
    "and "
    "THALVORN_BACKEND_KEY.";

/// The words of a command line, sorted by the command's own table of options.
struct Arguments {
  std::vector<std::string> operands;
  std::map<std::string, std::vector<std::string>, std::less<>> options;  ///< by name with its dashes

  bool has(std::string_view name) const { return options.contains(name); }
  std::optional<std::string> value(std::string_view name) const;
  /// The value of an option that the command's table makes required.
  const std::string& required(std::string_view name) const { return options.find(name)->second.front(); }
  std::vector<std::string> values(std::string_view name) const;
};

/// What a command works on. The store is loaded for the user whose records are asked for.
struct CommandContext {
  AppViewModel* store = nullptr;
  CloudSession* cloud = nullptr;  ///< the fleet server; null when none is set up, or the command needs none
  std::string cloudProblem;       ///< why it is null, as a sentence
  Timestamp now;
  Calendar calendar = Calendar::utc();
  bool json = false;
  bool inWindow = false;  ///< runs in the window that holds the store, which keeps and retries what cannot be saved
  std::shared_ptr<const std::string> input;  ///< all of standard input, for commands that read it
  std::filesystem::path workingDirectory;    ///< what relative file names are relative to
  std::filesystem::path storeFile;

  std::filesystem::path file(std::string_view name) const { return workingDirectory / std::filesystem::path(name); }
};

struct Option {
  std::string_view name;        ///< with its dashes
  std::string_view value = {};  ///< what the usage line calls its value; empty for a switch
  std::string_view help;
  bool repeatable = false;
  bool required = false;
};

/// What a command does to the store.
enum class Access {
  none,         ///< needs no store
  reads,        ///< looks at the records
  edits,        ///< changes records
  upkeep,       ///< works on the open file without reading the records
  replacesFile  ///< needs the file closed
};

/// When a command reads standard input.
enum class Input { never, always, forDash };

struct Command {
  std::string_view name;
  std::string_view operands;  ///< as the usage line names them
  std::size_t fewestOperands = 0;
  std::size_t mostOperands = 0;
  std::span<const Option> options;
  Access access = Access::reads;
  bool createsStore = false;         ///< makes the store when there is none yet
  std::string_view onlyPrefix = {};  ///< the user it works on whatever `--user` says; empty for most
  Input input = Input::never;
  bool drawsPages = false;  ///< needs the typefaces of a QGuiApplication
  bool usesCloud = false;   ///< speaks with the fleet server
  std::string_view summary;
  std::string_view details;
  QCoro::Task<CommandResult> (*run)(CommandContext, Arguments);
};

/// Any number of operands.
inline constexpr std::size_t kManyOperands = 1'000'000;

/// All commands, in the order in which the help names them.
std::span<const Command> commandTable();
const Command* findCommand(std::string_view name);

}  // namespace thalvorn::cli
