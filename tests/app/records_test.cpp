#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "app/fleet/settings.h"
#include "app/fleet/vessel_list.h"
#include "app/history/service_detail.h"
#include "app/history/service_history.h"
#include "app/library/task_import.h"
#include "app/library/template_library.h"
#include "app/preview/report_renderer.h"
#include "app/record_search.h"
#include "app/store_session.h"
#include "core/fixtures.h"

namespace thalvorn::app {
namespace {

using thalvorn::testing::at;
using thalvorn::testing::id;
using thalvorn::testing::yacht;

class KeptPreferences : public PreferenceStore {
 public:
  QString preference(const QString& key) const override { return values.value(key); }
  void setPreference(const QString& key, const QString& value) override { values[key] = value; }
  QHash<QString, QString> values;
};

/// A store of its own with one yacht, "Aurelia", and three services.
class Records : public ::testing::Test {
 protected:
  Records() {
    store().reloadNow(std::string(AppViewModel::localPrefix));
    store().add(yacht());
    store().setSelectedVesselID(id("Aurelia"));
    addService("Oil change", "2026-02-01T10:00:00Z", 120);
    addService("Anodes", "2025-06-01T10:00:00Z", 80);
    addService("Belt", "2024-06-01T10:00:00Z", {});
  }
  void addService(std::string_view title, std::string_view day, std::optional<double> cost) {
    ServiceLog log;
    log.id = id(title);
    log.vesselID = id("Aurelia");
    log.taskTitle = title;
    log.completedDate = at(day);
    log.technicianNotes = "Done";
    log.cost = cost;
    store().add(log);
  }
  AppViewModel& store() { return session_->model(); }
  QUrl file(const char* name) const { return QUrl::fromLocalFile(folder_.filePath(QString::fromLatin1(name))); }
  void write(const char* name, const QByteArray& bytes) const {
    QFile out(file(name).toLocalFile());
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(bytes);
  }

  QTemporaryDir folder_;
  FixedClock clock_{at("2026-03-01T09:00:00Z")};
  std::unique_ptr<StoreSession> session_ =
      *StoreSession::open(folder_.filePath(QStringLiteral("fleet.sqlite")), clock_);
  KeptPreferences preferences_;
  AppController app_{preferences_};
  Format format_{clock_};
};

QString shown(const QAbstractItemModel& model, int row, const char* role) {
  return model.index(row, 0).data(model.roleNames().key(role)).toString();
}

TEST_F(Records, TheHistoryFollowsFiltersAndEdits) {
  ServiceHistory history(store(), session_->attachments(), preferences_, app_, format_);
  ServiceHistoryModel& model = *history.model();
  const QAbstractItemModelTester tester(&model);
  EXPECT_EQ(model.count(), 0) << "nothing is read before the page is looked at";
  model.setActive(true);
  ASSERT_EQ(model.count(), 3);
  EXPECT_EQ(shown(model, 0, "title"), QStringLiteral("Oil change"));
  EXPECT_EQ(model.costs().value(QStringLiteral("total")).toString(), QStringLiteral("200.00"));
  model.setPeriod(QStringLiteral("lastYear"));
  ASSERT_EQ(model.count(), 1);
  EXPECT_EQ(model.costs().value(QStringLiteral("total")).toString(), QStringLiteral("80.00"));
  EXPECT_TRUE(history.reveal(QString::fromStdString(id("Belt").toString())));
  EXPECT_EQ(model.count(), 3) << "a filter that hides what is to be shown goes";
  model.sortBy(QStringLiteral("task"), false);
  EXPECT_EQ(shown(model, 0, "title"), QStringLiteral("Anodes"));
  history.remove(QString::fromStdString(id("Anodes").toString()));
  ASSERT_EQ(model.count(), 2);
  EXPECT_EQ(shown(model, 0, "title"), QStringLiteral("Belt"));
  store().undo(store().undoable().back().id);
  QCoreApplication::processEvents();
  EXPECT_EQ(model.count(), 3);
}

TEST_F(Records, ACorrectionNeedsAReasonAndKeepsTheEarlierText) {
  ServiceHistory history(store(), session_->attachments(), preferences_, app_, format_);
  const QString oil = QString::fromStdString(id("Oil change").toString());
  const std::unique_ptr<QObject> object(history.correction(oil));
  auto* form = qobject_cast<ServiceCorrection*>(object.get());
  ASSERT_TRUE(form);
  EXPECT_FALSE(form->anyChange());
  form->setText(QStringLiteral("technicianNotes"), QStringLiteral("Done, filter too"));
  form->addPart();
  EXPECT_TRUE(form->anyChange());
  EXPECT_FALSE(form->save());
  EXPECT_FALSE(form->reasonMessage().isEmpty());
  EXPECT_EQ(store().logs().find(id("Oil change"))->technicianNotes, "Done");
  form->setProperty("reason", QStringLiteral("Filter forgotten"));
  ASSERT_TRUE(form->save()) << form->error().toStdString();
  const QVariantMap detail = history.detail(oil);
  EXPECT_EQ(detail.value(QStringLiteral("notes")).toString(), QStringLiteral("Done, filter too"));
  EXPECT_TRUE(detail.value(QStringLiteral("parts")).toList().isEmpty()) << "an empty line of parts is left out";
  const auto corrections = detail.value(QStringLiteral("corrections")).toList();
  ASSERT_EQ(corrections.size(), 1);
  EXPECT_EQ(corrections.first().toMap().value(QStringLiteral("before")).toString(), QStringLiteral("Done"));
  EXPECT_EQ(corrections.first().toMap().value(QStringLiteral("reason")).toString(), QStringLiteral("Filter forgotten"));
}

TEST_F(Records, TheHistoryLeavesAsCsvAndComesBackOnce) {
  ServiceHistory history(store(), session_->attachments(), preferences_, app_, format_);
  history.model()->setActive(true);
  history.exportCsv(file("history.csv"));
  history.remove(QString::fromStdString(id("Belt").toString()));
  const QVariantMap read = history.readCsv(file("history.csv"));
  EXPECT_EQ(read.value(QStringLiteral("count")).toInt(), 1)
      << read.value(QStringLiteral("summary")).toString().toStdString();
  history.importServices();
  ASSERT_TRUE(store().logs().find(id("Belt")));
  EXPECT_EQ(store().logs().find(id("Belt"))->completedDate, at("2024-06-01T10:00:00Z"));
  EXPECT_EQ(history.readCsv(file("history.csv")).value(QStringLiteral("count")).toInt(), 0);
  write("other.csv", "a,b\n1,2\n");
  EXPECT_FALSE(history.readCsv(file("other.csv")).value(QStringLiteral("problem")).toString().isEmpty());
  EXPECT_FALSE(history.readCsv(file("missing.csv")).value(QStringLiteral("problem")).toString().isEmpty());
}

TEST_F(Records, TemplatesBecomeTasksAndAreMarkedAsPresent) {
  TemplateLibrary library(store(), app_, format_);
  const QAbstractItemModelTester tester(&library);
  library.setActive(true);
  library.setSearch(QStringLiteral("no such job"));
  EXPECT_EQ(library.count(), 0);
  library.setSearch(QStringLiteral("hydraulic oil"));
  ASSERT_GT(library.count(), 0);
  EXPECT_EQ(shown(library, 0, "remark"), QStringLiteral("Not fitted")) << "she has no hydraulics";
  library.chooseAll(true);
  EXPECT_EQ(library.chosenCount(), 0) << "what is not fitted is only chosen one by one";
  library.setSearch(QStringLiteral("Engine oil & filter change"));
  const QString oil = shown(library, 0, "id");
  library.toggle(oil);
  EXPECT_EQ(library.chosenText(), QStringLiteral("1 selected"));
  library.setFrom(QStringLiteral("lastDone"));
  library.setLastDoneHours(QStringLiteral("nine"));
  EXPECT_FALSE(library.addToTasks());
  library.setLastDoneHours(QStringLiteral("950"));
  ASSERT_TRUE(library.addToTasks());
  ASSERT_EQ(store().tasks().size(), 1U);
  EXPECT_EQ(store().tasks()[0].dueAtEngineHours, 950 + 250.0);
  EXPECT_EQ(library.chosenCount(), 0);
  EXPECT_EQ(shown(library, library.rowOf(oil), "remark"), QStringLiteral("In your tasks"));
}

TEST_F(Records, TheImportReadsInTheBackgroundAndLosesNothing) {
  TaskImport import(store(), app_, format_);
  const QAbstractItemModelTester tester(&import);
  import.loadSample();
  EXPECT_FALSE(import.canImport()) << "not before the preview is that of the text";
  ASSERT_TRUE(QTest::qWaitFor([&] { return import.canImport(); }));
  EXPECT_EQ(import.validText() + import.skippedText(), QStringLiteral("5 valid0 skipped"));
  EXPECT_EQ(import.importText(), QStringLiteral("Import 5 tasks"));

  const QString text = import.text();
  import.loadFile(file("missing.csv"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return !import.error().isEmpty(); }));
  EXPECT_TRUE(import.error().startsWith(u"Could not read CSV file."));
  EXPECT_EQ(import.text(), text);

  import.setText(QStringLiteral("title,category\n,Engine\nValve,\nPump,Engine"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return import.valid() == 1; }));
  EXPECT_EQ(shown(import, 0, "title"), QStringLiteral("(no title)"));
  EXPECT_FALSE(shown(import, 1, "problems").isEmpty());
  ASSERT_TRUE(import.importTasks());
  EXPECT_EQ(store().tasks().size(), 1U);
  EXPECT_TRUE(import.text().isEmpty());
}

TEST_F(Records, ALargeFileIsReadWholeThoughOnlyItsBeginningIsShown) {
  QByteArray csv = "title,category,notes\r\n";
  for (int line = 0; line < 20'000; ++line) csv += "Job,Engine,What has to be done\r\n";
  write("large.csv", csv);
  TaskImport import(store(), app_, format_);
  import.loadFile(file("large.csv"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return import.canImport(); }, 20'000));
  EXPECT_EQ(import.valid(), 20'000);
  EXPECT_TRUE(import.heldFile().startsWith(u"large.csv"));
  EXPECT_LT(import.text().size(), csv.size() / 4);
  import.clear();
  EXPECT_EQ(import.count(), 0);
  EXPECT_TRUE(import.heldFile().isEmpty());
}

TEST_F(Records, VesselsKeepTheirOrderAndRefuseWrongNumbers) {
  VesselList vessels(store(), session_->attachments(), app_, format_);
  const QAbstractItemModelTester tester(&vessels);
  const std::unique_ptr<QObject> object(vessels.sheet({}));
  auto* sheet = qobject_cast<VesselSheet*>(object.get());
  ASSERT_TRUE(sheet);
  auto* vessel = qobject_cast<RecordForm*>(sheet->vessel());
  auto* profile = qobject_cast<RecordForm*>(sheet->profile());
  vessel->setText(QStringLiteral("name"), QStringLiteral("Boreas"));
  for (const auto& [field, wrong] : {std::pair("imoNumber", "1234568"), std::pair("mmsi", "12"),
                                     std::pair("timeZone", "Mars/Olympus"), std::pair("currency", "euro")}) {
    profile->setText(QString::fromLatin1(field), QString::fromLatin1(wrong));
    EXPECT_FALSE(sheet->save()) << field;
    EXPECT_FALSE(profile->message(QString::fromLatin1(field)).isEmpty()) << field;
    profile->setText(QString::fromLatin1(field), {});
  }
  profile->setText(QStringLiteral("imoNumber"), QStringLiteral("9990014"));
  ASSERT_TRUE(sheet->save()) << sheet->error().toStdString();
  ASSERT_EQ(vessels.count(), 2);
  EXPECT_EQ(shown(vessels, 1, "name"), QStringLiteral("Boreas"));
  EXPECT_EQ(store().vesselProfiles().size(), 1U);
  vessels.shift(sheet->vesselId(), -1);
  EXPECT_EQ(shown(vessels, 0, "name"), QStringLiteral("Boreas"));
  EXPECT_EQ(store().vesselsInOrder().front()->name, "Boreas");
  EXPECT_TRUE(vessels.isNameOf(sheet->vesselId(), QStringLiteral(" boreas ")));
  EXPECT_FALSE(vessels.isNameOf(sheet->vesselId(), QStringLiteral("borea")));
}

TEST_F(Records, AReportIsLaidOutDrawnAndWrittenOnItsOwnThread) {
  ReportRenderer renderer;
  QSignalSpy ready(&renderer, &ReportRenderer::ready);
  QSignalSpy failed(&renderer, &ReportRenderer::failed);
  Document document{.title = "Work list", .vesselName = "Aurelia"};
  document.blocks = {Paragraph{.text = "One"}, PageBreak{}, Paragraph{.text = "Two"}};
  const int stopped = renderer.begin([&] { return document; });
  const int number = renderer.begin([&] { return document; });
  ASSERT_TRUE(QTest::qWaitFor([&] { return !ready.isEmpty() && ready.last().first().toInt() == number; }));
  EXPECT_EQ(ready.last().at(1).value<ReportPages>().count, 2);
  EXPECT_TRUE(failed.isEmpty()) << "a report that gave way to another is no failure";
  std::promise<QImage> page;
  renderer.drawPage(number, 1, 300, [&](const QImage& image) { page.set_value(image); });
  EXPECT_EQ(page.get_future().get().width(), 300);
  std::promise<QImage> gone;
  renderer.drawPage(stopped, 0, 300, [&](const QImage& image) { gone.set_value(image); });
  EXPECT_TRUE(gone.get_future().get().isNull());
  std::promise<QByteArray> pdf;
  renderer.makePdf(number, [&](const auto& bytes) { pdf.set_value(bytes ? *bytes : QByteArray()); });
  EXPECT_TRUE(pdf.get_future().get().startsWith("%PDF"));

  const auto stopping = QObject::connect(
      &renderer, &ReportRenderer::progressed, &renderer, [&] { renderer.cancel(); }, Qt::DirectConnection);
  std::promise<bool> complete;
  renderer.makePdf(number, [&](const auto& bytes) { complete.set_value(bytes.has_value()); });
  EXPECT_FALSE(complete.get_future().get());
  QObject::disconnect(stopping);
  std::promise<QByteArray> again;
  renderer.makePdf(number, [&](const auto& bytes) { again.set_value(bytes ? *bytes : QByteArray()); });
  EXPECT_TRUE(again.get_future().get().startsWith("%PDF")) << "a PDF that was stopped can be made again";
}

TEST_F(Records, SettingsAreKeptAndTheStoreIsCheckedAndBackedUp) {
  Settings settings(*session_, preferences_, app_, format_);
  settings.setCsvSeparator(QStringLiteral("semicolon"));
  settings.setReminders(false);
  const Settings again(*session_, preferences_, app_, format_);
  EXPECT_EQ(again.csvSeparator(), QStringLiteral("semicolon"));
  EXPECT_FALSE(again.reminders());
  settings.checkStore();
  ASSERT_TRUE(QTest::qWaitFor([&] { return settings.checked().contains(QStringLiteral("sound")); }));
  EXPECT_TRUE(settings.checked().value(QStringLiteral("sound")).toBool());
  settings.backUp(file("copy"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return settings.work().isEmpty(); }));
  EXPECT_TRUE(QFileInfo::exists(file("copy.sqlite").toLocalFile())) << settings.error().toStdString();
  settings.backUp(file("no/such/folder/copy.sqlite"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return settings.work().isEmpty(); }));
  EXPECT_FALSE(settings.error().isEmpty());
}

TEST_F(Records, TheSearchFindsEveryKindWithoutHoldingUpAFrame) {
  Edit edit{.label = "many"};
  for (int i = 0; i < 20'000; ++i) {
    MaintenanceTask task = thalvorn::testing::task("Impeller " + std::to_string(i));
    task.notes = "Nothing that anybody looks for";
    edit.add(std::move(task));
  }
  edit.add(thalvorn::testing::task("Gearbox oil analysis"));
  store().apply(std::move(edit));
  SearchModel search;
  search.addScan(recordScan(store()));
  const QAbstractItemModelTester tester(&search);
  search.setWords(QStringLiteral("oil"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return !search.busy(); }));
  QStringList groups;
  for (int row = 0; row < search.count(); ++row) groups << shown(search, row, "group");
  groups.removeDuplicates();
  EXPECT_EQ(groups,
            QStringList({QStringLiteral("Tasks"), QStringLiteral("Service history"), QStringLiteral("Templates")}));
  EXPECT_EQ(shown(search, 0, "title"), QStringLiteral("Gearbox oil analysis"));
  search.setWords(QStringLiteral("nothing like it aboard"));
  search.setWords(QStringLiteral("aurelia"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return !search.busy(); }));
  EXPECT_EQ(shown(search, 0, "group"), QStringLiteral("Vessels")) << "what was typed before is forgotten";
}

}  // namespace
}  // namespace thalvorn::app
