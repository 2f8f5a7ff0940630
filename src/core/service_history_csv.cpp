#include "core/service_history_csv.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <unordered_set>

#include "base/date_format.h"
#include "core/part_text.h"

namespace thalvorn {
namespace {

constexpr std::array<std::string_view, 16> columnNames = {
    "completedDate", "taskTitle", "category",        "kind",      "engineHoursAtService", "completedBy",
    "cost",          "partsUsed", "technicianNotes", "totalCost", "photosAndCorrections", "id",
    "taskID",        "vesselID",  "equipmentID",     "partIDs"};

/// Reads one row after the other by the columns of the header.
class LogReader {
 public:
  LogReader(const CsvHeader& header, NumberLocale locale, const Uuid& vesselID, const Calendar& calendar,
            ServiceCsvImport& import)
      : locale_(std::move(locale)), vesselID_(vesselID), calendar_(calendar), import_(import) {
    for (std::size_t i = 0; i < columnNames.size(); ++i) places_[i] = header.column(columnNames[i]);
  }

  void read(const CsvRow& row) {
    row_ = &row;
    ServiceLog log;
    log.taskTitle = text("taskTitle");
    const auto date = parseSpreadsheetDateTime(cell("completedDate"), calendar_);
    if (log.taskTitle.empty() || !date) {
      problem(log.taskTitle.empty()
                  ? std::string("Skipped: the task’s title is missing.")
                  : fmt::format("Skipped: “{}” is not a date such as 2026-05-31 08:00.", cell("completedDate")));
      ++import_.skipped;
      return;
    }
    log.completedDate = *date;
    log.id = identity("id").value_or(Uuid::random());
    log.taskID = identity("taskID").value_or(Uuid());
    log.vesselID = identity("vesselID").value_or(vesselID_);
    log.equipmentID = identity("equipmentID");
    log.category = cell("category").empty() ? Choice(TaskCategory::other) : choiceNamed<TaskCategory>(cell("category"));
    if (!cell("kind").empty()) log.kind = choiceNamed<TaskKind>(cell("kind"));
    log.engineHoursAtService = number("engineHoursAtService").value_or(0);
    log.completedBy = text("completedBy");
    log.technicianNotes = text("technicianNotes");
    log.cost = number("cost");
    readParts(log);
    if (const auto extra = cell("photosAndCorrections"); !extra.empty()) {
      ServiceLog carried = log;
      if (updateFromJson(carried, extra, JsonFields::extra)) {
        log.photoPaths = std::move(carried.photoPaths);
        log.corrections = std::move(carried.corrections);
      } else {
        problem("photosAndCorrections cannot be read; left empty.");
      }
    }
    import_.logs.push_back(std::move(log));
  }

 private:
  std::optional<std::size_t> place(std::string_view name) const {
    for (std::size_t i = 0; i < columnNames.size(); ++i) {
      if (columnNames[i] == name) return places_[i];
    }
    return std::nullopt;
  }
  std::string_view cell(std::string_view name) const { return row_->cell(place(name)); }

  /// A text with its blanks, as it was written.
  std::string text(std::string_view name) const {
    const auto column = place(name);
    if (!column || *column >= row_->cells.size()) return {};
    return std::string(withoutFormulaGuard(row_->cells[*column]));
  }

  void problem(std::string message) { import_.problems.push_back({row_->line, std::move(message)}); }

  std::optional<double> number(std::string_view name) {
    const auto written = cell(name);
    if (written.empty()) return std::nullopt;
    const auto parsed = numberCell(written, locale_);
    if (parsed) return *parsed;
    problem(fmt::format("{}: {} Left empty.", name, parsed.error()));
    return std::nullopt;
  }

  std::optional<Uuid> identity(std::string_view name) {
    const auto written = cell(name);
    if (written.empty()) return std::nullopt;
    const auto id = Uuid::parse(written);
    if (!id) problem(fmt::format("{} “{}” is not an identifier; left empty.", name, written));
    return id;
  }

  void readParts(ServiceLog& log) {
    auto parts = partsFromText(text("partsUsed"));
    if (!parts) return problem(parts.error());
    auto ids = cell("partIDs");
    for (auto& part : *parts) {
      const auto end = std::min(ids.find(' '), ids.size());
      if (const auto id = Uuid::parse(ids.substr(0, end))) part.id = *id;
      ids.remove_prefix(std::min(end + 1, ids.size()));
    }
    log.partsUsed = std::move(*parts);
  }

  std::array<std::optional<std::size_t>, columnNames.size()> places_;
  NumberLocale locale_;
  Uuid vesselID_;
  const Calendar& calendar_;
  ServiceCsvImport& import_;
  const CsvRow* row_ = nullptr;
};

}  // namespace

std::string serviceHistoryCsv(std::span<const ServiceLog> logs, const Calendar& calendar, const CsvFormat& format) {
  CsvWriter csv(format);
  csv.row(columnNames);
  for (const auto& log : logs) {
    csv.text(spreadsheetDateTime(log.completedDate, calendar))
        .text(log.taskTitle)
        .text(log.category.raw())
        .text(log.kind.raw());
    csv.number(log.engineHoursAtService).text(log.completedBy).number(log.cost).text(partsText(log.partsUsed));
    csv.text(log.technicianNotes).number(totalCost(log));
    const bool extra = !log.photoPaths.empty() || !log.corrections.empty();
    csv.text(extra ? toJson(log, JsonFields::extra) : std::string());
    csv.text(log.id.toString()).text(log.taskID.isNil() ? std::string() : log.taskID.toString());
    csv.text(log.vesselID.toString()).text(log.equipmentID ? log.equipmentID->toString() : std::string());
    std::string ids;
    for (const auto& part : log.partsUsed) ids += (ids.empty() ? "" : " ") + part.id.toString();
    csv.text(ids).endRow();
  }
  return csv.take();
}

ServiceCsvImport serviceLogsFromCsv(std::string_view text, const Uuid& vesselID, const Calendar& calendar,
                                    std::optional<CsvSeparator> separator) {
  const auto source = openCsv(text, separator);
  ServiceCsvImport import;
  std::optional<LogReader> reader;
  readCsv(source, [&](const CsvRow& row) {
    if (reader) {
      reader->read(row);
      return true;
    }
    const CsvHeader header(row.cells);
    for (const std::string_view name : {"taskTitle", "completedDate"}) {
      if (header.column(name)) continue;
      import.problems.push_back(
          {row.line, fmt::format("The first line must name the columns; “{}” is missing.", name)});
      return false;
    }
    reader.emplace(header, numbersOf(source.separator), vesselID, calendar, import);
    return true;
  });
  return import;
}

std::vector<ServiceLog> withoutKnown(std::vector<ServiceLog> logs, std::span<const ServiceLog> history,
                                     std::span<const Vessel> fleet, const Uuid& vesselID) {
  const auto nameOf = [](const ServiceLog& log) {
    return log.vesselID.toString() + formatTimestamp(log.completedDate) + log.taskTitle;
  };
  std::unordered_set<Uuid> knownIDs;
  std::unordered_set<std::string> knownNames;
  for (const ServiceLog& log : history) {
    knownIDs.insert(log.id);
    knownNames.insert(nameOf(log));
  }
  std::erase_if(logs, [&](ServiceLog& log) {
    if (std::ranges::find(fleet, log.vesselID, &Vessel::id) == fleet.end()) log.vesselID = vesselID;
    const bool newID = knownIDs.insert(log.id).second;
    return !knownNames.insert(nameOf(log)).second || !newID;
  });
  return logs;
}

}  // namespace thalvorn
