#pragma once

#include <QString>
#include <chrono>
#include <expected>
#include <memory>
#include <variant>

#include "platform/instance_client.h"
#include "platform/single_instance.h"
#include "platform/store_lock.h"

/// How a process comes to a store file: it owns it, or it talks to the window that does.
namespace thalvorn {

/// For the desktop program. The store is free: this process is its window from now on. A window has it: the client
/// that raises that one. A command has it: waits for it up to `wait`. Blocks the calling thread, so it is called before
/// a window shows.
std::expected<std::variant<std::unique_ptr<SingleInstance>, InstanceClient>, InstanceError> claimForWindow(
    const QString& storePath, std::chrono::milliseconds wait = std::chrono::seconds(10),
    SingleInstance::Timings timings = {});

/// For the command line. The store is free: the lock, to be kept until the command has ended. A window has it: the
/// client to hand the command to. Another command has it, or a window that is just starting or closing: waits up to
/// `wait`. Blocks the calling thread.
std::expected<std::variant<StoreLock, InstanceClient>, InstanceError> claimForCommand(
    const QString& storePath, std::chrono::milliseconds wait = std::chrono::seconds(10));

}  // namespace thalvorn
