#pragma once

#include <QString>
#include <string>

namespace thalvorn {

/// Collects what is logged while it lives.
class MessageCatcher {
 public:
  MessageCatcher() : previous_(qInstallMessageHandler(&MessageCatcher::take)) { text_.clear(); }
  ~MessageCatcher() { qInstallMessageHandler(previous_); }
  std::string text() const { return text_; }

 private:
  static void take(QtMsgType, const QMessageLogContext&, const QString& message) {
    text_ += message.toStdString() + '\n';
  }
  static inline std::string text_;
  QtMessageHandler previous_;
};

}  // namespace thalvorn
