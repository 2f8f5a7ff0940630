#include <gtest/gtest.h>

#include <QFile>
#include <QQmlEngine>
#include <QQuickItem>
#include <QTemporaryDir>
#include <QTest>

#include "app/composition.h"
#include "app/maintenance/maintenance_controller.h"
#include "app/preview/report_desk.h"
#include "core/task_csv_import.h"

namespace thalvorn::app {
namespace {

/// The program's window over the demo fleet, worked by keys alone.
class MaintenanceScreens : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    prepareApplication();
    composition_ = new Composition(Options{.demo = true, .selfTest = true, .size = QSize(1366, 768)});
    ASSERT_TRUE(composition_->claimStore());
    ASSERT_TRUE(composition_->show());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(composition_->window()));
    composition_->window()->requestActivate();
  }
  static void TearDownTestSuite() {
    delete composition_;
    composition_ = nullptr;
  }
  void SetUp() override {
    composition_->app().open(QStringLiteral("maintenance"));
    settle();
    press(Qt::Key_Escape);
    maintenance().board()->widen();
    maintenance().board()->setGrouped(false);
    maintenance().board()->setSort(QStringLiteral("due"));
    settle();
    table()->forceActiveFocus();
    press(Qt::Key_Home);
  }

  static QQuickWindow* window() { return composition_->window(); }
  static MaintenanceController& maintenance() { return composition_->maintenance(); }
  static TaskListModel& board() { return *maintenance().board(); }
  static int count(const char* status) { return maintenance().counts().value(QLatin1String(status)).toInt(); }
  static QQuickItem* table() {
    auto* page = window()->property("shownPage").value<QQuickItem*>();
    return page ? page->findChild<QQuickItem*>(QStringLiteral("taskView")) : nullptr;
  }
  static void settle() {
    for (int round = 0; round < 8; ++round) {
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
      QCoreApplication::processEvents();
    }
  }
  static void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(window(), static_cast<Qt::Key>(key), modifiers);
    settle();
  }
  static void type(const char* text) {
    for (; *text; ++text) QTest::keyClick(window(), *text);
    settle();
  }
  static QString titleAt(int row) { return board().index(row, 0).data(Qt::DisplayRole).toString(); }

  static inline Composition* composition_ = nullptr;
};

TEST_F(MaintenanceScreens, ATaskIsCompletedByKeysAndComesBackByUndo) {
  const int overdue = count("overdue");
  const QString id = board().idAt(0);
  ASSERT_GT(overdue, 0);
  press(Qt::Key_Space);
  type("\t");
  press(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(count("overdue"), overdue - 1);
  EXPECT_NE(board().idAt(0), id);
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(count("overdue"), overdue);
  EXPECT_EQ(board().idAt(0), id);
}

TEST_F(MaintenanceScreens, WhatWasTypedIsNotLostByEscape) {
  const int overdue = count("overdue");
  press(Qt::Key_C);
  press(Qt::Key_Tab);
  type("Ana");
  press(Qt::Key_Escape);  // asks
  press(Qt::Key_Return);  // "Keep editing" has the focus
  EXPECT_FALSE(window()->close()) << "nor by closing the window";
  settle();
  press(Qt::Key_Return);  // "Stay" has the focus
  press(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(count("overdue"), overdue - 1);
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(count("overdue"), overdue);
}

TEST_F(MaintenanceScreens, DeletingGoesOnToTheNextTaskAndCanBeUndone) {
  const int total = board().total();
  const QString second = board().idAt(1);
  press(Qt::Key_Delete);
  EXPECT_EQ(board().total(), total - 1);
  EXPECT_EQ(board().idAt(0), second);
  EXPECT_EQ(table()->property("currentIndex").toInt(), 0);
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(board().total(), total);
}

TEST_F(MaintenanceScreens, ASnoozeIsSetByKeysAndLeavesTheCount) {
  const int overdue = count("overdue");
  const int snoozed = count("snoozed");
  press(Qt::Key_S);
  press(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(count("overdue"), overdue - 1);
  EXPECT_EQ(count("snoozed"), snoozed + 1);
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(count("snoozed"), snoozed);
}

TEST_F(MaintenanceScreens, SearchNarrowsTheBoardAndDownLeavesToIt) {
  const int total = board().total();
  press(Qt::Key_F, Qt::ControlModifier);
  type("fire extinguisher");
  press(Qt::Key_Return);
  EXPECT_LT(board().total(), total);
  ASSERT_GT(board().total(), 0);
  EXPECT_TRUE(titleAt(0).contains(QStringLiteral("extinguisher"), Qt::CaseInsensitive));
  press(Qt::Key_Down);
  EXPECT_TRUE(table()->hasActiveFocus());
  press(Qt::Key_F, Qt::ControlModifier);
  press(Qt::Key_Escape);
  EXPECT_EQ(board().total(), total);
}

TEST_F(MaintenanceScreens, ANewTaskIsRefusedWithoutATitleAndThenAdded) {
  const int open = count("open");
  press(Qt::Key_N, Qt::ControlModifier);
  press(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(count("open"), open);
  type("Davit wire check");
  press(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(count("open"), open) << "no due date yet";
  press(Qt::Key_Escape);
  press(Qt::Key_Tab);
  press(Qt::Key_Return);  // "Discard"
  settle();
  EXPECT_EQ(count("open"), open);
}

TEST_F(MaintenanceScreens, TheBoardIsPrintedAndExportedAsItIsShown) {
  auto* reports = qmlEngine(window())->singletonInstance<ReportDesk*>(qmlTypeId("Thalvorn", 1, 0, "Reports"));
  board().setKind(QStringLiteral("squawk"));
  settle();
  ASSERT_GT(board().total(), 0);
  press(Qt::Key_P, Qt::ControlModifier);
  EXPECT_EQ(composition_->app().page(), QStringLiteral("report"));
  EXPECT_EQ(reports->report(), QStringLiteral("workList"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return reports->pageCount() > 0; }));
  press(Qt::Key_Escape);
  EXPECT_EQ(composition_->app().page(), QStringLiteral("maintenance"));

  const QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("tasks.csv"));
  reports->exportWorkList(&board(), QUrl::fromLocalFile(path));
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const TaskCsvPreview preview = previewTaskCsv(csvTextFromBytes(file.readAll().toStdString()), Calendar::utc());
  EXPECT_EQ(preview.valid, static_cast<std::size_t>(board().total()));
  EXPECT_EQ(preview.skipped, 0u);
}

TEST_F(MaintenanceScreens, HeadingsFoldByKeys) {
  board().setGrouped(true);
  settle();
  const int rows = board().rowCount();
  table()->forceActiveFocus();
  press(Qt::Key_Home);
  press(Qt::Key_Left);
  EXPECT_LT(board().rowCount(), rows);
  press(Qt::Key_Right);
  EXPECT_EQ(board().rowCount(), rows);
}

}  // namespace
}  // namespace thalvorn::app
