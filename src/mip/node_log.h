// The node log of a search: header, node lines, heuristic lines, progress lines, with a throttle
// that lets at most one regular line through for each interval.
#pragma once

#include "base/solve_control.h"
#include "mip/mip_options.h"

namespace tarvik {

// What a line shows; objectives in the minimization sense.
struct SearchState {
  double explored = 0, unexplored = 0;
  double incumbent = kUserInf, bound = -kUserInf;
  double iterations = 0, rootIterations = 0;
};

enum class NodeOutcome { Solved, Postponed, Infeasible, Cutoff, NotEvaluated, Exploded, Unbounded };

class NodeLog {
 public:
  NodeLog(const MipOptions &options, SolveControl &control)
      : options_(options), control_(control) {}

  // A node that was just processed.
  void nodeLogLine(const SearchState &state, NodeOutcome outcome, double objective, int depth,
                   int infeasibilities);
  // A new incumbent: at a node, or from a heuristic.
  void nodeLogIncumbentLine(const SearchState &state, int depth);
  void nodeLogHeuristicLine(const SearchState &state);
  // During long work at the root, before the table begins; phase may be null.
  void nodeLogElapsed(const char *phase);
  // True once the root relaxation was solved: incumbents then get table lines.
  void rootSolved();
  void enterCompletion();

 private:
  bool due() const;
  void printed();
  void nodeLogHeader();
  void line(const SearchState &state, const char *objective, int depth, const char *infeasible);

  const MipOptions &options_;
  SolveControl &control_;
  bool headerPrinted_ = false, rootSolved_ = false, completing_ = false;
  double last_ = -1;
};

// A value in a field of 10 or 12 characters, as many digits as fit.
struct FieldText {
  char text[40];
};
FieldText formatField(double value, int width);

}  // namespace tarvik
