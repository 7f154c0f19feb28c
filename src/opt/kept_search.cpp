#include "opt/kept_search.h"

namespace tarvik {

template <class Search>
MipOutcome KeptSearch::under(SolveControl &control, Search &&search) {
  const double before = control_.work.counted();
  const WorkMeter work = control_.work;
  control_ = control;
  control_.work = work;
  control_.limits.workLimit += work.workUnits() - control.work.workUnits();
  MipOutcome outcome = search();
  control.work.charge(control_.work.counted() - before);
  // They end with the call.
  control_.log = nullptr;
  control_.progress = nullptr;
  return outcome;
}

MipOutcome KeptSearch::run(SolveControl &control) {
  return under(control, [&] { return solve_.run(); });
}

MipOutcome KeptSearch::goOn(const MipOptions &options, SolveControl &control) {
  return under(control, [&] { return solve_.goOn(options); });
}

}  // namespace tarvik
