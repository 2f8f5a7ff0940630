#include "cli/window_commands.h"

#include <fmt/format.h>

#include <QCoroFuture>
#include <chrono>
#include <memory>
#include <utility>

#include "backend/next_emission.h"
#include "cli/store_use.h"

namespace thalvorn::cli {
namespace {

constexpr std::chrono::milliseconds kPatience = std::chrono::minutes(5);

/// The records of a user who is not in view, or as of another time, over the window's cache.
class OtherFleet : public QObject {
 public:
  OtherFleet(LocalCache& cache, Timestamp now, const Calendar& calendar)
      : clock_(now, calendar), store(cache, clock_) {}

 private:
  FixedClock clock_;

 public:
  AppViewModel store;
};

/// Deleted from the event loop: the coroutine that lets go of it may run inside one of its signals.
struct DeleteLater {
  void operator()(QObject* object) const { object->deleteLater(); }
};

CommandReply reply(CommandResult result, const Command* command) {
  result = explained(std::move(result), command);
  return {result.exit, QByteArray::fromStdString(result.out), QByteArray::fromStdString(result.err)};
}

}  // namespace

WindowCommands::WindowCommands(AppViewModel& window, QObject* parent) : QObject(parent), window_(window) {}

void WindowCommands::serve(SingleInstance& instance) {
  instance.setCommandHandler([this](CommandRequest request) { return run(std::move(request)); });
}

QCoro::Task<CommandReply> WindowCommands::run(CommandRequest request) {
  const auto line = parseCommandLine(request.arguments);
  if (!line) co_return reply(line.error(), nullptr);
  if (auto answer = answerWithoutStore(*line)) co_return reply(std::move(*answer), line->command);
  const Command& command = *line->command;
  if (command.access == Access::replacesFile) {
    co_return reply(refused(fmt::format("The program’s window has this store open, so {} cannot replace it. Close the "
                                        "window first, or use the window’s settings.",
                                        command.name)),
                    &command);
  }
  const Calendar calendar = window_.calendar();
  auto at = moment(*line, calendar);
  if (!at) co_return reply(at.error(), &command);
  if (request.now) at = *request.now;

  const CommandContext context{.store = &window_,
                               .cloud = cloud_,
                               .cloudProblem = cloud_ ? "" : "The program's window works without a fleet server.",
                               .now = at->value_or(window_.now()),
                               .calendar = calendar,
                               .json = line->json,
                               .inWindow = true,
                               .input = std::make_shared<const std::string>(request.input.toStdString()),
                               .workingDirectory = request.workingDirectory,
                               .storeFile = window_.cache().file()};
  const std::string prefix = choosePrefix(window_.cache(), *line);
  while (window_.isReloading()) {
    const auto loaded = co_await nextEmission(&window_, &AppViewModel::reloaded, kPatience);
    if (!loaded) co_return reply(refused("The window is still reading its records. Try again later."), &command);
  }
  if (command.access != Access::upkeep && !window_.loadProblem().empty())
    co_return reply(refused(window_.loadProblem()), &command);
  // An edit as of another time needs a store whose clock stands at that time.
  const bool windowServes =
      command.access == Access::upkeep || (prefix == window_.prefix() && !(*at && command.access == Access::edits));
  if (windowServes) co_return reply(co_await runCommand(&command, context, line->arguments), &command);
  co_return reply(co_await runBeside(*line, context, prefix), &command);
}

QCoro::Task<CommandResult> WindowCommands::runBeside(CommandLine line, CommandContext context, std::string prefix) {
  while (besideBusy_) {
    const auto turn = co_await nextEmission(this, &WindowCommands::freed, kPatience);
    if (!turn && besideBusy_) co_return refused("An earlier command still runs. Try again later.");
  }
  besideBusy_ = true;
  const auto free = qScopeGuard([this] {
    besideBusy_ = false;
    Q_EMIT freed();
  });
  const bool edits = line.command->access == Access::edits;
  if (edits && prefix == window_.prefix()) {
    const auto saved = co_await windowSaved();
    if (!saved) co_return saved.error();
  }
  const std::unique_ptr<OtherFleet, DeleteLater> other(new OtherFleet(window_.cache(), context.now, context.calendar));
  co_await other->store.reloadForUser(prefix);
  if (!other->store.loadProblem().empty()) co_return refused(other->store.loadProblem());
  context.store = &other->store;
  context.cloud = nullptr;
  context.cloudProblem = "The program's window has another fleet open.";
  context.inWindow = false;
  CommandResult result = co_await runCommand(line.command, context, line.arguments);
  if (edits && prefix == window_.prefix()) co_await window_.reloadForUser(prefix);
  co_return result;
}

QCoro::Task<std::expected<void, CommandResult>> WindowCommands::windowSaved() {
  using Outcome = std::expected<void, CommandResult>;
  while (window_.unsavedCount() > 0) {
    if (!window_.saveProblem().empty())
      co_return Outcome(std::unexpect, refused(fmt::format("The window has changes that are not saved yet: {}",
                                                           window_.saveProblem())));
    const auto changed = co_await nextEmission(&window_, &AppViewModel::unsavedChanged, kPatience);
    if (!changed && window_.unsavedCount() > 0)
      co_return Outcome(std::unexpect, refused("The window’s changes are not saved yet. Try again later."));
  }
  co_return Outcome();
}

}  // namespace thalvorn::cli
