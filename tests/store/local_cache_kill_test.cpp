// The program is killed at a random moment while it writes and folds; every acknowledged edit must be there.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>

#include "store/cache_testing.h"
#include "store/kill_child.h"

namespace thalvorn {

using namespace testing_tools;

namespace {

constexpr std::uint32_t kEdits = 1000;
constexpr std::uint32_t kRecords = 97;
constexpr const char* kArgument = "--edit-until-killed";

/// The n-th edit: record 0 counts the edits, another one of a hundred is added, renamed or deleted.
std::vector<EntryChange> editOf(std::uint32_t n) {
  const std::uint32_t id = 1 + n * 31 % kRecords;
  std::vector<EntryChange> changes{change(0, "", record(0, std::to_string(n)))};
  changes.push_back(n % 7 == 0 ? change(id, "{}", "") : added(id, "Edit " + std::to_string(n)));
  return changes;
}

LocalCache::Options busy() {
  LocalCache::Options options = quiet(2048);
  options.foldAfterEdits = 100;
  return options;
}

/// The number of the last edit in a list, by record 0.
std::uint32_t editsIn(const std::vector<std::string>& list) {
  for (const std::string& bytes : list)
    for (std::uint32_t n = 0; n <= kEdits; ++n)
      if (bytes == record(0, std::to_string(n))) return n;
  return 0;
}

/// Starts this program again as the one that will be killed; what it acknowledges comes out of `pipe`.
pid_t startChild(const std::filesystem::path& file, int (&pipe)[2]) {
  EXPECT_EQ(::pipe2(pipe, O_CLOEXEC), 0);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
  std::string path = file.string();
  std::string program = "thalvorn_test_store";
  std::string argument = kArgument;
  char* arguments[] = {program.data(), argument.data(), path.data(), nullptr};
  pid_t child = 0;
  EXPECT_EQ(posix_spawn(&child, "/proc/self/exe", &actions, nullptr, arguments, environ), 0);
  posix_spawn_file_actions_destroy(&actions);
  ::close(pipe[1]);
  return child;
}

TEST(LocalCacheKilled, FindsEveryAcknowledgedEdit) {
  std::mt19937 random(20260311);
  std::uint32_t interrupted_folds = 0;
  for (int round = 0; round < 6; ++round) {
    SCOPED_TRACE(round);
    const ScratchFolder folder;
    int pipe[2];
    const pid_t child = startChild(folder / "store.db", pipe);
    const std::uint32_t moment = 1 + random() % (kEdits - 1);
    std::uint32_t acknowledged = 0;
    std::uint32_t number = 0;
    while (acknowledged < moment && ::read(pipe[0], &number, sizeof number) == sizeof number) acknowledged = number;
    ::kill(child, SIGKILL);
    while (::read(pipe[0], &number, sizeof number) == sizeof number) acknowledged = number;
    ::close(pipe[0]);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status) || acknowledged == kEdits);

    const auto cache = opened(folder / "store.db");
    const auto list = entryOf(*cache);
    const std::uint32_t found = editsIn(list);
    ASSERT_GE(found, acknowledged);
    StoredState expected;
    for (std::uint32_t n = 1; n <= found; ++n)
      expected.journal.push_back({.prefix = "user", .at = {}, .label = "", .changes = editOf(n)});
    ASSERT_EQ(list, entryOf(expected));
    ASSERT_TRUE(cache->check().sound) << testing::PrintToString(cache->check().findings);
    if (!cache->load("user")->journal.empty() && found > 100) ++interrupted_folds;
    ASSERT_TRUE(fold(*cache));
    ASSERT_EQ(entryOf(*cache), list);
  }
  EXPECT_GT(interrupted_folds, 0U) << "no round was killed with edits waiting to be folded";
}

}  // namespace

namespace testing_tools {

std::optional<int> runAsKilledChild(int argc, char** argv) {
  if (argc != 3 || std::string_view(argv[1]) != kArgument) return std::nullopt;
  auto cache = LocalCache::open(argv[2], busy());
  if (!cache) return 1;
  // All at once, so that edits and the steps of folds take turns.
  for (std::uint32_t n = 1; n <= kEdits; ++n)
    (*cache)->append({.prefix = "user", .at = {}, .label = "Edit", .changes = editOf(n)}, [n](const Outcome& outcome) {
      if (outcome && ::write(STDOUT_FILENO, &n, sizeof n) != sizeof n) ::_exit(2);
    });
  (*cache)->flush();
  return 0;
}

}  // namespace testing_tools
}  // namespace thalvorn
