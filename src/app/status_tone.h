#pragma once

#include <QString>

#include "core/task_status.h"

namespace thalvorn::app {

/// The tone in which the theme shows a status: "overdue", "soon", "ok", or empty for neutral.
inline QString statusTone(TaskStatus status) {
  switch (status) {
    case TaskStatus::overdue:
      return QStringLiteral("overdue");
    case TaskStatus::dueSoon:
      return QStringLiteral("soon");
    case TaskStatus::onTrack:
      return QStringLiteral("ok");
    default:
      return {};
  }
}

}  // namespace thalvorn::app
