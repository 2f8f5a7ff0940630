#pragma once

#include <QJSValue>
#include <QObject>
#include <functional>

namespace thalvorn::app {

/// What was just done and can be taken back. QML sees it as `Notices`; the shell shows it as a quiet bar.
class Notices : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString undoText READ undoText NOTIFY undoChanged)
  Q_PROPERTY(bool canUndo READ canUndo NOTIFY undoChanged)

 public:
  using QObject::QObject;

  QString undoText() const { return text_; }
  bool canUndo() const { return static_cast<bool>(undo_); }

  /// Offers to undo what `text` says; replaces the offer before.
  void offer(const QString& text, std::function<void()> undo);
  Q_INVOKABLE void offerUndo(const QString& text, const QJSValue& undo);
  /// Does it, once.
  Q_INVOKABLE void undo();
  Q_INVOKABLE void dismiss();

 Q_SIGNALS:
  void undoChanged();

 private:
  QString text_;
  std::function<void()> undo_;
};

}  // namespace thalvorn::app
