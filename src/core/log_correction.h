#pragma once

#include <expected>
#include <string>

#include "base/calendar.h"
#include "core/maintenance_task.h"
#include "core/service_log.h"

namespace thalvorn {

/// Puts a service log right. `corrected` holds the fields as they shall read; what each changed field read before is
/// kept in the log's corrections with the reason, the author and the time. A log stays the record of its task and
/// vessel. The error is a sentence for the form.
std::expected<ServiceLog, std::string> correctLog(const ServiceLog& log, const ServiceLog& corrected,
                                                  const std::string& reason, const std::string& author, Timestamp now);

/// The task after its latest log was corrected: a due point that was counted from the log's date or reading is counted
/// anew; one that the crew has set otherwise stays.
MaintenanceTask rescheduleAfterCorrection(MaintenanceTask task, const ServiceLog& before, const ServiceLog& after,
                                          const Calendar& calendar);

}  // namespace thalvorn
