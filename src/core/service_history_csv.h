#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/calendar.h"
#include "base/csv.h"
#include "core/csv_cells.h"
#include "core/service_log.h"
#include "core/vessel.h"

namespace thalvorn {

/// The service history as a CSV file with every field of the logs; `serviceLogsFromCsv` reads it again unchanged. Dates
/// stand by the wall clock of the calendar; parts are in one cell as `partsText` writes them.
std::string serviceHistoryCsv(std::span<const ServiceLog> logs, const Calendar& calendar, const CsvFormat& format = {});

struct ServiceCsvImport {
  std::vector<ServiceLog> logs;
  std::vector<CsvProblem> problems;
  std::size_t skipped = 0;  ///< rows that gave no log
};

/// Reads service logs; columns are found by name in any order, only `taskTitle` and `completedDate` are needed. Logs
/// without an identity get a new one, those without a vessel belong to `vesselID`. A semicolon file has decimal commas.
ServiceCsvImport serviceLogsFromCsv(std::string_view text, const Uuid& vesselID, const Calendar& calendar,
                                    std::optional<CsvSeparator> separator = std::nullopt);

/// Those of `logs` that the history does not have: by identity, and by vessel, time and title where a file has none.
/// Logs of a vessel that is not in the fleet become those of `vesselID`.
std::vector<ServiceLog> withoutKnown(std::vector<ServiceLog> logs, std::span<const ServiceLog> history,
                                     std::span<const Vessel> fleet, const Uuid& vesselID);

}  // namespace thalvorn
