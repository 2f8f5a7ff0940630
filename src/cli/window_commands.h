#pragma once

#include <QCoroTask>
#include <QObject>
#include <string>

#include "cli/execution.h"
#include "platform/single_instance.h"
#include "store/app_view_model.h"

namespace thalvorn::cli {

/// Carries out the command lines that other processes hand over to the window that holds the store, so that their edits
/// show in it at once. Commands for another user than the one in view work beside it, one at a time.
class WindowCommands : public QObject {
  Q_OBJECT

 public:
  /// `window` is the store that the window shows; it must outlive this object.
  explicit WindowCommands(AppViewModel& window, QObject* parent = nullptr);

  /// The fleet server that the window speaks with; null for none. It must outlive the commands.
  void setCloud(CloudSession* cloud) { cloud_ = cloud; }

  /// From now on takes the commands that come over the window's socket. This object must outlive `instance`, or at
  /// least its running commands.
  void serve(SingleInstance& instance);

  QCoro::Task<CommandReply> run(CommandRequest request);

 Q_SIGNALS:
  /// A command for another user has ended.
  void freed();

 private:
  QCoro::Task<CommandResult> runBeside(CommandLine line, CommandContext context, std::string prefix);
  QCoro::Task<std::expected<void, CommandResult>> windowSaved();

  AppViewModel& window_;
  CloudSession* cloud_ = nullptr;
  bool besideBusy_ = false;
};

}  // namespace thalvorn::cli
