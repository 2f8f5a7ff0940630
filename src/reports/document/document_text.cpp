#include "reports/document/document_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "base/date_format.h"
#include "base/utf8.h"

namespace thalvorn {
namespace {

/// Characters that a file system refuses, or that a list of files would show otherwise than they are: control
/// characters, and marks that turn the direction of the text after them.
bool isSavable(char32_t code) {
  if (code < 0x20 || (code >= 0x7F && code < 0xA0)) return false;
  if (code == 0x200E || code == 0x200F || (code >= 0x2028 && code < 0x202F) || (code >= 0x2066 && code < 0x206A))
    return false;
  if (code == 0xFEFF || (code & 0xFFFE) == 0xFFFE) return false;
  return code >= 0x80 || !std::string_view("<>:\"/\\|?*").contains(static_cast<char>(code));
}

/// The text with one blank in place of what cannot be in a file's name.
std::string savable(std::string_view text) {
  std::string name;
  while (!text.empty()) {
    const auto code = decodeUtf8(text);
    if (!code.malformed && isSavable(code.value) && code.value != ' ') {
      name += text.substr(0, code.length);
    } else if (!name.ends_with(' ')) {
      name += ' ';
    }
    text.remove_prefix(code.length);
  }
  return name;
}

/// Marks that belong to the character before them: accents, joiners, variations, skin tones.
bool continuesCharacter(char32_t code) {
  return (code >= 0x300 && code < 0x370) || code == 0x200D || code == 0x20E3 || (code >= 0xFE00 && code < 0xFE10) ||
         (code >= 0x1F3FB && code < 0x1F400);
}

/// Shortens a text to at most `longest` bytes, between characters as people see them.
void cutTo(std::string& text, std::size_t longest) {
  if (text.size() <= longest) return;
  constexpr std::string_view joiner = "\u200D";
  std::size_t end = 0;
  for (std::size_t at = 0; at <= longest;) {
    const auto code = decodeUtf8(std::string_view(text).substr(at));
    if (!continuesCharacter(code.value) && !std::string_view(text).substr(0, at).ends_with(joiner)) end = at;
    at += code.length;
  }
  text.resize(end);
}

/// Names that one system or another keeps for its devices, whatever ending they have.
bool isDevice(std::string_view name) {
  std::string stem(name.substr(0, name.find('.')));
  stem.erase(stem.find_last_not_of(' ') + 1);
  std::ranges::transform(stem, stem.begin(),
                         [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
  static constexpr std::array<std::string_view, 7> devices = {"CON",    "PRN",     "AUX",   "NUL",
                                                              "CONIN$", "CONOUT$", "CLOCK$"};
  if (std::ranges::find(devices, stem) != devices.end()) return true;
  if (!stem.starts_with("COM") && !stem.starts_with("LPT")) return false;
  const auto number = std::string_view(stem).substr(3);
  return (number.size() == 1 && number[0] >= '0' && number[0] <= '9') || number == "¹" || number == "²" ||
         number == "³";
}

}  // namespace

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

std::string safeFileName(std::string_view title, std::string_view end) {
  constexpr std::size_t longest = 120;
  std::string kept = savable(end);
  cutTo(kept, longest);
  std::string name = savable(title);
  cutTo(name, longest - kept.size());
  name += kept;
  // A leading dot hides the file; some systems drop dots and blanks at the end.
  name.erase(0, std::min(name.find_first_not_of(" ."), name.size()));
  name.erase(name.find_last_not_of(" .") + 1);
  if (isDevice(name)) name.insert(0, 1, '_');
  return name.empty() ? "Report" : name;
}

}  // namespace thalvorn
