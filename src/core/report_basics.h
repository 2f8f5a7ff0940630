#pragma once

#include <string>
#include <string_view>

#include "base/calendar.h"
#include "base/number_format.h"
#include "core/vessel.h"
#include "core/vessel_profile.h"
#include "reports/document/document.h"

/// What the papers of a vessel have in common.
namespace thalvorn {

/// When, where and for whom a report is printed.
struct ReportSetting {
  Timestamp now{};
  Calendar calendar = Calendar::utc();  ///< of the vessel's time zone
  NumberLocale numbers = {};
  PaperSize paper = PaperSize::a4;
  std::string language = "en";  ///< BCP 47
};

/// The particulars that head every paper.
VesselParticulars particularsOf(const VesselProfile& profile, const NumberLocale& numbers);

/// ISO 4217 code of the vessel's costs.
std::string_view costCurrency(const VesselProfile& profile);

/// A report with its head, still without contents.
Document reportOf(std::string title, const Vessel& vessel, const VesselProfile& profile, const ReportSetting& setting);

/// The name of a report's file without ending, "Service History — M/Y Meridian", safe on every file system.
std::string reportFileName(const Document& document);

}  // namespace thalvorn
