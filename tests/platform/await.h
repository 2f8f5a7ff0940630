#pragma once

#include <QObject>
#include <QTest>
#include <chrono>
#include <functional>

namespace thalvorn::test {

inline constexpr std::chrono::milliseconds kLongEnough = std::chrono::seconds(20);

/// Runs the event loop until the condition holds; false when it does not in time.
inline bool eventually(const std::function<bool()>& condition) {
  return QTest::qWaitFor(condition, int(kLongEnough.count()));
}

/// What a coroutine under test waits at until the test opens it.
class Gate : public QObject {
  Q_OBJECT

 Q_SIGNALS:
  void opened();
};

}  // namespace thalvorn::test
