#pragma once

#include <vector>

#include "compliance/gmdss_test_log.h"
#include "core/demo_fleet.h"

namespace thalvorn {

/// The radio tests of the demo fleet over the last weeks, latest first: one yacht has all in date, one a failed EPIRB
/// that was put right, one is behind with her weekly call. Always the same for a fleet and a day, whatever the hour.
std::vector<GMDSSTestLog> demoRadioLog(const DemoFleet& fleet, Timestamp now, const Calendar& calendar);

}  // namespace thalvorn
