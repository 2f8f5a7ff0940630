#pragma once

#include <expected>
#include <optional>
#include <string>
#include <vector>

#include "cli/command.h"
#include "core/service_log.h"
#include "store/app_view_model.h"

namespace thalvorn::cli {

/// Which services are asked for; empty means any.
struct HistoryQuery {
  std::optional<Uuid> vesselID;
  std::optional<Uuid> taskID;
  std::optional<Timestamp> from;
  std::optional<Timestamp> to;

  bool takes(const ServiceLog& log) const;
};

/// The options `--vessel`, `--task`, `--from` and `--to`.
std::expected<HistoryQuery, CommandResult> historyQuery(const CommandContext& context, const Arguments& arguments);

/// The services that are asked for, newest first.
std::vector<const ServiceLog*> services(const AppViewModel& store, const HistoryQuery& query);

}  // namespace thalvorn::cli
