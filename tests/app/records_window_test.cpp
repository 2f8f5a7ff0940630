#include <gtest/gtest.h>

#include <QAbstractItemModel>
#include <QTest>

#include "app/window.h"

namespace thalvorn::app {
namespace {

/// The open tasks that the list of vessels counts, of all of them.
int openTasks(QObject* vessels) {
  const auto* list = qobject_cast<QAbstractItemModel*>(vessels);
  int sum = 0;
  for (int row = 0; row < list->rowCount(); ++row)
    sum += list->index(row, 0).data(list->roleNames().key("tasks")).toInt();
  return sum;
}

TEST_F(Window, TasksAreImportedByKeysAlone) {
  QObject* vessels = controller("VesselList");
  QObject* import = controller("TaskImport");
  const int before = openTasks(vessels);
  press(Qt::Key_I, Qt::ControlModifier);
  EXPECT_EQ(app().page(), QStringLiteral("importTasks"));
  type(QStringLiteral("title,category"));
  press(Qt::Key_Return);
  type(QStringLiteral("Bow thruster service,Electrical"));
  press(Qt::Key_Return);
  type(QStringLiteral(",Electrical"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return import->property("canImport").toBool(); }));
  EXPECT_EQ(import->property("importText").toString(), QStringLiteral("Import 1 tasks"));
  EXPECT_EQ(import->property("skippedText").toString(), QStringLiteral("1 skipped"));
  press(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(app().page(), QStringLiteral("taskLibrary"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return openTasks(vessels) == before + 1; }));
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(QTest::qWaitFor([&] { return openTasks(vessels) == before; }));
}

TEST_F(Window, AVesselGoesOnlyAfterHerNameIsTypedAndComesBackWhole) {
  QObject* vessels = controller("VesselList");
  const auto count = [&] { return vessels->property("count").toInt(); };
  const int before = count();
  const int tasks = openTasks(vessels);
  ASSERT_GT(tasks, 0);
  app().open(QStringLiteral("vessels"));
  settle();
  auto* list = qobject_cast<QAbstractItemModel*>(vessels);
  const QString name = list->index(0, 0).data(list->roleNames().key("name")).toString();
  press(Qt::Key_Home);
  press(Qt::Key_Delete);
  type(QStringLiteral("another"));
  press(Qt::Key_Tab);
  press(Qt::Key_Tab);
  press(Qt::Key_Return);
  EXPECT_EQ(count(), before) << "the name is not hers";
  press(Qt::Key_Escape);
  press(Qt::Key_Delete);
  type(name.toLower());
  press(Qt::Key_Tab);
  press(Qt::Key_Tab);
  press(Qt::Key_Return);
  ASSERT_TRUE(QTest::qWaitFor([&] { return count() == before - 1; }));
  press(Qt::Key_Z, Qt::ControlModifier);
  ASSERT_TRUE(QTest::qWaitFor([&] { return count() == before; }));
  EXPECT_TRUE(QTest::qWaitFor([&] { return openTasks(vessels) == tasks; }));
  EXPECT_EQ(controller("Fleet")->property("selectedVessel").toMap().value(QStringLiteral("name")).toString(), name);
}

TEST_F(Window, ATemplateIsChosenAndAddedByKeys) {
  QObject* vessels = controller("VesselList");
  QObject* library = controller("TemplateLibrary");
  const int before = openTasks(vessels);
  press(Qt::Key_T, Qt::ControlModifier);
  EXPECT_EQ(app().page(), QStringLiteral("templateLibrary"));
  press(Qt::Key_F, Qt::ControlModifier);
  type(QStringLiteral("antifouling"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return library->property("search").toString() == u"antifouling"; }));
  settle();
  press(Qt::Key_Down);
  press(Qt::Key_Down);
  press(Qt::Key_Space);
  EXPECT_EQ(library->property("chosenText").toString(), QStringLiteral("1 selected"));
  press(Qt::Key_N, Qt::ControlModifier);
  EXPECT_TRUE(QTest::qWaitFor([&] { return openTasks(vessels) == before + 1; }));
  EXPECT_EQ(library->property("chosenText").toString(), QStringLiteral("0 selected"));
}

TEST_F(Window, AServiceIsFoundByItsWordsAndItsSheetAsksBeforeItLosesText) {
  QObject* history = controller("ServiceHistory");
  app().open(QStringLiteral("serviceHistory"));
  settle();
  auto* model = history->property("model").value<QObject*>();
  ASSERT_TRUE(model);
  const int services = model->property("count").toInt();
  press(Qt::Key_F, Qt::ControlModifier);
  type(QStringLiteral("impeller"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return model->property("count").toInt() < services; }));
  ASSERT_GT(model->property("count").toInt(), 0);
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  const QQuickItem* field = window()->activeFocusItem();
  ASSERT_TRUE(field && field->property("text").toString().contains(u"impeller", Qt::CaseInsensitive));
  type(QStringLiteral("Changed"));
  press(Qt::Key_Escape);
  EXPECT_NE(window()->activeFocusItem(), field) << "the question has the keyboard";
  press(Qt::Key_Escape);
  EXPECT_EQ(field->property("text").toString(), QStringLiteral("Changed")) << "the sheet is still there";
  press(Qt::Key_Escape);
  press(Qt::Key_Tab);
  press(Qt::Key_Return);
  QMetaObject::invokeMethod(model, "clearFilters");
  EXPECT_EQ(model->property("count").toInt(), services);
}

}  // namespace
}  // namespace thalvorn::app
