// Any bytes as the stored list of a record kind: no element is lost (each is decoded or set aside), and what was
// decoded is written in a form that decodes to the same.

#include <string>
#include <string_view>

#include "base/json.h"
#include "core/maintenance_task.h"
#include "core/service_log.h"
#include "core/task_template.h"
#include "core/vessel.h"
#include "core/vessel_profile.h"
#include "fuzz/require.h"

namespace thalvorn {
namespace {

template <class T>
void readAs(std::string_view text) {
  const auto elements = splitJsonList(text);
  const auto list = listFromJson<T>(text, JsonFields::full);
  if (!list) return;
  require(elements && elements->size() == list->records.size() + list->setAside.size());
  for (const T& record : list->records) {
    const std::string written = toJson(record, JsonFields::full);
    const auto again = recordFromJson<T>(written, JsonFields::full);
    require(again && toJson(*again, JsonFields::full) == written);
  }
  const auto rewritten = listFromJson<T>(listToJson(list->records));
  require(rewritten && rewritten->setAside.empty() && rewritten->records.size() == list->records.size());
}

}  // namespace
}  // namespace thalvorn

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace thalvorn;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  readAs<MaintenanceTask>(text);
  readAs<Vessel>(text);
  readAs<VesselProfile>(text);
  readAs<ServiceLog>(text);
  readAs<TaskTemplate>(text);
  return 0;
}
