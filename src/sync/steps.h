#pragma once

#include "sync/sync_run.h"

namespace thalvorn {

/// Uploads the deletions of one kind. What the others had made of a deleted record since is kept in a conflict note.
template <class T>
SBTask<void> uploadDeletions(SyncRunPtr run, RunToken token);

/// Uploads the changed records of one kind: each is merged with what the server holds by now, sent, and read back; only
/// what is read back as it was sent waits no longer. A record that the server refuses does not hold back the others.
template <class T>
SBTask<void> uploadChanges(SyncRunPtr run, RunToken token);

/// Downloads the rows of one kind and takes them as they come. True when every row was seen; only then is a record that
/// was not among them removed.
template <class T>
SBTask<bool> downloadRows(SyncRunPtr run, RunToken token);

/// Asks for the first rows of one kind before its step's turn.
template <class T>
void askAhead(SyncRun& run);

}  // namespace thalvorn
