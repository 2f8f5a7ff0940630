#pragma once

#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "core/service_log.h"

namespace thalvorn {

/// The parts of a service in one line of text, "Oil filter;2;1R-0739;38.5 | Drain plug;1;;": name, quantity, part
/// number and cost, numbers with a decimal point; texts that hold a mark stand in double quotes.
std::string partsText(const std::vector<PartUsage>& parts);

/// Reads one part, "Oil filter;2;1R-0739;38.50"; everything but the name may be left out, the quantity is then 1. The
/// part gets a new identity. The error is a sentence naming the part.
std::expected<PartUsage, std::string> partFromText(std::string_view text);

/// Reads the parts of such a line, each as `partFromText` does.
std::expected<std::vector<PartUsage>, std::string> partsFromText(std::string_view text);

}  // namespace thalvorn
