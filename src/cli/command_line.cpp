#include "cli/command_line.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "cli/text_table.h"

namespace thalvorn::cli {
namespace {

constexpr std::array kGlobalOptions{
    Option{"--store", "FILE", "the store's file; without it the one in the user's data folder"},
    Option{"--user", "ID", "whose records: a user's id, local (kept on this computer only) or demo"},
    Option{"--at", "TIME", "as of that moment: 2026-01-31, \"2026-01-31 08:00\" or 2026-01-31T08:00:00Z"},
    Option{"--backend", "URL", "the fleet server; without it THALVORN_BACKEND_URL or the deployment file tells"},
    Option{"--key", "KEY", "the fleet server's public key"},
    Option{"--json", "", "print JSON instead of tables"},
    Option{"--help", "", "print help"},
    Option{"--version", "", "print the program's version"},
};

std::unexpected<CommandResult> misuse(std::string message, const Command* command) {
  return std::unexpected(explained(misused(std::move(message)), command));
}

const Option* findOption(std::span<const Option> options, std::string_view name) {
  const auto found = std::ranges::find(options, name, &Option::name);
  return found == options.end() ? nullptr : &*found;
}

/// The words split into operands and options. Until the command is known only the global options are.
class Sorter {
 public:
  explicit Sorter(const std::vector<std::string>& words) : words_(words) {}

  std::expected<CommandLine, CommandResult> sort() {
    for (; at_ < words_.size(); ++at_) {
      const std::string& word = words_[at_];
      if (optionsEnded_ || word.size() < 2 || word.front() != '-') {
        if (auto taken = takeOperand(word); !taken) return std::unexpected(taken.error());
      } else if (word == "--") {
        optionsEnded_ = true;
      } else if (auto taken = takeOption(word == "-h" ? "--help" : word); !taken) {
        return std::unexpected(taken.error());
      }
    }
    return finish();
  }

 private:
  std::expected<void, CommandResult> takeOperand(const std::string& word) {
    if (line_.command != nullptr) {
      line_.arguments.operands.push_back(word);
    } else if (word == "help" && !helpAsked_) {
      helpAsked_ = true;
    } else {
      line_.command = findCommand(word);
      if (line_.command == nullptr)
        return misuse(fmt::format("There is no command “{}”. thalvorn-cli help names them all.", word), nullptr);
    }
    return {};
  }

  std::expected<void, CommandResult> takeOption(const std::string& word) {
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const Option* option = findOption(kGlobalOptions, name);
    if (option == nullptr && line_.command != nullptr) option = findOption(line_.command->options, name);
    if (option == nullptr) {
      return misuse(line_.command != nullptr
                        ? fmt::format("{} has no option {}.", line_.command->name, name)
                        : fmt::format("The option {} is unknown here; it may belong behind the command.", name),
                    line_.command);
    }
    std::string value;
    if (option->value.empty()) {
      if (equals != std::string::npos) return misuse(fmt::format("{} takes no value.", name), line_.command);
    } else if (equals != std::string::npos) {
      value = word.substr(equals + 1);
    } else {
      if (at_ + 1 == words_.size())
        return misuse(fmt::format("{} needs a value: {} {}.", name, name, option->value), line_.command);
      value = words_[++at_];
    }
    std::vector<std::string>& values = line_.arguments.options[name];
    if (!values.empty() && !option->repeatable && !option->value.empty())
      return misuse(fmt::format("{} is given twice.", name), line_.command);
    values.push_back(std::move(value));
    return {};
  }

  std::expected<CommandLine, CommandResult> finish() {
    const Command* command = line_.command;
    line_.storeFile = takeGlobal("--store");
    line_.user = takeGlobal("--user");
    line_.at = takeGlobal("--at");
    line_.backend = takeGlobal("--backend");
    line_.backendKey = takeGlobal("--key");
    line_.json = takeGlobal("--json").has_value();
    const bool version = takeGlobal("--version").has_value();
    if (takeGlobal("--help") || helpAsked_) {
      line_.ask = CommandLine::Ask::help;
      return std::move(line_);
    }
    if (version) {
      line_.ask = CommandLine::Ask::version;
      return std::move(line_);
    }
    if (command == nullptr) return misuse("Which command? thalvorn-cli help names them all.", nullptr);
    for (const auto& [name, given] : {std::pair{"--store", &line_.storeFile}, std::pair{"--user", &line_.user}})
      if (*given && (*given)->empty()) return misuse(fmt::format("{} is empty.", name), command);

    const std::size_t operands = line_.arguments.operands.size();
    if (operands < command->fewestOperands)
      return misuse(fmt::format("{} needs {}.", command->name, command->operands), command);
    if (operands > command->mostOperands) {
      return misuse(fmt::format("“{}” is too much; a name with blanks is written in quotes.",
                                line_.arguments.operands[command->mostOperands]),
                    command);
    }
    for (const Option& option : command->options)
      if (option.required && !line_.arguments.has(option.name))
        return misuse(fmt::format("{} needs {} {}.", command->name, option.name, option.value), command);
    return std::move(line_);
  }

  std::optional<std::string> takeGlobal(std::string_view name) {
    const auto found = line_.arguments.options.find(name);
    if (found == line_.arguments.options.end()) return std::nullopt;
    std::string value = found->second.front();
    line_.arguments.options.erase(found);
    return value;
  }

  const std::vector<std::string>& words_;
  std::size_t at_ = 0;
  bool optionsEnded_ = false;
  bool helpAsked_ = false;
  CommandLine line_;
};

std::string optionUsage(const Option& option) {
  std::string usage(option.name);
  if (!option.value.empty()) usage += fmt::format(" {}", option.value);
  if (!option.required) usage = "[" + usage + "]";
  if (option.repeatable) usage += "…";
  return usage;
}

std::string optionList(std::span<const Option> options) {
  TextTable table;
  for (const Option& option : options) {
    const std::string name =
        option.value.empty() ? std::string(option.name) : fmt::format("{} {}", option.name, option.value);
    table.row({"  " + name, std::string(option.help)});
  }
  return table.take();
}

}  // namespace

std::optional<std::string> Arguments::value(std::string_view name) const {
  const auto found = options.find(name);
  return found == options.end() ? std::nullopt : std::optional(found->second.front());
}

std::vector<std::string> Arguments::values(std::string_view name) const {
  const auto found = options.find(name);
  return found == options.end() ? std::vector<std::string>{} : found->second;
}

bool CommandLine::wantsInput() const {
  if (ask != Ask::run || command->input == Input::never) return false;
  return command->input == Input::always || std::ranges::find(arguments.operands, "-") != arguments.operands.end();
}

std::span<const Option> globalOptions() { return kGlobalOptions; }

std::expected<CommandLine, CommandResult> parseCommandLine(const std::vector<std::string>& words) {
  return Sorter(words).sort();
}

std::string usageLine(const Command& command) {
  std::string usage = fmt::format("usage: thalvorn-cli {}", command.name);
  if (!command.operands.empty()) usage += fmt::format(" {}", command.operands);
  for (const Option& option : command.options) usage += " " + optionUsage(option);
  return usage;
}

std::string helpText(const Command* command) {
  if (command != nullptr) {
    std::string text = fmt::format("{}\n\n{}.\n", usageLine(*command), command->summary);
    if (!command->details.empty()) text += fmt::format("\n{}\n", command->details);
    if (!command->options.empty()) text += "\nOptions:\n" + optionList(command->options);
    return text;
  }
  TextTable commands;
  for (const Command& each : commandTable()) commands.row({fmt::format("  {}", each.name), std::string(each.summary)});
  commands.row({"  help [COMMAND]", "Print this help, or that of a command"});
  return fmt::format(
      "usage: thalvorn-cli [OPTION…] COMMAND [ARGUMENT…]\n\n"
      "Works on the same fleet as the desktop program, which may be open meanwhile.\n\n"
      "Commands:\n{}\nOptions, before or after the command:\n{}\n"
      "VESSEL is a vessel's name, the beginning of one, or its id. The exit status is 0 when the command was carried\n"
      "out, 1 when it was refused, 2 when it was not understood.\n",
      commands.take(), optionList(globalOptions()));
}

CommandResult explained(CommandResult result, const Command* command) {
  if (result.exit != kDone && !result.err.empty()) result.err = "thalvorn-cli: " + result.err;
  if (result.exit == kUsage)
    result.err +=
        command != nullptr ? usageLine(*command) + "\n" : "usage: thalvorn-cli [OPTION…] COMMAND [ARGUMENT…]\n";
  return result;
}

}  // namespace thalvorn::cli
