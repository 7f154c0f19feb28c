// The node log of a search: header, node lines, heuristic lines, progress lines, with a throttle
// that lets at most one regular line through for each interval. Progress lines come while long
// work goes on that is not about a node just processed; they show one of the open nodes, out of
// samples that are kept for them.
#pragma once

#include "base/solve_control.h"
#include "mip/mip_observer.h"
#include "mip/mip_options.h"

namespace tarvik {

class NodeQueue;

// Stands for a number of infeasibilities that nobody has counted.
inline constexpr int kUnknownCount = 2000000000;

enum class NodeOutcome { Solved, Postponed, Infeasible, Cutoff, NotEvaluated, Exploded, Unbounded };

class NodeLog {
 public:
  NodeLog(const MipOptions &options, SolveControl &control)
      : options_(options), control_(control), last_(control.limits.seconds()) {}

  // A node that was just processed.
  void nodeLogLine(const SearchState &state, NodeOutcome outcome, double objective, int depth,
                   int infeasibilities);
  // A new incumbent: at a node, or from a heuristic.
  void nodeLogIncumbentLine(const SearchState &state, int depth);
  void nodeLogHeuristicLine(const SearchState &state);
  // During long work at the root, before the table begins; phase may be null.
  void nodeLogElapsed(const char *phase);
  // During long work after that.
  void nodeLogProgressLine(const SearchState &state, const NodeQueue &queue, int infeasibilities);
  // Whether the throttle lets a line through.
  bool due() const;
  bool tableBegun() const { return headerPrinted_; }
  // True once the root relaxation was solved: incumbents then get table lines.
  void rootSolved();
  void enterCompletion();

 private:
  static constexpr int kMostSamples = 100;
  struct Sample {
    int depth;
    double objective;
  };

  void printed();
  void nodeLogHeader();
  void takeSamples(const NodeQueue &queue);
  void line(const SearchState &state, const char *objective, int depth, const char *infeasible);

  const MipOptions &options_;
  SolveControl &control_;
  bool headerPrinted_ = false, rootSolved_ = false, completing_ = false;
  bool linePrinted_ = false;  // a regular one
  double last_;               // when the last line was printed
  Vec<Sample> samples_;
};

// A value in a field of 10 or 12 characters, as many digits as fit.
struct FieldText {
  char text[40];
};
FieldText formatField(double value, int width);

}  // namespace tarvik
