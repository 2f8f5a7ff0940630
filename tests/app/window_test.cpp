#include <gtest/gtest.h>

#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>
#include <memory>

#include "app/window.h"

namespace thalvorn::app {
namespace {

/// A model of `count` records in categories of ten.
std::unique_ptr<QStandardItemModel> manyRecords(int count) {
  auto model = std::make_unique<QStandardItemModel>();
  model->setItemRoleNames({{Qt::UserRole, "id"}, {Qt::UserRole + 1, "title"}, {Qt::UserRole + 2, "category"}});
  for (int row = 0; row < count; ++row) {
    auto* item = new QStandardItem;
    item->setData(row, Qt::UserRole);
    item->setData(QStringLiteral("Task %1").arg(row), Qt::UserRole + 1);
    item->setData(QStringLiteral("Category %1").arg(row / 10), Qt::UserRole + 2);
    model->appendRow(item);
  }
  return model;
}

TEST_F(Window, OpensPagesByNumberAndGoesBack) {
  press(Qt::Key_2, Qt::ControlModifier);
  EXPECT_EQ(app().page(), QStringLiteral("maintenance"));
  press(Qt::Key_8, Qt::ControlModifier);
  EXPECT_EQ(app().page(), QStringLiteral("shipsLog"));
  press(Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(app().page(), QStringLiteral("maintenance"));
}

TEST_F(Window, FindsAPageByTypingAndOpensItWithEnter) {
  press(Qt::Key_K, Qt::ControlModifier);
  type(QStringLiteral("recurr"));
  ASSERT_TRUE(QTest::qWaitFor([] {
    auto* search =
        qmlEngine(composition_->window())->singletonInstance<QObject*>(qmlTypeId("Thalvorn", 1, 0, "Search"));
    return search && search->property("words").toString() == u"recurr";
  }));
  press(Qt::Key_Return);
  EXPECT_EQ(app().page(), QStringLiteral("recurringTasks"));
  press(Qt::Key_K, Qt::ControlModifier);
  press(Qt::Key_Escape);
  EXPECT_EQ(app().page(), QStringLiteral("recurringTasks"));
  press(Qt::Key_K, Qt::ControlModifier);
  press(Qt::Key_Down);
  press(Qt::Key_Down);
  press(Qt::Key_Up);
  press(Qt::Key_Return);
  EXPECT_EQ(app().page(), QStringLiteral("maintenance")) << "it began anew, and the arrows chose the second page";
}

TEST_F(Window, AMenuCommandReachesThePageInView) {
  QSignalSpy posted(&app(), &AppController::notification);
  press(Qt::Key_N, Qt::ControlModifier);
  ASSERT_EQ(posted.count(), 1);
  EXPECT_EQ(posted.first().first().toString(), QStringLiteral("newRecord"));
  press(Qt::Key_Escape);
}

TEST_F(Window, TheMenuBarIsWorkedByKeys) {
  QSignalSpy posted(&app(), &AppController::notification);
  press(Qt::Key_L, Qt::AltModifier);
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  ASSERT_EQ(posted.count(), 1) << "Alt+L opens the fleet's menu, whose first line is chosen";
  EXPECT_EQ(posted.first().first().toString(), QStringLiteral("openManageVessels"));
  EXPECT_EQ(app().page(), QStringLiteral("vessels"));
}

TEST_F(Window, TheTableIsWorkedByKeysAndFolds) {
  const auto records = manyRecords(40);
  QQuickItem* table = make(R"(DataTable {
    property var source: null
    property string opened
    width: 600; height: 400
    model: GroupedRows { groupRole: "category" }
    onSourceChanged: model.source = source
    onActivated: (row) => opened = row.title
    TableColumn { title: "Task"; role: "title" }
  })");
  ASSERT_TRUE(table);
  table->setProperty("source", QVariant::fromValue<QObject*>(records.get()));
  settle();
  const auto count = [&] { return table->property("count").toInt(); };
  const auto chosen = [&] { return table->property("selectedId"); };
  EXPECT_EQ(count(), 44);
  QMetaObject::invokeMethod(table, "focusList");
  press(Qt::Key_Home);
  press(Qt::Key_Left);
  EXPECT_EQ(count(), 34) << "Left folds the heading";
  press(Qt::Key_Down);
  press(Qt::Key_Down);
  EXPECT_EQ(chosen(), 10) << "the first record of the second group";
  press(Qt::Key_Return);
  EXPECT_EQ(table->property("opened"), QStringLiteral("Task 10"));
  press(Qt::Key_End);
  EXPECT_EQ(chosen(), 39);
  press(Qt::Key_Home);
  press(Qt::Key_Right);
  EXPECT_EQ(count(), 44);
}

TEST_F(Window, ALongTableMakesOnlyTheRowsInSightAndKeepsItsPlace) {
  const auto records = manyRecords(100000);
  QQuickItem* table = make(R"(DataTable {
    width: 600; height: 600
    TableColumn { title: "Task"; role: "title" }
  })");
  ASSERT_TRUE(table);
  table->setProperty("model", QVariant::fromValue<QObject*>(records.get()));
  settle();
  auto* view = table->property("view").value<QQuickItem*>();
  ASSERT_TRUE(view);
  auto* content = view->property("contentItem").value<QQuickItem*>();
  ASSERT_TRUE(content);
  view->setProperty("contentY", 2000000);
  settle();
  EXPECT_GT(content->childItems().size(), 10);
  EXPECT_LT(content->childItems().size(), 60);
  records->item(5)->setData(QStringLiteral("Renamed"), Qt::UserRole + 1);
  settle();
  EXPECT_EQ(view->property("contentY").toInt(), 2000000);
}

TEST_F(Window, ASheetAsksBeforeItLosesWhatWasTyped) {
  QQuickItem* host = make(R"(Item {
    id: host
    property alias shown: sheet.opened
    property int saves: 0
    function show() { sheet.open(); }
    FormSheet {
      id: sheet
      title: "Test"
      onSaveRequested: ++host.saves
      TextInputField { label: "Name"; onEdited: sheet.dirty = true }
    }
  })");
  ASSERT_TRUE(host);
  QMetaObject::invokeMethod(host, "show");
  settle();
  ASSERT_TRUE(host->property("shown").toBool());
  type(QStringLiteral("x"));
  press(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(host->property("saves"), 1);
  press(Qt::Key_Escape);
  EXPECT_TRUE(host->property("shown").toBool()) << "it asks first";
  press(Qt::Key_Escape);
  EXPECT_TRUE(host->property("shown").toBool()) << "Escape keeps editing";
  press(Qt::Key_Escape);
  press(Qt::Key_Tab);
  press(Qt::Key_Return);
  EXPECT_FALSE(host->property("shown").toBool()) << "discarded";
}

TEST_F(Window, ASheetIsNotSavedWithADateThatCannotBeRead) {
  QQuickItem* host = make(R"(Item {
    id: host
    property alias shown: sheet.opened
    property int saves: 0
    function show() { sheet.open(); }
    FormSheet {
      id: sheet
      title: "Test"
      onSaveRequested: { ++host.saves; close(); }
      DateField { id: date; label: "Done on"; date: new Date(2026, 10, 21); onPicked: (day) => date.date = day }
    }
  })");
  ASSERT_TRUE(host);
  QMetaObject::invokeMethod(host, "show");
  settle();
  for (const char* typed : {"31 foo", " "}) {
    press(Qt::Key_A, Qt::ControlModifier);
    type(QString::fromLatin1(typed));
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(host->property("saves"), 0) << typed;
  }
  press(Qt::Key_A, Qt::ControlModifier);
  type(QStringLiteral("2 Jan 2027"));
  press(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(host->property("saves"), 1);
}

TEST_F(Window, AButtonKeepsItsWordsWhileItIsBusy) {
  QQuickItem* button = make("SecondaryButton { objectName: 'button'; text: 'Check store'; iconName: 'shield-check' }");
  ASSERT_TRUE(button);
  const double width = button->width();
  button->setProperty("busy", true);
  for (int frame = 0; frame < 5; ++frame) {
    window()->grabWindow();
    settle();
  }
  EXPECT_EQ(button->width(), width);
}

TEST_F(Window, FieldsWriteBackWhatIsTyped) {
  QQuickItem* host = make(R"(Column {
    property alias day: date.date
    property string number
    width: 300
    function start() { number_.forceFocus(); }
    NumberField { id: number_; label: "Hours"; text: "4,812.4"; decimals: 1; width: 200; onEdited: (text) => parent.number = text }
    DateField { id: date; label: "Day"; width: 200; onPicked: (day) => date.date = day }
  })");
  ASSERT_TRUE(host);
  QMetaObject::invokeMethod(host, "start");
  press(Qt::Key_Up);
  EXPECT_EQ(host->property("number"), QStringLiteral("4,813.4"));
  press(Qt::Key_Tab);
  type(QStringLiteral("2 Jan 2027"));
  press(Qt::Key_Return);
  EXPECT_EQ(host->property("day").toDateTime().date(), QDate(2027, 1, 2));
}

}  // namespace
}  // namespace thalvorn::app
