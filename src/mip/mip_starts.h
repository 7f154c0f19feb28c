// Starts: full or partial assignments that the caller supplies or an earlier solve left behind,
// turned into solutions where that is possible. Complete ones are checked (continuous values are
// recomputed where that mends them); partial ones are completed by a small search in which the
// given values are fixed.
#pragma once

#include <functional>
#include <string>

#include "base/solve_control.h"
#include "mip/mip_options.h"
#include "mip/problem.h"

namespace tarvik {

enum class MipStatus;

// Identifies the start that the previous solve left.
inline constexpr int kPreviousSolve = -2;
inline constexpr int kOnlyStart = -1;

struct MipStart {
  int id = kOnlyStart;  // or its number among several
  Vec<double> x;        // kUndefined where no value is given
  // Of what the previous solve left: the problem is large and almost the same.
  bool mostlyUnchanged = false;
};

class MipStarts {
 public:
  // What the starts are offered to. accept() takes a complete point and says whether it is a
  // solution better than the ones known; the objective comes back.
  struct Target {
    std::function<bool(const Vec<double> &x, double &objective)> accept;
    std::function<double()> cutoff;  // objectives must be below
    std::function<std::string(int row)> rowName;
  };

  // The problem is the user's model.
  MipStarts(const Problem &problem, const MipOptions &options, SolveControl &control, Target target)
      : problem_(problem), options_(options), control_(control), target_(std::move(target)) {}

  void processMipStarts(const Vec<MipStart> &starts);

 private:
  void processOneStart(const MipStart &start);
  // Rounds what has to be integral, moves values out of holes; true when all values are known.
  bool prepare(const MipStart &start, Vec<double> &x) const;
  bool completeStart(const Vec<double> &x, int id, double &objective);
  bool takePrevious(const MipStart &start, const Vec<double> &x, double &objective);
  bool recomputeContinuous(Vec<double> x, double &objective);
  bool searchAround(const Vec<double> &given, int id, double &objective, MipStatus &status);
  Vec<double> consistentPart(const Vec<double> &x);
  MipOptions completionOptions(bool zeroObjective) const;
  void reportProgress(const std::string &name, double nodes);
  void reportViolation(const Vec<double> &x, const char *name) const;
  void warnOfSparseStart(const Vec<double> &x, int id);

  const Problem &problem_;
  const MipOptions &options_;
  SolveControl &control_;
  Target target_;
  int sparseWarnings_ = 0, numStarts_ = 0;
  double lastLine_ = 0;  // when the last sign of life was printed
};

}  // namespace tarvik
