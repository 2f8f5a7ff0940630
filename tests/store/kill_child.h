#pragma once

#include <optional>

namespace thalvorn::testing_tools {

/// When this process was started as the one that edits until it is killed: does that and gives its exit status.
std::optional<int> runAsKilledChild(int argc, char** argv);

}  // namespace thalvorn::testing_tools
