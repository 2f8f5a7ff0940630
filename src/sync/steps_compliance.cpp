#include "sync/table_step.h"

namespace thalvorn {

THALVORN_INSTANTIATE_STEP(CrewMember);
THALVORN_INSTANTIATE_STEP(ISMRecord);
THALVORN_INSTANTIATE_STEP(MarpolRecord);
THALVORN_INSTANTIATE_STEP(GMDSSTestLog);
THALVORN_INSTANTIATE_STEP(ISMCheckDefinition);
THALVORN_INSTANTIATE_STEP(CrewBoardPost);

}  // namespace thalvorn
