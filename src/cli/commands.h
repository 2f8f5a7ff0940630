#pragma once

#include "cli/command.h"

/// The commands themselves; `commandTable` says how each is called.
namespace thalvorn::cli {

// Records in their own form.
QCoro::Task<CommandResult> listRecords(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> putRecords(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> deleteRecord(CommandContext context, Arguments arguments);

// The maintenance programme.
QCoro::Task<CommandResult> showBoard(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> completeOne(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> snooze(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> unsnooze(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> showOrRaiseMeters(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> correctMeterReading(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> recordMeterReplacement(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> showTemplates(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> addTemplates(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> importTasks(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> importHistory(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> importRecords(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> showHistory(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> writeReport(CommandContext context, Arguments arguments);

// The fleet shared through the fleet server.
QCoro::Task<CommandResult> signIn(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> signOut(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> syncFleet(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> showAccount(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> openAccount(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> inviteMember(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> showConflicts(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> showStatus(CommandContext context, Arguments arguments);

// The store's file.
QCoro::Task<CommandResult> fillDemo(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> checkStore(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> backUpStore(CommandContext context, Arguments arguments);
QCoro::Task<CommandResult> restoreStore(CommandContext context, Arguments arguments);

}  // namespace thalvorn::cli
