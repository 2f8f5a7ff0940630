// report: the papers of the programme and of the registers, as PDF and for spreadsheets.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <QFile>
#include <QLocale>
#include <algorithm>
#include <array>

#include "cli/commands.h"
#include "cli/history_query.h"
#include "cli/json_text.h"
#include "cli/register_query.h"
#include "cli/store_use.h"
#include "compliance/gmdss_report.h"
#include "core/service_history_csv.h"
#include "core/service_history_report.h"
#include "core/work_list_report.h"
#include "operations/bunkering_report.h"
#include "operations/ships_log_report.h"
#include "reports/pdf_renderer.h"

namespace thalvorn::cli {
namespace {

/// What a report is made from.
struct ReportRequest {
  const CommandContext& context;
  const Arguments& arguments;
  std::vector<ReportVessel> vessels;  ///< the one that is named, or all of the fleet
  ReportSetting setting;

  const AppViewModel& store() const { return *context.store; }
  const ReportVessel& vessel() const { return vessels.front(); }
};

/// A report ready to be written: its pages and its spreadsheet.
struct Report {
  Document document;
  std::string csv;
};
using MadeReport = std::expected<Report, CommandResult>;

/// One report that can be asked for.
struct ReportKind {
  std::string_view name;
  std::string_view summary;
  bool ofOneVessel = true;
  std::span<const std::string_view> options;  ///< besides --vessel, --pdf and --csv
  MadeReport (*make)(const ReportRequest&);
};

MadeReport workList(const ReportRequest& request) {
  if (auto refusal = closed<MaintenanceTask>(request.store())) return std::unexpected(*std::move(refusal));
  const auto tasks = request.store().tasks().records();
  const auto logs = request.store().logs().records();
  const auto& [vessel, profile] = request.vessel();
  const TaskQuery query{.vesselID = vessel.id};
  return Report{workListReport(tasks, logs, vessel, profile, query, request.setting),
                workListCsv(tasks, logs, vessel, query, request.setting)};
}

MadeReport serviceHistory(const ReportRequest& request) {
  const AppViewModel& store = request.store();
  const auto& [vessel, profile] = request.vessel();
  auto query = historyQuery(request.context, request.arguments);
  if (!query) return std::unexpected(query.error());
  query->vesselID = vessel.id;
  std::vector<ServiceLog> logs;
  for (const ServiceLog* log : services(store, *query)) logs.push_back(*log);
  ServiceHistoryOptions options{.detailed = request.arguments.has("--detailed"), .from = query->from, .to = query->to};
  options.equipmentName = [&store](const Uuid& id) {
    const EquipmentItem* item = store.equipment().find(id);
    return item != nullptr ? item->component : std::string();
  };
  return Report{serviceHistoryReport(logs, vessel, profile, options, request.setting),
                serviceHistoryCsv(logs, request.setting.calendar)};
}

/// The records of a register that are asked for, and the period they were asked for.
template <HasRegister T>
struct Selected {
  std::vector<T> records;
  ReportPeriod period;
};

template <HasRegister T>
std::expected<Selected<T>, CommandResult> selected(const ReportRequest& request) {
  if (auto refusal = closed<T>(request.store())) return std::unexpected(*std::move(refusal));
  auto query = registerQuery<T>(request.context, request.arguments);
  if (!query) return std::unexpected(query.error());
  for (const ReportVessel& one : request.vessels) query->vessels.push_back(one.vessel.id);
  auto records = selectedRecords<T>(request.store(), *query, request.arguments);
  if (!records) return std::unexpected(records.error());
  Selected<T> found{*std::move(records), {query->from, query->until}};
  if (found.period.last) *found.period.last -= std::chrono::seconds(1);
  return found;
}

std::string logCsv(const ReportRequest& request, const Selected<ShipsLogEntry>& log) {
  return shipsLogCsv(log.records, request.vessels, request.setting.calendar);
}

MadeReport shipsLog(const ReportRequest& request) {
  const auto log = selected<ShipsLogEntry>(request);
  if (!log) return std::unexpected(log.error());
  return Report{shipsLogReport(log->records, request.vessel(), log->period, request.setting), logCsv(request, *log)};
}

MadeReport shipsLogSearch(const ReportRequest& request) {
  const auto log = selected<ShipsLogEntry>(request);
  if (!log) return std::unexpected(log.error());
  return Report{shipsLogSearchExport(log->records, request.vessels, log->period, request.setting),
                logCsv(request, *log)};
}

MadeReport trips(const ReportRequest& request) {
  const auto log = selected<ShipsLogEntry>(request);
  if (!log) return std::unexpected(log.error());
  return Report{tripReports(log->records, request.vessels, request.setting), logCsv(request, *log)};
}

MadeReport bunkering(const ReportRequest& request) {
  const auto taken = selected<BunkeringRecord>(request);
  if (!taken) return std::unexpected(taken.error());
  return Report{bunkeringReport(taken->records, request.vessel(), taken->period, request.setting),
                bunkeringCsv(taken->records, request.setting.calendar)};
}

MadeReport bunkeringRecord(const ReportRequest& request) {
  const auto taken = selected<BunkeringRecord>(request);
  if (!taken) return std::unexpected(taken.error());
  if (taken->records.empty())
    return std::unexpected(refused(fmt::format("{} has no such bunkering record.", request.vessel().vessel.name)));
  const BunkeringRecord& record = taken->records.front();
  return Report{bunkeringRecordReport(record, request.vessel(), request.setting),
                bunkeringCsv(std::span(&record, 1), request.setting.calendar)};
}

MadeReport gmdss(const ReportRequest& request) {
  const auto tests = selected<GMDSSTestLog>(request);
  if (!tests) return std::unexpected(tests.error());
  const AppViewModel& store = request.store();
  const RadioStation station = radioStation(
      request.vessel().vessel.id, store.gmdssTestLogs().records(), store.equipment().records(),
      store.documents().records(), store.crewMembers().records(), request.setting.now, request.setting.calendar);
  return Report{gmdssReport(tests->records, station, request.vessel(), tests->period, request.setting),
                recordsCsv<GMDSSTestLog>(tests->records, request.setting.calendar)};
}

MadeReport gmdssEntry(const ReportRequest& request) {
  const auto tests = selected<GMDSSTestLog>(request);
  if (!tests) return std::unexpected(tests.error());
  if (tests->records.empty())
    return std::unexpected(refused(fmt::format("{} has no such test log entry.", request.vessel().vessel.name)));
  const GMDSSTestLog& test = tests->records.front();
  return Report{gmdssEntryReport(test, request.vessel(), request.setting),
                recordsCsv(std::span(&test, 1), request.setting.calendar)};
}

constexpr std::array<std::string_view, 3> kHistoryOptions{"--from", "--to", "--detailed"};
constexpr std::array<std::string_view, 6> kRegisterOptions{"--from",   "--to",           "--search",
                                                           "--filter", "--oldest-first", "--id"};

constexpr std::array kReports{
    ReportKind{"work-list", "what is to be done, to tick and sign", true, {}, workList},
    ReportKind{"service-history", "what was done and what it cost", true, kHistoryOptions, serviceHistory},
    ReportKind{"ship-log", "the ship’s log of one vessel", true, kRegisterOptions, shipsLog},
    ReportKind{"ship-log-search", "log entries of all vessels, or of one", false, kRegisterOptions, shipsLogSearch},
    ReportKind{"trip-reports", "a page for every log entry, with roster, manifest and journal", false, kRegisterOptions,
               trips},
    ReportKind{"bunkering", "fuel deliveries with their totals", true, kRegisterOptions, bunkering},
    ReportKind{"bunkering-record", "one delivery: the newest of those asked for", true, kRegisterOptions,
               bunkeringRecord},
    ReportKind{"gmdss", "radio tests, with what is due and the radio station", true, kRegisterOptions, gmdss},
    ReportKind{"gmdss-entry", "one radio test: the newest of those asked for", true, kRegisterOptions, gmdssEntry},
};

std::string reportList() {
  std::string list;
  for (const ReportKind& kind : kReports) list += fmt::format("\n  {:<16}  {}", kind.name, kind.summary);
  return list;
}

/// Why the options do not suit the report.
std::optional<CommandResult> misuse(const ReportKind& kind, const Arguments& arguments) {
  constexpr std::array<std::string_view, 3> always{"--vessel", "--pdf", "--csv"};
  for (const auto& [option, values] : arguments.options) {
    if (std::ranges::count(always, option) > 0 || std::ranges::count(kind.options, option) > 0) continue;
    std::vector<std::string_view> takers;
    for (const ReportKind& other : kReports)
      if (std::ranges::count(other.options, option) > 0) takers.push_back(other.name);
    if (!takers.empty())
      return misused(
          fmt::format("{} does not go with {}; it belongs to {}.", option, kind.name, fmt::join(takers, ", ")));
  }
  if (!arguments.has("--pdf") && !arguments.has("--csv"))
    return misused("Where to? Give --pdf FILE, --csv FILE or both.");
  return std::nullopt;
}

/// The vessels of the report: the one that is named, else all; of a report of one vessel the only one there is.
std::expected<std::vector<ReportVessel>, CommandResult> reportedVessels(const AppViewModel& store,
                                                                        const Arguments& arguments, bool one) {
  const auto named = vesselOption(store, arguments);
  if (!named) return std::unexpected(named.error());
  if (store.vessels().empty()) return std::unexpected(refused("The fleet has no vessels."));
  if (one && *named == nullptr && store.vessels().size() > 1)
    return std::unexpected(misused("The fleet has several vessels, and a report is of one: name it with --vessel."));
  std::vector<ReportVessel> vessels;
  for (const Vessel* vessel : store.vesselsInOrder()) {
    if (*named != nullptr && vessel != *named) continue;
    const VesselProfile* profile = store.profileOf(vessel->id);
    vessels.push_back({*vessel, profile != nullptr ? *profile : VesselProfile{}});
  }
  return vessels;
}

ReportSetting settingFor(const CommandContext& context, const std::vector<ReportVessel>& vessels) {
  const bool american = QLocale().measurementSystem() == QLocale::ImperialUSSystem;
  ReportSetting setting{.now = context.now,
                        .calendar = context.calendar,
                        .paper = american ? PaperSize::letter : PaperSize::a4,
                        .litres = QLocale().measurementSystem() == QLocale::MetricSystem};
  if (vessels.size() == 1) setting.calendar = calendarAboard(context, vessels.front().vessel.id);
  return setting;
}

/// The file that is named; in a folder that is named the report's own name.
std::filesystem::path reportFile(const CommandContext& context, const std::string& named, const Document& document,
                                 std::string_view ending) {
  std::filesystem::path file = context.file(named);
  std::error_code unreadable;
  if (std::filesystem::is_directory(file, unreadable)) file /= fmt::format("{}.{}", reportFileName(document), ending);
  return file;
}

}  // namespace

QCoro::Task<CommandResult> writeReport(CommandContext context, Arguments arguments) {
  const std::string& name = arguments.operands.front();
  const auto kind = std::ranges::find(kReports, name, &ReportKind::name);
  if (kind == kReports.end())
    co_return misused(fmt::format("There is no report “{}”; the reports are{}", name, reportList()));
  if (auto wrong = misuse(*kind, arguments)) co_return *std::move(wrong);
  auto vessels = reportedVessels(*context.store, arguments, kind->ofOneVessel);
  if (!vessels) co_return vessels.error();
  const ReportSetting setting = settingFor(context, *vessels);
  context.calendar = setting.calendar;  // days that are named are days aboard
  const auto report = kind->make({context, arguments, *std::move(vessels), setting});
  if (!report) co_return report.error();

  std::string text;
  std::vector<std::string> files;
  const auto write = [&](std::string_view ending, const auto& writer) -> std::optional<CommandResult> {
    const auto named = arguments.value(fmt::format("--{}", ending));
    if (!named) return std::nullopt;
    const auto file = reportFile(context, *named, report->document, ending);
    const std::expected<void, ReportError> written = writer(QFile::decodeName(file.c_str()));
    if (!written) return refused(written.error().message.toStdString());
    text += fmt::format("Wrote {}.\n", file.string());
    appendJsonString(files.emplace_back(), file.string());
    return std::nullopt;
  };
  if (auto refusal = write("pdf", [&](const QString& file) { return writePdf(file, report->document); }))
    co_return *std::move(refusal);
  if (auto refusal = write(
          "csv", [&](const QString& file) { return writeReportFile(file, QByteArray::fromStdString(report->csv)); }))
    co_return *std::move(refusal);
  co_return done(context.json ? JsonObject().json("files", jsonList(files)).take() + "\n" : text);
}

}  // namespace thalvorn::cli
