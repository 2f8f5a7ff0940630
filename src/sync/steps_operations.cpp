#include "sync/table_step.h"

namespace thalvorn {

THALVORN_INSTANTIATE_STEP(ShipsLogEntry);
THALVORN_INSTANTIATE_STEP(BunkeringRecord);
THALVORN_INSTANTIATE_STEP(VoyagePlan);
THALVORN_INSTANTIATE_STEP(SavedWaypoint);

}  // namespace thalvorn
