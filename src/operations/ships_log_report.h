#pragma once

#include <span>
#include <string>

#include "core/record_csv.h"
#include "core/report_basics.h"
#include "operations/ships_log_register.h"

/// The papers of the ship's log. Entries stand in the order given, their times by the clock aboard each one's vessel;
/// `vessels` are those the report was asked for, and hold the vessel of every entry.
namespace thalvorn {

/// The log of one vessel as a table, with its sums and lines to sign; its file is "<vessel> Ships Log".
Document shipsLogReport(std::span<const ShipsLogEntry> entries, const ReportVessel& vessel, const ReportPeriod& period,
                        const ReportSetting& setting);

/// What a search found, possibly of several vessels, as a table.
Document shipsLogSearchExport(std::span<const ShipsLogEntry> entries, std::span<const ReportVessel> vessels,
                              const ReportPeriod& period, const ReportSetting& setting);

/// A page of its own for every entry: all its fields, roster, manifest and journal, with lines to sign.
Document tripReports(std::span<const ShipsLogEntry> entries, std::span<const ReportVessel> vessels,
                     const ReportSetting& setting);

/// All fields of the entries, which `recordsFromCsv<ShipsLogEntry>` reads again. Dates stand by the clock aboard each
/// entry's vessel, by `calendar` where she has no time zone of her own.
std::string shipsLogCsv(std::span<const ShipsLogEntry> entries, std::span<const ReportVessel> vessels,
                        const Calendar& calendar, const CsvFormat& format = {});

}  // namespace thalvorn
