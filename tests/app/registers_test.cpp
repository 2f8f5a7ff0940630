#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "app/fleet_controller.h"
#include "app/registers/bunkering_controller.h"
#include "app/registers/gmdss_controller.h"
#include "app/registers/ships_log_controller.h"
#include "app/window.h"

namespace thalvorn::app {
namespace {

class RegisterPages : public Window {
 protected:
  template <class Controller>
  static Controller* of(const char* key) {
    QObject* found = nullptr;
    QMetaObject::invokeMethod(controller("Registers"), "of", Q_RETURN_ARG(QObject*, found),
                              Q_ARG(QString, QString::fromLatin1(key)));
    return qobject_cast<Controller*>(found);
  }
  static QString value(const QVariantMap& detail, const QString& key) {
    for (const QVariant& fact : detail.value(QStringLiteral("facts")).toList())
      if (fact.toMap().value(QStringLiteral("key")) == key)
        return fact.toMap().value(QStringLiteral("value")).toString();
    return {};
  }
  static QString firstId(RegisterModel* list) { return list->index(0, 0).data(list->roleNames().key("id")).toString(); }
  static void tab(int times) {
    for (int i = 0; i < times; ++i) press(Qt::Key_Tab);
  }
};

TEST_F(RegisterPages, ADeliveryIsEnteredByKeysAloneAndUndone) {
  auto* bunkering = of<BunkeringController>("bunkering");
  ASSERT_TRUE(bunkering);
  app().open(QStringLiteral("bunkering"));
  settle();
  RegisterModel* list = bunkering->model();
  const int before = list->total();
  press(Qt::Key_N, Qt::ControlModifier);
  press(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(list->total(), before) << "the quantity is missing";
  // The focus went to the quantity.
  type(QStringLiteral("100"));
  tab(1);
  type(QStringLiteral("4.5"));
  press(Qt::Key_S, Qt::ControlModifier);
  ASSERT_TRUE(QTest::qWaitFor([&] { return list->total() == before + 1; }));
  const QVariantMap added = bunkering->detail(firstId(list));
  EXPECT_EQ(value(added, QStringLiteral("quantityGallons")), QStringLiteral("100.0 gal"));
  EXPECT_EQ(value(added, QStringLiteral("totalCharge")), QStringLiteral("0.00")) << "never worked out";
  EXPECT_FALSE(value(added, QStringLiteral("vesselName")).isEmpty());
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(QTest::qWaitFor([&] { return list->total() == before; }));
}

TEST_F(RegisterPages, TheCalculatedTotalFollowsTheFormAndLeavesTheCharge) {
  auto* bunkering = of<BunkeringController>("bunkering");
  const std::unique_ptr<RecordSheet> sheet(qobject_cast<RecordSheet*>(bunkering->sheet({})));
  ASSERT_TRUE(sheet);
  auto* form = qobject_cast<RecordForm*>(sheet->formObject());
  EXPECT_EQ(bunkering->calculatedTotal(sheet.get()), QString());
  form->setText(QStringLiteral("currency"), QStringLiteral("EUR"));
  form->setText(QStringLiteral("quantityGallons"), QStringLiteral("100"));
  form->setText(QStringLiteral("pricePerGallon"), QStringLiteral("4.5"));
  form->setText(QStringLiteral("totalCharge"), QStringLiteral("480"));
  EXPECT_EQ(bunkering->calculatedTotal(sheet.get()), QStringLiteral("EUR 450.00"));
  EXPECT_EQ(form->value(QStringLiteral("totalCharge")).toDouble(), 480);
  form->setText(QStringLiteral("quantityGallons"), QStringLiteral("a lot"));
  EXPECT_FALSE(sheet->save());
  EXPECT_EQ(sheet->firstWrong(), QStringLiteral("quantityGallons"));
  sheet->discard();
}

TEST_F(RegisterPages, WhatWasEnteredSurvivesAFormThatWasTornDown) {
  auto* log = of<ShipsLogController>("shipsLog");
  const auto open = [&] { return std::unique_ptr<RecordSheet>(qobject_cast<RecordSheet*>(log->sheet({}))); };
  const auto port = [](RecordSheet& sheet) {
    return qobject_cast<RecordForm*>(sheet.formObject())->text(QStringLiteral("arrivalPort"));
  };
  {
    const auto sheet = open();
    ASSERT_TRUE(sheet && !sheet->restored());
    qobject_cast<RecordForm*>(sheet->formObject())->setText(QStringLiteral("arrivalPort"), QStringLiteral("Portofino"));
    auto* guests = qobject_cast<SubRecords*>(sheet->list(QStringLiteral("guests")));
    ASSERT_TRUE(guests);
    const int added = guests->add();
    qobject_cast<RecordForm*>(guests->forms()[added])->setText(QStringLiteral("name"), QStringLiteral("Zoë O’Hara"));
  }
  auto sheet = open();
  EXPECT_TRUE(sheet->restored());
  EXPECT_EQ(port(*sheet), QStringLiteral("Portofino"));
  auto* guests = qobject_cast<SubRecords*>(sheet->list(QStringLiteral("guests")));
  ASSERT_EQ(guests->count(), 1);
  EXPECT_EQ(qobject_cast<RecordForm*>(guests->forms()[0])->text(QStringLiteral("name")), QStringLiteral("Zoë O’Hara"));
  sheet->forgetDraft();
  EXPECT_EQ(port(*sheet), QString());
  EXPECT_EQ(guests->count(), 0);
  EXPECT_FALSE(sheet->dirty());
  sheet->discard();
  sheet = open();
  EXPECT_FALSE(sheet->restored()) << "a form that was left on purpose leaves no draft";
}

TEST_F(RegisterPages, ADraftKeepsWhatOthersChangedInTheRecordMeanwhile) {
  auto* log = of<ShipsLogController>("shipsLog");
  app().open(QStringLiteral("shipsLog"));
  settle();
  const QString id = firstId(log->model());
  const auto open = [&] { return std::unique_ptr<RecordSheet>(qobject_cast<RecordSheet*>(log->sheet(id))); };
  const auto form = [](RecordSheet& sheet) { return qobject_cast<RecordForm*>(sheet.formObject()); };
  form(*open())->setText(QStringLiteral("notes"), QStringLiteral("Fouled anchor"));
  const qsizetype lines = log->detail(id).value(QStringLiteral("journal")).toList().size();
  ASSERT_TRUE(log->addJournalLine(id, QStringLiteral("Engine"), {}, QStringLiteral("Both astern")));
  const auto sheet = open();
  EXPECT_TRUE(sheet->restored());
  EXPECT_TRUE(sheet->save());
  EXPECT_EQ(value(log->detail(id), QStringLiteral("notes")), QStringLiteral("Fouled anchor"));
  EXPECT_EQ(log->detail(id).value(QStringLiteral("journal")).toList().size(), lines + 1);
}

TEST_F(RegisterPages, FiltersStayWhereWhatWasAddedPassesThem) {
  auto* bunkering = of<BunkeringController>("bunkering");
  app().open(QStringLiteral("bunkering"));
  settle();
  RegisterModel* list = bunkering->model();
  const auto add = [&](const QString& fuel) {
    const std::unique_ptr<RecordSheet> sheet(qobject_cast<RecordSheet*>(bunkering->sheet({})));
    auto* form = qobject_cast<RecordForm*>(sheet->formObject());
    form->setText(QStringLiteral("fuelType"), fuel);
    form->setText(QStringLiteral("quantityGallons"), QStringLiteral("100"));
    EXPECT_TRUE(sheet->save());
    settle();
  };
  list->narrow(QStringLiteral("fuelType"), {QStringLiteral("LNG")});
  add(QStringLiteral("LNG"));
  EXPECT_TRUE(list->filtered());
  EXPECT_EQ(list->count(), 1);
  add(QStringLiteral("HFO"));
  EXPECT_FALSE(list->filtered()) << "what was just added has to be seen";
}

TEST_F(RegisterPages, APaperStaysThatOfItsVessel) {
  auto* log = of<ShipsLogController>("shipsLog");
  auto* reports = qobject_cast<ReportDesk*>(controller("Reports"));
  auto* fleet = qobject_cast<FleetController*>(controller("Fleet"));
  const QString first = fleet->selectedVesselId();
  app().open(QStringLiteral("shipsLog"));
  settle();
  log->print(QStringLiteral("log"), {});
  ASSERT_TRUE(QTest::qWaitFor([&] { return reports->pageCount() > 0; }));
  const QString name = reports->fileName(QStringLiteral("pdf"));
  app().back();
  settle();
  for (const Vessel& vessel : composition_->store().vessels().records())
    if (const QString id = QString::fromStdString(vessel.id.toString()); id != first) fleet->selectVessel(id);
  ASSERT_NE(fleet->selectedVesselId(), first);
  reports->show({{QStringLiteral("report"), QStringLiteral("shipsLog.log")}});
  ASSERT_TRUE(QTest::qWaitFor([&] { return reports->pageCount() > 0; }));
  EXPECT_EQ(reports->fileName(QStringLiteral("pdf")), name);
  fleet->selectVessel(first);
}

TEST_F(RegisterPages, TheFleetsPassagesAreNarrowedChosenAndExported) {
  auto* search = of<ShipsLogController>("shipsLogSearch");
  ASSERT_TRUE(search);
  app().open(QStringLiteral("shipsLogSearch"));
  settle();
  RegisterModel* list = search->model();
  const int all = list->count();
  ASSERT_GT(all, 3) << "the demo fleet has passages";
  EXPECT_EQ(list->filters().front().toMap().value(QStringLiteral("key")), QStringLiteral("vessel"));
  list->narrow(QStringLiteral("weather"), {QStringLiteral("Sunny"), QStringLiteral("Rain")});
  const int some = list->count();
  EXPECT_TRUE(list->filtered());
  EXPECT_LT(some, all);
  ASSERT_GT(some, 1);
  list->toggle(firstId(list));
  EXPECT_EQ(list->allChosen(), Qt::PartiallyChecked);
  list->clearFilters();
  EXPECT_EQ(list->count(), all);
  EXPECT_EQ(list->chosenCount(), 1) << "what is chosen stays chosen while the filters change";

  const QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("trips.csv"));
  search->exportCsv(QUrl::fromLocalFile(path));
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_TRUE(file.readAll().startsWith("\xEF\xBB\xBF"));
  const QVariantMap read = of<ShipsLogController>("shipsLog")->readCsv(QUrl::fromLocalFile(path));
  EXPECT_EQ(read.value(QStringLiteral("summary")), QStringLiteral("0 new, 1 already in the register, 0 skipped"));
  list->clearChosen();
}

TEST_F(RegisterPages, JournalLinesAreWrittenAndTakenOutOfTheWholeEntry) {
  auto* log = of<ShipsLogController>("shipsLog");
  app().open(QStringLiteral("shipsLog"));
  settle();
  const QString id = firstId(log->model());
  ASSERT_FALSE(id.isEmpty());
  const auto journal = [&] { return log->detail(id).value(QStringLiteral("journal")).toList(); };
  const qsizetype before = journal().size();
  EXPECT_FALSE(log->addJournalLine(id, QStringLiteral("Engine"), {}, QStringLiteral("  \n")));
  ASSERT_TRUE(
      log->addJournalLine(id, QStringLiteral("Engine"), QStringLiteral("Mara"), QStringLiteral("Both astern ")));
  ASSERT_EQ(journal().size(), before + 1);
  const QVariantMap line = journal().back().toMap();
  EXPECT_EQ(line.value(QStringLiteral("category")), QStringLiteral("Engine"));
  EXPECT_EQ(line.value(QStringLiteral("text")), QStringLiteral("Both astern"));
  log->removeJournalLine(id, line.value(QStringLiteral("id")).toString());
  EXPECT_EQ(journal().size(), before);
}

TEST_F(RegisterPages, TickedRecordsAreDeletedTogetherAndComeBackTogether) {
  auto* bunkering = of<BunkeringController>("bunkering");
  app().open(QStringLiteral("bunkering"));
  settle();
  RegisterModel* list = bunkering->model();
  const int before = list->count();
  ASSERT_GT(before, 2);
  press(Qt::Key_Home);
  press(Qt::Key_Space);
  press(Qt::Key_Down);
  press(Qt::Key_Space);
  EXPECT_EQ(list->chosenCount(), 2);
  bunkering->removeChosen();
  EXPECT_EQ(list->count(), before - 2);
  EXPECT_EQ(list->chosenCount(), 0);
  bunkering->removeChosen();
  EXPECT_EQ(list->count(), before - 2) << "without ticks nothing is deleted";
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(QTest::qWaitFor([&] { return list->count() == before; }));
}

TEST_F(RegisterPages, AFailedRadioTestNeedsNotesAndDeletingItIsAskedFirst) {
  auto* gmdss = of<GMDSSController>("gmdss");
  ASSERT_TRUE(gmdss);
  app().open(QStringLiteral("gmdss"));
  settle();
  RegisterModel* list = gmdss->model();
  const int before = list->count();
  ASSERT_GT(before, 2);
  const auto failures = [&] { return gmdss->figures()[2].toMap().value(QStringLiteral("value")).toInt(); };
  const int failedBefore = failures();
  {
    const std::unique_ptr<RecordSheet> sheet(qobject_cast<RecordSheet*>(gmdss->sheet({})));
    auto* form = qobject_cast<RecordForm*>(sheet->formObject());
    form->setText(QStringLiteral("result"), QStringLiteral("fail"));
    EXPECT_FALSE(sheet->save());
    EXPECT_EQ(sheet->firstWrong(), QStringLiteral("notes"));
    form->setText(QStringLiteral("notes"), QStringLiteral("No tone, battery ordered."));
    EXPECT_TRUE(sheet->save());
  }
  ASSERT_TRUE(QTest::qWaitFor([&] { return list->count() == before + 1; }));
  EXPECT_EQ(failures(), failedBefore + 1);
  const QVariantMap detail = gmdss->detail(firstId(list));
  EXPECT_EQ(value(detail, QStringLiteral("notes")), QStringLiteral("No tone, battery ordered."));
  const QVariantList standings = detail.value(QStringLiteral("standings")).toList();
  ASSERT_EQ(standings.size(), 5);
  EXPECT_EQ(standings[0].toMap().value(QStringLiteral("standing")), QStringLiteral("Failed"));

  press(Qt::Key_Home);
  press(Qt::Key_Delete);
  EXPECT_EQ(list->count(), before + 1) << "nothing goes before the question is answered";
  press(Qt::Key_Tab);
  press(Qt::Key_Space);
  EXPECT_TRUE(QTest::qWaitFor([&] { return list->count() == before; }));
}

}  // namespace
}  // namespace thalvorn::app
