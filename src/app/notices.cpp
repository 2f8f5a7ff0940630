#include "app/notices.h"

#include <utility>

namespace thalvorn::app {

void Notices::offer(const QString& text, std::function<void()> undo) {
  text_ = text;
  undo_ = std::move(undo);
  Q_EMIT undoChanged();
}

void Notices::offerUndo(const QString& text, const QJSValue& undo) {
  offer(text, [undo] { undo.call(); });
}

void Notices::undo() {
  const auto undo = std::exchange(undo_, nullptr);
  dismiss();
  if (undo) undo();
}

void Notices::dismiss() {
  undo_ = nullptr;
  text_.clear();
  Q_EMIT undoChanged();
}

}  // namespace thalvorn::app
