#include "sync/when_saved.h"

#include <QCoroFuture>

#include "backend/next_emission.h"

namespace thalvorn {
namespace {

constexpr std::chrono::seconds kPatienceWithDisk{20};

}  // namespace

QCoro::Task<bool> whenSaved(AppViewModel* model, RunToken token) {
  while (!token.isOver() && model->unsavedCount() > 0) {
    if (!model->saveProblem().empty()) co_return false;
    const auto changed = co_await nextEmission(model, &AppViewModel::unsavedChanged, kPatienceWithDisk);
    if (!changed && !token.isOver() && model->unsavedCount() > 0) co_return false;
  }
  co_return !token.isOver();
}

QCoro::Task<bool> whenSaved(AppViewModel* model, Saving saving, RunToken token) {
  if (!saving.isFinished() && !co_await whenSaved(model, std::move(token))) co_return false;
  co_return saving.isFinished() && saving.result().has_value();
}

}  // namespace thalvorn
