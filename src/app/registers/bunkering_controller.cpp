#include "app/registers/bunkering_controller.h"

#include "app/registers/register_charts.h"
#include "operations/bunkering.h"
#include "operations/bunkering_report.h"

namespace thalvorn::app {

template class RegisterModelOf<BunkeringRecord>;
template class RegisterControllerOf<BunkeringRecord>;

namespace {

const BunkeringRecord* entered(QObject* sheet) {
  auto* of = dynamic_cast<RecordSheetOf<BunkeringRecord>*>(sheet);
  return of ? &of->form().record() : nullptr;
}

}  // namespace

BunkeringController::BunkeringController(const RegisterTools& tools, QObject* parent)
    : RegisterControllerOf(tools, RegisterScope::selectedVessel, parent) {}

QVariantList BunkeringController::currencies(QObject* sheet) const {
  QVariantList options;
  const auto offer = [&](std::string_view code) {
    options.append(QVariantMap{{QStringLiteral("value"), toQt(code)}, {QStringLiteral("text"), toQt(code)}});
  };
  for (const std::string_view code : currencyCodes()) offer(code);
  const BunkeringRecord* record = entered(sheet);
  if (record && !record->currency.empty() &&
      std::ranges::find(currencyCodes(), record->currency) == currencyCodes().end())
    offer(record->currency);
  return options;
}

QString BunkeringController::calculatedTotal(QObject* sheet) const {
  const BunkeringRecord* record = entered(sheet);
  if (!record || record->quantityGallons <= 0 || record->pricePerGallon <= 0) return {};
  return tools_.format.money(thalvorn::calculatedTotal(record->quantityGallons, record->pricePerGallon),
                             toQt(record->currency));
}

QString BunkeringController::inLitres(QObject* sheet) const {
  const BunkeringRecord* record = entered(sheet);
  if (!record || record->quantityGallons <= 0 || !tools_.format.metric()) return {};
  return QStringLiteral("= %1 L").arg(tools_.format.number(record->quantityGallons * kLitresPerGallon));
}

BunkeringRecord BunkeringController::blank() const {
  const auto vessel = vesselAndProfile(vesselInView());
  return newBunkeringRecord(vessel.vessel, vessel.profile, tools_.store.bunkeringRecords().records(),
                            tools_.store.now());
}

void BunkeringController::addRules(RecordFormOf<BunkeringRecord>& form) const {
  form.addRule("quantityGallons", [](const BunkeringRecord& record) {
    return record.quantityGallons > 0 ? QString() : QStringLiteral("Enter how many gallons were delivered.");
  });
}

std::vector<RegisterFigure> BunkeringController::figuresShown() const {
  BunkeringTotals totals;
  forEachShown([&](const BunkeringRecord& record) { totals.add(record); });
  const Format& format = tools_.format;
  const auto litres = [&] {
    return format.metric() ? format.number(totals.gallons * kLitresPerGallon) + QStringLiteral(" L") : QString();
  };
  std::vector<RegisterFigure> figures{
      {QStringLiteral("Total Records"), format.number(static_cast<double>(totals.records))},
      {QStringLiteral("Total Quantity"), format.number(totals.gallons) + QStringLiteral(" gal"), litres()}};
  // Money of different currencies stands side by side and is never added.
  for (const auto& [currency, charge] : totals.charges.byCurrency())
    figures.push_back({QStringLiteral("Charged (%1)").arg(toQt(currency)), format.money(charge, toQt(currency))});
  return figures;
}

QVariantList BunkeringController::chartsShown() const {
  std::vector<DatedAmount> gallons;
  forEachShown([&](const BunkeringRecord& record) {
    if (isOfChart(record.date, tools_.format)) gallons.push_back({record.date, record.quantityGallons});
  });
  return {monthChart(QStringLiteral("Fuel by month"), gallons, QStringLiteral("gal"), tools_.format)};
}

std::vector<RegisterPaper> BunkeringController::papers() const {
  return {{QStringLiteral("report"), QStringLiteral("Fuel Bunkering Report"), QStringLiteral("Bunkering report…")},
          {QStringLiteral("record"), QStringLiteral("Bunkering Record"), QStringLiteral("Print this record…"), true}};
}

DocumentMaker BunkeringController::document(const QString& paper, PaperContents<BunkeringRecord> contents,
                                            const ReportSetting& setting) const {
  if (paper == u"record" && !contents.records.empty()) {
    return [record = contents.records.front(), vessel = std::move(contents.vessel), setting] {
      return bunkeringRecordReport(record, vessel, setting);
    };
  }
  return [contents = std::move(contents), setting] {
    return bunkeringReport(contents.records, contents.vessel, contents.period, setting);
  };
}

std::string BunkeringController::spreadsheet(const std::vector<BunkeringRecord>& records, const ReportSetting& setting,
                                             const CsvFormat& format) const {
  return bunkeringCsv(records, setting.calendar, format);
}

QString BunkeringController::csvName() const {
  return toQt(bunkeringFileName(tools_.store.now(), tools_.store.calendar()));
}

}  // namespace thalvorn::app
