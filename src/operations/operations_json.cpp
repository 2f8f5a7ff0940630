// The JSON codecs of this room's records, compiled once.

#include "base/json_codec.h"
#include "operations/bunkering_record.h"
#include "operations/saved_waypoint.h"
#include "operations/ships_log_entry.h"
#include "operations/voyage_plan.h"

namespace thalvorn {

THALVORN_JSON_INSTANTIATE(GuestManifestEntry);
THALVORN_JSON_INSTANTIATE(CrewDutyEntry);
THALVORN_JSON_INSTANTIATE(TripLogEntry);
THALVORN_JSON_INSTANTIATE(ShipsLogEntry);
THALVORN_JSON_INSTANTIATE(BunkeringRecord);
THALVORN_JSON_INSTANTIATE(VoyagePlan);
THALVORN_JSON_INSTANTIATE(SavedWaypoint);

}  // namespace thalvorn
