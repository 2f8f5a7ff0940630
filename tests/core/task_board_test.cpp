#include "core/task_board.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fixtures.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;
using namespace thalvorn::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kDay = 24h;

class TaskBoard : public ::testing::Test {
 protected:
  TaskBoard() {
    MaintenanceTask filter = dueOn("fuel filter", now + 5 * kDay);
    filter.category = TaskCategory::fuel;
    filter.recurringDays = 180;
    MaintenanceTask anode = dueOn("Anodes", now - 5 * kDay);
    anode.category = TaskCategory::hull;
    anode.notes = "Arbre, coque et gouvernail: vérifier";
    MaintenanceTask belt = dueAt("Belt", 1002);  // 1.4 days off at the assumed 10 h a week
    belt.category = TaskCategory::engine;
    MaintenanceTask valves = dueOn("Émergency lights", now + 20 * kDay);
    valves.category = TaskCategory::electrical;
    valves.kind = TaskKind::warranty;
    MaintenanceTask survey = dueOn("Survey", now + 90 * kDay);
    survey.category = TaskCategory::hull;
    MaintenanceTask snoozed = dueOn("Dock lines", now - 9 * kDay);
    snoozed.category = TaskCategory::dockLines;
    snoozed.snoozedUntil = now + kDay;
    MaintenanceTask done = dueOn("Done", now - kDay);
    done.isCompleted = true;
    tasks = {filter, anode, belt, valves, survey, snoozed, done, task("Someday"), dueOn("Other boat", now, other)};
  }

  std::vector<std::string> titles(const TaskQuery& query) {
    std::vector<std::string> shown;
    for (const TaskRow& row : rows(query)) shown.push_back(tasks[row.index].title);
    return shown;
  }
  std::vector<TaskRow> rows(const TaskQuery& query) { return listTasks(tasks, fleet, horizon, query); }

  TaskQuery ofYacht() const { return {.vesselID = vessels[0].id}; }

  const Timestamp now = at("2026-06-15T12:00:00Z");
  const StatusHorizon horizon{now, Calendar::utc()};
  const Vessel other = yacht("Borealis");
  const std::vector<Vessel> vessels{yacht(), other};
  Fleet fleet{vessels};
  std::vector<MaintenanceTask> tasks;
};

TEST_F(TaskBoard, ShowsWhatIsDueWithinTheHorizonWithSnoozedOnesMarked) {
  EXPECT_THAT(titles(ofYacht()), ElementsAre("Dock lines", "Anodes", "fuel filter", "Belt", "Émergency lights"));
  const auto all = rows(ofYacht());
  EXPECT_TRUE(all[0].snoozed);
  EXPECT_EQ(all[0].status, TaskStatus::overdue);
  EXPECT_FALSE(all[1].snoozed);
  EXPECT_EQ(rows({}).size(), 6U) << "all vessels";
}

TEST_F(TaskBoard, SortsByEachFieldInBothDirections) {
  const struct {
    TaskSortField sort;
    std::vector<std::string> ascending, descending;
  } cases[] = {{TaskSortField::name,
                {"Anodes", "Belt", "Dock lines", "Émergency lights", "fuel filter", "Someday", "Survey"},
                {"Survey", "Someday", "fuel filter", "Émergency lights", "Dock lines", "Belt", "Anodes"}},
               {TaskSortField::category,
                {"Dock lines", "Émergency lights", "Belt", "Someday", "fuel filter", "Anodes", "Survey"},
                {"Anodes", "Survey", "fuel filter", "Belt", "Someday", "Émergency lights", "Dock lines"}},
               {TaskSortField::due,
                {"Dock lines", "Anodes", "Belt", "fuel filter", "Émergency lights", "Survey", "Someday"},
                {"Survey", "Émergency lights", "fuel filter", "Belt", "Anodes", "Dock lines", "Someday"}},
               {TaskSortField::status,
                {"Dock lines", "Anodes", "fuel filter", "Belt", "Émergency lights", "Survey", "Someday"},
                {"Survey", "Someday", "Émergency lights", "fuel filter", "Belt", "Anodes", "Dock lines"}}};
  for (const auto& [sort, ascending, descending] : cases) {
    TaskQuery query = ofYacht();
    query.scope = TaskScope::library;
    query.sort = sort;
    EXPECT_EQ(titles(query), ascending) << rawText(sort);
    query.descending = true;
    EXPECT_EQ(titles(query), descending) << rawText(sort);
  }
}

TEST_F(TaskBoard, FiltersByStatusKindCategoryScopeAndWords) {
  TaskQuery query = ofYacht();
  query.filter = FilterOption::overdue;
  EXPECT_THAT(titles(query), ElementsAre("Dock lines", "Anodes"));
  query.withSnoozed = false;
  EXPECT_EQ(rows(query).size(), countTasks(tasks, fleet, horizon, vessels[0].id).overdue);

  query = ofYacht();
  query.kind = TaskKind::warranty;
  EXPECT_THAT(titles(query), ElementsAre("Émergency lights"));

  query = ofYacht();
  query.category = TaskCategory::hull;
  EXPECT_THAT(titles(query), ElementsAre("Anodes"));

  query = ofYacht();
  query.search = "VERIFIER coque hull";
  EXPECT_THAT(titles(query), ElementsAre("Anodes"));
  query.search = "coque engine";
  EXPECT_THAT(titles(query), IsEmpty());

  query = ofYacht();
  query.scope = TaskScope::recurring;
  EXPECT_THAT(titles(query), ElementsAre("fuel filter"));
}

TEST_F(TaskBoard, GroupsByCategoryAndKeepsTheOrderInside) {
  TaskQuery query = ofYacht();
  query.scope = TaskScope::library;
  query.sort = TaskSortField::due;
  query.descending = true;
  query.groupByCategory = true;
  const auto shown = rows(query);
  std::vector<std::string> groups;
  for (const CategoryGroup& group : categoryGroups(shown, tasks))
    groups.push_back(std::string(group.category.display()) + " " + std::to_string(group.count));
  EXPECT_THAT(groups,
              ElementsAre("Dock Lines & Ground Tackle 1", "Electrical 1", "Engine 2", "Fuel System 1", "Hull 2"));
  EXPECT_EQ(tasks[shown[5].index].title, "Survey");
}

TEST_F(TaskBoard, ProjectsHoursAtThePaceTheMeterRuns) {
  const MaintenanceTask oil = dueAt("Oil", 1030);
  EXPECT_EQ(dueMoment(oil, fleet.meters(oil.vesselID), now), now + 21 * kDay);
  fleet.setHoursPerDay(oil.vesselID, HourSource::engine, 15);
  EXPECT_EQ(dueMoment(oil, fleet.meters(oil.vesselID), now), now + 2 * kDay);
  fleet.setHoursPerDay(oil.vesselID, HourSource::engine, 0);
  EXPECT_EQ(dueMoment(oil, fleet.meters(oil.vesselID), now), now + 2 * kDay) << "a standing meter tells nothing";
}

}  // namespace
}  // namespace thalvorn
