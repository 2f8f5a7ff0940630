#pragma once

#include "app/search_model.h"

namespace thalvorn {
class AppViewModel;
}

namespace thalvorn::app {

/// Vessels, tasks and service history of the open fleet, for the global search.
SearchSource recordSearch(const AppViewModel& model);

}  // namespace thalvorn::app
