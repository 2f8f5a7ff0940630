#pragma once

#include <unordered_map>

#include "backend/row_kind.h"
#include "sync/sync_run.h"

namespace thalvorn {

/// The rows of one yard period's work orders, punch list and log, which lie in tables of their own. A period is read,
/// merged and written together with them.
struct YardPartRows {
  std::vector<SBWorkOrderRow> workOrders;
  std::vector<SBPunchListItemRow> punchList;
  std::vector<SBYardLogEntryRow> logEntries;
};
using YardParts = std::unordered_map<Uuid, YardPartRows>;

/// The tables that belong to a yard period beside its own.
inline constexpr std::array<std::string_view, 3> kYardPartTables{"work_orders", "punch_list_items", "yard_log_entries"};

/// Reads the parts of these periods.
SBTask<YardParts> readYardParts(SyncRunPtr run, std::vector<Uuid> periods);

/// Puts the parts into the period, those that it knows in its own order, new ones behind them.
void attachParts(YardPeriod& period, const YardPartRows& parts, const YardPeriod* known);

/// Writes the parts in which `period` differs from what is stored: changed and new ones go up, missing ones are deleted
/// unless somebody changed them since. True when the server refused none; those that it did are told by name.
SBTask<bool> sendYardParts(SyncRunPtr run, RunToken token, YardPeriod period, YardPartRows stored);

}  // namespace thalvorn
