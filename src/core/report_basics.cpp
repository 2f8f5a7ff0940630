#include "core/report_basics.h"

#include "base/date_format.h"
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

Calendar aboard(const VesselProfile& profile, const Calendar& otherwise) {
  if (profile.timeZone.empty()) return otherwise;
  return Calendar::inZone(profile.timeZone).value_or(otherwise);
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

Document reportOf(std::string title, std::span<const ReportVessel> vessels, const ReportSetting& setting) {
  if (vessels.size() == 1) return reportOf(std::move(title), vessels[0].vessel, vessels[0].profile, setting);
  Document document = reportOf(std::move(title), {}, {}, setting);
  document.particulars.reset();
  return document;
}

std::string_view vesselNameOf(const Uuid& vesselID, std::span<const ReportVessel> vessels) {
  for (const ReportVessel& one : vessels)
    if (one.vessel.id == vesselID) return one.vessel.name;
  return {};
}

std::string periodText(const ReportPeriod& period, const Calendar& calendar) {
  const auto day = [&](Timestamp time) { return formatDate(calendar.date(time)); };
  if (period.first && period.last) {
    const std::string first = day(*period.first);
    const std::string last = day(*period.last);
    return first == last ? first : first + " – " + last;
  }
  if (period.first) return "from " + day(*period.first);
  return period.last ? "until " + day(*period.last) : std::string();
}

std::string reportFileName(const Document& document) {
  if (!document.fileName.empty()) return safeFileName(document.fileName);
  return safeFileName(document.vesselName.empty() ? document.title : document.title + " — " + document.vesselName);
}

}  // namespace thalvorn
