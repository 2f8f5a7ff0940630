#include "platform/store_access.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace thalvorn {
namespace {

using namespace std::chrono_literals;

/// The window that holds the store, if it is one and it can be reached.
std::optional<InstanceClient> reachableWindow(const QString& storePath) {
  std::optional<StoreHolder> holder = StoreLock::holder(storePath);
  if (!holder) {
    // A holder on a full disk could not write who it is.
    const auto path = instanceSocketPath(storePath);
    if (!path) return std::nullopt;
    holder = StoreHolder{StoreRole::window, 0, *path};
  }
  if (holder->role != StoreRole::window || holder->socketPath.isEmpty()) return std::nullopt;
  InstanceClient client(std::move(*holder));
  if (!client.reachable()) return std::nullopt;
  return client;
}

std::expected<std::variant<StoreLock, InstanceClient>, InstanceError> claim(const QString& storePath, StoreRole role,
                                                                            std::chrono::milliseconds wait) {
  using Claim = std::variant<StoreLock, InstanceClient>;
  const auto start = std::chrono::steady_clock::now();
  auto pause = 2ms;
  for (;;) {
    auto lock = StoreLock::tryAcquire(storePath, role);
    if (lock) return Claim(std::move(*lock));
    if (lock.error().problem != InstanceProblem::busy) return std::unexpected(lock.error());
    if (auto window = reachableWindow(storePath)) return Claim(std::move(*window));
    if (std::chrono::steady_clock::now() - start >= wait) {
      return std::unexpected(stillHeld(storePath, StoreLock::holder(storePath), wait));
    }
    std::this_thread::sleep_for(pause);
    pause = std::min(pause * 2, 50ms);
  }
}

}  // namespace

std::expected<std::variant<std::unique_ptr<SingleInstance>, InstanceClient>, InstanceError> claimForWindow(
    const QString& storePath, std::chrono::milliseconds wait, SingleInstance::Timings timings) {
  auto claimed = claim(storePath, StoreRole::window, wait);
  if (!claimed) return std::unexpected(claimed.error());
  if (auto* window = std::get_if<InstanceClient>(&*claimed)) return std::move(*window);
  auto instance = SingleInstance::listen(std::get<StoreLock>(std::move(*claimed)), storePath, timings);
  if (!instance) return std::unexpected(instance.error());
  return std::move(*instance);
}

std::expected<std::variant<StoreLock, InstanceClient>, InstanceError> claimForCommand(const QString& storePath,
                                                                                      std::chrono::milliseconds wait) {
  return claim(storePath, StoreRole::command, wait);
}

}  // namespace thalvorn
