// Any bytes as a CSV file: rows come in the order of their lines, and what was read survives being written and read
// again in every format.

#include <string>
#include <vector>

#include "base/csv.h"
#include "fuzz/require.h"

namespace thalvorn {
namespace {

using Rows = std::vector<std::vector<std::string>>;

Rows rowsOf(const CsvSource& source) {
  Rows rows;
  std::size_t lastLine = source.firstLine - 1;
  readCsv(source, [&](const CsvRow& row) {
    require(row.line > lastLine);
    lastLine = row.line;
    require(!row.cells.empty());
    rows.emplace_back(row.cells.begin(), row.cells.end());
  });
  return rows;
}

void survivesWriting(const Rows& rows, CsvSeparator separator) {
  CsvWriter writer(CsvFormat{.separator = separator, .decimalPoint = '.'});
  writer.text("header").endRow();
  for (const auto& row : rows) {
    for (const auto& cell : row) writer.text(cell);
    writer.endRow();
  }
  Rows again = rowsOf(openCsv(writer.take(), separator));
  require(again.front() == std::vector<std::string>{"header"});
  again.erase(again.begin());
  for (auto& row : again)
    for (auto& cell : row) cell = withoutFormulaGuard(cell);
  require(again == rows);
}

}  // namespace
}  // namespace thalvorn

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace thalvorn;
  const std::string text = csvTextFromBytes(std::string(reinterpret_cast<const char*>(data), size));
  const Rows rows = rowsOf(openCsv(text));
  for (const auto separator : {CsvSeparator::comma, CsvSeparator::semicolon, CsvSeparator::tab}) {
    rowsOf(openCsv(text, separator));
    survivesWriting(rows, separator);
  }
  return 0;
}
