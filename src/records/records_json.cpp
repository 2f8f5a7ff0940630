// The JSON codecs of this room's records, compiled once.

#include "base/json_codec.h"
#include "records/calendar_event.h"
#include "records/conflict_note.h"
#include "records/equipment_item.h"
#include "records/guest_profile.h"
#include "records/ship_contact.h"
#include "records/ship_document.h"
#include "records/subscription_account.h"
#include "records/yard_period.h"

namespace thalvorn {

THALVORN_JSON_INSTANTIATE(WorkOrder);
THALVORN_JSON_INSTANTIATE(PunchListItem);
THALVORN_JSON_INSTANTIATE(YardLogEntry);
THALVORN_JSON_INSTANTIATE(YardPeriod);
THALVORN_JSON_INSTANTIATE(EquipmentItem);
THALVORN_JSON_INSTANTIATE(ShipDocument);
THALVORN_JSON_INSTANTIATE(VendorComplianceDocument);
THALVORN_JSON_INSTANTIATE(ShipContact);
THALVORN_JSON_INSTANTIATE(GuestDocument);
THALVORN_JSON_INSTANTIATE(GuestProfile);
THALVORN_JSON_INSTANTIATE(CalendarEvent);
THALVORN_JSON_INSTANTIATE(SubscriptionAccount);
THALVORN_JSON_INSTANTIATE(ConflictNote);

}  // namespace thalvorn
