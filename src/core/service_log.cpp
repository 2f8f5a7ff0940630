#include "core/service_log.h"

namespace thalvorn {

std::optional<double> totalCost(const ServiceLog& log) {
  std::optional<double> total = log.cost;
  for (const PartUsage& part : log.partsUsed)
    if (part.cost) total = total.value_or(0) + *part.cost;
  return total;
}

}  // namespace thalvorn
