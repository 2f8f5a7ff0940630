#pragma once

#include <QCoroTask>

#include "store/app_view_model.h"
#include "sync/run_token.h"

namespace thalvorn {

/// HTTP's word for a full disk, said of this computer.
inline constexpr int kNotSaved = 507;

/// Waits until everything entered or received here is on disk: only then is it known what waits. False when the disk
/// does not take it, which is tried again without end elsewhere, or when `token` is over.
QCoro::Task<bool> whenSaved(AppViewModel* model, RunToken token);

/// Waits in the same way until what was entered here is on disk; what was received before may still be on its way.
QCoro::Task<bool> whenEditsSaved(AppViewModel* model, RunToken token);

/// Waits for one saving in the same way.
QCoro::Task<bool> whenSaved(AppViewModel* model, Saving saving, RunToken token);

}  // namespace thalvorn
