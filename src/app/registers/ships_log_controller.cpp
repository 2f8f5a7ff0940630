#include "app/registers/ships_log_controller.h"

#include "app/maintenance/task_texts.h"
#include "app/registers/register_charts.h"
#include "operations/ships_log.h"
#include "operations/ships_log_report.h"

namespace thalvorn::app {

template class RegisterModelOf<ShipsLogEntry>;
template class RegisterControllerOf<ShipsLogEntry>;

ShipsLogController::ShipsLogController(const RegisterTools& tools, RegisterScope scope, QObject* parent)
    : RegisterControllerOf(tools, scope, parent, scope == RegisterScope::fleet ? QStringLiteral("Search") : QString()) {
}

QVariantList ShipsLogController::journalCategories() const { return plainOptions<TripLogCategory>(); }

bool ShipsLogController::replaceEntry(const ShipsLogEntry& before, ShipsLogEntry after, std::string label) {
  Edit edit{.label = std::move(label)};
  edit.replace(before, std::move(after));
  return applyEdit(std::move(edit));
}

bool ShipsLogController::addJournalLine(const QString& id, const QString& category, const QString& author,
                                        const QString& text) {
  const ShipsLogEntry* entry = find(id);
  if (!entry) {
    say(QStringLiteral("This log entry was deleted meanwhile; the line was not added."), QStringLiteral("overdue"));
    return false;
  }
  auto changed = withJournalLine(*entry, {.id = Uuid::random(),
                                          .timestamp = tools_.store.now(),
                                          .category = Choice<TripLogCategory>::fromRaw(category.toStdString()),
                                          .author = author.toStdString(),
                                          .text = text.toStdString()});
  if (!changed) {
    say(toQt(changed.error()), QStringLiteral("soon"));
    return false;
  }
  return replaceEntry(*entry, *std::move(changed), "Journal line added");
}

void ShipsLogController::removeJournalLine(const QString& id, const QString& lineId) {
  const ShipsLogEntry* entry = find(id);
  const auto line = Uuid::parse(lineId.toStdString());
  if (entry && line) replaceEntry(*entry, withoutJournalLine(*entry, *line), "Journal line deleted");
}

ShipsLogEntry ShipsLogController::blank() const {
  return newShipsLogEntry(vesselAndProfile(vesselInView()).vessel, tools_.store.shipsLog().records(),
                          tools_.store.now());
}

void ShipsLogController::describeMore(const ShipsLogEntry& entry, QVariantMap& described) const {
  QVariantList lines;
  for (const TripLogEntry& line : journalInOrder(entry)) {
    lines.append(QVariantMap{{QStringLiteral("id"), idText(line.id)},
                             {QStringLiteral("time"), tools_.format.dateTime(Format::toQml(line.timestamp))},
                             {QStringLiteral("category"), toQt(line.category.display())},
                             {QStringLiteral("author"), toQt(line.author)},
                             {QStringLiteral("text"), toQt(line.text)}});
  }
  const Vessel* vessel = tools_.store.vessels().find(entry.vesselID);
  described.insert(QStringLiteral("journal"), lines);
  described.insert(QStringLiteral("journalCount"), toQt(journalCountText(entry)));
  described.insert(QStringLiteral("vesselName"), vessel ? toQt(vessel->name) : QString());
}

std::vector<RegisterFigure> ShipsLogController::figuresShown() const {
  ShipsLogTotals totals;
  forEachShown([&](const ShipsLogEntry& entry) { totals.add(entry); });
  std::vector<RegisterFigure> figures;
  for (const ShipsLogStatistic& one : statistics(totals)) figures.push_back({toQt(one.label), toQt(one.value)});
  return figures;
}

QVariantList ShipsLogController::chartsShown() const {
  std::vector<DatedAmount> miles;
  std::vector<DatedAmount> gallons;
  forEachShown([&](const ShipsLogEntry& entry) {
    if (!isOfChart(entry.date, tools_.format)) return;
    if (entry.distanceNM) miles.push_back({entry.date, *entry.distanceNM});
    if (entry.fuelUsedGallons) gallons.push_back({entry.date, *entry.fuelUsedGallons});
  });
  return {monthChart(QStringLiteral("Miles by month"), miles, QStringLiteral("nm"), tools_.format),
          monthChart(QStringLiteral("Fuel by month"), gallons, QStringLiteral("gal"), tools_.format)};
}

std::vector<RegisterPaper> ShipsLogController::papers() const {
  const RegisterPaper trips{QStringLiteral("trips"), QStringLiteral("Trip Reports"),
                            QStringLiteral("Export Trip Reports PDF")};
  const RegisterPaper trip{QStringLiteral("trip"), QStringLiteral("Trip Report"), QStringLiteral("Trip report…"), true};
  if (model()->scope() == RegisterScope::fleet) {
    return {{QStringLiteral("search"), QStringLiteral("Ship's Log — Search Export"), QStringLiteral("Table as PDF…")},
            trips,
            trip};
  }
  return {{QStringLiteral("log"), QStringLiteral("Ship's Log"), QStringLiteral("Ship's log…")}, trips, trip};
}

DocumentMaker ShipsLogController::document(const QString& paper, PaperContents<ShipsLogEntry> contents,
                                           const ReportSetting& setting) const {
  if (paper == u"log") {
    return [contents = std::move(contents), setting] {
      return shipsLogReport(contents.records, contents.vessel, contents.period, setting);
    };
  }
  auto vessels = vesselsOf(contents.records);
  if (paper == u"search") {
    return [contents = std::move(contents), vessels = std::move(vessels), setting] {
      return shipsLogSearchExport(contents.records, vessels, contents.period, setting);
    };
  }
  return [records = std::move(contents.records), vessels = std::move(vessels), setting] {
    return tripReports(records, vessels, setting);
  };
}

std::string ShipsLogController::spreadsheet(const std::vector<ShipsLogEntry>& records, const ReportSetting&,
                                            const CsvFormat& format) const {
  return shipsLogCsv(records, vesselsOf(records), tools_.store.calendar(), format);
}

}  // namespace thalvorn::app
