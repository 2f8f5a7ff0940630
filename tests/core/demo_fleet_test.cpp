#include "core/demo_fleet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "core/demo_tables.h"
#include "core/particulars.h"
#include "core/task_board.h"
#include "core/template_catalogue.h"
#include "fixtures.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;
using namespace thalvorn::testing;

const std::vector<std::pair<std::string_view, std::string_view>> kMoments{
    {"2026-11-21T08:40:00Z", "Europe/Paris"},
    {"2026-03-29T00:30:00Z", "Europe/Rome"},
    {"2027-03-14T06:59:59Z", "America/New_York"},
    {"2028-02-29T23:59:59Z", "UTC"},
    {"2026-12-31T11:00:00Z", "Pacific/Kiritimati"}};

TEST(DemoFleet, ShowsEveryStatusOnEveryVesselWheneverItIsOpened) {
  for (const auto& [moment, zoneName] : kMoments) {
    const Timestamp now = at(moment);
    const Calendar calendar = zone(zoneName);
    const DemoFleet demo = demoFleet(now, calendar);
    const Fleet fleet(demo.vessels);
    const StatusHorizon horizon(now, calendar);
    ASSERT_EQ(demo.vessels.size(), 3U);
    for (const Vessel& vessel : demo.vessels) {
      const StatusCounts counts = countTasks(demo.tasks, fleet, horizon, vessel.id);
      EXPECT_GE(counts.overdue, 3U) << vessel.name << " " << moment;
      EXPECT_LE(counts.overdue, 15U) << vessel.name << " " << moment;
      EXPECT_GE(counts.dueSoon, 4U) << vessel.name << " " << moment;
      EXPECT_GE(counts.onTrack, 5U) << vessel.name << " " << moment;
      EXPECT_GE(counts.beyondHorizon, 10U) << vessel.name << " " << moment;
      EXPECT_GE(counts.completed, 2U) << vessel.name << " " << moment;
      EXPECT_GE(counts.snoozed, 1U) << vessel.name << " " << moment;
      for (const TaskKind kind : allCases<TaskKind>())
        EXPECT_FALSE(listTasks(demo.tasks, fleet, horizon, {.vesselID = vessel.id, .kind = kind}).empty());
    }
  }
}

TEST(DemoFleet, IsTheSameEveryTime) {
  const DemoFleet first = demoFleet(at("2026-11-21T00:00:00Z"), Calendar::utc());
  const DemoFleet again = demoFleet(at("2026-11-21T23:59:59Z"), Calendar::utc());
  EXPECT_EQ(first.tasks, again.tasks);
  EXPECT_EQ(first.logs, again.logs);
  EXPECT_EQ(first.vessels, again.vessels);
  EXPECT_EQ(first.profiles, again.profiles);
  const DemoFleet later = demoFleet(at(kMoments[3].first), Calendar::utc());
  ASSERT_EQ(first.tasks.size(), later.tasks.size());
  for (std::size_t i = 0; i < first.tasks.size(); ++i) EXPECT_EQ(first.tasks[i].id, later.tasks[i].id);
}

TEST(DemoFleet, TellsACoherentHistory) {
  const Timestamp now = at(kMoments[0].first);
  const DemoFleet demo = demoFleet(now, zone(kMoments[0].second));
  std::set<Uuid> ids;
  std::map<Uuid, const MaintenanceTask*> tasks;
  std::map<Uuid, const Vessel*> vessels;
  for (const Vessel& vessel : demo.vessels) vessels[vessel.id] = &vessel;
  for (const MaintenanceTask& task : demo.tasks) {
    EXPECT_TRUE(ids.insert(task.id).second) << task.title;
    EXPECT_TRUE(task.dueDate || task.dueAtEngineHours) << task.title;
    if (task.dueAtEngineHours) EXPECT_TRUE(vessels.at(task.vesselID)->hasMeter(task.hourSource)) << task.title;
    tasks[task.id] = &task;
  }
  std::map<std::pair<Uuid, std::uint32_t>, double> lastReading;
  std::set<Uuid> done;
  double spent = 0;
  for (const ServiceLog& log : demo.logs) {
    EXPECT_TRUE(ids.insert(log.id).second) << log.taskTitle;
    EXPECT_LE(log.completedDate, now);
    EXPECT_FALSE(log.technicianNotes.empty()) << log.taskTitle;
    EXPECT_FALSE(log.completedBy.empty()) << log.taskTitle;
    const MaintenanceTask& task = *tasks.at(log.taskID);
    done.insert(task.id);
    spent += totalCost(log).value_or(0);
    // Latest first: what a meter showed never rises on the way back.
    const auto [reading, isFirst] = lastReading.try_emplace({log.vesselID, task.hourSource.order()},
                                                            vessels.at(log.vesselID)->reading(task.hourSource));
    EXPECT_LE(log.engineHoursAtService, reading->second) << log.taskTitle;
    reading->second = log.engineHoursAtService;
  }
  EXPECT_GT(spent, 20'000);
  for (const MaintenanceTask& task : demo.tasks)
    if (task.kind == TaskKind::plannedMaintenance || task.isCompleted)
      EXPECT_TRUE(done.contains(task.id)) << task.title;
  EXPECT_LT(demo.logs.back().completedDate, now - 24h * 365 * 3);
}

TEST(DemoFleet, HasValidParticularsAndTablesThatName) {
  for (const demo::Yacht& yacht : demo::yachts()) {
    if (!yacht.profile.imoNumber.empty()) EXPECT_TRUE(ImoNumber::parse(yacht.profile.imoNumber)) << yacht.vessel.name;
    EXPECT_TRUE(Mmsi::parse(yacht.profile.mmsi)) << yacht.vessel.name;
    EXPECT_TRUE(TimeZoneName::parse(yacht.profile.timeZone)) << yacht.vessel.name;
    for (const auto title : yacht.notAboard) EXPECT_NE(templateTitled(title), nullptr) << title;
  }
  const auto isYacht = [](std::string_view name) {
    return std::ranges::any_of(demo::yachts(), [&](const demo::Yacht& yacht) { return yacht.vessel.name == name; });
  };
  for (const demo::SetJob& job : demo::setJobs()) {
    const TaskTemplate* made = templateTitled(job.title);
    ASSERT_NE(made, nullptr) << job.title;
    EXPECT_EQ(made->title, job.title);
    EXPECT_TRUE(isYacht(job.vessel));
  }
  for (const demo::OwnJob& job : demo::ownJobs()) EXPECT_TRUE(isYacht(job.vessel)) << job.title;
  for (const demo::Defect& defect : demo::defects()) EXPECT_TRUE(isYacht(defect.vessel)) << defect.title;
}

}  // namespace
}  // namespace thalvorn
