#pragma once

#include <QString>

namespace thalvorn::app {

/// Puts a backup in the place of the store's file, which nobody may have open, and starts the program again with the
/// arguments it was started with. The new window tells how it went; when it went wrong, the old file is untouched.
void restoreAndRestart(const QString& backup, const QString& storeFile);

/// What the program before this one left to tell, once; empty when nothing.
QString messageOfRestart();

}  // namespace thalvorn::app
