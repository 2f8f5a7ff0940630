#include "app/registers/gmdss_controller.h"

#include "app/registers/register_charts.h"
#include "compliance/gmdss_report.h"

namespace thalvorn::app {

template class RegisterModelOf<GMDSSTestLog>;
template class RegisterControllerOf<GMDSSTestLog>;

GMDSSController::GMDSSController(const RegisterTools& tools, QObject* parent)
    : RegisterControllerOf(tools, RegisterScope::selectedVessel, parent) {}

RadioStation GMDSSController::station(const Uuid& vesselID) const {
  const AppViewModel& store = tools_.store;
  return radioStation(vesselID, store.gmdssTestLogs().records(), store.equipment().records(),
                      store.documents().records(), store.crewMembers().records(), store.now(),
                      tools_.reports.setting(vesselID).calendar);
}

GMDSSTestLog GMDSSController::blank() const { return newGMDSSTest(tools_.store.displayName(), tools_.store.now()); }

void GMDSSController::addRules(RecordFormOf<GMDSSTestLog>& form) const {
  form.addRule("date", [this](const GMDSSTestLog& test) {
    return test.date <= tools_.store.now() ? QString() : QStringLiteral("A test is logged once it was done.");
  });
  form.addRule("notes", [](const GMDSSTestLog& test) {
    return test.result == GMDSSTestResult::pass || !test.notes.empty()
               ? QString()
               : QStringLiteral("Write what was found, and what is done about it.");
  });
}

void GMDSSController::describeMore(const GMDSSTestLog& test, QVariantMap& described) const {
  const RadioStation station = this->station(test.vesselID);
  const auto day = [&](const char* before, const std::optional<Timestamp>& time) {
    return time ? QString::fromLatin1(before) + tools_.format.date(Format::toQml(*time)) : QString();
  };
  QVariantList standings;
  for (const GMDSSDue& due : station.dues)
    standings.append(QVariantMap{{QStringLiteral("name"), toQt(displayText(due.test))},
                                 {QStringLiteral("standing"), toQt(displayText(due.standing))},
                                 {QStringLiteral("nextDue"), day("", due.nextDue)}});
  QVariantList operators;
  for (const auto& [name, certificate] : station.operators)
    operators.append(QVariantMap{{QStringLiteral("name"), toQt(name)},
                                 {QStringLiteral("number"), toQt(certificate.certNumber)},
                                 {QStringLiteral("expiry"), day("until ", certificate.expiryDate)}});
  described.insert(QStringLiteral("standings"), standings);
  described.insert(QStringLiteral("operators"), operators);
}

std::vector<RegisterFigure> GMDSSController::figuresShown() const {
  GMDSSTotals totals;
  forEachShown([&](const GMDSSTestLog& test) { totals.add(test); });
  const auto number = [this](std::size_t count) { return tools_.format.number(static_cast<double>(count)); };
  std::vector<RegisterFigure> figures{{QStringLiteral("Tests"), number(totals.tests)},
                                      {QStringLiteral("Passed"), number(totals.passed)},
                                      {QStringLiteral("Failed"), number(totals.failed)}};
  if (totals.withNotes > 0) figures[1].note = number(totals.withNotes) + QStringLiteral(" with notes");
  if (const auto vessel = vesselInView()) {
    const auto dues = station(*vessel).dues;
    const auto inOrder = static_cast<std::size_t>(std::ranges::count_if(dues, &GMDSSDue::inOrder));
    figures.push_back({QStringLiteral("Periodic tests"),
                       QStringLiteral("%1 of %2 in date").arg(number(inOrder), number(dues.size())),
                       inOrder == dues.size() ? QString() : toQt(gmdssStandingText(dues))});
  }
  return figures;
}

QVariantList GMDSSController::chartsShown() const {
  std::vector<DatedAmount> tests;
  forEachShown([&](const GMDSSTestLog& test) {
    if (isOfChart(test.date, tools_.format)) tests.push_back({test.date, 1});
  });
  return {monthChart(QStringLiteral("Tests by month"), tests, QStringLiteral("tests"), tools_.format)};
}

std::vector<RegisterPaper> GMDSSController::papers() const {
  return {
      {QStringLiteral("log"), QStringLiteral("GMDSS Compliance Log"), QStringLiteral("Compliance log…")},
      {QStringLiteral("entry"), QStringLiteral("GMDSS Compliance Entry"), QStringLiteral("Print this entry…"), true}};
}

DocumentMaker GMDSSController::document(const QString& paper, PaperContents<GMDSSTestLog> contents,
                                        const ReportSetting& setting) const {
  if (paper == u"entry" && !contents.records.empty()) {
    return [record = contents.records.front(), vessel = std::move(contents.vessel), setting] {
      return gmdssEntryReport(record, vessel, setting);
    };
  }
  return [radio = station(contents.vessel.vessel.id), contents = std::move(contents), setting] {
    return gmdssReport(contents.records, radio, contents.vessel, contents.period, setting);
  };
}

}  // namespace thalvorn::app
