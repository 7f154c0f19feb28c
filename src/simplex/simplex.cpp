#include "simplex/simplex.h"

#include "simplex/simplex_core.h"

namespace tarvik {

namespace {

LpStatus statusOf(StopReason reason) {
  switch (reason) {
    case StopReason::TimeLimit:
      return LpStatus::TimeLimit;
    case StopReason::WorkLimit:
      return LpStatus::WorkLimit;
    case StopReason::MemoryLimit:
      return LpStatus::MemoryLimit;
    case StopReason::IterationLimit:
      return LpStatus::IterationLimit;
    case StopReason::Callback:
      return LpStatus::Callback;
    default:
      return LpStatus::Interrupted;
  }
}

LpStatus statusOf(PhaseResult result, StopReason stop) {
  switch (result) {
    case PhaseResult::Optimal:
      return LpStatus::Optimal;
    case PhaseResult::Infeasible:
      return LpStatus::Infeasible;
    case PhaseResult::Unbounded:
      return LpStatus::Unbounded;
    case PhaseResult::Cutoff:
      return LpStatus::Cutoff;
    case PhaseResult::Stopped:
      return statusOf(stop);
    default:
      return LpStatus::Numeric;
  }
}

}  // namespace

// The core in the precision in use, and the switch between the two. Exactly one of the cores
// exists.
class SimplexEngine {
 public:
  explicit SimplexEngine(const SimplexOptions &options) {
    if (options.quad == 1)
      extended_ = std::make_unique<SimplexCore<long double>>(options);
    else
      double_ = std::make_unique<SimplexCore<double>>(options);
  }

  LpStatus solve(SimplexMethod method, SolveControl &control);
  bool crash(SolveControl &control) { return double_ && double_->crash(control); }
  bool extended() const { return extended_ != nullptr; }
  LpStatus status() const { return status_; }
  Engine<double> &doubleEngine() { return double_->engine; }
  EngineState &state() {
    if (extended_) return extended_->engine;
    return double_->engine;
  }
  // Calls f with the core in use.
  template <class F>
  decltype(auto) visit(F &&f) {
    return extended_ ? f(*extended_) : f(*double_);
  }

 private:
  void choosePrecision(Log &log);
  void extend();
  void toDouble();

  std::unique_ptr<SimplexCore<double>> double_;
  std::unique_ptr<SimplexCore<long double>> extended_;
  LpStatus status_ = LpStatus::NotSolved;
};

void SimplexEngine::extend() {
  extended_ = std::make_unique<SimplexCore<long double>>(*double_);
  double_.reset();
}

void SimplexEngine::toDouble() {
  double_ = std::make_unique<SimplexCore<double>>(*extended_);
  extended_.reset();
}

// What the options ask for before a solve. A core that trouble has extended stays so while the
// choice is left to it: the trouble is in the model.
void SimplexEngine::choosePrecision(Log &log) {
  const SimplexOptions &options = state().options;
  if (options.quad == 1 && !extended()) {
    if (options.logging) log.print("Switch to quad precision\n");
    extend();
  } else if (options.quad == 0 && extended()) {
    if (options.logging) log.print("Switch to double precision\n");
    toDouble();
  }
}

LpStatus SimplexEngine::solve(SimplexMethod method, SolveControl &control) {
  choosePrecision(*control.log);
  if (!visit([&](auto &core) { return core.start(control); }))
    return status_ = LpStatus::Infeasible;
  const auto run = [&](auto &core) { return core.run(method); };
  PhaseResult result = visit(run);
  if (result == PhaseResult::NeedsExtended && !extended()) {
    if (state().options.logging) control.log->print("Warning: switch to quad precision\n");
    extend();
    result = visit(run);
  }
  const EngineState &end = state();
  if (end.stop == StopReason::None) visit([](auto &core) { core.engine.log(true); });
  if (result == PhaseResult::Optimal && !visit([](auto &core) { return core.endsWell(); }))
    result = PhaseResult::Trouble;
  if (end.options.statistics > 0) end.stability.statistics.print(*control.log);
  return status_ = statusOf(result, end.stop);
}

// --- the facade ---

Simplex::Simplex(const SimplexOptions &options)
    : engine_(std::make_unique<SimplexEngine>(options)) {}
Simplex::~Simplex() = default;
Simplex::Simplex(Simplex &&) noexcept = default;
Simplex &Simplex::operator=(Simplex &&) noexcept = default;

void Simplex::load(const LpModel &lp) {
  engine_->visit([&](auto &core) { core.engine.load(lp); });
}
void Simplex::load(const LpModel &lp, const Basis &basis, const Vec<double> *superbasicValues,
                   const Scaling *known) {
  engine_->visit([&](auto &core) { core.load(lp, basis, superbasicValues, known); });
}
SimplexOptions &Simplex::options() { return engine_->state().options; }

void Simplex::setColBounds(ColIndex col, double lower, double upper) {
  engine_->visit([&](auto &core) {
    core.engine.lp.setColBounds(col, lower, upper);
    core.engine.touch(col);
  });
}
void Simplex::setRowBounds(RowIndex row, double lower, double upper) {
  engine_->visit([&](auto &core) {
    core.engine.lp.setRowBounds(row, lower, upper);
    core.engine.touch(core.engine.lp.n + row);
  });
}
void Simplex::setCost(ColIndex col, double cost) {
  engine_->visit([&](auto &core) {
    core.engine.lp.setCost(col, cost);
    core.engine.forgetValues();
  });
}
void Simplex::setOffset(double offset) {
  engine_->visit([&](auto &core) {
    core.engine.lp.offset = offset;
    core.engine.forgetValues();
  });
}
void Simplex::addRows(int count, const NzIndex *start, const int *index, const double *value,
                      const double *lower, const double *upper) {
  engine_->visit([&](auto &core) { core.addRows(count, start, index, value, lower, upper); });
}
void Simplex::deleteRows(const Vec<char> &mark) {
  engine_->visit([&](auto &core) { core.deleteRows(mark); });
}
void Simplex::setBasis(const Basis &basis, const Vec<double> *superbasicValues) {
  engine_->visit([&](auto &core) { core.setBasis(basis, superbasicValues); });
}
Basis Simplex::basis() const {
  return engine_->visit([](auto &core) { return core.basis(); });
}
bool Simplex::extended() const { return engine_->extended(); }
LpStatus Simplex::solve(SimplexMethod method, SolveControl &control) {
  return engine_->solve(method, control);
}
void Simplex::setIterationCap(double iterations) { engine_->state().iterationCap = iterations; }
bool Simplex::crash(SolveControl &control) { return engine_->crash(control); }
double Simplex::iterations() const { return engine_->state().iterations; }
double Simplex::objective() const {
  return engine_->visit(
      [](auto &core) { return static_cast<double>(core.engine.trueObjective()); });
}
void Simplex::getSolution(LpSolution &solution) const {
  engine_->visit([&](auto &core) { core.getSolution(engine_->status(), solution); });
}

void Simplex::getPoint(Vec<double> &x, Vec<double> &reducedCost, double &objective) const {
  engine_->visit([&](auto &core) { core.getPoint(x, reducedCost, objective); });
}
double Simplex::dualBound(WorkMeter &work) {
  return engine_->visit([&](auto &core) { return core.engine.dualBound(work); });
}
bool Simplex::logicalIsBasic(RowIndex row) const {
  return engine_->visit(
      [&](auto &core) { return core.engine.position[core.engine.lp.n + row] >= 0; });
}

Vec<double> Simplex::edgeWeights() const {
  return engine_->visit([](auto &core) { return core.edgeWeights(); });
}
void Simplex::setEdgeWeights(const Vec<double> &weights) {
  engine_->visit([&](auto &core) { core.setEdgeWeights(weights); });
}
bool Simplex::knowsEdgeWeights() const { return engine_->state().rowWeightsValid; }
Vec<BasicWeight> Simplex::basicWeights() const {
  const EngineState &state = engine_->state();
  Vec<BasicWeight> weights;
  weights.reserve(state.head.size());
  for (std::size_t i = 0; i < state.head.size(); ++i)
    weights.push_back({state.head[i], state.rowWeight[i]});
  return weights;
}
void Simplex::guessEdgeWeights(const Vec<BasicWeight> &weights) {
  EngineState &state = engine_->state();
  for (const BasicWeight &w : weights)
    if (const BasisPos p = state.position[w.var]; p >= 0 && w.weight > 0 && w.weight < kInf)
      state.rowWeight[p] = w.weight;
}
double Simplex::markowitzTol() const { return engine_->state().stability.markowitz(); }
Scaling Simplex::scaling() const {
  return engine_->visit([](auto &core) {
    return Scaling{core.engine.lp.rowScale, core.engine.lp.colScale};
  });
}
void Simplex::restartCounting() {
  engine_->visit([](auto &core) { core.engine.restartCounting(); });
}
bool Simplex::refresh(SolveControl &control) {
  return engine_->visit([&](auto &core) { return core.refresh(control); });
}
bool Simplex::prefersPrimal(SolveControl &control) {
  return engine_->visit([&](auto &core) { return core.prefersPrimal(control); });
}
bool Simplex::hasBasics(const Basis &basis) const {
  return engine_->visit([&](auto &core) { return core.hasBasics(basis); });
}
bool Simplex::standsAt(const Basis &basis) const {
  return engine_->visit([&](auto &core) { return core.standsAt(basis); });
}

const Vec<VarIndex> &Simplex::basisHead() const { return engine_->state().head; }
void Simplex::ftran(Vec<double> &x, WorkMeter &work) {
  engine_->visit([&](auto &core) { core.ftran(x, work); });
}
void Simplex::btran(Vec<double> &y, WorkMeter &work) {
  engine_->visit([&](auto &core) { core.btran(y, work); });
}
Engine<double> &Simplex::core() { return engine_->doubleEngine(); }

}  // namespace tarvik
