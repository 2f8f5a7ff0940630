#include "sync/when_saved.h"

#include <QCoroFuture>
#include <functional>

#include "backend/next_emission.h"

namespace thalvorn {
namespace {

constexpr std::chrono::seconds kPatienceWithDisk{20};

/// Waits until `isSo`, looking whenever the store has saved something; false when the disk does not take it.
QCoro::Task<bool> untilSaved(AppViewModel* model, RunToken token, std::function<bool()> isSo) {
  while (!token.isOver() && !isSo()) {
    if (!model->saveProblem().empty()) co_return false;
    const auto changed = co_await nextEmission(model, &AppViewModel::unsavedChanged, kPatienceWithDisk);
    if (!changed && !token.isOver() && !isSo()) co_return false;
  }
  co_return !token.isOver();
}

}  // namespace

QCoro::Task<bool> whenSaved(AppViewModel* model, RunToken token) {
  return untilSaved(model, std::move(token), [model] { return model->unsavedCount() == 0; });
}

QCoro::Task<bool> whenEditsSaved(AppViewModel* model, RunToken token) {
  return untilSaved(model, std::move(token), [model] { return model->unsavedEdits() == 0; });
}

QCoro::Task<bool> whenSaved(AppViewModel* model, Saving saving, RunToken token) {
  if (!saving.isFinished() && !co_await untilSaved(model, std::move(token), [saving] { return saving.isFinished(); }))
    co_return false;
  co_return saving.isFinished() && saving.result().has_value();
}

}  // namespace thalvorn
