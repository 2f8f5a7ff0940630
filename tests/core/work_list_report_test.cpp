#include "core/work_list_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/task_csv_import.h"
#include "fixtures.h"
#include "reports/document/document_text.h"

namespace thalvorn {
namespace {

using testing::at;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using testing::yacht;

const Timestamp now = at("2026-11-21T09:40:00Z");

ReportSetting setting() { return {.now = now, .calendar = testing::zone("Europe/Rome")}; }

std::vector<MaintenanceTask> programme() {
  auto oil = testing::dueAt("Engine oil", 1006.2);
  oil.recurringEngineHours = 500;
  oil.recurringDays = 365;
  oil.notes = "SAE 15W-40, \"marine\"\n-5 l at first";
  oil.category = TaskCategory::engine;
  auto raft = testing::dueOn("Life raft service", at("2026-11-02T08:00:00Z"));
  raft.category = TaskCategory::safety;
  raft.priority = TaskPriority::high;
  auto seal = testing::dueOn("=Shaft seal; weeping", at("2026-11-25T08:00:00Z"));
  seal.kind = TaskKind::deficiencySquawk;
  seal.triggerType = TriggerType::both;
  seal.hourSource = HourSource::hydraulic;
  seal.dueAtEngineHours = 0.1;
  auto far = testing::dueOn("Haul out", at("2027-11-25T08:00:00Z"));
  // The clock shows this time twice.
  auto night = testing::dueOn("Clock change", at("2026-10-25T01:30:00Z"));
  night.triggerType = TriggerType::date;
  return {oil, raft, seal, far, night, testing::task("Other vessel", yacht("Borealis"))};
}

std::vector<ServiceLog> history() {
  ServiceLog first;
  first.taskID = testing::id("Engine oil");
  first.completedDate = at("2025-01-14T10:00:00Z");
  first.engineHoursAtService = 506.2;
  ServiceLog second = first;
  second.completedDate = at("2026-01-14T10:00:00Z");
  second.engineHoursAtService = 806.2;
  second.completedBy = "L. Marchetti";
  return {second, first};
}

const Table& tableOf(const Document& document) {
  for (const auto& block : document.blocks) {
    if (const auto* table = std::get_if<Table>(&block)) return *table;
  }
  throw std::runtime_error("no table");
}

std::vector<std::string> titles(const Table& table) {
  std::vector<std::string> texts;
  for (const auto& row : table.rows) {
    texts.push_back((row.kind == TableRow::Kind::group ? "# " : "") + row.cells[0].text +
                    (row.kind == TableRow::Kind::group ? " " + row.cells[0].note : ""));
  }
  return texts;
}

TEST(WorkListReport, GroupsWhatIsDueByStatusOrCategory) {
  const auto tasks = programme();
  const auto byStatus = workListReport(tasks, history(), yacht(), {}, {}, setting());
  EXPECT_THAT(titles(tableOf(byStatus)), ElementsAre("# Overdue 2", "Clock change", "Life raft service", "# Due soon 2",
                                                     "=Shaft seal; weeping", "Engine oil"));
  EXPECT_THAT(byStatus.headNotes, ElementsAre("2 overdue, 2 due soon, 0 on track"));
  const auto byCategory = workListReport(tasks, history(), yacht(), {}, {.groupByCategory = true}, setting());
  EXPECT_THAT(titles(tableOf(byCategory)), ::testing::Contains("# Safety 1"));
  EXPECT_EQ(tableOf(byCategory).rows.size(), 4 + 2u);
  EXPECT_EQ(tableOf(byCategory).columns[1].title, "Status");
  EXPECT_THAT(tableOf(workListReport({}, {}, yacht(), {}, {}, setting())).rows, IsEmpty());
}

TEST(WorkListReport, CountsAsTheBoardDoesAndSaysWhatItLeavesOut) {
  auto tasks = programme();
  tasks[1].snoozedUntil = at("2026-12-01T08:00:00Z");
  const auto whole = workListReport(tasks, history(), yacht(), {}, {}, setting());
  EXPECT_THAT(whole.headNotes, ElementsAre("1 overdue, 2 due soon, 0 on track, 1 snoozed"));
  EXPECT_THAT(titles(tableOf(whole)), ElementsAre("# Overdue 1", "Clock change", "# Due soon 2", "=Shaft seal; weeping",
                                                  "Engine oil", "# Snoozed 1", "Life raft service"));
  const auto part =
      workListReport(tasks, history(), yacht(), {},
                     {.scope = TaskScope::library, .kind = TaskKind::deficiencySquawk, .search = "seal"}, setting());
  EXPECT_THAT(part.headNotes, ElementsAre("0 overdue, 1 due soon, 0 on track", "Only: Deficiency / Squawk · “seal”"));
}

TEST(WorkListReport, SaysWhenAndHowAJobFallsDue) {
  const auto tasks = programme();
  const auto document = workListReport(tasks, history(), yacht(), {}, {}, setting());
  EXPECT_EQ(reportFileName(document), "Maintenance Work List — Aurelia");
  const auto& rows = tableOf(document).rows;
  const auto& raft = rows[2].cells;
  EXPECT_EQ(raft[0].tick, TickBox::open);
  EXPECT_EQ(raft[0].note, "High priority");
  EXPECT_EQ(raft[3].text, "2 Nov 2026");
  EXPECT_EQ(raft[3].note, "19 days past");
  EXPECT_TRUE(raft[3].strong);
  const auto& seal = rows[4].cells;
  EXPECT_EQ(seal[0].note, "Deficiency / Squawk");
  EXPECT_EQ(seal[2].note, "not fitted");
  const auto& oil = rows[5].cells;
  EXPECT_THAT(oil[0].note, StartsWith("SAE 15W-40"));
  EXPECT_EQ(oil[2].note, "1,000.0 hrs");
  EXPECT_EQ(oil[3].text, "1,006.2 hrs");
  EXPECT_EQ(oil[3].note, "in 6.2 hrs");
  EXPECT_EQ(oil[4].text, "500 hrs\n365 days");
  EXPECT_EQ(oil[5].text, "14 Jan 2026");
  EXPECT_EQ(oil[5].note, "806.2 hrs\nL. Marchetti");
}

TEST(WorkListCsv, ImportsAgainUnchanged) {
  const auto tasks = programme();
  for (const CsvFormat format : {CsvFormat{}, CsvFormat{CsvSeparator::semicolon, ','}, CsvFormat{CsvSeparator::tab}}) {
    const auto csv = workListCsv(tasks, history(), yacht(), {.scope = TaskScope::library, .sort = TaskSortField::name},
                                 setting(), format);
    const auto preview = previewTaskCsv(csv, setting().calendar);
    EXPECT_EQ(preview.valid, 5u);
    EXPECT_EQ(preview.skipped, 0u);
    for (const auto& row : preview.rows) EXPECT_THAT(row.problems, IsEmpty());
    for (auto& imported : tasksFromRows(preview.rows, yacht(), now, setting().calendar)) {
      const auto original = std::ranges::find(tasks, imported.title, &MaintenanceTask::title);
      ASSERT_NE(original, tasks.end()) << imported.title;
      imported.id = original->id;
      if (imported.title == "Engine oil") imported.dueDate = original->dueDate;  // the import sets a first due date
      EXPECT_EQ(imported, *original) << imported.title;
    }
  }
  EXPECT_THAT(workListCsv({}, {}, yacht(), {}, setting()),
              HasSubstr("title,category,triggerType,recurringDays,dueAtHours,recurringHours,hourSource,notes,"));
}

}  // namespace
}  // namespace thalvorn
