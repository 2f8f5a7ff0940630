#include "operations/bunkering_report.h"

#include <fmt/format.h>

#include "base/date_format.h"
#include "core/record_paper.h"
#include "operations/bunkering.h"

namespace thalvorn {
namespace {

constexpr std::string_view kInvoiceRemark =
    "Total charge is the amount invoiced including tax; it may differ from quantity × price.";
constexpr std::string_view kGallonRemark = "Quantities in US gallons (1 gal = 3.78541 L).";

class BunkeringWriter {
 public:
  explicit BunkeringWriter(const ReportSetting& setting) : setting_(setting) {}

  std::string gallons(double quantity) const { return formatNumber(quantity, 1, setting_.numbers); }
  std::string litres(double gallons) const {
    return formatNumber(gallons * kLitresPerGallon, 1, setting_.numbers) + " L";
  }
  std::string price(const BunkeringRecord& record, std::string_view currency = {}) const {
    const std::string number = formatNumber(record.pricePerGallon, 3, setting_.numbers);
    return currency.empty() ? number : fmt::format("{} {}", currency, number);
  }
  std::string money(double amount, std::string_view currency) const {
    return formatMoney(amount, currency, setting_.numbers);
  }
  std::string calculated(const BunkeringRecord& record) const {
    return money(calculatedTotal(record.quantityGallons, record.pricePerGallon), record.currency);
  }
  std::string date(Timestamp time) const { return formatDate(setting_.calendar.date(time)); }

  TableRow row(const BunkeringRecord& record) const {
    Cell quantity(gallons(record.quantityGallons));
    if (setting_.litres) quantity.note = litres(record.quantityGallons);
    Cell charge(money(record.totalCharge, record.currency));
    charge.strong = true;
    TableRow row{.cells = {date(record.date), record.port, record.location, record.supplierName,
                           std::string(record.fuelType.display()), quantity, price(record), calculated(record), charge,
                           record.invoiceNumber}};
    if (!record.notes.empty()) row.details.push_back({"Notes", record.notes});
    return row;
  }

  /// How the cost was added up, where that needs saying.
  std::string costRemark(const BunkeringTotals& totals) const {
    if (!totals.hasOtherCurrencies()) return {};
    const bool onlyOne = totals.charges.byCurrency().size() == 1;
    return fmt::format("\nTotal Fuel Cost adds the invoiced numbers without converting them: {}{}",
                       totals.charges.text(setting_.numbers),
                       onlyOne ? ", none of it in US dollars." : "; it is not an amount of any one currency.");
  }

  Summary summary(const BunkeringTotals& totals) const {
    Summary made;
    made.lines.push_back({.label = fmt::format("Total Records: {}     Total Quantity: {} gal", totals.records,
                                               gallons(totals.gallons))});
    if (setting_.litres) made.lines.push_back({.label = "Quantity in litres", .value = litres(totals.gallons)});
    made.lines.push_back({.label = fmt::format("Total Fuel Cost: {}", money(totals.charge, "USD"))});
    if (totals.hasOtherCurrencies()) {
      for (const auto& [currency, charge] : totals.charges.byCurrency())
        made.lines.push_back({.label = "Invoiced in " + currency, .value = money(charge, currency)});
    }
    made.remarks = fmt::format("{}\n{}{}", kInvoiceRemark, kGallonRemark, costRemark(totals));
    return made;
  }

 private:
  const ReportSetting& setting_;
};

}  // namespace

Document bunkeringReport(std::span<const BunkeringRecord> records, const ReportVessel& vessel,
                         const ReportPeriod& period, const ReportSetting& setting) {
  const BunkeringWriter writer(setting);
  Document document = reportOf("⛽  Fuel Bunkering Report", std::span(&vessel, 1), setting);
  document.orientation = Orientation::landscape;
  document.pageLabel = "Fuel Bunkering Report";
  document.fileName = bunkeringFileName(setting.now, setting.calendar);
  document.period = periodOf(records, period, setting.calendar);
  document.headNotes.push_back(orderText(records));
  Table table{.columns = {{.title = "Date", .wraps = false},
                          {.title = "Port", .weight = 1.2},
                          {.title = "Berth / anchorage", .weight = 1.1},
                          {.title = "Supplier / Bunker Co.", .weight = 1.4},
                          {.title = "Fuel", .wraps = false},
                          {.title = "Gallons", .alignment = Alignment::right, .wraps = false},
                          {.title = "Price/gal", .alignment = Alignment::right, .wraps = false},
                          {.title = "Calculated", .alignment = Alignment::right, .wraps = false},
                          {.title = "Total charge", .alignment = Alignment::right, .wraps = false},
                          {.title = "Invoice"}}};
  table.rows.reserve(records.size());
  for (const BunkeringRecord& record : records) table.rows.push_back(writer.row(record));
  document.blocks.push_back(std::move(table));
  document.blocks.push_back(writer.summary(totalsOf(records)));
  document.blocks.push_back(Signatures{{"Chief Engineer — name, signature, date", "Master — name, signature, date"}});
  return document;
}

Document bunkeringRecordReport(const BunkeringRecord& record, const ReportVessel& vessel,
                               const ReportSetting& setting) {
  using R = BunkeringRecord;
  const BunkeringWriter writer(setting);
  Document document = reportOf("Bunkering Record", std::span(&vessel, 1), setting);
  document.period = writer.date(record.date);
  LabeledText quantity = labeledField<&R::quantityGallons>(record, setting, "Quantity");
  if (setting.litres) quantity.value += fmt::format(" ({})", writer.litres(record.quantityGallons));
  document.blocks.push_back(FieldGrid{{labeledField<&R::vesselName>(record, setting),
                                       labeledField<&R::vesselIMO>(record, setting),
                                       labeledField<&R::supplierName>(record, setting),
                                       labeledField<&R::supplierContact>(record, setting),
                                       labeledField<&R::date>(record, setting),
                                       labeledField<&R::port>(record, setting),
                                       labeledField<&R::location>(record, setting, "Berth / anchorage"),
                                       labeledField<&R::fuelType>(record, setting),
                                       std::move(quantity),
                                       {"Price per gallon", writer.price(record, record.currency)},
                                       {"Calculated total", writer.calculated(record)},
                                       {"Total charge (inc. tax)", writer.money(record.totalCharge, record.currency)},
                                       labeledField<&R::currency>(record, setting),
                                       labeledField<&R::invoiceNumber>(record, setting)},
                                      2});
  if (!record.notes.empty()) {
    document.blocks.push_back(Heading{"Notes"});
    document.blocks.push_back(Paragraph{record.notes});
  }
  document.blocks.push_back(Paragraph{fmt::format("{}\n{}", kInvoiceRemark, kGallonRemark), true});
  document.blocks.push_back(Signatures{
      {"Chief Engineer — name, signature, date", "Master — name, signature, date", "Supplier’s representative"}});
  return document;
}

std::string bunkeringCsv(std::span<const BunkeringRecord> records, const Calendar& calendar, const CsvFormat& format) {
  const BunkeringTotals totals = totalsOf(records);
  RecordCsvOptions options{.format = format,
                           .totals = {{"Total Records", static_cast<double>(totals.records)},
                                      {"Total Quantity (Gallons)", totals.gallons, 1},
                                      {"Total Cost (USD)", totals.charge, 2}}};
  if (totals.hasOtherCurrencies()) {
    for (const auto& [currency, charge] : totals.charges.byCurrency())
      options.totals.push_back({"Invoiced in " + currency, charge, currencyDecimals(currency)});
  }
  return recordsCsv(records, calendar, options);
}

std::string bunkeringFileName(Timestamp now, const Calendar& calendar) {
  const LocalTime local = calendar.local(now);
  const auto seconds = local.timeOfDay.count();
  return fmt::format("BunkeringReport_{:04}{:02}{:02}_{:02}{:02}{:02}", static_cast<int>(local.date.year()),
                     static_cast<unsigned>(local.date.month()), static_cast<unsigned>(local.date.day()), seconds / 3600,
                     seconds / 60 % 60, seconds % 60);
}

}  // namespace thalvorn
