// The JSON codecs of this room's records, compiled once.

#include "base/json_codec.h"
#include "core/maintenance_task.h"
#include "core/service_log.h"
#include "core/task_csv_import.h"
#include "core/task_template.h"
#include "core/vessel.h"
#include "core/vessel_profile.h"

namespace thalvorn {

THALVORN_JSON_INSTANTIATE(Vessel);
THALVORN_JSON_INSTANTIATE(VesselProfile);
THALVORN_JSON_INSTANTIATE(MaintenanceTask);
THALVORN_JSON_INSTANTIATE(ServiceLog);
THALVORN_JSON_INSTANTIATE(TaskTemplate);
THALVORN_JSON_INSTANTIATE(TaskCsvRow);

}  // namespace thalvorn
