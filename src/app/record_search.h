#pragma once

#include "app/search_model.h"

namespace thalvorn {
class AppViewModel;
}

namespace thalvorn::app {

/// Vessels, tasks and service history of the open fleet, found at once; for the desktop's search.
SearchSource recordSearch(const AppViewModel& model);

/// The same and the templates of the catalogue, found little by little so that a long list never holds up a frame; for
/// the window's search.
SearchScan recordScan(const AppViewModel& model);

/// The records of every register, likewise.
void addRegisterScans(SearchModel& search, const AppViewModel& model);

}  // namespace thalvorn::app
