#pragma once

#include "compliance/gmdss.h"
#include "compliance/gmdss_register.h"
#include "core/report_basics.h"

/// The papers of the radio test log. Records stand in the order given.
namespace thalvorn {

/// The tests of a vessel between how she stands with each of them and her radio station: equipment, licences,
/// operators.
Document gmdssReport(std::span<const GMDSSTestLog> tests, const RadioStation& station, const ReportVessel& vessel,
                     const ReportPeriod& period, const ReportSetting& setting);

/// One test with every field and lines to sign.
Document gmdssEntryReport(const GMDSSTestLog& test, const ReportVessel& vessel, const ReportSetting& setting);

}  // namespace thalvorn
