#pragma once

#include <optional>
#include <span>
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
  bool litres = false;          ///< volumes stand in litres beside US gallons, for people of metric countries
};

/// A vessel and what its papers say of it.
struct ReportVessel {
  Vessel vessel;
  VesselProfile profile;
};

/// The first and the last moment that a report covers; a missing one leaves that end open.
struct ReportPeriod {
  std::optional<Timestamp> first{};
  std::optional<Timestamp> last{};
};

/// "1 Sep 2026 – 21 Nov 2026", one day alone, "from 1 Sep 2026", "until 21 Nov 2026"; empty for an open period.
std::string periodText(const ReportPeriod& period, const Calendar& calendar);

/// The particulars that head every paper.
VesselParticulars particularsOf(const VesselProfile& profile, const NumberLocale& numbers);

/// ISO 4217 code of the vessel's costs.
std::string_view costCurrency(const VesselProfile& profile);

/// The calendar of the vessel's time zone; `otherwise` where she has none, or one that nobody knows.
Calendar aboard(const VesselProfile& profile, const Calendar& otherwise);

/// A report with its head, still without contents.
Document reportOf(std::string title, const Vessel& vessel, const VesselProfile& profile, const ReportSetting& setting);

/// The same for several vessels: with one of them it is hers, with more it is of none.
Document reportOf(std::string title, std::span<const ReportVessel> vessels, const ReportSetting& setting);

/// The name of the vessel with this identity; empty when it is not among them.
std::string_view vesselNameOf(const Uuid& vesselID, std::span<const ReportVessel> vessels);

/// The name of a report's file without ending, "Service History — M/Y Meridian", safe on every file system.
std::string reportFileName(const Document& document);

}  // namespace thalvorn
