#pragma once

#include <expected>
#include <optional>
#include <string>
#include <vector>

#include "cli/command.h"

namespace thalvorn::cli {

/// A command line, understood as far as that is possible without the store.
struct CommandLine {
  enum class Ask { run, help, version };

  Ask ask = Ask::run;
  const Command* command = nullptr;  ///< null for the help overview and the version
  Arguments arguments;
  std::optional<std::string> storeFile;   ///< `--store`
  std::optional<std::string> user;        ///< `--user`
  std::optional<std::string> at;          ///< `--at`, as written
  std::optional<std::string> backend;     ///< `--backend`: the address of the fleet server
  std::optional<std::string> backendKey;  ///< `--key`: its public key
  bool json = false;

  bool wantsInput() const;
};

/// The options that every command takes, before or after its name.
std::span<const Option> globalOptions();

/// Sorts the words of a command line (without the program's name). The error holds the messages for standard error with
/// the usage line; its exit status is 2.
std::expected<CommandLine, CommandResult> parseCommandLine(const std::vector<std::string>& words);

/// "usage: thalvorn-cli snooze TASKID --until TIME".
std::string usageLine(const Command& command);

/// What `help`, `--help` and `help COMMAND` print.
std::string helpText(const Command* command);

/// The result as it is printed: a misuse gets the command's usage line, every message the program's name.
CommandResult explained(CommandResult result, const Command* command);

}  // namespace thalvorn::cli
