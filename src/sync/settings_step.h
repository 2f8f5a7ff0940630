#pragma once

#include "sync/sync_run.h"

namespace thalvorn {

// The settings that follow a user from computer to computer: one row per user, merged field by field.

/// 1 when they were changed here since the last exchange.
int settingsWaiting(const AppViewModel& model);
SBTask<void> uploadSettings(SyncRunPtr run, RunToken token);
SBTask<bool> downloadSettings(SyncRunPtr run, RunToken token);

}  // namespace thalvorn
