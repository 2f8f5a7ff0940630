// Reports on paper: a register of 20,000 rows beside deflating its content, LibreOffice and Chromium on the same table;
// the service history of 1,000 rows from the command line beside LibreOffice; memory, and how the window fares
// meanwhile.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTextLayout>
#include <QTimer>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "app/preview/report_renderer.h"
#include "base/csv.h"
#include "figures.h"
#include "fleet_store.h"
#include "reports/pdf_renderer.h"
#include "tests/reports/content_streams.h"
#include "tests/reports/sample_documents.h"

using namespace thalvorn;

namespace {

constexpr int kRows = 20'000;
constexpr int kFewRows = 1'000;
constexpr int kRuns = 5;
constexpr const char* kChromium = "/usr/bin/chromium";
constexpr const char* kOffice = "/usr/bin/soffice";

/// A program run to its end.
struct Run {
  bool done = false;
  std::chrono::steady_clock::duration time{};
  double memory = 0;  ///< at its highest, bytes
};

Run run(const std::vector<std::string>& command) {
  const auto begin = std::chrono::steady_clock::now();
  const pid_t process = ::fork();
  if (process == 0) {
    const int nowhere = ::open("/dev/null", O_WRONLY);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    std::vector<char*> arguments;
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    ::execv(arguments[0], arguments.data());
    ::_exit(127);
  }
  int status = 0;
  rusage usage{};
  ::wait4(process, &status, 0, &usage);
  return {status == 0, std::chrono::steady_clock::now() - begin, static_cast<double>(usage.ru_maxrss) * 1024};
}

/// The median of some runs; 0 when one of them failed.
double median(int runs, const std::vector<std::string>& command) {
  bench::Samples samples;
  for (int i = 0; i < runs; ++i) {
    const Run once = run(command);
    if (!once.done) return 0;
    samples.add(once.time);
  }
  return samples.median();
}

const Table& tableOf(const Document& document) { return std::get<Table>(document.blocks.front()); }

void writeCsv(const Document& document, const std::filesystem::path& file) {
  CsvWriter csv;
  for (const auto& column : tableOf(document).columns) csv.text(column.title);
  csv.endRow();
  for (const auto& row : tableOf(document).rows) {
    for (const auto& cell : row.cells) csv.text(cell.text);
    csv.endRow();
  }
  std::ofstream(file) << csv.take();
}

void writePage(const Document& document, const std::filesystem::path& file) {
  std::ofstream page(file);
  page << "<!doctype html><meta charset=utf-8><style>@page{size:A4 landscape;margin:36pt}body{font:8.4pt Inter}"
          "table{border-collapse:collapse;width:100%}td{border-bottom:.6pt solid #d3dae2;padding:3pt 6pt}"
          "thead{display:table-header-group}</style><table><thead><tr>";
  for (const auto& column : tableOf(document).columns) page << "<th>" << column.title;
  page << "<tbody>";
  for (const auto& row : tableOf(document).rows) {
    page << "<tr>";
    for (const auto& cell : row.cells) page << "<td>" << cell.text;
  }
}

std::vector<std::string> office(const std::filesystem::path& place, const std::filesystem::path& csv) {
  return {kOffice,
          "--headless",
          "-env:UserInstallation=file://" + (place / "office").string(),
          "--convert-to",
          "pdf",
          "--outdir",
          (place / "out").string(),
          csv.string()};
}

void faster(const std::string& what, double ours, const std::string& peer, double theirs, double to_reach) {
  if (ours > 0 && theirs > 0) {
    bench::Compared{ours, theirs}.faster(what, peer, to_reach);
  } else {
    bench::printReport(what, ours > 0 ? bench::milliseconds(ours) : "failed",
                       peer + " is not installed here or failed");
  }
}

/// How long the window's thread is held up at most while a report is made beside it, and how soon a report stops.
void measureWindow() {
  app::ReportRenderer renderer;
  const QString typed = QStringLiteral("East Passage Energy, filter station 6,302.23");
  bench::Samples turns;
  bench::Samples stops;
  for (const bool stopped : {false, true}) {
    bool ended = false;
    QElapsedTimer since;
    const auto ready = QObject::connect(&renderer, &app::ReportRenderer::ready, &renderer, [&](int report) {
      renderer.makePdf(report, [&ended, &renderer](const auto&) {
        QMetaObject::invokeMethod(&renderer, [&ended] { ended = true; });
      });
    });
    renderer.begin([] { return sampleRegister(kRows); });
    since.start();
    bool asked = false;
    auto last = std::chrono::steady_clock::now();
    while (!ended) {
      QCoreApplication::processEvents();
      // What a window does in a turn: lay out a text.
      QTextLayout layout(typed);
      layout.beginLayout();
      layout.createLine();
      layout.endLayout();
      const auto now = std::chrono::steady_clock::now();
      if (!stopped) turns.add(now - last);
      last = now;
      if (stopped && !asked && since.elapsed() > 250) {
        asked = true;
        renderer.cancel();
        // The next page asked for is answered as soon as the thread is free.
        const auto begin = now;
        renderer.drawPage(0, 0, 10, [&, begin](const QImage&) {
          const auto took = std::chrono::steady_clock::now() - begin;
          QMetaObject::invokeMethod(&renderer, [&, took] {
            stops.add(took);
            ended = true;
          });
        });
      }
    }
    QObject::disconnect(ready);
  }
  bench::printReport("longest turn of the window's thread meanwhile", bench::milliseconds(turns.percentile(1)),
                     "99.9 % of its turns within " + bench::microseconds(turns.percentile(0.999)));
  bench::printReport("from Cancel until the report has stopped", bench::milliseconds(stops.median()), "");
}

}  // namespace

int main(int argc, char* argv[]) {
  const QGuiApplication application(argc, argv);
  if (argc > 2 && std::strcmp(argv[1], "print") == 0)
    return writePdf(QString::fromLocal8Bit(argv[2]), sampleRegister(kRows)) ? 0 : 1;

  const QTemporaryDir folder;
  const std::filesystem::path place(folder.path().toStdString());
  const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
  const auto document = sampleRegister(kRows);

  const auto pdf = renderPdf(document).value();
  const std::vector<QByteArray> contents = contentStreams(pdf);
  qsizetype bytes = 0;
  for (const auto& page : contents) bytes += page.size();
  const std::string what = "PDF of a register of 20,000 rows";
  bench::inTurn(
      kRuns, [&] { bench::keep(renderPdf(document).value().size()); },
      [&] {
        for (const auto& page : contents) bench::keep(qCompress(page).size());
      })
      .atMost(
          what,
          "deflating its " + std::to_string(contents.size()) + " pages, " + std::to_string(bytes / 1'000'000) + " MB,",
          5);

  const Run alone = run({self, "print", (place / "register.pdf").string()});
  char memory[32];
  std::snprintf(memory, sizeof memory, "%.1f MB", alone.memory / 1e6);
  bench::printFigure("memory of a process that makes it", memory, "150 MB", alone.memory / 150e6, 1);

  const double process = median(kRuns, {self, "print", (place / "register.pdf").string()});
  writeCsv(document, place / "register.csv");
  writePage(document, place / "register.html");
  run(office(place, place / "register.csv"));  // its first start makes a profile
  faster(what + ", whole process", process, "LibreOffice from the same CSV",
         median(3, office(place, place / "register.csv")), 2.5);
  faster(
      what + ", whole process", process, "headless Chromium printing the same table",
      median(1,
             {kChromium, "--headless", "--no-sandbox", "--disable-gpu", "--no-first-run",
              "--disable-background-networking", "--disable-component-update", "--disable-sync",
              "--disable-pdf-tagging", "--no-pdf-header-footer", "--user-data-dir=" + (place / "chromium").string(),
              "--print-to-pdf=" + (place / "chromium.pdf").string(), "file://" + (place / "register.html").string()}),
      25);

  const std::string store = bench::makeStore(place, kFewRows).string();
  const std::string cli = (std::filesystem::path(self).parent_path().parent_path() / "thalvorn-cli").string();
  const auto report = [&](const std::string& form, const std::string& file) {
    return std::vector<std::string>{cli, "--store", store, "report", "service-history", form, (place / file).string()};
  };
  run(report("--csv", "history.csv"));
  faster("PDF of a register of 1,000 rows by thalvorn-cli", median(9, report("--pdf", "history.pdf")),
         "LibreOffice from its CSV", median(5, office(place, place / "history.csv")), 8);
  measureWindow();
}
