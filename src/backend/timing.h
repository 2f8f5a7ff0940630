#pragma once

#include <QCoro/QCoroTask>
#include <chrono>

namespace thalvorn {

/// Durations and waits, apart from the wall clock, which may be wrong or set; tests move it by hand.
class Timing {
 public:
  virtual ~Timing() = default;
  /// Since some fixed moment; goes on while the computer sleeps.
  virtual std::chrono::milliseconds elapsed() const = 0;
  virtual QCoro::Task<void> wait(std::chrono::milliseconds duration) = 0;
};

class SystemTiming : public Timing {
 public:
  std::chrono::milliseconds elapsed() const override;
  QCoro::Task<void> wait(std::chrono::milliseconds duration) override;
};

}  // namespace thalvorn
