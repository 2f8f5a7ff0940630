#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/report_basics.h"
#include "core/service_log.h"

namespace thalvorn {

struct ServiceHistoryOptions {
  bool detailed = false;               ///< with notes, parts, photos and corrections below each service
  std::optional<Timestamp> from = {};  ///< the period that the list was filtered by, for the head
  std::optional<Timestamp> to = {};
  /// The file of a stored photo; without it, or when it gives nothing, photos are named but not shown.
  std::function<std::string(std::string_view path)> photoFile = {};
  /// The name of a piece of equipment.
  std::function<std::string(const Uuid&)> equipmentName = {};
};

/// What was done on a vessel, in the order given, with the totals of labour and parts.
Document serviceHistoryReport(std::span<const ServiceLog> logs, const Vessel& vessel, const VesselProfile& profile,
                              const ServiceHistoryOptions& options, const ReportSetting& setting);

}  // namespace thalvorn
