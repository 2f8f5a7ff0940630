#include "app/maintenance/task_list_model.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include "maintenance_fleet.h"

namespace thalvorn::app {
namespace {

using thalvorn::testing::dueAt;
using thalvorn::testing::dueOn;

class TaskList : public MaintenanceFleet {
 protected:
  TaskList() {
    MaintenanceTask late = dueOn("Fire extinguisher inspection", inDays(-19));
    late.category = TaskCategory::safety;
    add(late);
    add(dueAt("Raw water impeller", 1006.2));
    MaintenanceTask service = dueOn("Life raft service", inDays(12));
    service.category = TaskCategory::safety;
    add(service);
    add(dueOn("Antifouling", inDays(200)));
    board.setActive(true);
  }

  QStringList titles(const TaskListModel& list) const {
    QStringList texts;
    for (int row = 0; row < list.rowCount(); ++row) texts << list.index(row, 0).data(Qt::DisplayRole).toString();
    return texts;
  }
  QVariant value(const TaskListModel& list, int row, const char* role) const {
    return list.index(row, 0).data(list.roleNames().key(role));
  }

  FleetWatch watch{store};
  TaskListModel board{watch, {.scope = TaskScope::board, .sort = TaskSortField::status}};
  QAbstractItemModelTester tester{&board, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(TaskList, ShowsWhatTheBoardIsMadeOf) {
  EXPECT_EQ(titles(board), (QStringList{QStringLiteral("Fire extinguisher inspection"),
                                        QStringLiteral("Raw water impeller"), QStringLiteral("Life raft service")}));
  EXPECT_EQ(value(board, 0, "tone"), QStringLiteral("overdue"));
  EXPECT_EQ(value(board, 0, "due"), QStringLiteral("19 days past"));
  EXPECT_EQ(value(board, 0, "meter"), QStringLiteral("—"));
  EXPECT_EQ(value(board, 1, "due"), QStringLiteral("in 6.2 h"));
  EXPECT_EQ(value(board, 1, "meter"), QStringLiteral("Engine 1"));
  EXPECT_EQ(value(board, 2, "status"), QStringLiteral("On track"));
  EXPECT_EQ(board.idAt(1), text(thalvorn::testing::id("Raw water impeller")));
  EXPECT_EQ(board.rowOf(board.idAt(2)), 2);
  EXPECT_EQ(board.rowOf(text(thalvorn::testing::id("Antifouling"))), -1);
}

TEST_F(TaskList, FollowsEditsInPlace) {
  const QSignalSpy resets(&board, &TaskListModel::modelReset);
  MaintenanceTask added = add(dueOn("Bilge pump test", inDays(3)));
  settle();
  EXPECT_EQ(titles(board).at(1), QStringLiteral("Bilge pump test"));
  added.snoozedUntil = inDays(5);
  store.update(added);
  settle();
  EXPECT_EQ(value(board, 1, "status"), QStringLiteral("Snoozed"));
  EXPECT_EQ(value(board, 1, "dueMore"), QStringLiteral("Snoozed — click to change"));
  store.remove<MaintenanceTask>(thalvorn::testing::id("Raw water impeller"));
  EXPECT_EQ(board.rowCount(), 3) << "positions behind a deleted task must be right at once";
  EXPECT_EQ(titles(board).last(), QStringLiteral("Life raft service"));
  EXPECT_EQ(resets.count(), 0) << "a list that is reset loses its place";
}

TEST_F(TaskList, KeepsItsRowsRightWhileHidden) {
  board.setActive(false);
  store.remove<MaintenanceTask>(thalvorn::testing::id("Fire extinguisher inspection"));
  EXPECT_EQ(titles(board), (QStringList{QStringLiteral("Raw water impeller"), QStringLiteral("Life raft service")}));
  add(dueOn("Bilge pump test", inDays(3)));
  settle();
  EXPECT_EQ(board.rowCount(), 2) << "a hidden list does no work";
  board.setActive(true);
  EXPECT_EQ(board.rowCount(), 3);
}

TEST_F(TaskList, MovesWithTimeAndMeters) {
  clock.advance(std::chrono::days(5));
  watch.tick();
  settle();
  EXPECT_EQ(value(board, 2, "status"), QStringLiteral("Due soon"));
  Vessel run = ship;
  run.engineHours = 1010;
  store.update(run);
  settle();
  EXPECT_EQ(value(board, board.rowOf(text(thalvorn::testing::id("Raw water impeller"))), "status"),
            QStringLiteral("Overdue"));
  clock.advance(std::chrono::days(180));
  watch.tick();
  settle();
  EXPECT_TRUE(titles(board).contains(QStringLiteral("Antifouling"))) << "what was beyond the horizon comes in";
}

TEST_F(TaskList, GroupsFoldAndAreRemembered) {
  KeptPreferences preferences;
  board.rememberIn(preferences, QStringLiteral("board"));
  board.setGrouped(true);
  EXPECT_EQ(titles(board),
            (QStringList{QStringLiteral("Engine"), QStringLiteral("Raw water impeller"), QStringLiteral("Safety"),
                         QStringLiteral("Fire extinguisher inspection"), QStringLiteral("Life raft service")}));
  EXPECT_EQ(value(board, 2, "sectionCount"), 2);
  board.setCollapsed(2, true);
  board.setCollapsed(1, true);
  EXPECT_EQ(board.rowCount(), 3);
  EXPECT_EQ(board.total(), 3);
  EXPECT_EQ(board.idAt(2), QString());
  board.setSort(QStringLiteral("name"));
  board.setDescending(true);
  board.setKind(QStringLiteral("squawk"));

  TaskListModel again(watch, {.scope = TaskScope::board});
  again.rememberIn(preferences, QStringLiteral("board"));
  EXPECT_TRUE(again.grouped());
  EXPECT_EQ(again.sortField(), QStringLiteral("name"));
  EXPECT_TRUE(again.descending());
  EXPECT_EQ(again.kind(), QStringLiteral("squawk"));
  again.setKind(QString());
  again.setActive(true);
  EXPECT_EQ(again.rowCount(), 3) << "Safety stays folded";
}

TEST_F(TaskList, NarrowsAndWidens) {
  board.setSearch(QStringLiteral("  FIRE safety "));
  EXPECT_EQ(titles(board), QStringList{QStringLiteral("Fire extinguisher inspection")});
  board.setFilter(QStringLiteral("dueSoon"));
  EXPECT_EQ(board.total(), 0);
  EXPECT_TRUE(board.narrowed());
  board.widen();
  EXPECT_FALSE(board.narrowed());
  EXPECT_EQ(board.total(), 3);
  board.setCategory(QStringLiteral("Safety"));
  EXPECT_EQ(board.total(), 2);
}

TEST_F(TaskList, SearchesManyTasksBetweenFrames) {
  constexpr int kMany = 20'000;
  Edit edit{.label = "Many tasks"};
  for (int i = 0; i < kMany; ++i) {
    MaintenanceTask task = thalvorn::testing::task("Task " + std::to_string(i));
    task.notes = std::string(400, 'x') + (i % 2 == 0 ? " even" : " odd");
    edit.add(std::move(task));
  }
  store.apply(std::move(edit));
  TaskListModel library(watch, {.scope = TaskScope::library, .sort = TaskSortField::name});
  library.setActive(true);
  ASSERT_EQ(library.total(), kMany + 4);

  library.setSearch(QStringLiteral("odd"));
  EXPECT_TRUE(library.searching()) << "the first finds show before the last are found";
  EXPECT_GT(library.rowCount(), 0);
  int rounds = 0;
  for (; library.searching(); ++rounds) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  EXPECT_GT(rounds, 0);
  EXPECT_EQ(library.total(), kMany / 2);
  library.setSearch(QStringLiteral("even"));
  library.setSearch(QString());
  EXPECT_EQ(library.total(), kMany + 4) << "a search given up must not add its finds later";
  settle();
  EXPECT_EQ(library.total(), kMany + 4);
}

TEST_F(TaskList, ListsTheSelectedVesselAlone) {
  const Vessel other = thalvorn::testing::yacht("Borealis");
  store.add(other);
  add(dueOn("Other's task", inDays(2), other));
  store.setSelectedVesselID(other.id);
  settle();
  EXPECT_EQ(titles(board), QStringList{QStringLiteral("Other's task")});
  store.clear();
  settle();
  EXPECT_EQ(board.rowCount(), 0);
}

}  // namespace
}  // namespace thalvorn::app
