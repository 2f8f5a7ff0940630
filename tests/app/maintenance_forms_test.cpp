#include <QFile>
#include <QImage>
#include <QSignalSpy>

#include "app/maintenance/completion_sheet.h"
#include "app/maintenance/dashboard.h"
#include "app/maintenance/hours_editor.h"
#include "app/maintenance/snooze_sheet.h"
#include "app/maintenance/task_detail.h"
#include "app/maintenance/task_editor.h"
#include "maintenance_fleet.h"

namespace thalvorn::app {
namespace {

using thalvorn::testing::dueAt;
using thalvorn::testing::dueOn;

class MaintenanceForms : public MaintenanceFleet {
 protected:
  MaintenanceForms() {
    impeller = dueAt("Raw water impeller", 1006.2);
    impeller.triggerType = TriggerType::both;
    impeller.dueDate = inDays(30);
    impeller.recurringDays = 365;
    impeller.recurringEngineHours = 500;
    add(impeller);
  }

  const MaintenanceTask& task() const { return *store.tasks().find(impeller.id); }
  const Vessel& vessel() const { return *store.vessels().find(ship.id); }
  static MeterField* field(const QList<QObject*>& meters, const QString& label) {
    for (QObject* meter : meters) {
      if (meter->property("label") == label) return qobject_cast<MeterField*>(meter);
    }
    return nullptr;
  }
  QUrl picture(const QString& name) const {
    const QString file = QString::fromStdString((folder / name.toStdString()).string());
    QImage(8, 8, QImage::Format_RGB32).save(file);
    return QUrl::fromLocalFile(file);
  }

  MaintenanceTask impeller;
  AttachmentStore attachments{folder / "files"};
};

TEST_F(MaintenanceForms, CompletingTakesMetersPartsAndPhotosAndShowsTheNextDuePointBefore) {
  CompletionSheet sheet(store, format, attachments, impeller.id);
  EXPECT_FALSE(sheet.dirty());
  EXPECT_EQ(sheet.nextDue(), QStringLiteral("Next due: 1,500.0 h or 21 Nov 2027"));
  MeterField* engine = field(sheet.meters(), QStringLiteral("Engine 1"));
  MeterField* generator = field(sheet.meters(), QStringLiteral("Gen 1"));
  ASSERT_TRUE(engine && generator);
  EXPECT_EQ(sheet.meters().size(), 3) << "only the fitted meters";
  EXPECT_EQ(engine->current(), QStringLiteral("Current: 1000.0 hrs"));
  engine->setText(QStringLiteral("1,004.5"));
  EXPECT_EQ(engine->gain(), QStringLiteral("+4.5 h"));
  EXPECT_EQ(sheet.nextDue(), QStringLiteral("Next due: 1,504.5 h or 21 Nov 2027"));
  generator->setText(QStringLiteral("12"));
  EXPECT_FALSE(generator->message().isEmpty()) << "a lower reading is ignored, and said to be";
  EXPECT_EQ(generator->tone(), QStringLiteral("soon"));

  sheet.setProperty("completedBy", QStringLiteral("L. Marchetti"));
  sheet.setProperty("labor", QStringLiteral("186.00"));
  sheet.addPart();
  sheet.addPart();
  sheet.parts().first()->setProperty("name", QStringLiteral("Impeller kit"));
  sheet.parts().first()->setProperty("cost", QStringLiteral("92,40"));
  sheet.addPhotos({picture(QStringLiteral("a.png"))});
  EXPECT_EQ(sheet.photos().size(), 1);
  EXPECT_TRUE(sheet.dirty());
  ASSERT_TRUE(sheet.save()) << sheet.error().toStdString();

  ASSERT_EQ(store.logs().size(), 1U);
  const ServiceLog& log = store.logs()[0];
  EXPECT_EQ(log.completedBy, "L. Marchetti");
  EXPECT_EQ(log.cost, 186.0);
  ASSERT_EQ(log.partsUsed.size(), 1U) << "an empty line is left out";
  EXPECT_EQ(log.partsUsed[0].cost, 92.4);
  EXPECT_EQ(log.photoPaths.size(), 1U);
  EXPECT_EQ(vessel().engineHours, 1004.5);
  EXPECT_EQ(vessel().generator1Hours, 4000);
  EXPECT_EQ(task().dueAtEngineHours, 1504.5);
  EXPECT_EQ(CompletionSheet(store, format, attachments, impeller.id).people().first().toMap()[QStringLiteral("name")],
            QStringLiteral("L. Marchetti"));

  store.undo(store.undoable().back().id);
  EXPECT_EQ(store.logs().size(), 0U);
  EXPECT_EQ(vessel().engineHours, 1000);
  EXPECT_EQ(task(), impeller);
}

TEST_F(MaintenanceForms, CompletingRefusesWhatCannotBeRead) {
  CompletionSheet sheet(store, format, attachments, impeller.id);
  const auto refuses = [&] { return !sheet.save() && !sheet.error().isEmpty() && store.logs().empty(); };
  sheet.setDoneOn(Format::toQml(inDays(2)));
  EXPECT_TRUE(refuses()) << "a day to come";
  sheet.setDoneOn(Format::toQml(inDays(-1)));
  sheet.setProperty("labor", QStringLiteral("many"));
  EXPECT_FALSE(sheet.laborMessage().isEmpty());
  EXPECT_TRUE(refuses());
  sheet.setProperty("labor", QString());
  field(sheet.meters(), QStringLiteral("Engine 2"))->setText(QStringLiteral("99x"));
  EXPECT_TRUE(refuses());
  field(sheet.meters(), QStringLiteral("Engine 2"))->setText(QString());
  QFile note(QString::fromStdString((folder / "note.txt").string()));
  ASSERT_TRUE(note.open(QIODevice::WriteOnly));
  sheet.addPhotos({QUrl::fromLocalFile(note.fileName())});
  EXPECT_TRUE(sheet.error().contains(QStringLiteral("note.txt")));
  EXPECT_TRUE(sheet.photos().isEmpty());
  EXPECT_TRUE(sheet.save());
}

TEST_F(MaintenanceForms, EditorShowsWhatTheTriggerNeedsAndProposesTheDuePoint) {
  MaintenanceTask made;
  made.id = Uuid::random();
  made.vesselID = ship.id;
  TaskEditor editor(store, format, attachments, made, true);
  EXPECT_TRUE(editor.byDate());
  EXPECT_FALSE(editor.byHours());
  EXPECT_EQ(editor.hourSources().size(), 3);
  EXPECT_FALSE(editor.save());
  EXPECT_FALSE(editor.message(QStringLiteral("title")).isEmpty());
  EXPECT_FALSE(editor.message(QStringLiteral("dueDate")).isEmpty());

  editor.setText(QStringLiteral("title"), QStringLiteral("Generator oil"));
  editor.setText(QStringLiteral("triggerType"), QStringLiteral("engineHours"));
  EXPECT_FALSE(editor.byDate());
  editor.setText(QStringLiteral("hourSource"), QStringLiteral("generator1"));
  EXPECT_EQ(editor.meterHint(), QStringLiteral("Current: 4000.0 hrs"));
  editor.setText(QStringLiteral("recurringEngineHours"), QStringLiteral("250"));
  EXPECT_EQ(editor.hoursProposal(), QStringLiteral("Set to current + 250 h"));
  editor.setText(QStringLiteral("kind"), QStringLiteral("warranty"));
  EXPECT_EQ(editor.hoursProposal(), QString()) << "only planned maintenance repeats";
  EXPECT_EQ(editor.daysHint(), QStringLiteral("days  ·  only for Planned Maintenance"));
  editor.setText(QStringLiteral("kind"), QStringLiteral("planned"));
  ASSERT_TRUE(editor.save()) << editor.error().toStdString();
  EXPECT_EQ(store.tasks().find(made.id)->dueAtEngineHours, 4250.0) << "an interval alone is enough";
}

TEST_F(MaintenanceForms, EditorTakesAwayTheTriggerThatWasGivenUp) {
  TaskEditor editor(store, format, attachments, task(), false);
  EXPECT_FALSE(editor.dirty());
  editor.setText(QStringLiteral("triggerType"), QStringLiteral("date"));
  EXPECT_TRUE(editor.dirty());
  ASSERT_TRUE(editor.save());
  EXPECT_FALSE(task().dueAtEngineHours);
  EXPECT_EQ(task().dueDate, impeller.dueDate);

  MaintenanceTask lost = dueAt("Third engine", 50);
  lost.hourSource = HourSource::engine3;
  add(lost);
  const TaskEditor other(store, format, attachments, lost, false);
  EXPECT_EQ(other.hourSources().last().toMap()[QStringLiteral("text")], QStringLiteral("Engine 3 (not fitted)"));
}

TEST_F(MaintenanceForms, SnoozeHasPeriodsADateAndAnEnd) {
  clock.set(thalvorn::testing::at("2027-01-31T09:00:00Z"));
  SnoozeSheet sheet(store, format, impeller.id);
  sheet.setPeriod(QStringLiteral("1m"));
  EXPECT_EQ(sheet.untilText(), QStringLiteral("Silent until 28 Feb 2027"));
  sheet.setUntil(Format::toQml(inDays(-1)));
  EXPECT_EQ(sheet.period(), QStringLiteral("date"));
  EXPECT_FALSE(sheet.save());
  EXPECT_FALSE(task().snoozedUntil);
  sheet.setPeriod(QStringLiteral("3d"));
  ASSERT_TRUE(sheet.save());
  EXPECT_EQ(task().snoozedUntil, inDays(3));
  SnoozeSheet again(store, format, impeller.id);
  EXPECT_TRUE(again.snoozed());
  EXPECT_EQ(again.period(), QStringLiteral("date"));
  EXPECT_TRUE(again.endSnooze());
  EXPECT_FALSE(task().snoozedUntil);
}

TEST_F(MaintenanceForms, HoursEditorRaisesCorrectsAndReplaces) {
  HoursEditor editor(store, format, ship.id);
  field(editor.meters(), QStringLiteral("Engine 1"))->setText(QStringLiteral("1003"));
  field(editor.meters(), QStringLiteral("Gen 1"))->setText(QStringLiteral("4010"));
  EXPECT_FALSE(
      editor.adjust(QStringLiteral("engine2"), QStringLiteral("corrected"), QStringLiteral("909"), QString()).isEmpty())
      << "a reason is asked for";
  EXPECT_EQ(editor.adjust(QStringLiteral("engine2"), QStringLiteral("corrected"), QStringLiteral("909"),
                          QStringLiteral("digits swapped")),
            QString());
  EXPECT_EQ(vessel().engine2Hours, 909);
  EXPECT_EQ(field(editor.meters(), QStringLiteral("Engine 1"))->text(), QStringLiteral("1003")) << "typing stays";
  ASSERT_TRUE(editor.save());
  EXPECT_EQ(vessel().engineHours, 1003);
  EXPECT_EQ(vessel().generator1Hours, 4010);
  EXPECT_EQ(editor.adjust(QStringLiteral("engine"), QStringLiteral("replaced"), QStringLiteral("0"),
                          QStringLiteral("old one failed")),
            QString());
  EXPECT_EQ(task().dueAtEngineHours, 1006.2 - 1003) << "the hours still to run stay the same";
  EXPECT_EQ(editor.history().size(), 2);
  EXPECT_TRUE(editor.history().first().toMap()[QStringLiteral("title")].toString().startsWith(
      QStringLiteral("Engine 1 replaced")));
}

TEST_F(MaintenanceForms, DetailTellsDuePointsAndHistory) {
  FleetWatch watch(store);
  TaskDetail detail(watch, format, attachments);
  detail.setTaskId(text(impeller.id));
  ASSERT_TRUE(detail.exists());
  const auto fact = [&](const QString& label) {
    for (const QVariant& one : detail.facts()) {
      if (one.toMap()[QStringLiteral("label")] == label) return one.toMap()[QStringLiteral("value")].toString();
    }
    return QString();
  };
  EXPECT_EQ(fact(QStringLiteral("Due at")), QStringLiteral("1,006.2 h"));
  EXPECT_EQ(fact(QStringLiteral("Now")), QStringLiteral("1,000.0 h"));
  EXPECT_EQ(fact(QStringLiteral("Or by")), QStringLiteral("21 Dec 2026"));
  EXPECT_FALSE(fact(QStringLiteral("Expected")).isEmpty());
  EXPECT_EQ(detail.historyTotal(), 0);

  CompletionSheet(store, format, attachments, impeller.id).save();
  settle();
  EXPECT_EQ(detail.historyTotal(), 1);
  EXPECT_EQ(detail.history().first().toMap()[QStringLiteral("title")], QStringLiteral("1,000.0 h · 21 Nov 2026"));
  store.remove<MaintenanceTask>(impeller.id);
  settle();
  EXPECT_FALSE(detail.exists());
}

TEST_F(MaintenanceForms, DashboardCountsAndPointsOut) {
  FleetWatch watch(store);
  Dashboard home(watch, format);
  store.setDisplayName("Ana Petit");
  MaintenanceTask squawk = dueOn("Shaft seal weeping", inDays(-3));
  squawk.kind = TaskKind::deficiencySquawk;
  squawk.priority = TaskPriority::high;
  add(squawk);
  home.setActive(true);
  EXPECT_EQ(home.greeting(), QStringLiteral("Good afternoon, Ana"));
  ASSERT_EQ(home.counters().size(), 3);
  const QVariantMap overdue = home.counters().first().toMap();
  EXPECT_EQ(overdue[QStringLiteral("count")], 1);
  EXPECT_EQ(overdue[QStringLiteral("note")], QStringLiteral("1 high priority · oldest 3 days"));
  ASSERT_EQ(home.attention().size(), 1);
  EXPECT_EQ(home.attention().first().toMap()[QStringLiteral("title")], QStringLiteral("1 open squawk"));
  EXPECT_EQ(home.metersUpdated(), QStringLiteral("Updated today"));

  CompletionSheet sheet(store, format, attachments, squawk.id);
  sheet.setProperty("labor", QStringLiteral("40"));
  ASSERT_TRUE(sheet.save());
  settle();
  EXPECT_EQ(home.workDoneText(), QStringLiteral("1 job · USD 40.00"));
  EXPECT_EQ(home.workDone().last().toMap()[QStringLiteral("value")], 1);
  EXPECT_TRUE(home.attention().isEmpty());
  clock.advance(std::chrono::days(31));
  watch.tick();
  settle();
  EXPECT_EQ(home.attention().first().toMap()[QStringLiteral("title")],
            QStringLiteral("Hour meters are over 30 days old"));
}

}  // namespace
}  // namespace thalvorn::app
