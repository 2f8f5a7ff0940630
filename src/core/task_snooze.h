#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "base/calendar.h"
#include "core/maintenance_task.h"

namespace thalvorn {

/// Silences a task until a moment to come: it is not counted and raises no reminder until then. A line such as
/// "[Snoozed 21 Nov 2026 by Ana for 10 days — silent until 1 Dec 2026]" is added to its notes; `who` may be empty. The
/// error is a sentence for the form.
std::expected<MaintenanceTask, std::string> snoozeTask(MaintenanceTask task, Timestamp until, Timestamp now,
                                                       const Calendar& calendar, std::string_view who = {});

/// Ends a snooze; the line in the notes stays.
MaintenanceTask unsnoozeTask(MaintenanceTask task);

}  // namespace thalvorn
