// The codecs and conversions of these rows, compiled once.

#include "backend/row_conversion.h"

namespace thalvorn {

THALVORN_ROW_INSTANTIATE(ShipsLogEntry);
THALVORN_ROW_INSTANTIATE(BunkeringRecord);
THALVORN_ROW_INSTANTIATE(VoyagePlan);
THALVORN_ROW_INSTANTIATE(SavedWaypoint);

}  // namespace thalvorn
