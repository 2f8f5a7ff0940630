#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace thalvorn::bench {

/// Measured durations of one thing, in microseconds.
class Samples {
 public:
  void add(std::chrono::steady_clock::duration duration) {
    values_.push_back(std::chrono::duration<double, std::micro>(duration).count());
  }
  /// Runs and measures.
  template <class Work>
  void time(Work work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    add(std::chrono::steady_clock::now() - begin);
  }
  std::size_t count() const { return values_.size(); }
  /// The value that `share` (0 to 1) of the samples do not exceed.
  double percentile(double share) const {
    if (values_.empty()) return 0;
    std::vector<double> sorted = values_;
    const auto at = static_cast<std::size_t>(std::lround(share * static_cast<double>(sorted.size() - 1)));
    std::nth_element(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(at), sorted.end());
    return sorted[at];
  }
  double median() const { return percentile(0.5); }

 private:
  std::vector<double> values_;
};

inline std::string microseconds(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f µs", value);
  return text;
}

/// One line of the table: what, measured, compared with, ratio, to reach, verdict.
inline void printFigure(const std::string& what, const std::string& measured, const std::string& compared_with,
                        double ratio, double to_reach) {
  std::printf("%s\t%s\t%s\t%.2f\t≤ %g\t%s\n", what.c_str(), measured.c_str(), compared_with.c_str(), ratio, to_reach,
              ratio <= to_reach ? "reached" : "MISSED");
}

/// One line for a peer that is to be beaten: how many times faster we are.
inline void printFaster(const std::string& what, const std::string& measured, const std::string& peer, double times,
                        double to_reach) {
  std::printf("%s\t%s\t%s\t%.2f × faster\t≥ %g\t%s\n", what.c_str(), measured.c_str(), peer.c_str(), times, to_reach,
              times >= to_reach ? "reached" : "MISSED");
}

/// Keeps the compiler from dropping a result nobody reads.
template <class T>
void keep(const T& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

inline std::string milliseconds(double microseconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f ms", microseconds / 1000);
  return text;
}

/// Two pieces of work timed in turn, so that both meet the same machine.
struct Compared {
  double ours = 0;  ///< median, microseconds
  double theirs = 0;
  std::string measured() const { return milliseconds(ours); }
  std::string peer(const std::string& name) const { return name + " " + milliseconds(theirs); }
  void atMost(const std::string& what, const std::string& floor, double to_reach) const {
    printFigure(what, measured(), peer(floor), ours / theirs, to_reach);
  }
  void faster(const std::string& what, const std::string& other, double to_reach) const {
    printFaster(what, measured(), peer(other), theirs / ours, to_reach);
  }
};

template <class Ours, class Theirs>
Compared inTurn(int passes, Ours&& ours, Theirs&& theirs) {
  Samples a;
  Samples b;
  for (int pass = 0; pass < passes; ++pass) {
    a.time(ours);
    b.time(theirs);
  }
  return {a.median(), b.median()};
}

/// A line that is reported and has no goal.
inline void printReport(const std::string& what, const std::string& measured, const std::string& compared_with) {
  std::printf("%s\t%s\t%s\t\t\treported\n", what.c_str(), measured.c_str(), compared_with.c_str());
}

}  // namespace thalvorn::bench
