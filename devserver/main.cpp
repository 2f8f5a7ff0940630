#include <fmt/format.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <span>

#include "devserver/gateway.h"
#include "devserver/http.h"
#include "devserver/seed.h"

namespace thalvorn::devserver {
namespace {

constexpr int kThreads = 12;

constexpr auto* kHelp = R"(The hosted service's interface on loopback, over the database of scripts/database.
scripts/backend starts both.

  --database FOLDER     the folder scripts/database made
  --files FOLDER        where the bytes of stored files go; it must exist
  --port N              listens there; otherwise on a free port
  --max-rows N          rows of one reply at most (1000)
  --token-lifetime N    seconds an access token holds (3600)
  --reuse-interval N    seconds a spent refresh token still works (10)
  --mail-interval N     seconds between two mails to one person (60)
  --confirm-email       new addresses must be confirmed before signing in
  --fault FAULT         something that goes wrong; may be given several times
  --parent PID          stops when this process ends
  --check               as the first option: says whether the others make sense, and does nothing
  --cleanup COMMAND     run by the shell after the server has stopped, however it stopped

While it runs, on the same address and without a key:
  GET /dev/settings, PATCH /dev/settings
                        what the options set, by the names maxRows, tokenLifetime, reuseInterval, mailInterval,
                        clockOffset, confirmEmail, olderErrors, timeZone and faults (a list, which replaces those in
                        force; it leaves the settings that clock-offset and its like changed); also publishableKey,
                        serviceKey, and databaseFolder for scripts/database migrate
  GET /dev/mails        the mails that would have been sent, oldest first: to, type, code, token_hash, link;
                        with ?to=ADDRESS only those

A FAULT is NAME[=VALUE][xTIMES][@METHOD][@/PATH]: it strikes the next TIMES requests with that method whose path begins
so. Without them it strikes all. For instance: drop-reply x1 @POST @/rest/v1/tasks
)";

struct Arguments {
  std::filesystem::path database;
  std::filesystem::path files;
  std::uint16_t port = 0;
  Settings settings;
  std::vector<Fault> faults;
  std::optional<pid_t> parent;
  std::string cleanup;
};

std::expected<long long, std::string> number(std::string_view option, std::string_view text, long long least) {
  long long value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < least) {
    return std::unexpected(fmt::format("{} takes a number from {} on, not \"{}\"", option, least, text));
  }
  return value;
}

std::expected<Arguments, std::string> readArguments(std::span<char*> words) {
  Arguments out;
  for (std::size_t at = 0; at < words.size(); ++at) {
    const std::string_view option = words[at];
    if (option == "--confirm-email") {
      out.settings.confirmEmail = true;
      continue;
    }
    if (at + 1 == words.size()) return std::unexpected(fmt::format("{} is unknown or lacks its value", option));
    const std::string_view value = words[++at];
    std::expected<long long, std::string> count = 0;
    if (option == "--database") {
      out.database = value;
    } else if (option == "--files") {
      out.files = value;
    } else if (option == "--fault") {
      const auto ordered = orderFault(value, out.settings, out.faults);
      if (!ordered) return std::unexpected(ordered.error());
    } else if (option == "--cleanup") {
      out.cleanup = value;
    } else if (option == "--port") {
      count = number(option, value, 0);
      if (count && *count > 65535) count = std::unexpected(std::string("--port takes a number up to 65535"));
      out.port = static_cast<std::uint16_t>(count.value_or(0));
    } else if (option == "--max-rows") {
      count = number(option, value, 1);
      out.settings.maxRows = count.value_or(0);
    } else if (option == "--token-lifetime") {
      count = number(option, value, 1);
      out.settings.tokenLifetime = std::chrono::seconds(count.value_or(0));
    } else if (option == "--reuse-interval") {
      count = number(option, value, 0);
      out.settings.reuseInterval = std::chrono::seconds(count.value_or(0));
    } else if (option == "--mail-interval") {
      count = number(option, value, 0);
      out.settings.mailInterval = std::chrono::seconds(count.value_or(0));
    } else if (option == "--parent") {
      count = number(option, value, 1);
      out.parent = static_cast<pid_t>(count.value_or(0));
    } else {
      return std::unexpected(fmt::format("{} is unknown; --help tells what there is", option));
    }
    if (!count) return std::unexpected(count.error());
  }
  return out;
}

/// A process of its own that runs a command once this one has ended, be it by a crash or a kill.
class Guardian {
 public:
  explicit Guardian(const std::string& command) {
    std::array<int, 2> ends{};
    if (command.empty() || pipe(ends.data()) != 0) return;
    child_ = fork();
    if (child_ == 0) {
      setsid();
      close(ends[1]);
      char byte = 0;
      while (read(ends[0], &byte, 1) > 0) {
      }
      execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
      _exit(127);
    }
    close(ends[0]);
    ours_ = ends[1];
  }
  ~Guardian() {
    if (ours_ < 0) return;
    close(ours_);
    waitpid(child_, nullptr, 0);
  }
  Guardian(const Guardian&) = delete;
  Guardian& operator=(const Guardian&) = delete;

 private:
  pid_t child_ = -1;
  int ours_ = -1;
};

/// A descriptor that becomes readable when that process ends; -1 where the kernel has none, then a signal comes
/// instead.
int lifelineOf(pid_t process) {
  const auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
  if (descriptor < 0) prctl(PR_SET_PDEATHSIG, SIGTERM);
  return descriptor;
}

std::string keyFor(const Site& site, std::string_view role) {
  const auto now = site.settings.now();
  static constexpr std::int64_t kTenYears = 315'360'000;  // the key holds however the clock is set later
  return signToken(
      {{"iss", "supabase"}, {"ref", "local"}, {"role", role}, {"iat", now - kTenYears}, {"exp", now + kTenYears}},
      site.secret);
}

int fail(std::string_view message) {
  fmt::print(stderr, "thalvorn-devserver: {}\n", message);
  return EXIT_FAILURE;
}

int run(std::span<char*> words) {
  if (words.size() > 1 && std::string_view(words[1]) == "--help") {
    fmt::print("{}{}", kHelp, describeFaults());
    return EXIT_SUCCESS;
  }
  const bool onlyCheck = words.size() > 1 && std::string_view(words[1]) == "--check";
  auto arguments = readArguments(words.subspan(onlyCheck ? 2 : 1));
  if (!arguments) return fail(arguments.error());
  if (onlyCheck) return EXIT_SUCCESS;
  if (arguments->database.empty() || arguments->files.empty()) return fail("--database and --files are needed");
  const Guardian guardian(arguments->cleanup);
  const auto parent = arguments->parent;
  if (parent && kill(*parent, 0) != 0 && errno == ESRCH) return fail("its parent is gone");
  const auto database = DatabaseAddresses::read(arguments->database / "connection.json");
  if (!database) return fail(database.error());

  Site site{.url = {},
            .secret = randomText(36),
            .anonKey = {},
            .serviceKey = {},
            .publishableKey = "sb_publishable_" + randomText(18),
            .databaseFolder = arguments->database.string(),
            .settings = SharedSettings(arguments->settings),
            .mailbox = {}};
  site.anonKey = keyFor(site, "anon");
  site.serviceKey = keyFor(site, "service_role");
  Gateway gateway(site, *database, kThreads, arguments->files);
  HttpServer server(
      {.port = arguments->port, .threads = kThreads, .lifeline = parent ? lifelineOf(*parent) : -1},
      [&](Request request) { return gateway.handle(std::move(request)); }, [&] { return site.settings.now(); });
  site.url = fmt::format("http://127.0.0.1:{}", server.port());
  const auto people = seed(gateway, site, *database);
  if (!people) return fail(people.error());
  gateway.setFaults(std::move(arguments->faults));
  json::array accounts;
  for (const auto& person : *people) accounts.push_back({{"email", person.email}, {"password", person.password}});
  fmt::print(
      "{}\n",
      json::serialize(json::object{
          {"url", site.url}, {"anonKey", site.anonKey}, {"databaseUrl", database->superuser}, {"accounts", accounts}}));
  std::fflush(stdout);
  server.run();
  return EXIT_SUCCESS;
}

}  // namespace
}  // namespace thalvorn::devserver

int main(int argc, char** argv) {
  try {
    return thalvorn::devserver::run(std::span(argv, static_cast<std::size_t>(argc)));
  } catch (const std::exception& error) {
    return thalvorn::devserver::fail(error.what());
  }
}
