#include "core/task_csv_import.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fixtures.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;
using namespace thalvorn::testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TaskCsvPreview preview(std::string_view text) { return previewTaskCsv(text, zone("Europe/Rome")); }

TEST(TaskCsv, TheSampleImportsWhole) {
  const TaskCsvPreview sample = preview(taskCsvTexts().sample);
  EXPECT_EQ(previewSummary(sample), "5 valid, 0 skipped");
  for (const TaskCsvRow& row : sample.rows) EXPECT_THAT(row.problems, IsEmpty());

  const Timestamp now = at("2026-10-22T08:00:00Z");
  const Vessel vessel = yacht();
  const auto tasks = tasksFromRows(sample.rows, vessel, now, zone("Europe/Rome"));
  ASSERT_EQ(tasks.size(), 5U);
  EXPECT_EQ(tasks[0].title, "Engine oil change");
  EXPECT_EQ(tasks[0].triggerType, TriggerType::engineHours);
  EXPECT_EQ(tasks[0].dueAtEngineHours, std::nullopt) << "absent numbers stay absent";
  EXPECT_EQ(tasks[0].recurringEngineHours, 100);
  EXPECT_FALSE(tasks[0].dueDate);
  EXPECT_EQ(tasks[0].notes, "SAE 15W-40");
  EXPECT_EQ(tasks[1].category, TaskCategory::safety);
  EXPECT_EQ(tasks[1].dueDate, at("2026-11-21T09:00:00Z")) << "30 days by the wall clock, into winter time";
  EXPECT_EQ(tasks[2].dueAtEngineHours, 500) << "a given due reading stays";
  EXPECT_EQ(tasks[2].recurringEngineHours, 300);
  EXPECT_EQ(tasks[2].vesselID, vessel.id);
  EXPECT_NE(tasks[0].id, tasks[1].id);
}

TEST(TaskCsv, FindsColumnsInAnyOrderAndCase) {
  const TaskCsvPreview read = preview("Notes,CATEGORY,Colour,Title,HOURSOURCE\nx,hull,red,Anodes,GENERATOR 2\n");
  ASSERT_EQ(read.valid, 1U);
  EXPECT_EQ(read.rows[0].title, "Anodes");
  EXPECT_EQ(read.rows[0].category, TaskCategory::hull);
  EXPECT_EQ(read.rows[0].hourSource, HourSource::generator2);
  EXPECT_EQ(read.rows[0].notes, "x");
  EXPECT_EQ(read.rows[0].triggerType, TriggerType::date);
  EXPECT_EQ(read.problem, "");
  EXPECT_THAT(read.ignoredColumns, ElementsAre("colour"));
}

TEST(TaskCsv, SkipsRowsWithoutTitleOrCategoryAndGoesOn) {
  const TaskCsvPreview read = preview("title,category,notes\n,Hull,a\nSurvey,,b\n\n   \n,,\nAnodes,Hull\n");
  EXPECT_EQ(previewSummary(read), "1 valid, 3 skipped");
  ASSERT_EQ(read.rows.size(), 4U);
  EXPECT_EQ(previewTitle(read.rows[0]), "(no title)");
  EXPECT_EQ(previewTitle(read.rows[1]), "Survey");
  EXPECT_THAT(read.rows[0].problems, ElementsAre(HasSubstr("title is missing")));
  EXPECT_THAT(read.rows[1].problems, ElementsAre(HasSubstr("category is missing")));
  EXPECT_EQ(read.rows[3].line, 7);
  EXPECT_EQ(tasksFromRows(read.rows, yacht(), at("2026-06-15"), Calendar::utc()).size(), 1U);

  EXPECT_THAT(preview("Anodes,Hull\nSurvey,Hull\n").problem, HasSubstr("“title” and “category” are missing"));
  EXPECT_THAT(preview("title;name\n").problem, HasSubstr("“category” is missing"));
  EXPECT_EQ(preview("").rows.size(), 0U);
}

TEST(TaskCsv, FlagsWhatItCannotReadAndLeavesItOut) {
  const struct {
    std::string_view cells;  // triggerType, recurringDays, dueAtHours, recurringHours, hourSource
    std::string_view problem;
  } cases[] = {{"weekly,,,,", "triggerType “weekly”"}, {",abc,,,", "recurringDays “abc”"},
               {",30.5,,,", "not a whole number"},     {",-7,,,", "recurringDays “-7”"},
               {",,nan,,", "dueAtHours “nan”"},        {",,12 hours,,", "dueAtHours “12 hours”"},
               {",,,1e99,", "recurringHours “1e99”"},  {",,,,Thruster", "taken as Engine 1"}};
  for (const auto& [cells, problem] : cases) {
    const TaskCsvPreview read =
        preview("title,category,triggerType,recurringDays,dueAtHours,recurringHours,hourSource\nOil,Engine," +
                std::string(cells));
    ASSERT_EQ(read.valid, 1U) << cells;
    EXPECT_THAT(read.rows[0].problems, ElementsAre(HasSubstr(problem)));
    EXPECT_FALSE(read.rows[0].recurringDays || read.rows[0].dueAtHours || read.rows[0].recurringHours) << cells;
  }
  const TaskCsvPreview other = preview("title,category,notes\nOil,Gearbox,a, and b\n");
  EXPECT_EQ(other.rows[0].category, TaskCategory::other);
  EXPECT_THAT(other.rows[0].problems, ElementsAre(HasSubstr("Gearbox"), HasSubstr("“and b”")));
}

TEST(TaskCsv, ReadsFilesAsSpreadsheetsWriteThem) {
  const struct {
    const char* what;
    std::string_view text;
  } files[] = {
      {"quotes", "title,category,dueAtHours,notes\r\n\"Oil, \"\"both\"\" engines\",Engine,1234.5,\"a\nb\"\r\n"},
      {"semicolons",
       "\xEF\xBB\xBFtitle;category;dueAtHours;notes\r\n\"Oil, \"\"both\"\" engines\";Engine;1234,5;\"a\nb\"\r\n"},
      {"groups", "title;category;dueAtHours;notes\n\"Oil, \"\"both\"\" engines\";Engine;1.234,5;\"a\nb\"\n"},
      {"tabs", "title\tcategory\tdueAtHours\tnotes\nOil, \"both\" engines\tEngine\t1234,5\t\"a\nb\"\n"}};
  for (const auto& [what, text] : files) {
    const TaskCsvPreview read = preview(text);
    ASSERT_EQ(read.rows.size(), 1U) << what;
    EXPECT_EQ(read.rows[0].title, "Oil, \"both\" engines") << what;
    EXPECT_EQ(read.rows[0].dueAtHours, 1234.5) << what;
    EXPECT_EQ(read.rows[0].notes, "a\nb") << what;
    EXPECT_THAT(read.rows[0].problems, IsEmpty()) << what;
  }
  EXPECT_EQ(preview("title;category;recurringHours\nOil;Engine;1.250").rows[0].recurringHours, 1250);
  EXPECT_EQ(preview("title,category,recurringHours\nOil,Engine,1.250").rows[0].recurringHours, 1.25);
}

}  // namespace
}  // namespace thalvorn
