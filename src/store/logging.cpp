#include "store/logging.h"

namespace thalvorn {

Q_LOGGING_CATEGORY(storeLog, "thalvorn.store", QtInfoMsg)

}  // namespace thalvorn
