#include "reports/pdf_renderer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <qpdf/qpdf-c.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "core/service_history_report.h"
#include "core/work_list_report.h"
#include "read_back.h"
#include "reports/document/document_text.h"
#include "sample_documents.h"

namespace thalvorn {
namespace {

using testing::HasSubstr;

/// The share of dark pixels in a strip of a picture.
double inkIn(const QImage& image, const QRect& strip) {
  int dark = 0;
  for (int y = strip.top(); y <= strip.bottom(); ++y) {
    for (int x = strip.left(); x <= strip.right(); ++x) dark += qGray(image.pixel(x, y)) < 200;
  }
  return double(dark) / (strip.width() * strip.height());
}

TEST(PdfRenderer, PrintsEveryFieldWithItsLabel) {
  const auto text = textOf(pdfOf(sampleRegister(4)));
  for (const auto* field : {"Fuel Bunkering Report",
                            "M/Y Meridian",
                            "1 Sep 2026 – 21 Nov 2026",
                            "Generated: 21 Nov 2026 09:40 UTC",
                            "4 records, newest first",
                            "Cayman Islands",
                            "George Town",
                            "9074729",
                            "ZGAB7",
                            "319 012 300",
                            "n/a",
                            "Berth / anchorage",
                            "Supplier / Bunker Co.",
                            "East Passage Energy, filter station",
                            "21 Nov 2026",
                            "6,302.23",
                            "INV-20421",
                            "SUMMARY",
                            "Total Quantity (Gallons)",
                            "23,552.8 L",
                            "quantity × price",
                            "Chief Engineer — name, signature, date",
                            "Supplier’s representative",
                            "Page 1 of 1"}) {
    EXPECT_THAT(text, HasSubstr(field));
  }
  EXPECT_LT(text.find("Port of Miami"), text.find("Nassau"));
}

TEST(PdfRenderer, RepeatsTheHeadAndSplitsNoRow) {
  const int rows = 500;
  auto document = sampleRegister(rows);
  auto& table = std::get<Table>(document.blocks.front());
  for (int i = 0; i < rows; ++i) {
    auto& cells = table.rows[static_cast<std::size_t>(i)].cells;
    cells[3].text = "begin" + std::to_string(i) +
                    "x one two three four five six seven eight nine ten eleven twelve end" + std::to_string(i) + "x";
  }
  const auto report = PagedReport::layOut(document).value();
  const auto text = textOf(report.pdf().value(), {QStringLiteral("-raw")});
  const int pages = report.pageCount();
  ASSERT_GT(pages, 20);
  EXPECT_EQ(count(text, "\f"), std::size_t(pages));
  std::size_t from = 0;
  for (int page = 1; page <= pages; ++page) {
    const auto to = text.find('\f', from);
    const std::string sheet = text.substr(from, to - from);
    from = to + 1;
    EXPECT_THAT(sheet, HasSubstr("Page " + std::to_string(page) + " of " + std::to_string(pages)));
    EXPECT_THAT(sheet, HasSubstr("ZGAB7"));
    if (sheet.find("begin") != sheet.npos) EXPECT_THAT(sheet, HasSubstr("Berth / anchorage")) << page;
    for (int i = 0; i < rows; ++i) {
      const auto number = std::to_string(i) + "x";
      EXPECT_EQ(count(sheet, "begin" + number), count(sheet, "end" + number)) << number << " on page " << page;
    }
  }
  EXPECT_EQ(count(text, "begin499x"), 1);
}

TEST(PdfRenderer, SumsAndSignaturesNeverStandAlone) {
  for (int rows = 10; rows < 30; ++rows) {
    const auto text = textOf(pdfOf(sampleRegister(rows)), {QStringLiteral("-raw")});
    const auto sheet = text.substr(text.rfind('\f', text.size() - 2) + 1);
    for (const auto* part : {"INV-", "SUMMARY", "Master — name", "Page"}) EXPECT_THAT(sheet, HasSubstr(part)) << rows;
  }
}

TEST(PdfRenderer, PrintsTheMaintenanceReportsWhole) {
  Vessel vessel;
  vessel.name = "Aurelia";
  MaintenanceTask task{.id = Uuid::random(), .title = "Fuel filter ⛽ замена", .notes = "Two \"spin-on\" elements"};
  task.dueDate = parseTimestamp("2026-11-25T08:00:00Z");
  const ServiceLog log{.id = Uuid::random(),
                       .taskID = task.id,
                       .taskTitle = task.title,
                       .completedDate = *parseTimestamp("2026-01-14T08:00:00Z"),
                       .technicianNotes = "Δp 0.3 bar → clean ✅",
                       .cost = 12.5,
                       .completedBy = "Łukasz",
                       .partsUsed = {{Uuid::random(), "Element", 2, "R-120", 40.0}}};
  const ReportSetting setting{.now = *parseTimestamp("2026-11-21T09:40:00Z")};
  const auto workList = PagedReport::layOut(
      workListReport(std::span(&task, 1), std::span(&log, 1), vessel, {}, {.scope = TaskScope::library}, setting));
  const auto history =
      PagedReport::layOut(serviceHistoryReport(std::span(&log, 1), vessel, {}, {.detailed = true}, setting));
  for (const auto* report : {&*workList, &*history}) EXPECT_EQ(report->missingCharacters().toStdString(), "");
  const auto due = textOf(workList->pdf().value());
  for (const auto* part : {"Maintenance Work List", "Aurelia", "Fuel filter ⛽ замена", "25 Nov 2026", "in 4 days",
                           "Two \"spin-on\" elements", "14 Jan 2026", "Łukasz", "Last done"}) {
    EXPECT_THAT(due, HasSubstr(part));
  }
  const auto done = textOf(history->pdf().value());
  for (const auto* part :
       {"Service History (Detailed)", "Δp 0.3 bar → clean ✅", "2 × Element", "USD 40.00", "52.50"}) {
    EXPECT_THAT(done, HasSubstr(part));
  }
}

TEST(PdfRenderer, PrintsEveryBlockInEveryScriptAndCutsNothing) {
  const auto report = PagedReport::layOut(sampleOfEverything()).value();
  EXPECT_EQ(report.missingCharacters().toStdString(), "");
  const auto pdf = report.pdf().value();
  const auto text = textOf(pdf);
  for (const auto* part : {"filter, office, waffle",
                           "масло двигателя",
                           "λάδι κινητήρα",
                           "החלפת שמן",
                           "机油更换 エンジン 엔진",
                           "⚓",
                           "✅",
                           "🔧",
                           "été",
                           "in many scripts",
                           "Builder",
                           "Aurora Yard",
                           "154.2 ft",
                           "Winter refit",
                           "CRITICAL",
                           "Shaft seal weeping.",
                           "at 4,818.6 h",
                           "Impeller kit 09-1027B × 1",
                           "Engine continued",
                           "No entries",
                           "Photo not available:",
                           "file.jpg",
                           "Port shaft seal"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
  for (int i = 1; i <= 900; ++i) {
    const auto word = "remark" + std::to_string(i);
    EXPECT_TRUE(text.find(word + " ") != text.npos || text.find(word + "\n") != text.npos) << word;
  }
  const auto facts = outputOf(QStringLiteral("pdfinfo"), {}, pdf);
  EXPECT_THAT(facts, HasSubstr("Handover notes — M/Y Meridian"));
  EXPECT_THAT(facts, HasSubstr("612 x 792 pts (letter)"));
}

TEST(PdfRenderer, FindsTheWordsOfEveryScriptAsTheyWereTyped) {
  // Shaping would turn the first line's signs into others, and stack, join or reorder most of the rest.
  const std::vector<std::string> lines = {"⛽ 1 Sep – 21 Nov, (3x4) -> 10:30 filter [A] 5-6",
                                          "हिन्दी इंजन का तेल क्षेत्र 12 filter",
                                          "বাংলা ইঞ্জিন তেল",
                                          "தமிழ் இயந்திர எண்ணெய்",
                                          "ไทย น้ำมันเครื่อง",
                                          "ລາວ ນ້ຳມັນເຄື່ອງ",
                                          "ខ្មែរ ប្រេងម៉ាស៊ីន",
                                          "မြန်မာ အင်ဂျင်ဆီ",
                                          "සිංහල එන්ජින් තෙල්",
                                          "ქართული ძრავის ზეთი",
                                          "Հայերեն շարժիչի յուղ",
                                          "አማርኛ የሞተር ዘይት",
                                          "Tiếng Việt dầu động cơ",
                                          "机油更换 エンジンオイル 엔진 오일",
                                          "русский масло двигателя"};
  Document document{.title = "Scripts", .generatedAt = {}};
  for (const auto& line : lines) document.blocks.push_back(Paragraph{line});
  for (const auto* line : {"محرك السفينة", "החלפת שמן", "ﬁlter e\u0301te\u0301 q\u0303ua"})
    document.blocks.push_back(Paragraph{line});
  const auto pdf = pdfOf(document);
  const auto text = textOf(pdf);
  for (const auto& line : lines) EXPECT_THAT(text, HasSubstr(line));
  for (const auto* part : {"محرك السفينة", "החלפת שמן", "filter été q\u0303ua"}) EXPECT_THAT(text, HasSubstr(part));
  // No typeface that merely happens to be installed here.
  const auto fonts = QString::fromStdString(outputOf(QStringLiteral("pdffonts"), {}, pdf)).split(u'\n').mid(2);
  for (const auto& font : fonts) {
    const auto family = font.section(u'+', 1);
    EXPECT_TRUE(font.isEmpty() || family.startsWith(u"Inter") || family.startsWith(u"Noto") ||
                family.startsWith(u"ThalvornBlank"))
        << font.toStdString();
  }
}

TEST(PdfRenderer, DrawsEmojiAndRightToLeftGlyphs) {
  Document document{.title = "Glyphs", .generatedAt = {}};
  for (const auto* text : {"🔧", "محرك", "中"}) {
    document.blocks = {Paragraph{text}};
    QTemporaryDir folder;
    const auto path = folder.filePath(QStringLiteral("glyphs.pdf"));
    ASSERT_TRUE(writePdf(path, document));
    ASSERT_EQ(QProcess::execute(QStringLiteral("pdftoppm"),
                                {QStringLiteral("-png"), QStringLiteral("-singlefile"), QStringLiteral("-r"),
                                 QStringLiteral("72"), path, folder.filePath(QStringLiteral("page"))}),
              0);
    const QRect strip(36, 59, 30, 14);
    EXPECT_GT(inkIn(QImage(folder.filePath(QStringLiteral("page.png"))), strip), 0.02) << text;
    EXPECT_GT(inkIn(renderPage(document, 0, 1), strip), 0.02) << text << " on the screen";
  }
}

TEST(PdfRenderer, NamesCharactersThatWouldBeBlank) {
  const auto report = PagedReport::layOut({.title = "Blank", .blocks = {Paragraph{"a \U0010FFF0 b"}}}).value();
  EXPECT_EQ(report.missingCharacters().toStdString(), "\U0010FFF0");
}

TEST(PdfRenderer, SameInputGivesTheSameBytesInAnyProcess) {
  const auto document = sampleOfEverything();
  const auto pdf = pdfOf(document);
  EXPECT_TRUE(pdf == pdfOf(document));
  QProcess other;
  other.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--print-sample")});
  ASSERT_TRUE(other.waitForFinished());
  EXPECT_TRUE(pdf == other.readAllStandardOutput());
  auto later = document;
  later.generatedAt += std::chrono::seconds(1);
  EXPECT_FALSE(pdf == pdfOf(later));
}

TEST(PdfRenderer, CarriesLanguageAndBookmarks) {
  auto document = sampleOfEverything();
  document.language = "en-GB";
  const auto pdf = pdfOf(document);
  auto file = qpdf_init();
  ASSERT_EQ(qpdf_read_memory(file, "report", pdf.constData(), static_cast<unsigned long long>(pdf.size()), nullptr),
            QPDF_SUCCESS);
  const auto root = qpdf_get_root(file);
  const auto get = [&](qpdf_oh from, const char* key) { return qpdf_oh_get_key(file, from, key); };
  EXPECT_STREQ(qpdf_oh_get_utf8_value(file, get(root, "/Lang")), "en-GB");
  const auto texts = get(get(root, "/Outlines"), "/First");
  EXPECT_STREQ(qpdf_oh_get_utf8_value(file, get(texts, "/Title")), "Texts");
  const auto workList = get(texts, "/Next");
  EXPECT_STREQ(qpdf_oh_get_utf8_value(file, get(workList, "/Title")), "Work list");
  EXPECT_STREQ(qpdf_oh_get_utf8_value(file, get(get(workList, "/First"), "/Title")), "Engine");
  qpdf_cleanup(&file);
}

TEST(PdfRenderer, StopsWhenAskedAndLeavesTheOldFile) {
  QTemporaryDir folder;
  const auto path = folder.filePath(QStringLiteral("report.pdf"));
  ASSERT_TRUE(writeReportFile(path, "old"));
  double reached = 0;
  const auto stopped = writePdf(path, sampleRegister(2000), {.progress = [&](double done) {
                                  EXPECT_GE(done, reached);
                                  reached = done;
                                  return done < 0.5;
                                }});
  ASSERT_FALSE(stopped);
  EXPECT_EQ(stopped.error().kind, ReportError::Kind::cancelled);
  EXPECT_GE(reached, 0.5);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), "old");

  const auto refused = writePdf(folder.filePath(QStringLiteral("no/such/folder.pdf")), sampleRegister(1));
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().kind, ReportError::Kind::notWritten);
  EXPECT_THAT(refused.error().message.toStdString(), HasSubstr("Choose another folder"));
}

TEST(PdfRenderer, OddDocumentsStillPrint) {
  Document document{.title = std::string(300, 'W'), .vesselName = std::string(200, 'x'), .period = "\xFF\xFE broken"};
  Table wide;
  for (int i = 0; i < 40; ++i) wide.columns.push_back({.title = "Column " + std::to_string(i), .wraps = i % 2 == 0});
  wide.rows.push_back({.cells = std::vector<Cell>(60, Cell(std::string(500, 'y')))});
  wide.rows.push_back({.cells = {}, .kind = TableRow::Kind::group});
  document.blocks = {wide,        Table{},    Card{.text = std::string(20000, 'z')}, Summary{}, Signatures{},
                     PhotoGrid{}, PageBreak{}};
  const auto text = textOf(pdfOf(document));
  EXPECT_GE(count(text, "z"), 20000);
  EXPECT_GE(count(text, "y"), 40 * 500);
}

TEST(PdfRenderer, WordsHeadAndFootAsTheDocumentAsks) {
  const auto sees = [](const Document& document, std::string_view part) {
    return textOf(pdfOf(document), {QStringLiteral("-raw")}).find(part) != std::string::npos;
  };
  Document document = sampleRegister(60);
  document.title = "⛽  Fuel Bunkering Report";
  document.vesselName = "Motor Yacht Meridian of the Southern Seas";
  EXPECT_TRUE(sees(document, "⛽"));
  EXPECT_TRUE(sees(document, "Fuel Bunkering Report | Page 2 of 4"));
  EXPECT_TRUE(sees(document, "Thalvorn Yacht Systems | Motor Yacht Meridian of the Southern Seas"));
  document.orientation = Orientation::portrait;
  EXPECT_TRUE(sees(document, "Fuel Bunkering Report | Page 2 of 3"));

  document.headLine = "Vessel: Meridian · Generated: 21 Nov 2026 09:40 UTC · Passages: 60";
  document.footLine = "Thalvorn Yacht Systems · Meridian · Exported: Sat Nov 21, 2026 at 09:40";
  document.pageLabel = "Fuel";
  document.generatedLine = "printed twice?";
  EXPECT_TRUE(sees(document, document.headLine));
  EXPECT_TRUE(sees(document, document.footLine));
  EXPECT_TRUE(sees(document, "Fuel | Page 2 of 3"));
  EXPECT_FALSE(sees(document, document.generatedLine));
}

TEST(DocumentText, FileNamesSuitEveryFileSystem) {
  EXPECT_EQ(safeFileName("Ship's Log — M/Y Meridian: 1/9/2026"), "Ship's Log — M Y Meridian 1 9 2026");
  for (const auto* device : {"con", "LPT1.report", "com¹", "NUL .txt", "conin$"})
    EXPECT_EQ(safeFileName(device), std::string("_") + device);
  EXPECT_EQ(safeFileName("conning"), "conning");
  EXPECT_EQ(safeFileName("...hidden. "), "hidden");
  EXPECT_EQ(safeFileName("\n\"?\""), "Report");
  EXPECT_EQ(safeFileName("⛽  Fuel\tBunkering\u0085Report \u202Egnp.\xC3"), "⛽ Fuel Bunkering Report gnp");
  std::string anchors;
  for (int i = 0; i < 60; ++i) anchors += "⚓";
  EXPECT_EQ(safeFileName(anchors), anchors.substr(0, 120));
  EXPECT_EQ(safeFileName("x" + anchors), "x" + anchors.substr(0, 117));
  EXPECT_EQ(safeFileName(anchors, " Ships Log"), anchors.substr(0, 108) + " Ships Log");
  EXPECT_EQ(safeFileName(std::string(100, 'x') + "👩🏽‍🔧" + "é" + std::string(20, 'y')),
            std::string(100, 'x') + "👩🏽‍🔧" + "é" + "yyy");
  EXPECT_EQ(safeFileName(std::string(110, 'x') + "👩🏽‍🔧"), std::string(110, 'x'));
  EXPECT_EQ(safeFileName(std::string(118, 'x') + "e\u0301"), std::string(118, 'x'));
}

}  // namespace
}  // namespace thalvorn
