#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "base/csv.h"

namespace thalvorn {
namespace {

namespace fs = std::filesystem;

/// A cell as a spreadsheet understood it: "float 12.5", "date 2026-11-21", "string text".
using Sheet = std::vector<std::vector<std::string>>;

std::string between(std::string_view text, std::string_view begin, std::string_view end) {
  const auto from = text.find(begin);
  if (from == text.npos) return {};
  const auto rest = text.substr(from + begin.size());
  return std::string(rest.substr(0, rest.find(end)));
}

/// What stands in the paragraphs of a cell.
std::string paragraphs(std::string_view cell) {
  std::string text;
  constexpr std::string_view begin = "<text:p>";
  for (auto at = cell.find(begin); at != cell.npos; at = cell.find(begin, at + 1)) {
    if (!text.empty()) text += '\n';
    text += between(cell.substr(at), begin, "</text:p>");
  }
  for (const auto& [entity, sign] : {std::pair{"&apos;", "'"}, std::pair{"&quot;", "\""}}) {
    for (auto at = text.find(entity); at != text.npos; at = text.find(entity)) text.replace(at, 6, sign);
  }
  return text;
}

Sheet cellsOf(std::string_view document) {
  Sheet sheet;
  document.remove_prefix(std::min(document.find("<table:table "), document.size()));
  constexpr std::string_view row = "<table:table-row";
  constexpr std::string_view cell = "<table:table-cell";
  for (auto at = document.find('<'); at != document.npos; at = document.find('<', at + 1)) {
    const auto rest = document.substr(at);
    if (rest.starts_with(row)) sheet.emplace_back();
    if (!rest.starts_with(cell)) continue;
    const auto attributes = between(rest, cell, ">");
    const auto type = between(attributes, "value-type=\"", "\"");
    const auto value = type == "string"
                           ? paragraphs(rest.substr(0, rest.find("</table:table-cell>")))
                           : between(attributes, type == "date" ? "date-value=\"" : "office:value=\"", "\"");
    if (!type.empty()) sheet.back().push_back(type + " " + value);
  }
  std::erase_if(sheet, [](const auto& cells) { return cells.empty(); });
  return sheet;
}

/// The file as LibreOffice opens it.
Sheet opened(const std::string& csv) {
  const auto folder = fs::temp_directory_path() / ("thalvorn-csv-" + std::to_string(::getpid()));
  fs::create_directories(folder);
  std::ofstream(folder / "list.csv", std::ios::binary) << csv;
  const std::string command = "soffice --headless '-env:UserInstallation=file://" + (folder / "profile").string() +
                              "' --infilter=CSV:44,34,UTF8,1 --convert-to fods --outdir '" + folder.string() + "' '" +
                              (folder / "list.csv").string() + "' > /dev/null 2>&1";
  EXPECT_EQ(std::system(command.c_str()), 0);
  std::stringstream document;
  document << std::ifstream(folder / "list.fods").rdbuf();
  fs::remove_all(folder);
  return cellsOf(document.str());
}

TEST(CsvWriter, LibreOfficeOpensValuesTypesAndTextsAsTheyWere) {
  ASSERT_EQ(std::system("command -v soffice > /dev/null 2>&1"), 0)
      << "LibreOffice is not installed here; scripts/setup installs it.";
  CsvWriter csv;
  for (const auto* title : {"Date", "Gallons", "Price", "Invoice", "Notes"}) csv.text(title);
  csv.endRow();
  csv.text("2026-11-21 08:00").number(1500.5).number(-3.912).text("00123").text("=1+1").endRow();
  csv.text("2026-11-22").integer(-7).number(1234567.25, 2).text("INV-1").text("M/Y \"A\", ünï ⚓\ntwo").endRow();
  csv.text("8-12").number(0.1).number(1e-7).text("1,234").text("@home").endRow();
  csv.label("Total Cost (USD)").number(9602.1, 2).endRow();
  const Sheet expected = {
      {"string Date", "string Gallons", "string Price", "string Invoice", "string Notes"},
      {"date 2026-11-21T08:00:00", "float 1500.5", "float -3.912", "string '00123", "string '=1+1"},
      {"date 2026-11-22", "float -7", "float 1234567.25", "string INV-1", "string M/Y \"A\", ünï ⚓\ntwo"},
      {"string '8-12", "float 0.1", "float 0.0000001", "string '1,234", "string '@home"},
      {"string Total Cost (USD)", "float 9602.1"}};
  EXPECT_EQ(opened(csv.take()), expected);
}

}  // namespace
}  // namespace thalvorn
