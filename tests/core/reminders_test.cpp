#include "core/reminders.h"

#include <gtest/gtest.h>

namespace thalvorn {
namespace {

using namespace std::chrono_literals;

TEST(Reminders, TellOfNearAndPastDuePointsButNotOfSnoozedOrFarOnes) {
  const Timestamp now = parseTimestamp("2026-11-21T09:40:00Z").value();
  const Vessel vessel{.id = Uuid::random(), .name = "M/Y Meridian", .engineHours = 100};
  const auto task = [&](std::string title) {
    MaintenanceTask made{.id = Uuid::random(), .vesselID = vessel.id, .title = std::move(title)};
    return made;
  };
  std::vector<MaintenanceTask> tasks{task("Tomorrow"), task("In three days"), task("Past"), task("Hours"),
                                     task("Snoozed"),  task("Other vessel"),  task("Done")};
  tasks[0].dueDate = now + 26h;
  tasks[1].dueDate = now + 74h;
  tasks[2].dueDate = now - 50h;
  tasks[3].dueAtEngineHours = 108;
  tasks[4].dueDate = now - 50h;
  tasks[4].snoozedUntil = now + 1h;
  tasks[5].dueDate = now - 50h;
  tasks[5].vesselID = Uuid::random();
  tasks[6].dueDate = now - 50h;
  tasks[6].isCompleted = true;

  const auto reminders = dueReminders(tasks, vessel, now, Calendar::utc(), 1);
  ASSERT_EQ(reminders.size(), 3U);
  EXPECT_EQ(reminders[0].title, "Maintenance due: Past");
  EXPECT_TRUE(reminders[0].overdue);
  EXPECT_EQ(reminders[1].title, "Maintenance due: Tomorrow");
  EXPECT_TRUE(reminders[1].body.starts_with("Vessel: M/Y Meridian\n"));
  EXPECT_EQ(reminders[2].title, "Maintenance due: Hours");

  // A stage belongs to its due point: moved on, the task is told of again.
  tasks[0].dueDate = now + 25h;
  EXPECT_NE(dueReminders(tasks, vessel, now, Calendar::utc(), 1)[1].stage, reminders[1].stage);
  EXPECT_EQ(dueReminders(tasks, vessel, now, Calendar::utc(), 3).size(), 4U);
  EXPECT_EQ(dueReminders(tasks, vessel, now + 2h, Calendar::utc(), 1).size(), 4U) << "the snooze is over";
}

}  // namespace
}  // namespace thalvorn
