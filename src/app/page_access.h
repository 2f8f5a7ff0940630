#pragma once

#include "app/app_controller.h"

namespace thalvorn {
class AppViewModel;
}

namespace thalvorn::app {

/// Which pages the user's role in the open account keeps from him; none in the fleets of this computer.
PageAccess pageAccess(const AppViewModel& model);

}  // namespace thalvorn::app
