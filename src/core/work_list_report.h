#pragma once

#include <span>
#include <string>

#include "base/csv.h"
#include "core/maintenance_task.h"
#include "core/report_basics.h"
#include "core/service_log.h"
#include "core/task_board.h"

namespace thalvorn {

/// The maintenance work list of a vessel: what the query lists, grouped by category or else by status, with boxes to
/// tick, what each meter shows, when the task falls due and was last done, and lines to sign. The query's vessel does
/// not matter.
Document workListReport(std::span<const MaintenanceTask> tasks, std::span<const ServiceLog> logs, const Vessel& vessel,
                        const VesselProfile& profile, const TaskQuery& query, const ReportSetting& setting);

/// The same tasks as a CSV file that the task import reads again unchanged: the import's columns, then due date,
/// priority and kind, then what only people read.
std::string workListCsv(std::span<const MaintenanceTask> tasks, std::span<const ServiceLog> logs, const Vessel& vessel,
                        const TaskQuery& query, const ReportSetting& setting, const CsvFormat& format = {});

}  // namespace thalvorn
