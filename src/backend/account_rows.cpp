// The codecs and conversions of these rows, compiled once.

#include "backend/row_conversion.h"

namespace thalvorn {

THALVORN_ROW_INSTANTIATE(AccountMember);
THALVORN_ROW_CODEC(SBUserSettingsRow);
THALVORN_ROW_CODEC(SBAccountRow);
THALVORN_ROW_CODEC(AckRow);
THALVORN_ROW_CODEC(SBDeletedRecordRow);
THALVORN_ROW_CODEC(SBAccountChangeRow);

}  // namespace thalvorn
