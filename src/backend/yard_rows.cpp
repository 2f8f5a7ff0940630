// The codecs and conversions of these rows, compiled once.

#include "backend/row_conversion.h"

namespace thalvorn {

THALVORN_ROW_INSTANTIATE(YardPeriod);
THALVORN_ROW_INSTANTIATE(WorkOrder);
THALVORN_ROW_INSTANTIATE(PunchListItem);
THALVORN_ROW_INSTANTIATE(YardLogEntry);

}  // namespace thalvorn
