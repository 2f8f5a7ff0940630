#include "backend/timing.h"

#include <QCoro/QCoroTimer>
#include <ctime>

namespace thalvorn {

std::chrono::milliseconds SystemTiming::elapsed() const {
#ifdef CLOCK_BOOTTIME
  timespec now{};
  if (clock_gettime(CLOCK_BOOTTIME, &now) == 0)
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::seconds(now.tv_sec) +
                                                                 std::chrono::nanoseconds(now.tv_nsec));
#endif
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

QCoro::Task<void> SystemTiming::wait(std::chrono::milliseconds duration) {
  QTimer timer;
  timer.setSingleShot(true);
  timer.start(duration);
  co_await timer;
}

}  // namespace thalvorn
