#include "sample_documents.h"

#include <fmt/format.h>

#include "base/date_format.h"
#include "base/number_format.h"

namespace thalvorn {
namespace {

VesselParticulars particulars() {
  return {.flag = "Cayman Islands",
          .portOfRegistry = "George Town",
          .imoNumber = "9074729",
          .callSign = "ZGAB7",
          .mmsi = "319 012 300",
          .grossTonnage = ""};
}

}  // namespace

Document sampleRegister(int rows) {
  using std::chrono::days;
  using std::chrono::sys_days;
  const auto now = parseTimestamp("2026-11-21T09:40:00Z").value();
  Document document{.title = "Fuel Bunkering Report",
                    .vesselName = "M/Y Meridian",
                    .period = "1 Sep 2026 – 21 Nov 2026",
                    .headNotes = {fmt::format("{} records, newest first", rows)},
                    .particulars = particulars(),
                    .generatedLine = "Generated: 21 Nov 2026 09:40 UTC",
                    .generatedAt = now,
                    .orientation = Orientation::landscape};
  Table table{.columns = {{.title = "Date", .wraps = false},
                          {.title = "Port", .weight = 1.2},
                          {.title = "Berth / anchorage"},
                          {.title = "Supplier / Bunker Co.", .weight = 1.4},
                          {.title = "Fuel", .wraps = false},
                          {.title = "Gallons", .alignment = Alignment::right, .wraps = false},
                          {.title = "Total charge", .alignment = Alignment::right, .wraps = false},
                          {.title = "Invoice"}}};
  constexpr const char* ports[] = {"Port of Miami", "Nassau", "Charleston, SC", "Newport, RI"};
  constexpr const char* berths[] = {"Berth 7", "Albany Marina", "Megadock", "Fort Adams"};
  constexpr const char* suppliers[] = {"Harbor Bunkers Inc.", "Bahamas Marine Fuels", "Lowcountry Fuel Supply",
                                       "East Passage Energy, filter station"};
  double gallons = 0;
  double charge = 0;
  for (int i = 0; i < rows; ++i) {
    const double taken = 1500 + (i * 37) % 1700;
    gallons += taken;
    charge += taken * 3.912;
    Cell total = formatNumber(taken * 3.912, 2);
    total.strong = true;
    table.rows.push_back(
        {{formatDate(std::chrono::floor<days>(now) - days(i % 5000)), ports[i % 4], berths[i % 4], suppliers[i % 4],
          i % 2 ? "MGO" : "Diesel", formatNumber(taken, 1), total, fmt::format("INV-{:05}", 20418 + i)}});
  }
  document.blocks.push_back(std::move(table));
  document.blocks.push_back(Summary{
      .lines = {{"Total Records", formatNumber(rows, 0)},
                {"Total Quantity (Gallons)", formatNumber(gallons, 1), formatNumber(gallons * 3.78541, 1) + " L"},
                {"Total Cost (USD)", formatNumber(charge, 2)}},
      .remarks = "Total charge is the amount invoiced including tax; it may differ from quantity × price.\n"
                 "Quantities in US gallons (1 gal = 3.78541 L)."});
  document.blocks.push_back(Signatures{
      {"Chief Engineer — name, signature, date", "Master — name, signature, date", "Supplier’s representative"}});
  return document;
}

Document sampleOfEverything() {
  Document document = sampleRegister(0);
  document.title = "Handover notes";
  document.orientation = Orientation::portrait;
  document.paper = PaperSize::letter;
  document.blocks.clear();
  document.blocks.push_back(Heading{"Texts", "in many scripts"});
  document.blocks.push_back(
      Paragraph{"Oil filter, office, waffle: Ölfilter wechseln, масло двигателя, λάδι κινητήρα."});
  document.blocks.push_back(
      Paragraph{"تغيير زيت المحرك 12\nהחלפת שמן\n机油更换 エンジン 엔진\nเปลี่ยนน้ำมันเครื่อง\nAnchor ⚓ done ✅ 🔧 🛥️ "
                "end\ne\u0301te\u0301",
                true});
  document.blocks.push_back(FieldGrid{{{"Builder", "Aurora Yard"}, {"Length", "154.2 ft"}, {"Notes", ""}}, 2});
  document.blocks.push_back(
      Card{"Winter refit", "CRITICAL", {{"Yard", "Palma"}, {"Days", "42"}}, "Shaft seal weeping."});
  document.blocks.push_back(Heading{"Work list"});
  Table table{
      .columns = {{.title = "Job", .weight = 2}, {.title = "Due", .wraps = false}, {.title = "Remarks", .weight = 2}}};
  Cell job("Raw water impeller replacement");
  job.tick = TickBox::open;
  Cell done("Fuel filter replacement");
  done.tick = TickBox::ticked;
  done.struck = true;
  Cell due("in 6.2 h");
  due.note = "at 4,818.6 h";
  due.strong = true;
  std::string longRemark;
  for (int i = 1; i <= 900; ++i) longRemark += fmt::format("remark{} ", i);
  table.rows.push_back({.cells = {"Engine", ""}, .kind = TableRow::Kind::group});
  table.rows.back().cells[0].note = "2";
  table.rows.push_back(
      {.cells = {job, due, "short"}, .details = {{"Parts", "Impeller kit 09-1027B × 1"}, {"", "Bare line"}}});
  table.rows.push_back({.cells = {done, "1 Dec", longRemark}});
  table.rows.push_back({.cells = {"Sum", "", "2 jobs"}, .kind = TableRow::Kind::total});
  document.blocks.push_back(std::move(table));
  document.blocks.push_back(Table{.columns = {{.title = "Defects"}}});
  document.blocks.push_back(PhotoGrid{{{"no/such/file.jpg", "Port shaft seal"}}, 3});
  document.blocks.push_back(Signatures{{"Master — name, signature, date"}});
  return document;
}

}  // namespace thalvorn
