// The codecs and conversions of these rows, compiled once.

#include "backend/row_conversion.h"

namespace thalvorn {

THALVORN_ROW_INSTANTIATE(Vessel);
THALVORN_ROW_INSTANTIATE(VesselProfile);
THALVORN_ROW_INSTANTIATE(MaintenanceTask);
THALVORN_ROW_INSTANTIATE(ServiceLog);

}  // namespace thalvorn
