// Any bytes as a programme to import: every row is either skipped with a reason or becomes one task that the store can
// write and read back, due at a moment and reading that are numbers.

#include <cmath>
#include <string>

#include "core/task_csv_import.h"
#include "fuzz/require.h"

namespace thalvorn {
namespace {

bool isSound(std::optional<double> hours) { return !hours || (std::isfinite(*hours) && *hours >= 0); }

void import(std::string_view text) {
  static const Calendar calendar = *Calendar::inZone("Europe/Rome");
  static const Timestamp now = *parseTimestamp("2026-03-28T12:00:00Z");
  static const Vessel vessel{.id = *Uuid::parse("6F9619FF-8B86-D011-B42D-00C04FC964FE"), .engineHours = 1234.5};
  const TaskCsvPreview preview = previewTaskCsv(text, calendar);
  require(preview.valid + preview.skipped == preview.rows.size());
  std::size_t valid = 0;
  for (const TaskCsvRow& row : preview.rows) {
    require(row.valid || !row.problems.empty());
    require(!row.valid || (!row.title.empty() && row.category));
    if (row.valid) ++valid;
  }
  require(valid == preview.valid);
  const auto tasks = tasksFromRows(preview.rows, vessel, now, calendar);
  require(tasks.size() == valid);
  for (const MaintenanceTask& task : tasks) {
    require(task.vesselID == vessel.id && !task.title.empty());
    require(isSound(task.dueAtEngineHours) && isSound(task.recurringEngineHours));
    require(!task.recurringDays || *task.recurringDays >= 0);
    require(recordFromJson<MaintenanceTask>(toJson(task, JsonFields::full)) == task);
  }
}

}  // namespace
}  // namespace thalvorn

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  thalvorn::import(thalvorn::csvTextFromBytes(std::string(reinterpret_cast<const char*>(data), size)));
  return 0;
}
