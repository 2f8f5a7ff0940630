#include <gtest/gtest.h>

#include <QDate>
#include <QTime>

#include "app/format.h"
#include "app/record_form.h"
#include "core/maintenance_task.h"
#include "core/vessel.h"

namespace thalvorn::app {
namespace {

// Tuesday 17 March 2026, 08:05 in the zone the tests run in.
QDateTime testNow() { return {QDate(2026, 3, 17), QTime(8, 5)}; }

class Forms : public testing::Test {
 protected:
  FixedClock clock_{Format::fromQml(testNow()), Calendar::ofThisComputer()};
  Format format_{clock_};

  QString read(const char* text, bool withTime = false) {
    const QVariant time = format_.parseDate(QString::fromUtf8(text), {}, withTime);
    return time.isValid() ? time.toDateTime().toString(u"yyyy-MM-dd HH:mm") : QStringLiteral("none");
  }
};

TEST_F(Forms, ReadsDaysAsPeopleTypeThem) {
  for (const char* text : {"21 Nov 2026", "21. november 2026", "Sat 21 Nov 2026", "Nov 21, 2026", "2026-11-21",
                           "21/11/2026", "21.11.26"}) {
    EXPECT_EQ(read(text), QStringLiteral("2026-11-21 08:05")) << text;
  }
  EXPECT_EQ(read("tomorrow"), QStringLiteral("2026-03-18 08:05"));
  EXPECT_EQ(read("+14"), QStringLiteral("2026-03-31 08:05"));
  EXPECT_EQ(read("-1d"), QStringLiteral("2026-03-16 08:05"));
  EXPECT_EQ(read("5 Jun"), QStringLiteral("2026-06-05 08:05"));
  EXPECT_EQ(read("21 Nov 2026 09:40", true), QStringLiteral("2026-11-21 09:40"));
  EXPECT_EQ(read("today 7.05", true), QStringLiteral("2026-03-17 07:05"));
  for (const char* text : {"31 Feb 2026", "soon", "2026-13-01", "21 Xyz 2026", "99/99/2026", "21 Nov 2026 25:00"}) {
    EXPECT_EQ(read(text, true), QStringLiteral("none")) << text;
  }
}

TEST_F(Forms, KeepsWhatCannotBeReadOnScreenAndTheLastGoodValueInTheRecord) {
  Vessel vessel;
  vessel.name = "Meridian";
  vessel.engineHours = 4812.4;
  RecordFormOf<Vessel> form(vessel, format_);
  const QString field = QStringLiteral("engineHours");
  EXPECT_FALSE(form.dirty());

  form.setText(field, QStringLiteral("4,8x"));
  EXPECT_EQ(form.text(field), QStringLiteral("4,8x"));
  EXPECT_FALSE(form.message(field).isEmpty());
  EXPECT_EQ(form.record().engineHours, 4812.4);
  EXPECT_TRUE(form.dirty());
  EXPECT_FALSE(form.check());
  EXPECT_EQ(form.firstWrong(), field);

  form.setText(field, QStringLiteral("-3"));
  EXPECT_TRUE(form.message(field).contains(u"0")) << form.message(field).toStdString();
  EXPECT_EQ(form.record().engineHours, 4812.4);

  form.setText(field, QStringLiteral("4813.5"));
  EXPECT_EQ(form.record().engineHours, 4813.5);
  EXPECT_TRUE(form.message(field).isEmpty());
  EXPECT_TRUE(form.check());

  form.setText(field, QStringLiteral("4812.4"));
  EXPECT_FALSE(form.dirty());
}

TEST_F(Forms, TellsOfARequiredFieldOnlyOnceItWasTouchedOrChecked) {
  RecordFormOf<Vessel> form(Vessel{}, format_);
  const QString field = QStringLiteral("name");
  EXPECT_FALSE(form.valid());
  EXPECT_TRUE(form.message(field).isEmpty());
  EXPECT_FALSE(form.check());
  EXPECT_EQ(form.message(field), QStringLiteral("Vessel name is needed."));
  form.setText(field, QStringLiteral("   "));
  EXPECT_FALSE(form.check());
  form.setText(field, QStringLiteral("Meridian"));
  EXPECT_TRUE(form.check());
}

TEST_F(Forms, ReadsEveryKindOfValue) {
  MaintenanceTask task;
  task.category = Choice<TaskCategory>::fromRaw("Submarine");
  RecordFormOf<MaintenanceTask> form(task, format_);
  const auto set = [&](const char16_t* name, const QString& text) { form.setText(QString::fromUtf16(name), text); };

  const QVariantList choices = form.facts(QStringLiteral("category"))[QStringLiteral("choices")].toList();
  EXPECT_EQ(choices.size(), 29) << "the 28 categories and the one that only a newer program knows";
  EXPECT_EQ(form.text(QStringLiteral("category")), QStringLiteral("Submarine"));
  set(u"category", QStringLiteral("Dock Lines & Ground Tackle"));
  EXPECT_EQ(form.record().category, TaskCategory::dockLines);

  set(u"recurringDays", QStringLiteral("90"));
  EXPECT_EQ(form.record().recurringDays, 90);
  set(u"recurringDays", QStringLiteral("1.5"));
  EXPECT_EQ(form.message(QStringLiteral("recurringDays")), QStringLiteral("Enter a whole number."));
  EXPECT_EQ(form.record().recurringDays, 90);
  set(u"recurringDays", QString());
  EXPECT_EQ(form.record().recurringDays, std::nullopt);

  form.setValue(QStringLiteral("dueDate"), testNow());
  EXPECT_EQ(form.record().dueDate, clock_.now());
  EXPECT_EQ(form.value(QStringLiteral("dueDate")).toDateTime(), testNow());
  form.setValue(QStringLiteral("dueDate"), QVariant());
  EXPECT_EQ(form.record().dueDate, std::nullopt);

  set(u"isCompleted", QStringLiteral("true"));
  EXPECT_TRUE(form.record().isCompleted);
}

TEST_F(Forms, AppliesRulesOverTheWholeRecord) {
  RecordFormOf<Vessel> form(Vessel{.name = "Meridian"}, format_);
  form.addRule("numberOfGenerators", [](const Vessel& vessel) {
    return vessel.generator2Hours > 0 && vessel.numberOfGenerators < 2 ? QStringLiteral("Generator 2 has run.")
                                                                       : QString();
  });
  EXPECT_TRUE(form.check());
  form.setText(QStringLiteral("generator2Hours"), QStringLiteral("10"));
  EXPECT_FALSE(form.valid());
  EXPECT_EQ(form.message(QStringLiteral("numberOfGenerators")), QStringLiteral("Generator 2 has run."));
  form.setText(QStringLiteral("numberOfGenerators"), QStringLiteral("2"));
  EXPECT_TRUE(form.valid());
}

TEST_F(Forms, AnUnknownFieldEndsAStrictProgram) {
  RecordFormOf<Vessel> form(Vessel{}, format_);
  RecordForm::setStrict(true);
  EXPECT_DEATH(form.text(QStringLiteral("nmae")), "nmae");
  RecordForm::setStrict(false);
  EXPECT_EQ(form.text(QStringLiteral("nmae")), QString());
}

}  // namespace
}  // namespace thalvorn::app
