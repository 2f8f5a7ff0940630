#pragma once

#include <QFuture>
#include <QPromise>
#include <expected>
#include <string>

#include "store/local_cache.h"

namespace thalvorn {

/// Why the store refused an edit; the text is for the user.
struct StoreError {
  std::string message;
};

/// Finishes when the edit is on disk, with its revision; or at once with the reason why it was refused.
using SaveResult = std::expected<Revision, StoreError>;
using Saving = QFuture<SaveResult>;

/// A saving that is over already.
inline Saving finishedSaving(SaveResult result) {
  QPromise<SaveResult> promise;
  promise.start();
  promise.addResult(std::move(result));
  promise.finish();
  return promise.future();
}

inline Saving refused(std::string message) { return finishedSaving(std::unexpected(StoreError{std::move(message)})); }

}  // namespace thalvorn
