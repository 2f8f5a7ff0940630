// The command line handing its commands to the window that holds the store: a real thalvorn-cli beside a store that is
// held by this process.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "cli/window_commands.h"
#include "platform/store_access.h"

namespace thalvorn {
namespace {

using testing::HasSubstr;

constexpr int kLongEnough = 60'000;

struct Answer {
  int exit = -1;
  std::string out;
  std::string err;
};

/// A window: the store's owner with records in view.
class WindowCommandsTest : public testing::Test {
 protected:
  void SetUp() override {
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder_.path()));
    auto claim = claimForWindow(file_);
    ASSERT_TRUE(claim && std::holds_alternative<std::unique_ptr<SingleInstance>>(*claim));
    instance_ = std::move(std::get<std::unique_ptr<SingleInstance>>(*claim));
    auto cache = LocalCache::open(file_.toStdString());
    ASSERT_TRUE(cache);
    cache_ = std::move(*cache);
    window_ = std::make_unique<AppViewModel>(*cache_, clock_);
    window_->reloadNow("local");
    commands_ = std::make_unique<cli::WindowCommands>(*window_);
    commands_->serve(*instance_);
  }

  /// Starts a command line in a process of its own.
  std::unique_ptr<QProcess> start(const QStringList& words, const QByteArray& input = {}) {
    auto process = std::make_unique<QProcess>();
    process->setWorkingDirectory(folder_.path());
    process->start(QStringLiteral(THALVORN_CLI), QStringList{QStringLiteral("--store"), file_} + words);
    process->write(input);
    process->closeWriteChannel();
    return process;
  }

  static Answer finish(QProcess& process) {
    if (!QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, kLongEnough)) process.kill();
    return {process.exitCode(), process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
  }

  Answer run(const QStringList& words, const QByteArray& input = {}) { return finish(*start(words, input)); }

  Uuid addVessel(const char* name) {
    const Vessel vessel{.id = Uuid::random(), .name = name, .hasGenerator = false};
    Saving saving = window_->add(vessel);
    EXPECT_TRUE(QTest::qWaitFor([&] { return saving.isFinished(); }, kLongEnough));
    return vessel.id;
  }

  QTemporaryDir folder_;
  QString file_ = folder_.filePath(QStringLiteral("fleet.db"));
  FixedClock clock_{*parseTimestamp("2026-02-10T12:00:00Z"), Calendar::ofThisComputer()};
  std::unique_ptr<SingleInstance> instance_;
  std::unique_ptr<LocalCache> cache_;
  std::unique_ptr<AppViewModel> window_;
  std::unique_ptr<cli::WindowCommands> commands_;
};

TEST_F(WindowCommandsTest, AnEditIsAtOnceInTheWindowOnDiskAndCanBeUndone) {
  const Uuid vessel = addVessel("M/Y Meridian");
  const QSignalSpy edited(window_.get(), &AppViewModel::edited);
  const Answer put = run({QStringLiteral("put"), QStringLiteral("tasks")},
                         QByteArray::fromStdString(R"({"title":"Oil","dueDate":"2026-02-01T12:00:00Z","vesselID":")" +
                                                   vessel.toString() + "\"}"));
  EXPECT_EQ(put.exit, 0) << put.err;
  ASSERT_EQ(window_->tasks().size(), 1U);
  EXPECT_EQ(put.out, toJson(window_->tasks()[0], JsonFields::full) + "\n");
  EXPECT_EQ(edited.size(), 1);
  EXPECT_EQ(window_->unsavedCount(), 0);

  const Answer board = run({QStringLiteral("board"), QStringLiteral("--json")});
  EXPECT_THAT(board.out, HasSubstr(R"({"overdue":1,)"));
  const Answer complete = run({QStringLiteral("complete"), QString::fromStdString(window_->tasks()[0].id.toString())});
  EXPECT_EQ(complete.exit, 0) << complete.err;
  EXPECT_EQ(window_->logs().size(), 1U);
  window_->undo(window_->undoable().back().id);
  EXPECT_TRUE(window_->logs().empty());

  const Answer refused = run({QStringLiteral("delete"), QStringLiteral("tasks"), QStringLiteral("nonsense")});
  EXPECT_EQ(refused.exit, 1);
  EXPECT_EQ(refused.err.rfind("thalvorn-cli: “nonsense” is not an identifier", 0), 0U) << refused.err;
  const Answer misused = run({QStringLiteral("board"), QStringLiteral("--sort"), QStringLiteral("age")});
  EXPECT_EQ(misused.exit, 2);
  EXPECT_THAT(misused.err, HasSubstr("usage: thalvorn-cli board"));
}

TEST_F(WindowCommandsTest, OtherUsersRecordsChangeBesideTheWindowsOwn) {
  addVessel("Here");
  constexpr int together = 4;
  std::vector<std::unique_ptr<QProcess>> processes;
  processes.reserve(together);
  for (int i = 0; i < together; ++i) {
    processes.push_back(
        start({QStringLiteral("--user"), QStringLiteral("u1"), QStringLiteral("put"), QStringLiteral("vessels")},
              QStringLiteral("{\"name\":\"There %1\"}").arg(i).toUtf8()));
  }
  for (const auto& process : processes) EXPECT_EQ(finish(*process).exit, 0);
  EXPECT_EQ(window_->prefix(), "local");
  ASSERT_EQ(window_->vessels().size(), 1U);
  AppViewModel other(*cache_, clock_);
  other.reloadNow("u1");
  EXPECT_EQ(other.vessels().size(), 4U);
  const Answer demo = run({QStringLiteral("demo")});
  EXPECT_THAT(demo.out, HasSubstr("3 vessels"));
  EXPECT_EQ(window_->vessels()[0].name, "Here");
}

TEST_F(WindowCommandsTest, AnEditAsOfAnotherTimeShowsInTheWindow) {
  const Uuid vessel = addVessel("M/Y Meridian");
  const Answer raised = run({QStringLiteral("--at"), QStringLiteral("2026-01-05T08:00:00Z"), QStringLiteral("meters"),
                             QStringLiteral("mer"), QStringLiteral("engine=12.5"), QStringLiteral("--json")});
  EXPECT_EQ(raised.exit, 0) << raised.err;
  EXPECT_EQ(window_->vessels().find(vessel)->engineHours, 12.5);
  EXPECT_EQ(window_->vessels().find(vessel)->engineHoursUpdatedAt, parseTimestamp("2026-01-05T08:00:00Z"));
}

TEST_F(WindowCommandsTest, TheFileIsKeptUpWhileInUseButNotReplaced) {
  addVessel("M/Y Meridian");
  EXPECT_EQ(run({QStringLiteral("check")}).exit, 0);
  const Answer backup = run({QStringLiteral("backup"), QStringLiteral("copy.db")});
  EXPECT_EQ(backup.exit, 0) << backup.err;
  EXPECT_TRUE(QFile::exists(folder_.filePath(QStringLiteral("copy.db"))));
  const Answer restore = run({QStringLiteral("restore"), QStringLiteral("copy.db")});
  EXPECT_EQ(restore.exit, 1);
  EXPECT_THAT(restore.err, HasSubstr("Close the window first"));
}

TEST_F(WindowCommandsTest, ACommandThatFindsTheWindowGoneWorksOnTheStoreItself) {
  addVessel("M/Y Meridian");
  commands_.reset();
  window_.reset();
  cache_.reset();
  instance_.reset();
  EXPECT_THAT(run({QStringLiteral("list"), QStringLiteral("vessels")}).out, HasSubstr("M/Y Meridian"));
}

}  // namespace
}  // namespace thalvorn

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
