#pragma once

#include <span>
#include <string>

#include "core/record_csv.h"
#include "core/report_basics.h"
#include "operations/bunkering_register.h"

/// The papers of the bunkering register. Records stand in the order given.
namespace thalvorn {

/// The deliveries to a vessel with their sums; its file is named by `bunkeringFileName`.
Document bunkeringReport(std::span<const BunkeringRecord> records, const ReportVessel& vessel,
                         const ReportPeriod& period, const ReportSetting& setting);

/// One delivery with every field and lines to sign.
Document bunkeringRecordReport(const BunkeringRecord& record, const ReportVessel& vessel, const ReportSetting& setting);

/// All fields of the records, which `recordsFromCsv<BunkeringRecord>` reads again, and the report's sums below them.
std::string bunkeringCsv(std::span<const BunkeringRecord> records, const Calendar& calendar,
                         const CsvFormat& format = {});

/// "BunkeringReport_20261121_094005", by the time of export, without ending.
std::string bunkeringFileName(Timestamp now, const Calendar& calendar);

}  // namespace thalvorn
