#include "sync/table_step.h"

namespace thalvorn {

THALVORN_INSTANTIATE_STEP(ShipDocument);
THALVORN_INSTANTIATE_STEP(ShipContact);
THALVORN_INSTANTIATE_STEP(EquipmentItem);
THALVORN_INSTANTIATE_STEP(GuestProfile);
THALVORN_INSTANTIATE_STEP(CalendarEvent);
THALVORN_INSTANTIATE_STEP(SubscriptionAccount);
THALVORN_INSTANTIATE_STEP(YardPeriod);
THALVORN_INSTANTIATE_STEP(ConflictNote);

}  // namespace thalvorn
