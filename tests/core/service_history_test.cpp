#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/part_text.h"
#include "core/service_history_csv.h"
#include "core/service_history_report.h"
#include "fixtures.h"

namespace thalvorn {
namespace {

using testing::at;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::id;
using ::testing::IsEmpty;
using testing::yacht;

const Calendar rome = testing::zone("Europe/Rome");

std::vector<ServiceLog> history() {
  ServiceLog impeller;
  impeller.id = id("log 1");
  impeller.taskID = id("task 1");
  impeller.vesselID = yacht().id;
  impeller.equipmentID = id("pump");
  impeller.taskTitle = "Raw water impeller replacement";
  impeller.category = TaskCategory::engine;
  impeller.kind = TaskKind::warranty;
  impeller.completedDate = at("2026-01-14T10:00:07Z");
  impeller.engineHoursAtService = 4318.6;
  impeller.technicianNotes = "Replaced;\n\"cover plate\" polished, -0.5 mm\n";
  impeller.cost = 120.5;
  impeller.completedBy = "@L. Marchetti";
  impeller.partsUsed = {
      {.id = id("p1"), .name = "Impeller; 3\" | kit", .quantity = 1.5, .partNumber = "09-1027B", .cost = 35.1},
      {.id = id("p2"), .name = " O-ring", .quantity = 2, .partNumber = {}, .cost = {}}};
  impeller.photoPaths = {"photos/a | b.jpg", "photos/c.jpg"};
  impeller.corrections = {{.id = id("c1"),
                           .at = at("2026-02-01T00:00:00Z"),
                           .field = "completedBy",
                           .before = "Ana",
                           .after = "@L. Marchetti",
                           .reason = "wrong name",
                           .author = "Ana"}};
  ServiceLog plain;
  plain.id = id("log 2");
  plain.vesselID = yacht().id;
  plain.taskTitle = "=Teak";
  plain.category = Choice<TaskCategory>::fromRaw("Submarine");
  plain.completedDate = at("2026-10-25T01:30:00Z");  // the clock shows this time twice
  return {impeller, plain};
}

TEST(PartText, IsWhatTheCommandLineTakes) {
  const auto parts = partsFromText("Oil filter;2;1R-0739;38.50 | Drain plug").value();
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(partsText(parts), "Oil filter;2;1R-0739;38.5 | Drain plug;1;;");
  EXPECT_THAT(partsFromText("").value(), IsEmpty());
  for (const auto* text : {";2", "a;b", "a;-1", "a;1;n;x", "a;1;n;2;3", "ok | ;;;1"}) {
    EXPECT_FALSE(partsFromText(text)) << text;
  }
  EXPECT_THAT(partsFromText("Filter;two").error(), HasSubstr("“Filter;two” is not a part"));
}

TEST(ServiceHistoryCsv, ImportsAgainUnchanged) {
  for (const CsvFormat format : {CsvFormat{}, CsvFormat{CsvSeparator::semicolon, ','}, CsvFormat{CsvSeparator::tab}}) {
    const auto import = serviceLogsFromCsv(serviceHistoryCsv(history(), rome, format), id("another vessel"), rome);
    EXPECT_EQ(import.logs, history());
    EXPECT_THAT(import.problems, IsEmpty());
  }
}

TEST(ServiceHistoryCsv, SaysWhatItCouldNotRead) {
  const auto import = serviceLogsFromCsv(
      "COMPLETEDDATE;taskTitle;cost;category;partsUsed;id\n"
      "2026-05-31;Oil;1.250,50;engine;\"Filter;2 | Ring\";not-an-id\n"
      "31/05/2026;Oil;;;;\n"
      "2026-05-31;;;;;\n"
      "2026-05-31 08:00;Raft;about 5;;\";\";\n",
      yacht().id, rome);
  ASSERT_EQ(import.logs.size(), 2u);
  EXPECT_EQ(import.skipped, 2u);
  const auto& oil = import.logs[0];
  EXPECT_EQ(oil.cost, 1250.5);
  EXPECT_EQ(oil.category, TaskCategory::engine);
  EXPECT_EQ(oil.vesselID, yacht().id);
  EXPECT_FALSE(oil.id.isNil());
  EXPECT_EQ(oil.partsUsed.size(), 2u);
  std::vector<std::size_t> lines;
  for (const auto& problem : import.problems) lines.push_back(problem.line);
  EXPECT_THAT(lines, ElementsAre(2, 3, 4, 5, 5));
  const auto headless = serviceLogsFromCsv("date,title\n2026-05-31,Oil\n", yacht().id, rome);
  EXPECT_THAT(headless.logs, IsEmpty());
  ASSERT_EQ(headless.problems.size(), 1u);
  EXPECT_THAT(headless.problems[0].message, HasSubstr("“taskTitle” is missing"));
}

TEST(ServiceHistoryReport, ListsServicesWithTotals) {
  const ReportSetting setting{.now = at("2026-11-21T09:40:00Z"), .calendar = rome};
  VesselProfile profile;
  profile.currency = "EUR";
  profile.grossTonnage = 498;
  const auto plain = serviceHistoryReport(history(), yacht(), profile, {}, setting);
  EXPECT_EQ(reportFileName(plain), "Service History — Aurelia");
  EXPECT_EQ(plain.period, "14 Jan 2026 – 25 Oct 2026");
  EXPECT_EQ(plain.particulars->grossTonnage, "498");
  const auto& table = std::get<Table>(plain.blocks[0]);
  std::vector<std::string> cells;
  for (const auto& cell : table.rows[0].cells) cells.push_back(cell.text);
  EXPECT_THAT(cells, ElementsAre("14 Jan 2026", "Raw water impeller replacement", "Engine", "4,318.6", "@L. Marchetti",
                                 "120.50", "35.10", "155.60"));
  EXPECT_THAT(table.rows[0].details, IsEmpty());
  EXPECT_EQ(table.rows[1].cells[2].text, "Submarine");
  const auto& summary = std::get<Summary>(plain.blocks[1]);
  EXPECT_EQ(summary.lines.back(), (Summary::Line{"Total Cost (EUR)", "155.60", ""}));
}

TEST(ServiceHistoryReport, TellsEverythingWhenDetailed) {
  const auto document = serviceHistoryReport(
      history(), yacht(), {},
      {.detailed = true,
       .photoFile = [](std::string_view path) { return path.ends_with("c.jpg") ? "/files/c.jpg" : std::string(); },
       .equipmentName = [](const Uuid& which) { return which == id("pump") ? "Sea water pump" : std::string(); }},
      {.now = at("2026-11-21T09:40:00Z"), .calendar = rome});
  EXPECT_EQ(document.title, "Service History (Detailed)");
  EXPECT_THAT(
      std::get<Table>(document.blocks[0]).rows[0].details,
      ElementsAre(LabeledText{"Notes", "Replaced;\n\"cover plate\" polished, -0.5 mm\n"},
                  LabeledText{"Equipment", "Sea water pump"},
                  LabeledText{"Parts", "1.5 × Impeller; 3\" | kit  ·  09-1027B  ·  USD 35.10\n2 ×  O-ring"},
                  LabeledText{"Photos", "a | b.jpg, c.jpg"},
                  LabeledText{"Corrected",
                              "1 Feb 2026: Completed by (optional) read “Ana”, now “@L. Marchetti” (wrong name), "
                              "Ana"}));
  const auto& photos = std::get<PhotoGrid>(document.blocks[3]).photos;
  ASSERT_EQ(photos.size(), 1u);
  EXPECT_EQ(photos[0].path, "/files/c.jpg");
}

}  // namespace
}  // namespace thalvorn
