#include "reports/document/document_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "base/date_format.h"

namespace thalvorn {

std::string generatedLine(Timestamp time, const Calendar& calendar) {
  const auto local = calendar.local(time);
  return fmt::format("Generated: {} {}", formatDateTime(local), formatUtcOffset(local.utcOffset));
}

std::vector<LabeledText> labeled(const VesselParticulars& particulars) {
  const auto orNone = [](const std::string& value) { return value.empty() ? "n/a" : value; };
  return {{"Flag", orNone(particulars.flag)},
          {"Port of registry", orNone(particulars.portOfRegistry)},
          {"IMO number", orNone(particulars.imoNumber)},
          {"Call sign", orNone(particulars.callSign)},
          {"MMSI", orNone(particulars.mmsi)},
          {"Gross tonnage", orNone(particulars.grossTonnage)}};
}

std::string particularsLine(const VesselParticulars& particulars) {
  std::string line;
  const auto add = [&](std::string_view label, const std::string& value) {
    if (value.empty()) return;
    if (!line.empty()) line += "  ·  ";
    line += label;
    line += value;
  };
  add("", particulars.flag);
  add("", particulars.portOfRegistry);
  add("IMO ", particulars.imoNumber);
  add("", particulars.callSign);
  add("MMSI ", particulars.mmsi);
  add("GT ", particulars.grossTonnage);
  return line;
}

std::string safeFileName(std::string_view title) {
  constexpr std::size_t longest = 120;
  std::string name;
  for (const char c : title) {
    const bool refused =
        static_cast<unsigned char>(c) < 0x20 || c == 0x7F || std::string_view("<>:\"/\\|?*").contains(c);
    if (!refused && c != ' ') {
      name += c;
    } else if (!name.empty() && name.back() != ' ') {
      name += ' ';
    }
  }
  if (name.size() > longest) {
    std::size_t cut = longest;
    while (cut > 0 && (static_cast<unsigned char>(name[cut]) & 0xC0) == 0x80) --cut;
    name.resize(cut);
  }
  // A leading dot hides the file; some systems drop dots and blanks at the end.
  name.erase(0, std::min(name.find_first_not_of(" ."), name.size()));
  name.erase(name.find_last_not_of(" .") + 1);
  std::string stem = name.substr(0, name.find('.'));
  std::ranges::transform(stem, stem.begin(),
                         [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
  static constexpr std::array<std::string_view, 6> devices = {"CON", "PRN", "AUX", "NUL", "COM", "LPT"};
  const bool device = std::ranges::any_of(devices, [&](std::string_view reserved) {
    const bool numbered = reserved == "COM" || reserved == "LPT";
    return numbered ? stem.size() == 4 && stem.starts_with(reserved) && stem[3] >= '0' && stem[3] <= '9'
                    : stem == reserved;
  });
  if (device) name.insert(0, 1, '_');
  return name.empty() ? "Report" : name;
}

}  // namespace thalvorn
