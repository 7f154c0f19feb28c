// What heuristics tell the caller. A heuristic inside a sub-MIP tells nothing; signs of life come
// at most once in each interval of DisplayInterval seconds.
#pragma once

#include <cmath>

#include "mip/heuristics/heuristic.h"

namespace tarvik {

class HeuristicLog {
 public:
  explicit HeuristicLog(const HeuristicContext &context)
      : log_(context.options->subMip ? silent_ : *context.control->log),
        limits_(context.control->limits),
        interval_(context.options->displayInterval) {
    printed();
  }
  HeuristicLog(const HeuristicLog &) = delete;
  HeuristicLog &operator=(const HeuristicLog &) = delete;

  Log &lines() { return log_; }
  // True when a sign of life is due; it counts as printed then.
  bool due() {
    if (!log_.enabled() || std::floor(limits_.seconds() / interval_) == last_) return false;
    printed();
    return true;
  }
  double seconds() const { return limits_.seconds(); }

 private:
  void printed() { last_ = std::floor(limits_.seconds() / interval_); }

  SilentLog silent_;
  Log &log_;
  const Limits &limits_;
  double interval_;
  double last_ = 0;
};

}  // namespace tarvik
