// The codecs and conversions of these rows, compiled once.

#include "backend/row_conversion.h"

namespace thalvorn {

THALVORN_ROW_INSTANTIATE(ShipDocument);
THALVORN_ROW_INSTANTIATE(ShipContact);
THALVORN_ROW_INSTANTIATE(EquipmentItem);
THALVORN_ROW_INSTANTIATE(GuestProfile);
THALVORN_ROW_INSTANTIATE(CalendarEvent);
THALVORN_ROW_INSTANTIATE(SubscriptionAccount);

}  // namespace thalvorn
