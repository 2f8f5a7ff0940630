#pragma once

#include <QString>

#include "app/text.h"
#include "store/saving.h"

namespace thalvorn::app {

/// Why the store refused an edit, for the user; empty when it was taken. What cannot be written to disk yet is told by
/// the window, not here.
inline QString refusalOf(const Saving& saving) {
  if (!saving.isFinished() || saving.resultCount() == 0 || saving.result()) return {};
  return toQt(saving.result().error().message);
}

}  // namespace thalvorn::app
