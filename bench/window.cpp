// From the start of the program to its first picture, and the memory it takes, beside a minimal window of the same
// toolkit and beside Chromium where that is installed. The store holds 100,000 tasks and as many service logs. Software
// renderer, offscreen.

#include <fcntl.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "app/composition.h"
#include "app/options.h"
#include "figures.h"
#include "fleet_store.h"

using namespace thalvorn;

namespace {

constexpr std::size_t kCount = 100'000;
constexpr int kRuns = 7;

constexpr const char* kMinimalWindow = R"(
import QtQuick
import QtQuick.Controls.Basic
ApplicationWindow {
    visible: true; width: 1366; height: 768
    header: ToolBar { TextField { anchors.fill: parent } }
    ListView { anchors.fill: parent; model: 100000; delegate: ItemDelegate { required property int index; text: index } }
})";

void tellFirstFrame(QQuickWindow* window) {
  QObject::connect(window, &QQuickWindow::frameSwapped, window, [] {
    static bool told = false;
    if (told) return;
    told = true;
    [[maybe_unused]] const auto written = ::write(STDOUT_FILENO, "frame\n", 6);
  });
}

int showMinimal(int argc, char* argv[]) {
  const QGuiApplication application(argc, argv);
  QQmlApplicationEngine engine;
  engine.loadData(kMinimalWindow);
  if (engine.rootObjects().isEmpty()) return 1;
  tellFirstFrame(qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst()));
  return QGuiApplication::exec();
}

int showProgram(int argc, char* argv[], const char* store) {
  const QGuiApplication application(argc, argv);
  app::prepareApplication();
  app::Options options;
  options.store = QString::fromLocal8Bit(store);
  app::Composition composition(options);
  if (!composition.claimStore() || !composition.show()) return 1;
  tellFirstFrame(composition.window());
  return QGuiApplication::exec();
}

/// A program running until it is ended.
class Child {
 public:
  explicit Child(const std::vector<std::string>& command) {
    int ends[2];
    if (::pipe(ends) != 0) std::abort();
    process_ = ::fork();
    if (process_ == 0) {
      ::setpgid(0, 0);
      ::dup2(ends[1], STDOUT_FILENO);
      ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
      std::vector<char*> arguments;
      for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
      arguments.push_back(nullptr);
      ::execvp(arguments[0], arguments.data());
      ::_exit(127);
    }
    ::close(ends[1]);
    output_ = ends[0];
  }
  ~Child() {
    ::kill(-process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
    ::close(output_);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  /// Reads until something arrives on standard output; false when the program ended first.
  bool waitForOutput() const {
    char buffer[64];
    return ::read(output_, buffer, sizeof buffer) > 0;
  }

  /// Proportional memory of the process and its children, bytes.
  double memory() const {
    double total = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
      const int process = std::atoi(entry.path().filename().c_str());
      if (process == 0 || ::getpgid(process) != process_) continue;
      std::ifstream rollup(entry.path() / "smaps_rollup");
      for (std::string line; std::getline(rollup, line);)
        if (line.starts_with("Pss:")) total += std::atof(line.c_str() + 4) * 1024;
    }
    return total;
  }

 private:
  pid_t process_ = 0;
  int output_ = -1;
};

struct Start {
  bench::Samples time;
  double memory = 0;
};

void runOnce(Start& start, const std::vector<std::string>& command) {
  const auto begin = std::chrono::steady_clock::now();
  const Child child(command);
  if (!child.waitForOutput()) return;
  start.time.add(std::chrono::steady_clock::now() - begin);
  start.memory = child.memory();
}

std::string megabytes(double bytes) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f MB", bytes / 1e6);
  return text;
}

void measureRecords(const std::filesystem::path& store) {
  auto cache = LocalCache::open(store).value();
  const SystemClock clock;
  double json = 0;
  const StoredState state = cache->load("local").value();
  for (const std::string& segment : state.segments.at("_tasks")) json += static_cast<double>(segment.size());
  std::vector<std::string> segments = state.segments.at("_tasks");
  ::malloc_trim(0);
  const auto inUse = [] {
    const auto info = ::mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
  };
  const double before = inUse();
  std::vector<MaintenanceTask> records;
  records.reserve(kCount);
  for (const std::string& segment : segments)
    for (MaintenanceTask& task : listFromJson<MaintenanceTask>(segment)->records) records.push_back(std::move(task));
  IdentityIndex index;
  index.rebuild(records);
  const double memory = inUse() - before;
  bench::printFigure("memory of 100,000 tasks: records, heap and index", megabytes(memory),
                     "their JSON " + megabytes(json), memory / json, 1.0);
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc > 1 && std::strcmp(argv[1], "minimal") == 0) return showMinimal(argc, argv);
  if (argc > 2 && std::strcmp(argv[1], "program") == 0) return showProgram(argc, argv, argv[2]);

  const QTemporaryDir folder;
  const std::filesystem::path place(folder.path().toStdString());
  const std::string full = bench::makeStore(place, kCount).string();
  const std::string empty = bench::makeStore(place, 0).string();
  const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
  const bool chromium = std::filesystem::exists("/usr/bin/chromium");

  Start ours;
  Start minimal;
  Start ours_empty;
  Start browser;
  for (int run = 0; run < kRuns; ++run) {
    runOnce(ours, {self, "program", full});
    runOnce(minimal, {self, "minimal"});
    runOnce(ours_empty, {self, "program", empty});
    if (chromium)
      runOnce(browser, {"/usr/bin/chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                        "--no-first-run", "--disable-background-networking", "--disable-component-update",
                        "--disable-sync", "--user-data-dir=" + (place / "chromium").string(), "--enable-logging=stderr",
                        "--dump-dom", "data:text/html,<p>frame"});
  }
  if (ours.time.count() == 0 || minimal.time.count() == 0) {
    std::fprintf(stderr, "a window did not show\n");
    return 1;
  }
  const bench::Compared start{ours.time.median(), minimal.time.median()};
  start.atMost("start to first frame with 100,000 tasks and logs", "a minimal window of the same toolkit", 2);
  if (browser.time.count() > 0) {
    bench::Compared{ours.time.median(), browser.time.median()}.faster(
        "start to first frame with 100,000 tasks and logs", "Chromium's first page", 4);
    bench::printFigure("memory of the program without records", megabytes(ours_empty.memory),
                       "Chromium's empty window " + megabytes(browser.memory), ours_empty.memory / browser.memory,
                       1.0 / 3);
  } else {
    bench::printReport("memory of the program without records", megabytes(ours_empty.memory),
                       "Chromium is not installed here");
  }
  measureRecords(full);
}
