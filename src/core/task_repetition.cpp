#include "core/task_repetition.h"

#include <fmt/format.h>

#include "base/number_format.h"

namespace thalvorn {

std::string intervalText(const std::optional<std::int64_t>& days, const std::optional<double>& hours) {
  std::string text;
  if (days) text = *days == 1 ? "day" : fmt::format("{} days", *days);
  if (days && hours) text += " or ";
  if (hours) text += formatQuantity(*hours, 1) + " h";
  return text;
}

}  // namespace thalvorn
