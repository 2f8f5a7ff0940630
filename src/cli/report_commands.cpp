// report: the work list and the service history on paper and as spreadsheets.

#include <fmt/format.h>

#include <QFile>

#include "cli/commands.h"
#include "cli/history_query.h"
#include "cli/json_text.h"
#include "cli/store_use.h"
#include "core/service_history_csv.h"
#include "core/service_history_report.h"
#include "core/work_list_report.h"
#include "reports/pdf_renderer.h"

namespace thalvorn::cli {
namespace {

QString fileName(const std::filesystem::path& path) { return QFile::decodeName(path.c_str()); }

/// The vessel of the report: the one that is named, or the only one there is.
std::expected<const Vessel*, CommandResult> reportedVessel(const AppViewModel& store, const Arguments& arguments) {
  auto vessel = vesselOption(store, arguments);
  if (!vessel || *vessel != nullptr) return vessel;
  if (store.vessels().size() == 1) return &store.vessels()[0];
  if (store.vessels().empty()) return std::unexpected(refused("The fleet has no vessels."));
  return std::unexpected(misused("The fleet has several vessels, and a report is of one: name it with --vessel."));
}

/// A report ready to be written: its pages and its spreadsheet.
struct Report {
  Document document;
  std::string csv;
};

Report workList(const AppViewModel& store, const Vessel& vessel, const VesselProfile& profile,
                const ReportSetting& setting) {
  const auto tasks = store.tasks().records();
  const auto logs = store.logs().records();
  const TaskQuery query{.vesselID = vessel.id};
  return {workListReport(tasks, logs, vessel, profile, query, setting),
          workListCsv(tasks, logs, vessel, query, setting)};
}

Report serviceHistory(const AppViewModel& store, const Vessel& vessel, const VesselProfile& profile,
                      const HistoryQuery& query, bool detailed, const ReportSetting& setting) {
  std::vector<ServiceLog> logs;
  for (const ServiceLog* log : services(store, query)) logs.push_back(*log);
  ServiceHistoryOptions options{.detailed = detailed, .from = query.from, .to = query.to};
  options.equipmentName = [&store](const Uuid& id) {
    const EquipmentItem* item = store.equipment().find(id);
    return item != nullptr ? item->component : std::string();
  };
  return {serviceHistoryReport(logs, vessel, profile, options, setting), serviceHistoryCsv(logs, setting.calendar)};
}

std::expected<void, CommandResult> write(const std::filesystem::path& file, std::expected<void, ReportError> written,
                                         std::vector<std::string>& files) {
  if (!written) return std::unexpected(refused(written.error().message.toStdString()));
  files.push_back(file.string());
  return {};
}

}  // namespace

QCoro::Task<CommandResult> writeReport(CommandContext context, Arguments arguments) {
  const AppViewModel& store = *context.store;
  const std::string& kind = arguments.operands.front();
  const auto pdf = arguments.value("--pdf");
  const auto csv = arguments.value("--csv");
  const bool history = kind == "service-history";
  if (!history && kind != "work-list")
    co_return misused(fmt::format("There is no report “{}”; the reports are work-list and service-history.", kind));
  if (!pdf && !csv) co_return misused("Where to? Give --pdf FILE, --csv FILE or both.");
  if (!history && (arguments.has("--from") || arguments.has("--to") || arguments.has("--detailed")))
    co_return misused("--from, --to and --detailed belong to service-history.");
  const auto vessel = reportedVessel(store, arguments);
  if (!vessel) co_return vessel.error();
  auto query = historyQuery(context, arguments);
  if (!query) co_return query.error();
  query->vesselID = (*vessel)->id;

  const VesselProfile* stored = store.profileOf((*vessel)->id);
  const VesselProfile profile = stored != nullptr ? *stored : VesselProfile{};
  ReportSetting setting{.now = context.now, .calendar = context.calendar};
  if (const auto aboard = Calendar::inZone(profile.timeZone); !profile.timeZone.empty() && aboard)
    setting.calendar = *aboard;
  const Report report = history ? serviceHistory(store, **vessel, profile, *query, arguments.has("--detailed"), setting)
                                : workList(store, **vessel, profile, setting);

  std::vector<std::string> files;
  if (pdf) {
    const auto file = context.file(*pdf);
    if (auto done = write(file, writePdf(fileName(file), report.document), files); !done) co_return done.error();
  }
  if (csv) {
    const auto file = context.file(*csv);
    const auto bytes = QByteArray::fromStdString(report.csv);
    if (auto done = write(file, writeReportFile(fileName(file), bytes), files); !done) co_return done.error();
  }
  std::string text;
  for (std::string& file : files) {
    text += fmt::format("Wrote {}.\n", file);
    std::string quoted;
    appendJsonString(quoted, file);
    file = std::move(quoted);
  }
  co_return done(context.json ? JsonObject().json("files", jsonList(files)).take() + "\n" : text);
}

}  // namespace thalvorn::cli
