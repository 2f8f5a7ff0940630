#pragma once

#include <expected>

#include "cli/command.h"
#include "core/report_basics.h"

namespace thalvorn::cli {

/// The period that `--from` and `--to` name, both ends included; a period that ends before it begins is misuse.
std::expected<ReportPeriod, CommandResult> readPeriod(const CommandContext& context, const Arguments& arguments);

}  // namespace thalvorn::cli
