#include "core/part_text.h"

#include <fmt/format.h>

#include "base/csv.h"
#include "base/number_format.h"

namespace thalvorn {
namespace {

constexpr double mostParts = 1e6;
constexpr double mostMoney = 1e9;

void appendText(std::string& out, std::string_view text) {
  const bool padded = !text.empty() && (text.front() == ' ' || text.back() == ' ');
  if (!padded && text.find_first_of(";|\"\r\n\t") == std::string_view::npos) {
    out += text;
    return;
  }
  out += '"';
  for (const char c : text) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

/// Cuts the first part off `rest`: up to a bar outside quotes.
std::string_view takePart(std::string_view& rest) {
  bool quoted = false;
  std::size_t at = 0;
  while (at < rest.size() && (quoted || rest[at] != '|')) quoted ^= rest[at++] == '"';
  auto part = rest.substr(0, at);
  rest.remove_prefix(std::min(at + 1, rest.size()));
  while (part.starts_with(' ')) part.remove_prefix(1);
  while (part.ends_with(' ')) part.remove_suffix(1);
  return part;
}

}  // namespace

std::string partsText(const std::vector<PartUsage>& parts) {
  std::string out;
  for (const auto& part : parts) {
    if (!out.empty()) out += " | ";
    appendText(out, part.name);
    out += fmt::format(";{};", part.quantity);
    appendText(out, part.partNumber);
    out += part.cost ? fmt::format(";{}", *part.cost) : std::string(";");
  }
  return out;
}

std::expected<PartUsage, std::string> partFromText(std::string_view text) {
  PartUsage part{.id = Uuid::random(), .name = {}, .quantity = 1, .partNumber = {}, .cost = {}};
  bool understood = false;
  const auto number = [&](std::string_view cell, double most) {
    const auto value = parseNumber(cell);
    understood = understood && value && *value >= 0 && *value <= most;
    return value.value_or(0);
  };
  readCsv(CsvSource{text, CsvSeparator::semicolon, 1}, [&](const CsvRow& row) {
    const auto cell = [&](std::size_t i) { return i < row.cells.size() ? row.cells[i] : std::string_view(); };
    part.name = cell(0);
    part.partNumber = cell(2);
    understood = row.cells.size() <= 4 && (!part.name.empty() || !part.partNumber.empty());
    if (!row.cell(1).empty()) part.quantity = number(row.cell(1), mostParts);
    if (!row.cell(3).empty()) part.cost = number(row.cell(3), mostMoney);
    return false;
  });
  if (understood) return part;
  return std::unexpected(
      fmt::format("“{}” is not a part; write NAME;QUANTITY;NUMBER;COST, as in Oil filter;2;1R-0739;38.50.", text));
}

std::expected<std::vector<PartUsage>, std::string> partsFromText(std::string_view text) {
  std::vector<PartUsage> parts;
  while (!text.empty()) {
    const auto written = takePart(text);
    if (written.empty()) continue;
    auto part = partFromText(written);
    if (!part) return std::unexpected(std::move(part.error()));
    parts.push_back(std::move(*part));
  }
  return parts;
}

}  // namespace thalvorn
