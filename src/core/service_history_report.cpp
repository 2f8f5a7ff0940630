#include "core/service_history_report.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/date_format.h"

namespace thalvorn {
namespace {

std::string fileNameOf(std::string_view path) { return std::string(path.substr(path.find_last_of('/') + 1)); }

class HistoryWriter {
 public:
  HistoryWriter(std::string_view currency, const ServiceHistoryOptions& options, const ReportSetting& setting)
      : currency_(currency), options_(options), setting_(setting) {}

  TableRow row(const ServiceLog& log) const {
    Cell task(log.taskTitle);
    if (log.kind != TaskKind::plannedMaintenance) task.note = log.kind.display();
    TableRow row{.cells = {date(log.completedDate), task, Cell(std::string(log.category.display())),
                           formatNumber(log.engineHoursAtService, 1, setting_.numbers), log.completedBy,
                           money(log.cost), money(partsCost(log)), money(totalCost(log))}};
    row.cells.back().strong = true;
    if (options_.detailed) row.details = details(log);
    return row;
  }

  static std::optional<double> partsCost(const ServiceLog& log) {
    std::optional<double> sum;
    for (const auto& part : log.partsUsed) {
      if (part.cost) sum = sum.value_or(0) + *part.cost;
    }
    return sum;
  }

  std::string money(const std::optional<double>& amount) const {
    return amount ? formatNumber(*amount, currencyDecimals(currency_), setting_.numbers) : std::string();
  }

  std::string date(Timestamp time) const { return formatDate(setting_.calendar.date(time)); }

 private:
  std::vector<LabeledText> details(const ServiceLog& log) const {
    std::vector<LabeledText> lines;
    if (!log.technicianNotes.empty()) lines.push_back({"Notes", log.technicianNotes});
    if (log.equipmentID && options_.equipmentName) {
      lines.push_back({"Equipment", options_.equipmentName(*log.equipmentID)});
    }
    std::string parts;
    for (const auto& part : log.partsUsed) parts += (parts.empty() ? "" : "\n") + partLine(part);
    if (!parts.empty()) lines.push_back({"Parts", parts});
    std::string photos;
    for (const auto& path : log.photoPaths) photos += (photos.empty() ? "" : ", ") + fileNameOf(path);
    if (!photos.empty()) lines.push_back({"Photos", photos});
    for (const auto& correction : log.corrections) lines.push_back({"Corrected", correctionLine(correction)});
    return lines;
  }

  std::string partLine(const PartUsage& part) const {
    std::string line = fmt::format("{} × {}", formatQuantity(part.quantity, 3, setting_.numbers), part.name);
    if (!part.partNumber.empty()) line += fmt::format("  ·  {}", part.partNumber);
    if (part.cost) line += fmt::format("  ·  {} {}", currency_, money(part.cost));
    return line;
  }

  std::string correctionLine(const LogCorrection& correction) const {
    const auto label = [&] {
      for (const auto& facts : RecordFacts<ServiceLog>::facts) {
        if (facts.name == correction.field) return std::string(facts.label);
      }
      return correction.field;
    }();
    std::string line =
        fmt::format("{}: {} read “{}”, now “{}”", date(correction.at), label, correction.before, correction.after);
    if (!correction.reason.empty()) line += fmt::format(" ({})", correction.reason);
    if (!correction.author.empty()) line += fmt::format(", {}", correction.author);
    return line;
  }

  std::string_view currency_;
  const ServiceHistoryOptions& options_;
  const ReportSetting& setting_;
};

/// The days asked for, else those of the services.
std::string periodOf(std::span<const ServiceLog> logs, const ServiceHistoryOptions& options, const Calendar& calendar) {
  ReportPeriod period{options.from, options.to};
  if (!logs.empty()) {
    const auto [first, last] = std::ranges::minmax(logs, {}, &ServiceLog::completedDate);
    if (!period.first) period.first = first.completedDate;
    if (!period.last) period.last = last.completedDate;
  }
  return periodText(period, calendar);
}

}  // namespace

Document serviceHistoryReport(std::span<const ServiceLog> logs, const Vessel& vessel, const VesselProfile& profile,
                              const ServiceHistoryOptions& options, const ReportSetting& setting) {
  const std::string currency(costCurrency(profile));
  const HistoryWriter writer(currency, options, setting);
  Document document =
      reportOf(options.detailed ? "Service History (Detailed)" : "Service History", vessel, profile, setting);
  document.orientation = Orientation::landscape;
  document.period = periodOf(logs, options, setting.calendar);
  document.headNotes.push_back(fmt::format("{} {}", logs.size(), logs.size() == 1 ? "service" : "services"));

  Table table{
      .columns = {{.title = "Date", .wraps = false},
                  {.title = "Task", .weight = 2.4},
                  {.title = "Category", .weight = 1.2},
                  {.title = "Meter (hrs)", .alignment = Alignment::right, .wraps = false},
                  {.title = "Done by", .weight = 1.2},
                  {.title = "Labor", .alignment = Alignment::right, .wraps = false},
                  {.title = "Parts", .alignment = Alignment::right, .wraps = false},
                  {.title = fmt::format("Total ({})", currency), .alignment = Alignment::right, .wraps = false}}};
  std::optional<double> labor;
  std::optional<double> parts;
  PhotoGrid photos;
  for (const auto& log : logs) {
    table.rows.push_back(writer.row(log));
    if (log.cost) labor = labor.value_or(0) + *log.cost;
    if (const auto cost = HistoryWriter::partsCost(log)) parts = parts.value_or(0) + *cost;
    if (!options.detailed || !options.photoFile) continue;
    for (const auto& path : log.photoPaths) {
      auto file = options.photoFile(path);
      if (file.empty()) continue;
      photos.photos.push_back({std::move(file), fmt::format("{}, {}\n{}", log.taskTitle, writer.date(log.completedDate),
                                                            fileNameOf(path))});
    }
  }
  document.blocks.push_back(std::move(table));
  const auto total = [&](const std::optional<double>& amount) { return writer.money(amount.value_or(0)); };
  document.blocks.push_back(
      Summary{.lines = {{"Total Records", formatNumber(static_cast<double>(logs.size()), 0, setting.numbers)},
                        {fmt::format("Labor Cost ({})", currency), total(labor)},
                        {fmt::format("Parts Cost ({})", currency), total(parts)},
                        {fmt::format("Total Cost ({})", currency), total(labor.value_or(0) + parts.value_or(0))}},
              .remarks = "Meter readings are hours at the service."});
  if (!photos.photos.empty()) {
    document.blocks.push_back(Heading{"Photos"});
    document.blocks.push_back(std::move(photos));
  }
  document.blocks.push_back(Signatures{{"Chief Engineer — name, signature, date", "Master — name, signature, date"}});
  return document;
}

}  // namespace thalvorn
