// The JSON codecs of this room's records, compiled once.

#include "base/json_codec.h"
#include "compliance/account_member.h"
#include "compliance/crew_board_post.h"
#include "compliance/crew_member.h"
#include "compliance/gmdss_test_log.h"
#include "compliance/ism_record.h"
#include "compliance/marpol_record.h"

namespace thalvorn {

THALVORN_JSON_INSTANTIATE(ISMCheckDefinition);
THALVORN_JSON_INSTANTIATE(ISMRecord);
THALVORN_JSON_INSTANTIATE(MarpolRecord);
THALVORN_JSON_INSTANTIATE(GMDSSTestLog);
THALVORN_JSON_INSTANTIATE(CrewCertification);
THALVORN_JSON_INSTANTIATE(CrewMember);
THALVORN_JSON_INSTANTIATE(CrewMemberExtended);
THALVORN_JSON_INSTANTIATE(CrewBoardPost);
THALVORN_JSON_INSTANTIATE(AccountMember);

}  // namespace thalvorn
