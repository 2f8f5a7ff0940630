#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>

#include "testing.h"

namespace thalvorn {
namespace {

const std::string kUser = "0b8f2a52-9df4-4c5e-9a0a-5d1f7a3c9e11";

/// The store of a signed-in user.
class Exchange : public testing::Test {
 protected:
  Exchange() { open(); }

  void open() {
    model.reset();
    cache.reset();
    cache = LocalCache::open(std::filesystem::path(folder.path().toStdString()) / "store.sqlite").value();
    model = std::make_unique<AppViewModel>(*cache, clock);
    model->reloadNow(kUser);
  }
  void fold() {
    ASSERT_TRUE(waitForDone([&](LocalCache::Done done) { cache->foldNow(std::move(done)); }));
  }
  MaintenanceTask addTask(const std::string& title) {
    MaintenanceTask task{.id = Uuid::random(), .vesselID = vessel, .title = title};
    EXPECT_TRUE(waitFor(model->add(task)));
    return task;
  }
  /// The only task that waits.
  Unsent<MaintenanceTask> waiting() {
    const auto all = model->unsent<MaintenanceTask>();
    EXPECT_EQ(all.size(), 1U);
    return all.empty() ? Unsent<MaintenanceTask>{} : all.front();
  }
  void upload(const MaintenanceTask& task) {
    model->markUploaded<MaintenanceTask>({{.id = task.id, .upTo = waiting().revision, .record = task}});
    cache->flush();
  }

  QTemporaryDir folder;
  FixedClock clock{*parseTimestamp("2026-11-21T09:40:00Z")};
  Uuid vessel = Uuid::random();
  std::unique_ptr<LocalCache> cache;
  std::unique_ptr<AppViewModel> model;
};

TEST_F(Exchange, KnowsWhatWaitsAndSinceWhichStateAfterARestart) {
  MaintenanceTask task = addTask("Oil");
  EXPECT_FALSE(waiting().base) << "made here";
  upload(task);
  EXPECT_EQ(model->dirtyCount(), 0);

  const MaintenanceTask known = task;
  task.title = "Oil change";
  ASSERT_TRUE(waitFor(model->update(task)));
  task.priority = TaskPriority::high;  // lies in the side entry
  ASSERT_TRUE(waitFor(model->update(task)));
  for (const bool folded : {false, true}) {
    if (folded) fold();
    open();
    const auto unsent = waiting();
    EXPECT_EQ(unsent.base, known) << folded;
    EXPECT_EQ(unsent.current, task);
    EXPECT_EQ(model->dirtyCount(), 1);
  }
  ASSERT_TRUE(waitFor(model->remove<MaintenanceTask>(task.id)));
  EXPECT_EQ(waiting().base, known);
  EXPECT_FALSE(waiting().current);
}

TEST_F(Exchange, AnEditMadeDuringTheUploadStaysMarkedOnTopOfWhatWasSent) {
  MaintenanceTask task = addTask("Oil");
  const Revision sentUpTo = waiting().revision;
  const MaintenanceTask sent = task;
  task.title = "Oil change";
  ASSERT_TRUE(waitFor(model->update(task)));
  model->markUploaded<MaintenanceTask>({{.id = task.id, .upTo = sentUpTo, .record = sent}});
  EXPECT_EQ(waiting().base, sent);
  cache->flush();
  open();
  EXPECT_EQ(waiting().base, sent);
}

TEST_F(Exchange, TakesWhatTheBackendHoldsWithoutMarkingOrUndoingIt) {
  MaintenanceTask theirs{.id = Uuid::random(), .vesselID = vessel, .title = "From ashore", .kind = TaskKind::warranty};
  ASSERT_TRUE(
      waitFor(model->takeFromBackend<MaintenanceTask>({{.id = theirs.id, .theirs = theirs, .merged = theirs}})));
  EXPECT_EQ(model->dirtyCount(), 0);
  EXPECT_TRUE(model->undoable().empty());
  open();
  ASSERT_TRUE(model->tasks().find(theirs.id));
  EXPECT_EQ(*model->tasks().find(theirs.id), theirs);
  EXPECT_EQ(model->dirtyCount(), 0);
  ASSERT_TRUE(waitFor(model->takeFromBackend<MaintenanceTask>({{.id = theirs.id, .theirs = {}, .merged = {}}})));
  EXPECT_TRUE(model->tasks().empty());
}

TEST_F(Exchange, TakesPageAfterPageWhileTheyAreSavedAndNothingBesideAnUnsavedEdit) {
  int told = 0;
  QObject::connect(model.get(), &AppViewModel::edited, model.get(),
                   [&](const Edit& edit) { told += static_cast<int>(edit.changes.size()); });
  constexpr int kRows = 300;
  const auto page = [&](const std::string& title) {
    std::vector<FromBackend<MaintenanceTask>> rows;
    for (int i = 0; i < kRows; ++i) {
      const MaintenanceTask task{.id = Uuid::random(), .vesselID = vessel, .title = title, .kind = TaskKind::warranty};
      rows.push_back({.id = task.id, .theirs = task, .merged = task});
    }
    return model->takeFromBackend<MaintenanceTask>(std::move(rows));
  };
  const Saving first = page("First");
  const Saving second = page("Second");
  EXPECT_EQ(model->unsavedCount(), 2);
  EXPECT_EQ(model->unsavedEdits(), 0);
  EXPECT_EQ(told, 2 * kRows) << "every record, though not all in one edit";
  MaintenanceTask mine = model->tasks()[0];
  mine.title = "Mine";
  const Saving edit = model->update(mine);
  EXPECT_EQ(model->unsavedEdits(), 1);
  EXPECT_FALSE(waitFor(page("Third"))) << "it is not known yet what waits";
  ASSERT_TRUE(waitFor(model->everythingSaved()));
  EXPECT_TRUE(first.isFinished() && second.isFinished() && edit.isFinished());
  EXPECT_EQ(waiting().base->title, "First");
  ASSERT_TRUE(model->unsent<MaintenanceTask>(mine.id));
  EXPECT_EQ(model->unsent<MaintenanceTask>(mine.id)->current, mine);
  EXPECT_FALSE(model->unsent<MaintenanceTask>(model->tasks()[1].id));
  ASSERT_TRUE(waitFor(page("Third")));
  const std::vector<MaintenanceTask> all(model->tasks().records().begin(), model->tasks().records().end());
  open();
  EXPECT_TRUE(std::ranges::equal(all, model->tasks().records()));
}

TEST_F(Exchange, AMergedRecordWaitsOnTopOfTheirsAndAnEqualOneNoLonger) {
  MaintenanceTask task = addTask("Oil");
  upload(task);
  task.notes = "mine";
  ASSERT_TRUE(waitFor(model->update(task)));
  MaintenanceTask theirs = task;
  theirs.notes = "";
  theirs.title = "Theirs";
  MaintenanceTask merged = theirs;
  merged.notes = "mine";
  ASSERT_TRUE(waitFor(model->takeFromBackend<MaintenanceTask>({{.id = task.id, .theirs = theirs, .merged = merged}})));
  for (const bool reopened : {false, true}) {
    if (reopened) {
      cache->flush();
      open();
    }
    EXPECT_EQ(waiting().base, theirs) << reopened;
    EXPECT_EQ(waiting().current, merged);
  }
  ASSERT_TRUE(waitFor(model->takeFromBackend<MaintenanceTask>({{.id = task.id, .theirs = theirs, .merged = theirs}})));
  EXPECT_EQ(model->dirtyCount(), 0);
  cache->flush();
  fold();
  open();
  EXPECT_EQ(model->dirtyCount(), 0) << "no earlier edit of it comes back as waiting";
}

TEST_F(Exchange, AMemberChangesOnlyWhatHisRoleAllows) {
  const MaintenanceTask task = addTask("Oil");
  AccountMember member{.id = Uuid::random(), .accountId = Uuid::random(), .name = "Ben", .role = TeamRole::editor};
  member.moduleOverrides[AppTabPermissionKey::tasks] = ModuleAccess::readOnly;
  model->setMembership(member);
  EXPECT_FALSE(waitFor(model->remove<MaintenanceTask>(task.id)));
  EXPECT_TRUE(waitFor(model->add(CalendarEvent{.id = Uuid::random(), .vesselID = vessel, .title = "Charter"})));
  CrewMember steward;
  steward.id = Uuid::random();
  steward.vesselID = vessel;
  member.moduleOverrides[AppTabPermissionKey::crewDocs] = ModuleAccess::hidden;
  model->setMembership(member);
  EXPECT_TRUE(waitFor(model->add(steward)));
  steward.passportNumber = "X1";
  EXPECT_FALSE(waitFor(model->update(steward)));
  member.role = TeamRole::viewOnly;
  model->setMembership(member);
  EXPECT_FALSE(waitFor(model->add(CalendarEvent{.id = Uuid::random(), .vesselID = vessel})));
  EXPECT_FALSE(model->rights(AppTabPermissionKey::admin).read);
  EXPECT_TRUE(model->rights(AppTabPermissionKey::calendar).read);
}

}  // namespace
}  // namespace thalvorn
