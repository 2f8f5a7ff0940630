// The codecs and conversions of these rows, compiled once.

#include "backend/row_conversion.h"

namespace thalvorn {

THALVORN_ROW_INSTANTIATE(CrewMember);
THALVORN_ROW_INSTANTIATE(ISMRecord);
THALVORN_ROW_INSTANTIATE(ISMCheckDefinition);
THALVORN_ROW_INSTANTIATE(MarpolRecord);
THALVORN_ROW_INSTANTIATE(GMDSSTestLog);
THALVORN_ROW_INSTANTIATE(CrewBoardPost);

}  // namespace thalvorn
