#include "core/report_basics.h"

#include "reports/document/document_text.h"

namespace thalvorn {

VesselParticulars particularsOf(const VesselProfile& profile, const NumberLocale& numbers) {
  return {.flag = profile.flag,
          .portOfRegistry = profile.portOfRegistry,
          .imoNumber = profile.imoNumber,
          .callSign = profile.callSign,
          .mmsi = profile.mmsi,
          .grossTonnage = profile.grossTonnage ? formatQuantity(*profile.grossTonnage, 0, numbers) : std::string()};
}

std::string_view costCurrency(const VesselProfile& profile) {
  return profile.currency.empty() ? std::string_view("USD") : profile.currency;
}

Document reportOf(std::string title, const Vessel& vessel, const VesselProfile& profile, const ReportSetting& setting) {
  return {.title = std::move(title),
          .vesselName = vessel.name,
          .particulars = particularsOf(profile, setting.numbers),
          .generatedLine = generatedLine(setting.now, setting.calendar),
          .generatedAt = setting.now,
          .language = setting.language,
          .paper = setting.paper};
}

std::string reportFileName(const Document& document) {
  if (!document.fileName.empty()) return safeFileName(document.fileName);
  return safeFileName(document.vesselName.empty() ? document.title : document.title + " — " + document.vesselName);
}

}  // namespace thalvorn
