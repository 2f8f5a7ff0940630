#pragma once

#include <vector>

#include "base/calendar.h"
#include "core/demo_fleet.h"
#include "operations/bunkering_record.h"
#include "operations/ships_log_entry.h"

namespace thalvorn {

/// The demo fleet under way: the passages of the last season with journals, rosters and guests, and the fuel that was
/// taken on for them, in two currencies.
struct DemoVoyages {
  std::vector<ShipsLogEntry> shipsLog;     ///< latest first
  std::vector<BunkeringRecord> bunkering;  ///< latest first
};

/// Always the same records for a fleet and a day, whatever the hour.
DemoVoyages demoVoyages(const DemoFleet& fleet, Timestamp now, const Calendar& calendar);

}  // namespace thalvorn
