#pragma once

#include <QLoggingCategory>
#include <QObject>
#include <QStringList>
#include <deque>
#include <string>

#include "base/calendar.h"

namespace thalvorn {

Q_DECLARE_LOGGING_CATEGORY(syncLog)

/// The lines of the last runs, as the sync panel shows them. Each also goes to the program's log.
class SyncLog : public QObject {
  Q_OBJECT

 public:
  struct Line {
    Timestamp at;
    QString text;
    bool isProblem = false;  ///< begins with ❌ or ⚠️
  };

  explicit SyncLog(const Clock& clock, QObject* parent = nullptr) : QObject(parent), clock_(clock) {}

  void say(const QString& text);
  void say(const std::string& text) { say(QString::fromStdString(text)); }
  void say(const char* text) { say(QString::fromUtf8(text)); }
  /// Oldest first, at most `kMost`.
  const std::deque<Line>& lines() const { return lines_; }

  static constexpr std::size_t kMost = 500;

 Q_SIGNALS:
  void added();

 private:
  const Clock& clock_;
  std::deque<Line> lines_;
};

}  // namespace thalvorn
