#include "core/work_list_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <unordered_map>

#include "base/date_format.h"
#include "core/status_reason.h"

namespace thalvorn {
namespace {

using LastServices = std::unordered_map<Uuid, const ServiceLog*>;

LastServices lastServices(std::span<const ServiceLog> logs) {
  LastServices last;
  for (const auto& log : logs) {
    const auto [found, isNew] = last.emplace(log.taskID, &log);
    if (!isNew && found->second->completedDate < log.completedDate) found->second = &log;
  }
  return last;
}

std::vector<TaskRow> listed(std::span<const MaintenanceTask> tasks, const Vessel& vessel, TaskQuery query,
                            const StatusHorizon& horizon) {
  query.vesselID = vessel.id;
  return listTasks(tasks, Fleet(std::span(&vessel, 1)), horizon, query);
}

std::string joined(std::initializer_list<std::string> parts, std::string_view separator) {
  std::string text;
  for (const auto& part : parts) {
    if (part.empty()) continue;
    if (!text.empty()) text += separator;
    text += part;
  }
  return text;
}

std::string hours(double value, const ReportSetting& setting) {
  return formatNumber(value, 1, setting.numbers) + " hrs";
}

class WorkListWriter {
 public:
  WorkListWriter(const Vessel& vessel, const LastServices& last, const ReportSetting& setting,
                 const StatusHorizon& horizon)
      : vessel_(vessel), last_(last), setting_(setting), horizon_(horizon) {}

  /// The second column tells what the group does not: its status in a category, its category in a status.
  TableRow row(const MaintenanceTask& task, bool byCategory) const {
    const auto reason = explainStatus(task, vessel_, horizon_, setting_.calendar);
    return {.cells = {job(task), text(byCategory ? displayText(reason.status) : task.category.display()),
                      meter(task, reason), due(task, reason), every(task), lastDone(task), Cell()}};
  }

  /// How the job repeats: "500 hrs" and "365 days" below each other.
  std::string every(const MaintenanceTask& task) const {
    const auto days = task.recurringDays.value_or(0);
    const auto run = task.recurringEngineHours.value_or(0);
    return joined({run > 0 ? formatQuantity(run, 1, setting_.numbers) + " hrs" : "",
                   days > 0 ? fmt::format("{} {}", formatNumber(static_cast<double>(days), 0, setting_.numbers),
                                          days == 1 ? "day" : "days")
                            : ""},
                  "\n");
  }

  const ServiceLog* lastService(const MaintenanceTask& task) const {
    const auto found = last_.find(task.id);
    return found == last_.end() ? nullptr : found->second;
  }

 private:
  static Cell text(std::string_view value) { return Cell(std::string(value)); }

  Cell job(const MaintenanceTask& task) const {
    Cell cell(task.title);
    cell.tick = task.isCompleted ? TickBox::ticked : TickBox::open;
    const bool planned = task.kind == TaskKind::plannedMaintenance;
    const bool urgent = task.priority == TaskPriority::high;
    const std::string marks =
        joined({urgent ? "High priority" : "", planned ? "" : std::string(task.kind.display())}, "  ·  ");
    cell.note = joined({marks, task.notes}, "\n");
    return cell;
  }

  Cell meter(const MaintenanceTask& task, const StatusReason& reason) const {
    if (!task.dueAtEngineHours && task.recurringEngineHours.value_or(0) <= 0) return "—";
    Cell cell = text(task.hourSource.display());
    cell.note = reason.meterMissing ? "not fitted" : hours(vessel_.reading(task.hourSource), setting_);
    return cell;
  }

  Cell due(const MaintenanceTask& task, const StatusReason& reason) const {
    Cell cell(joined({task.dueDate ? formatDate(setting_.calendar.date(*task.dueDate)) : "",
                      task.dueAtEngineHours ? hours(*task.dueAtEngineHours, setting_) : ""},
                     "\n"));
    if (cell.text.empty()) return "—";
    cell.strong = reason.status == TaskStatus::overdue;
    const bool days = reason.decidedBy != TriggerType::engineHours;
    const bool run = reason.decidedBy && reason.decidedBy != TriggerType::date;
    cell.note = joined(
        {days && task.dueDate ? inWords(*task.dueDate) : "",
         run && reason.remainingHours ? remaining(*reason.remainingHours) : "",
         reason.snoozed && task.snoozedUntil ? "snoozed until " + formatDate(setting_.calendar.date(*task.snoozedUntil))
                                             : ""},
        "\n");
    return cell;
  }

  /// "6 days past", "in 4 days"; nothing for a day so far off that its date says it best.
  std::string inWords(Timestamp due) const {
    const auto today = setting_.calendar.date(setting_.now);
    const auto date = setting_.calendar.date(due);
    if (date < today) return formatDue(due, setting_.now, setting_.calendar);
    const auto words = formatDistance(due, setting_.now, setting_.calendar);
    return words == formatShortDate(date, today) ? std::string() : words;
  }

  std::string remaining(double value) const {
    return value < 0 ? hours(-value, setting_) + " past" : "in " + hours(value, setting_);
  }

  Cell lastDone(const MaintenanceTask& task) const {
    const auto* log = lastService(task);
    if (!log) return "—";
    Cell cell(formatDate(setting_.calendar.date(log->completedDate)));
    cell.note = joined(
        {log->engineHoursAtService > 0 ? hours(log->engineHoursAtService, setting_) : "", log->completedBy}, "\n");
    return cell;
  }

  const Vessel& vessel_;
  const LastServices& last_;
  const ReportSetting& setting_;
  const StatusHorizon& horizon_;
};

FieldGrid metersOf(const Vessel& vessel, const ReportSetting& setting) {
  constexpr std::size_t mostAbreast = 5;
  FieldGrid grid;
  for (const HourSource source : vessel.meters()) {
    grid.fields.push_back({std::string(displayText(source)), hours(vessel.reading(source), setting)});
  }
  if (vessel.engineHoursUpdatedAt) {
    grid.fields.push_back({"Read on", formatDate(setting.calendar.date(*vessel.engineHoursUpdatedAt))});
  }
  grid.columns = static_cast<int>(std::min(grid.fields.size(), mostAbreast));
  return grid;
}

/// "7 overdue, 21 due soon, 40 on track, 2 snoozed": as the counters of the board, which leave snoozed tasks out.
std::string countsOf(std::span<const TaskRow> rows) {
  std::array<std::size_t, caseCount<TaskStatus>> counts{};
  std::size_t snoozed = 0;
  for (const auto& row : rows) ++(row.snoozed ? snoozed : counts[static_cast<std::size_t>(row.status)]);
  std::string text = fmt::format("{} overdue, {} due soon, {} on track", counts[0], counts[1], counts[2]);
  if (counts[3] > 0) text += fmt::format(", {} beyond horizon", counts[3]);
  if (snoozed > 0) text += fmt::format(", {} snoozed", snoozed);
  return text;
}

/// What the list was narrowed to, so that nobody takes a part of the work for the whole; empty when nothing was.
std::string narrowing(const TaskQuery& query) {
  const std::string what = joined({query.filter == FilterOption::all ? "" : std::string(displayText(query.filter)),
                                   query.kind ? std::string(displayText(*query.kind)) : "",
                                   query.category ? std::string(query.category->display()) : "",
                                   query.search.empty() ? "" : "“" + query.search + "”"},
                                  " · ");
  return what.empty() ? what : "Only: " + what;
}

std::string_view triggerCell(Choice<TriggerType> trigger) {
  return trigger == TriggerType::engineHours ? std::string_view("hours") : trigger.raw();
}

}  // namespace

Document workListReport(std::span<const MaintenanceTask> tasks, std::span<const ServiceLog> logs, const Vessel& vessel,
                        const VesselProfile& profile, const TaskQuery& query, const ReportSetting& setting) {
  const StatusHorizon horizon(setting.now, setting.calendar);
  const auto rows = listed(tasks, vessel, query, horizon);
  const auto last = lastServices(logs);
  const WorkListWriter writer(vessel, last, setting, horizon);

  Document document = reportOf("Maintenance Work List", vessel, profile, setting);
  document.orientation = Orientation::landscape;
  document.headNotes.push_back(countsOf(rows));
  if (auto part = narrowing(query); !part.empty()) document.headNotes.push_back(std::move(part));
  if (auto meters = metersOf(vessel, setting); !meters.fields.empty()) document.blocks.push_back(std::move(meters));

  Table table{.columns = {{.title = "Task", .weight = 3},
                          {.title = query.groupByCategory ? "Status" : "Category", .weight = 1.2},
                          {.title = "Meter", .wraps = false},
                          {.title = "Due", .wraps = false},
                          {.title = "Interval", .wraps = false},
                          {.title = "Last done", .weight = 1.2},
                          {.title = "Done: date, hours, initials", .weight = 1.4}},
              .emptyText = "Nothing is due."};
  std::optional<std::size_t> group;
  const auto startGroup = [&](std::string_view title) {
    if (group) table.rows[*group].cells[0].note = fmt::format("{}", table.rows.size() - *group - 1);
    if (title.empty()) return;
    group = table.rows.size();
    table.rows.push_back({.cells = {Cell(std::string(title))}, .kind = TableRow::Kind::group});
  };
  const auto put = [&](const TaskRow& row) {
    table.rows.push_back(writer.row(tasks[row.index], query.groupByCategory));
  };
  if (query.groupByCategory) {
    for (const auto& run : categoryGroups(rows, tasks)) {
      startGroup(run.category.display());
      for (const auto& row : std::span(rows).subspan(run.first, run.count)) put(row);
    }
  } else {
    const auto putGroup = [&](std::string_view title, const auto& belongs) {
      bool started = false;
      for (const auto& row : rows) {
        if (!belongs(row)) continue;
        if (!started) startGroup(title);
        started = true;
        put(row);
      }
    };
    for (const TaskStatus status : allCases<TaskStatus>()) {
      putGroup(displayText(status), [status](const TaskRow& row) { return row.status == status && !row.snoozed; });
    }
    putGroup("Snoozed", [](const TaskRow& row) { return row.snoozed; });
  }
  startGroup({});
  document.blocks.push_back(std::move(table));
  document.blocks.push_back(Signatures{{"Chief Engineer — name, signature, date", "Master — name, signature, date"}});
  return document;
}

std::string workListCsv(std::span<const MaintenanceTask> tasks, std::span<const ServiceLog> logs, const Vessel& vessel,
                        const TaskQuery& query, const ReportSetting& setting, const CsvFormat& format) {
  const StatusHorizon horizon(setting.now, setting.calendar);
  const auto last = lastServices(logs);
  CsvWriter csv(format);
  constexpr std::array<std::string_view, 16> header = {
      "title",   "category", "triggerType", "recurringDays", "dueAtHours",   "recurringHours", "hourSource", "notes",
      "dueDate", "priority", "kind",        "status",        "snoozedUntil", "meterReading",   "lastDone",   "vessel"};
  csv.row(header);
  for (const auto& row : listed(tasks, vessel, query, horizon)) {
    const auto& task = tasks[row.index];
    csv.text(task.title).text(task.category.raw()).text(triggerCell(task.triggerType));
    task.recurringDays ? csv.integer(*task.recurringDays) : csv.empty();
    csv.number(task.dueAtEngineHours).number(task.recurringEngineHours).text(task.hourSource.display());
    csv.text(task.notes);
    const auto date = [&](const std::optional<Timestamp>& time) {
      csv.text(time ? spreadsheetDateTime(*time, setting.calendar) : std::string());
    };
    date(task.dueDate);
    csv.text(task.priority.raw()).text(task.kind.raw()).text(displayText(row.status));
    date(task.snoozedUntil);
    csv.number(vessel.reading(task.hourSource));
    const auto found = last.find(task.id);
    date(found == last.end() ? std::nullopt : std::optional(found->second->completedDate));
    csv.text(vessel.name).endRow();
  }
  return csv.take();
}

}  // namespace thalvorn
