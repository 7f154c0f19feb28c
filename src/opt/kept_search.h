// A mixed-integer search that a limit has stopped, with all that it refers to: the next optimize
// call on the unchanged model lets it go on.
#pragma once

#include "mip/mip_solve.h"
#include "model/solution_store.h"

namespace tarvik {

class KeptSearch final : public SolverState, public AccountAllocated {
 public:
  KeptSearch(MipModel &&model, const MipOptions &options)
      : model_(std::move(model)), solve_(model_, options, control_) {}

  MipSolve &solve() { return solve_; }
  // Under the limits of the given control, which is charged for the work.
  MipOutcome run(SolveControl &control);
  MipOutcome goOn(const MipOptions &options, SolveControl &control);

 private:
  template <class Search>
  MipOutcome under(SolveControl &control, Search &&search);

  MipModel model_;
  SolveControl control_;  // its work meter counts over all calls
  MipSolve solve_;
};

}  // namespace tarvik
