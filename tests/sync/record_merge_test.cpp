#include "sync/record_merge.h"

#include <gtest/gtest.h>

#include "compliance/account_member.h"
#include "core/maintenance_task.h"
#include "core/vessel.h"
#include "records/yard_period.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;

const Timestamp kNoon{1'700'000'000s};
const MergeSide kAda{kNoon + 60s, "ada"};
const MergeSide kBen{kNoon, "ben"};

MaintenanceTask task() {
  MaintenanceTask task;
  task.id = Uuid::random();
  task.title = "Impeller";
  task.notes = "spare in locker 3";
  task.photoPaths = {"a.jpg", "b.jpg"};
  return task;
}

TEST(RecordMerge, KeepsWhatEachSideChangedAndTellsWhatBothChanged) {
  const MaintenanceTask base = task();
  MaintenanceTask ada = base;
  MaintenanceTask ben = base;
  ada.notes = "spare used";
  ada.title = "Impeller, port";
  ada.photoPaths = {"b.jpg", "ada.jpg"};
  ben.dueDate = kNoon;
  ben.title = "Raw water impeller";
  ben.photoPaths = {"a.jpg", "b.jpg", "ben.jpg"};

  const auto merge = mergeRecords(&base, ada, kAda, ben, kBen);
  EXPECT_EQ(merge.record.notes, "spare used");
  EXPECT_EQ(merge.record.dueDate, kNoon);
  EXPECT_EQ(merge.record.title, "Impeller, port") << "the later side";
  EXPECT_EQ(merge.record.photoPaths, (std::vector<std::string>{"b.jpg", "ben.jpg", "ada.jpg"}));
  EXPECT_EQ(merge.conflicts, std::vector<std::string>{"title"});
  EXPECT_TRUE(merge.mineKept);

  const auto otherWay = mergeRecords(&base, ben, kBen, ada, kAda);
  EXPECT_EQ(otherWay.record.title, merge.record.title);
  EXPECT_EQ(otherWay.conflicts, merge.conflicts);
  EXPECT_FALSE(otherWay.mineKept);
}

TEST(RecordMerge, DecidesTiesAlikeEverywhere) {
  const MaintenanceTask base = task();
  MaintenanceTask one = base;
  MaintenanceTask two = base;
  one.title = "A";
  two.title = "B";
  const MergeSide ada{kNoon, "ada"};
  const MergeSide ben{kNoon, "ben"};
  EXPECT_EQ(mergeRecords(&base, one, ada, two, ben).record.title, "B") << "the greater user id";
  EXPECT_EQ(mergeRecords(&base, two, ben, one, ada).record.title, "B");
  EXPECT_EQ(mergeRecords(&base, one, ada, two, ada).record.title, "B")
      << "one user on two computers: the greater value";
  EXPECT_EQ(mergeRecords(&base, two, ada, one, ada).record.title, "B");
  const auto without = mergeRecords<MaintenanceTask>(nullptr, one, ada, two, ben);
  EXPECT_EQ(without.conflicts, std::vector<std::string>{"title"});
}

TEST(RecordMerge, TakesTheHigherReadingOfAMeterUnlessOneSideCorrectedIt) {
  Vessel base;
  base.id = Uuid::random();
  base.engineHours = 1200;
  base.engine2Hours = 9000;
  Vessel ada = base;
  Vessel ben = base;
  ada.engineHours = 1210;
  ben.engineHours = 1250.5;
  ada.engine2Hours = 900;  // one zero too many was typed
  ben.engine2Hours = 9010;
  const auto merge = mergeRecords(&base, ada, kAda, ben, kBen);
  EXPECT_EQ(merge.record.engineHours, 1250.5);
  EXPECT_EQ(merge.record.engine2Hours, 900) << "a correction conflicts, and the later side stands";
  EXPECT_EQ(merge.conflicts, std::vector<std::string>{"engine2Hours"});
}

TEST(RecordMerge, MergesSubRecordsByElementAndMapsByKey) {
  YardPeriod base;
  base.id = Uuid::random();
  for (const char* title : {"Antifoul", "Shaft seal", "Teak"}) {
    WorkOrder order;
    order.id = Uuid::random();
    order.title = title;
    base.workOrders.push_back(order);
  }
  YardPeriod ada = base;
  YardPeriod ben = base;
  ada.workOrders[0].contractor = "Hullworks";
  ada.workOrders.erase(ada.workOrders.begin() + 2);
  ben.workOrders[0].notes = "two coats";
  ben.workOrders[2].notes = "aft deck only";
  ben.workOrders.erase(ben.workOrders.begin() + 1);
  WorkOrder added;
  added.id = Uuid::random();
  ben.workOrders.push_back(added);

  const auto merge = mergeRecords(&base, ada, kAda, ben, kBen);
  ASSERT_EQ(merge.record.workOrders.size(), 2U);
  EXPECT_EQ(merge.record.workOrders[0].contractor, "Hullworks");
  EXPECT_EQ(merge.record.workOrders[0].notes, "two coats");
  EXPECT_EQ(merge.record.workOrders[1].id, added.id);
  EXPECT_EQ(merge.conflicts, std::vector<std::string>{"workOrders/" + base.workOrders[2].id.toString() + "/"})
      << "taken out by one, changed by the other";
  // Whoever was later, the note keeps what was changed in it.
  for (const auto& either : {merge, mergeRecords(&base, ben, kBen, ada, kAda),
                             mergeRecords(&base, ada, kBen, ben, kAda), mergeRecords(&base, ben, kAda, ada, kBen)}) {
    const auto kept = std::ranges::find(either.lost.workOrders, base.workOrders[2].id, &WorkOrder::id);
    ASSERT_NE(kept, either.lost.workOrders.end());
    EXPECT_EQ(kept->notes, "aft deck only");
  }

  AccountMember member;
  member.id = Uuid::random();
  member.moduleOverrides[AppTabPermissionKey::crew] = ModuleAccess::hidden;
  AccountMember mine = member;
  AccountMember theirs = member;
  mine.moduleOverrides.clear();
  theirs.moduleOverrides[AppTabPermissionKey::ism] = ModuleAccess::readOnly;
  const auto rights = mergeRecords(&member, mine, kAda, theirs, kBen).record.moduleOverrides;
  EXPECT_EQ(rights.size(), 1U);
  EXPECT_TRUE(rights.contains(AppTabPermissionKey::ism));
}

}  // namespace
}  // namespace thalvorn
