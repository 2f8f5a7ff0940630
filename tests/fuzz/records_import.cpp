// Any bytes as a register's spreadsheet: every row gives a record or is counted as skipped, and what was read is
// written and read again as it was.

#include <string>

#include "core/record_csv.h"
#include "fuzz/require.h"
#include "operations/bunkering_register.h"
#include "operations/ships_log_register.h"

namespace thalvorn {
namespace {

template <class T>
void import(std::string_view text) {
  static const Calendar calendar = *Calendar::inZone("Europe/Rome");
  static const Uuid vessel = *Uuid::parse("6F9619FF-8B86-D011-B42D-00C04FC964FE");
  const auto read = recordsFromCsv<T>(text, vessel, calendar);
  require(read.problems.size() >= read.skipped);
  for (const T& record : read.records) require(!record.id.isNil() && !record.vesselID.isNil());
  for (const CsvFormat format : {CsvFormat{}, CsvFormat{CsvSeparator::semicolon, ','}}) {
    const std::string written = recordsCsv<T>(read.records, calendar, {.format = format, .totals = {{"Total", 1}}});
    const auto again = recordsFromCsv<T>(written, vessel, calendar);
    require(again.records == read.records);
    require(again.problems.empty() && again.skipped == 0 && again.ignoredColumns.empty());
  }
}

}  // namespace
}  // namespace thalvorn

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = thalvorn::csvTextFromBytes(std::string(reinterpret_cast<const char*>(data), size));
  thalvorn::import <thalvorn::BunkeringRecord>(text);
  thalvorn::import <thalvorn::ShipsLogEntry>(text);
  return 0;
}
