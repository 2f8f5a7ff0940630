#include "backend/logging.h"

namespace thalvorn {

Q_LOGGING_CATEGORY(backendLog, "thalvorn.backend", QtInfoMsg)

}  // namespace thalvorn
