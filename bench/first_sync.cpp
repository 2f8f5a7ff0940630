// The first sync of an account with 100,000 tasks into an empty store, with replies that were recorded from a backend
// and come after 30 ms each: beside what the connection alone takes, beside a program for Node with the services' own
// client library (scripts/bench --node).

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QHash>
#include <QLoggingCategory>
#include <QProcess>
#include <QSemaphore>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>
#include <atomic>
#include <ctime>

#include "figures.h"
#include "shared_fleet.h"
#include "tests/sync/faulty_proxy.h"

using namespace thalvorn;
using bench::Computer;

namespace {

constexpr int kTasks = 100'000;
constexpr int kPasses = 3;
constexpr int kPagesAtOnce = 6;
constexpr std::chrono::milliseconds kLatency{30};

QByteArray lineOf(const QByteArray& request) { return request.left(request.indexOf(" HTTP/")); }

bool isPage(const QByteArray& line) { return line.startsWith("GET /rest/"); }

/// What a backend answered, by request line.
class Recording {
 public:
  void listenTo(FaultyProxy& proxy) {
    proxy.setListener([this](const QByteArray& request, const QByteArray& reply) {
      // The proxy closes each connection; who replays this does not.
      QByteArray kept = reply;
      const qsizetype head = kept.indexOf("\r\n\r\n");
      const qsizetype close = kept.left(head).toLower().indexOf("\r\nconnection: close");
      if (close >= 0) kept.remove(close, qsizetype(sizeof "\r\nconnection: close") - 1);
      replies_[lineOf(request)] = kept;
    });
  }
  QByteArray reply(const QByteArray& line) const {
    return replies_.value(line, "HTTP/1.1 404 Not Found\r\nContent-Length: 2\r\n\r\n{}");
  }

 private:
  QHash<QByteArray, QByteArray> replies_;
};

/// Gives recorded replies, each `kLatency` after its request, on a thread of its own.
class Replay {
 public:
  explicit Replay(const Recording& recording) : recording_(recording), thread_(QThread::create([this] { serve(); })) {
    thread_->start();
    ready_.acquire();
  }
  ~Replay() {
    thread_->quit();
    thread_->wait();
  }
  Replay(const Replay&) = delete;
  Replay& operator=(const Replay&) = delete;

  QUrl url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(port_)); }
  /// Pages of rows asked for so far.
  int pages() const { return pages_; }

 private:
  void serve() {
    QTcpServer server;
    QObject::connect(&server, &QTcpServer::newConnection, &server, [this, &server] { accept(server); });
    if (server.listen(QHostAddress::LocalHost)) port_ = server.serverPort();
    ready_.release();
    QEventLoop().exec();
  }
  void accept(QTcpServer& server) {
    while (QTcpSocket* socket = server.nextPendingConnection()) {
      QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(*socket); });
      QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
  }
  void read(QTcpSocket& socket) {
    QByteArray request = socket.property("request").toByteArray() + socket.readAll();
    for (qsizetype head = request.indexOf("\r\n\r\n"); head >= 0; head = request.indexOf("\r\n\r\n")) {
      const QByteArray headers = request.left(head).toLower();
      const qsizetype length = headers.indexOf("content-length:");
      const qsizetype body =
          length < 0 ? 0 : headers.mid(length + 15, headers.indexOf("\r\n", length) - length - 15).trimmed().toInt();
      if (request.size() < head + 4 + body) break;
      const QByteArray line = lineOf(request);
      if (isPage(line)) ++pages_;
      QTimer::singleShot(kLatency, Qt::PreciseTimer, &socket,
                         [&socket, reply = recording_.reply(line)] { socket.write(reply); });
      request.remove(0, head + 4 + body);
    }
    socket.setProperty("request", request);
  }

  const Recording& recording_;
  QSemaphore ready_;
  std::unique_ptr<QThread> thread_;
  quint16 port_ = 0;
  std::atomic<int> pages_ = 0;
};

/// What a first sync in a process of its own took.
struct Child {
  double microseconds = 0;
  double megabytes = 0;  ///< at its peak
};

/// What this process had in memory at its peak, in kB.
qint64 peakMemory() {
  QFile status(QStringLiteral("/proc/self/status"));
  if (!status.open(QIODevice::ReadOnly)) return 0;
  const QByteArray text = status.readAll();
  const qsizetype at = text.indexOf("VmHWM:");
  return at < 0 ? 0 : text.mid(at + 6, text.indexOf("kB", at) - at - 6).trimmed().toLongLong();
}

/// Runs the program, which says at its end what memory it took; nothing when it failed.
std::optional<Child> run(const QString& program, const QString& argument) {
  QProcess process;
  process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  // The proxy may live in this process: its event loop goes on.
  QEventLoop loop;
  QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
  QObject::connect(&process, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
  const auto begin = std::chrono::steady_clock::now();
  process.start(program, {argument});
  loop.exec();
  const double duration = std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count();
  if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) return std::nullopt;
  const double kilobytes = process.readAllStandardOutput().trimmed().toDouble();
  if (kilobytes <= 0) return std::nullopt;
  return Child{duration, kilobytes / 1024};
}

void tellServer(const QUrl& url, const BackendProcess& backend) {
  qputenv("THALVORN_BACKEND_URL", url.toString().toUtf8());
  qputenv("THALVORN_BACKEND_KEY", backend.key().toUtf8());
  qputenv("BENCH_EMAIL", backend.email(0).toUtf8());
  qputenv("BENCH_PASSWORD", backend.password(0).toUtf8());
  qputenv("BENCH_ROWS", QByteArray::number(kTasks));
}

BackendConfig toldServer() {
  return BackendConfig::from(qEnvironmentVariable("THALVORN_BACKEND_URL"), qEnvironmentVariable("THALVORN_BACKEND_KEY"))
      .value();
}

int syncOnce() {
  Computer computer(toldServer());
  if (!computer.enter(qEnvironmentVariable("BENCH_EMAIL"), qEnvironmentVariable("BENCH_PASSWORD"))) return 1;
  if (computer.model.tasks().size() != kTasks) return 1;
  std::printf("%lld\n", static_cast<long long>(peakMemory()));
  return 0;
}

/// Where the peer lies; empty when its packages were not asked for.
QString nodeProgram() {
  const QString folder = qEnvironmentVariable("THALVORN_BENCH_NODE");
  return folder.isEmpty() ? QString() : folder + QStringLiteral("/first_sync.mjs");
}

std::string inMegabytes(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.0f MB", value);
  return text;
}

bool besideNode(const QString& self) {
  bench::Samples ours;
  bench::Samples theirs;
  double ourMemory = 0;
  double theirMemory = 0;
  const auto add = [](bench::Samples& samples, double& memory, const Child& child) {
    samples.add(std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double, std::micro>(child.microseconds)));
    memory = std::max(memory, child.megabytes);
  };
  for (int pass = 0; pass < kPasses; ++pass) {
    const auto own = run(self, QStringLiteral("sync"));
    const auto peer = run(QStringLiteral("node"), nodeProgram());
    if (!own || !peer) return false;
    add(ours, ourMemory, *own);
    add(theirs, theirMemory, *peer);
  }
  bench::Compared{ours.median(), theirs.median()}.faster("first sync of 100,000 tasks, the whole program",
                                                         "Node, official client, SQLite", 2);
  bench::printFigure("first sync of 100,000 tasks, memory at its peak", inMegabytes(ourMemory),
                     "Node, official client, SQLite " + inMegabytes(theirMemory), ourMemory / theirMemory, 0.5);
  return true;
}

/// The CPU time of this thread. On a machine that does other work too a turn also lasts while others have the
/// processor.
std::chrono::nanoseconds ownTime() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// The longest turns of the event loop while everything comes down; nothing when it did not.
bool longestTurn(const BackendProcess& backend) {
  Computer computer(toldServer());
  if (!QCoro::waitFor(computer.cloud.client().signIn(backend.email(0), backend.password(0)))) return false;
  bench::Samples turns;
  bench::Samples busy;
  const QCoro::Task<bool> underWay = computer.cloud.resume();
  const auto begin = std::chrono::steady_clock::now();
  while ((computer.model.tasks().size() < kTasks || computer.cloud.sync().isSyncing()) &&
         std::chrono::steady_clock::now() - begin < std::chrono::minutes(2))
    turns.time([&] {
      const auto before = ownTime();
      QCoreApplication::processEvents(QEventLoop::AllEvents);
      busy.add(std::chrono::duration_cast<std::chrono::steady_clock::duration>(ownTime() - before));
    });
  if (computer.model.tasks().size() < kTasks) return false;
  bench::printReport(
      "first sync of 100,000 tasks: longest turn of the event loop",
      bench::milliseconds(turns.percentile(1)) + ", of its own CPU time " + bench::milliseconds(busy.percentile(1)),
      "meant: under 16 ms");
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  QLoggingCategory::setFilterRules(QStringLiteral("thalvorn.*=false"));
  const QCoreApplication application(argc, argv);
  if (argc > 1 && std::string_view(argv[1]) == "sync") return syncOnce();

  const BackendProcess backend({QStringLiteral("--token-lifetime"), QStringLiteral("86400")});
  if (!backend.isRunning()) return 1;
  Computer first(backend.config());
  if (!first.enter(backend.email(0), backend.password(0)) || !bench::makeTasks(first, backend, kTasks)) return 1;
  const QString self = QCoreApplication::applicationFilePath();
  Recording recording;
  {
    FaultyProxy proxy(backend.url(), 1);
    recording.listenTo(proxy);
    tellServer(proxy.url(), backend);
    if (!run(self, QStringLiteral("sync"))) return 1;
    if (!nodeProgram().isEmpty() && !run(QStringLiteral("node"), nodeProgram())) return 1;
  }

  const Replay replay(recording);
  tellServer(replay.url(), backend);
  bench::Samples canned;
  int pages = 0;
  for (int pass = 0; pass < kPasses; ++pass) {
    Computer computer(toldServer());
    if (!QCoro::waitFor(computer.cloud.client().signIn(backend.email(0), backend.password(0)))) return 1;
    const int before = replay.pages();
    canned.time([&] {
      if (!QCoro::waitFor(computer.cloud.resume())) std::abort();
      QCoro::waitFor(bench::untilQuiet(&computer.cloud));
    });
    if (computer.model.tasks().size() != kTasks) return 1;
    pages = replay.pages() - before;
  }
  const double floor = std::ceil(pages / double{kPagesAtOnce}) * std::chrono::microseconds(kLatency).count();
  bench::Compared{canned.median(), floor}.atMost("first sync of 100,000 tasks, replies after 30 ms",
                                                 std::to_string(pages) + " pages, six at a time, on such a connection",
                                                 1.5);

  if (!longestTurn(backend)) return 1;
  if (!nodeProgram().isEmpty() && !besideNode(self)) return 1;
}
