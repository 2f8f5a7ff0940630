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

/// Reads such a line; everything but the name may be left out, the quantity is then 1. The parts get new identities.
/// The error is a sentence naming the part.
std::expected<std::vector<PartUsage>, std::string> partsFromText(std::string_view text);

}  // namespace thalvorn
