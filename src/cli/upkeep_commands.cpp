// demo, check, backup and restore: what concerns the store's file as a whole.

#include <fmt/format.h>

#include <QCoroFuture>
#include <QPromise>
#include <QThreadPool>
#include <array>
#include <fstream>
#include <functional>

#include "cli/commands.h"
#include "cli/json_text.h"
#include "cli/store_use.h"
#include "cli/text_table.h"

namespace thalvorn::cli {
namespace {

namespace fs = std::filesystem;

/// The work's result, from a thread of its own: a window goes on living while a large file is read.
template <class Result>
QFuture<Result> onWorkerThread(std::function<Result()> work) {
  auto promise = std::make_shared<QPromise<Result>>();
  QFuture<Result> future = promise->future();
  QThreadPool::globalInstance()->start([promise, work = std::move(work)] {
    promise->start();
    promise->addResult(work());
    promise->finish();
  });
  return future;
}

/// Whether overwriting the file by a backup destroys nothing but an earlier backup.
bool isNewOrStore(const fs::path& file) {
  std::error_code error;
  if (!fs::exists(file, error) || fs::file_size(file, error) == 0) return true;
  constexpr std::string_view magic = "SQLite format 3";
  std::array<char, magic.size()> start{};
  std::ifstream stream(file, std::ios::binary);
  stream.read(start.data(), start.size());
  return std::string_view(start.data(), start.size()) == magic;
}

}  // namespace

QCoro::Task<CommandResult> fillDemo(CommandContext context, Arguments) {
  AppViewModel& store = *context.store;
  const SaveResult saved = co_await store.fillDemoFleet();
  if (!saved) co_return refused(saved.error().message);
  co_await store.reloadForUser(std::string(AppViewModel::demoPrefix));
  if (context.json) {
    co_return done(JsonObject()
                       .count("vessels", store.vessels().size())
                       .count("tasks", store.tasks().size())
                       .count("logs", store.logs().size())
                       .take() +
                   "\n");
  }
  co_return done(fmt::format(
      "The demo fleet is there: {}, {}, {}.\n", counted(store.vessels().size(), "vessel", "vessels"),
      counted(store.tasks().size(), "task", "tasks"), counted(store.logs().size(), "service log", "service logs")));
}

QCoro::Task<CommandResult> checkStore(CommandContext context, Arguments) {
  const LocalCache& cache = context.store->cache();
  const CacheReport report = co_await onWorkerThread<CacheReport>([&cache] { return cache.check(); });
  CommandResult result;
  if (context.json) {
    std::vector<std::string> findings;
    for (const std::string& finding : report.findings) appendJsonString(findings.emplace_back(), finding);
    result.out = JsonObject().flag("sound", report.sound).json("findings", jsonList(findings)).take() + "\n";
  } else {
    for (const std::string& finding : report.findings) result.out += printable(finding) + "\n";
    if (report.sound) result.out += fmt::format("The store {} is sound.\n", context.storeFile.string());
  }
  if (!report.sound) {
    result.exit = kRefused;
    result.err = fmt::format(
        "The store {} is not sound. Keep a copy of it as it is, then bring back the last backup with restore.\n",
        context.storeFile.string());
  }
  co_return result;
}

QCoro::Task<CommandResult> backUpStore(CommandContext context, Arguments arguments) {
  const fs::path file = context.file(arguments.operands.front());
  if (!isNewOrStore(file))
    co_return refused(fmt::format("{} is there already and is no backup; nothing was written.", file.string()));
  const LocalCache& cache = context.store->cache();
  using Outcome = std::expected<void, CacheError>;
  const Outcome written = co_await onWorkerThread<Outcome>([&cache, file] { return cache.backup(file); });
  if (!written) co_return refused(written.error().message);
  if (context.json) co_return done(JsonObject().text("backup", file.string()).take() + "\n");
  co_return done(fmt::format("Backed up to {}.\n", file.string()));
}

QCoro::Task<CommandResult> restoreStore(CommandContext context, Arguments arguments) {
  const fs::path backup = context.file(arguments.operands.front());
  const auto kept = LocalCache::restore(backup, context.storeFile);
  if (!kept) co_return refused(kept.error().message);
  if (context.json) {
    JsonObject text;
    text.text("restored", context.storeFile.string());
    if (!kept->empty()) text.text("kept", kept->string());
    co_return done(text.take() + "\n");
  }
  const std::string then = kept->empty() ? "" : fmt::format(" What was there before is kept as {}.", kept->string());
  co_return done(fmt::format("Restored {} from {}.{}\n", context.storeFile.string(), backup.string(), then));
}

}  // namespace thalvorn::cli
