// thalvorn-cli: works on the store itself, or has the window that holds the store carry the command out.

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QUtf8StringView>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "cli/execution.h"
#include "platform/store_access.h"
#include "platform/user_folders.h"

namespace {

using namespace thalvorn;
using namespace thalvorn::cli;

constexpr std::chrono::milliseconds kWaitForOtherCommands = std::chrono::minutes(1);

/// Takes the places of closed standard streams, so that no file of the program is opened there and written into; using
/// them still fails.
void occupyStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

std::expected<std::string, std::string> readAllInput() {
  if (::isatty(STDIN_FILENO) != 0)
    fmt::print(stderr, "Reading from the terminal; end with Ctrl+D on a line of its own.\n");
  std::string input;
  std::array<char, 1 << 16> block{};
  for (;;) {
    const ssize_t count = ::read(STDIN_FILENO, block.data(), block.size());
    if (count == 0) return input;
    if (count > 0) {
      input.append(block.data(), static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return std::unexpected(fmt::format("Standard input cannot be read: {}.", std::strerror(errno)));
    }
  }
}

/// False when not everything could be written.
bool writeAll(int to, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(to, text.data(), text.size());
    if (count > 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (count < 0 && errno != EINTR) {
      return false;
    }
  }
  return true;
}

int print(const CommandResult& result) {
  const bool written = writeAll(STDOUT_FILENO, result.out);
  const int problem = errno;
  writeAll(STDERR_FILENO, result.err);
  if (written) return result.exit;
  // Whoever closes a pipe early has read enough.
  if (problem != EPIPE && result.exit == kDone) {
    writeAll(STDERR_FILENO,
             fmt::format("thalvorn-cli: The command was carried out, but its output cannot be written: {}.\n",
                         std::strerror(problem)));
  }
  return result.exit == kDone ? kRefused : result.exit;
}

std::expected<QString, CommandResult> storePath(const CommandLine& line) {
  if (line.storeFile) return canonicalStorePath(QFile::decodeName(line.storeFile->c_str()));
  const auto store = userStoreFile();
  if (!store) return std::unexpected(refused(store.error().toStdString()));
  return *store;
}

CommandResult refusedBy(const InstanceError& error) { return refused(error.message.toStdString()); }

CommandResult handOver(const InstanceClient& window, const CommandLine& line, const std::vector<std::string>& words,
                       const Surroundings& surroundings) {
  const auto now = moment(line, Calendar::ofThisComputer());
  if (!now) return explained(now.error(), line.command);
  const auto reply = window.runAndWait({.arguments = words,
                                        .input = QByteArray::fromStdString(*surroundings.input),
                                        .workingDirectory = surroundings.workingDirectory.string(),
                                        .now = *now});
  if (!reply) return explained(refusedBy(reply.error()), line.command);
  return {reply->exitStatus, reply->output.toStdString(), reply->errorOutput.toStdString()};
}

/// Whether the command may find a store that nobody has made yet empty. A folder that is not there either was mistyped.
bool maySeeEmpty(const CommandLine& line, const std::filesystem::path& file) {
  std::error_code error;
  return line.command->access == Access::reads &&
         (!line.storeFile || std::filesystem::is_directory(file.parent_path(), error));
}

CommandResult carryOut(const CommandLine& line, const std::vector<std::string>& words) {
  const Access access = line.command->access;
  Surroundings surroundings;
  std::error_code error;
  surroundings.workingDirectory = std::filesystem::current_path(error);
  if (access == Access::none) return explained(runInThisProcess(line, surroundings), line.command);

  const auto store = storePath(line);
  if (!store) return explained(store.error(), line.command);
  surroundings.storeFile = QFile::encodeName(*store).toStdString();
  if (!line.command->createsStore && !std::filesystem::exists(surroundings.storeFile, error)) {
    if (maySeeEmpty(line, surroundings.storeFile)) return explained(runInThisProcess(line, surroundings), line.command);
    return explained(refused(fmt::format("There is no store {}. The commands demo, put and restore make one.",
                                         surroundings.storeFile.string())),
                     line.command);
  }
  if (line.wantsInput()) {
    auto input = readAllInput();
    if (!input) return explained(refused(input.error()), line.command);
    surroundings.input = std::make_shared<const std::string>(std::move(*input));
  }
  const auto claimed = claimForCommand(*store, kWaitForOtherCommands);
  if (claimed) {
    if (const auto* window = std::get_if<InstanceClient>(&*claimed))
      return handOver(*window, line, words, surroundings);
  } else {
    // Where no lock can be made, on a read-only disk for one, the store can still be looked at.
    const bool looks = access == Access::reads || access == Access::upkeep;
    if (!looks || claimed.error().problem != InstanceProblem::unavailable)
      return explained(refusedBy(claimed.error()), line.command);
  }
  return explained(runInThisProcess(line, surroundings), line.command);
}

/// The event loop that saving needs, and the typefaces when pages are drawn; both without a display.
std::unique_ptr<QCoreApplication> makeApplication(bool drawsPages, int& argc, char** argv) {
  if (!drawsPages) return std::make_unique<QCoreApplication>(argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // What the toolkit misses of a desktop is no matter of whoever prints a report.
  const QtMessageHandler usual = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  auto application = std::make_unique<QGuiApplication>(argc, argv);
  qInstallMessageHandler(usual);
  return application;
}

CommandResult run(const std::vector<std::string>& words, int argc, char** argv) {
  for (const std::string& word : words)
    if (!QUtf8StringView(word.data(), static_cast<qsizetype>(word.size())).isValidUtf8())
      return explained(misused("An argument is not UTF-8 text."), nullptr);
  const auto line = parseCommandLine(words);
  if (!line) return line.error();
  if (auto answer = answerWithoutStore(*line)) return explained(std::move(*answer), line->command);
  const auto application = makeApplication(line->command->drawsPages, argc, argv);
  return carryOut(*line, words);
}

}  // namespace

int main(int argc, char** argv) {
  occupyStandardStreams();
  std::signal(SIGPIPE, SIG_IGN);
  const std::vector<std::string> words(argv + 1, argv + argc);
  QLoggingCategory::setFilterRules(QStringLiteral("thalvorn.*.info=false\nthalvorn.*.debug=false"));
  qSetMessagePattern(QStringLiteral("%{message}"));
  try {
    return print(run(words, argc, argv));
  } catch (const std::exception& problem) {
    return print(explained(refused(fmt::format("The command failed: {}.", problem.what())), nullptr));
  }
}
