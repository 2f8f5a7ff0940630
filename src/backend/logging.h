#pragma once

#include <QLoggingCategory>

namespace thalvorn {

Q_DECLARE_LOGGING_CATEGORY(backendLog)

}  // namespace thalvorn
