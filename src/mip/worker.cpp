#include "mip/worker.h"

#include <algorithm>
#include <cmath>

#include "mip/mip_solve.h"
#include "mip/sos_propagator.h"

namespace tarvik {

namespace {
// Relaxations solved at one node, as tightening goes on.
constexpr int kMaxSolves = 50;
}  // namespace

Worker::Worker(const Problem &problem, const MipOptions &options, SolutionSink &sink,
               SolveControl &control)
    : problem_(problem),
      options_(options),
      sink_(sink),
      control_(control),
      domain_(problem),
      lp_(problem, options.simplex),
      pseudoCosts_(problem.numCols()),
      brancher_(problem, options, pseudoCosts_) {
  // The cutoff of a search for several solutions is not what conflicts should rest on.
  if (options.infProof > 0 && options.poolSearchMode == 0) {
    conflicts_ = std::make_unique<ConflictAnalysis>(problem, domain_);
    domain_.addPropagator(&conflicts_->store());
    brancher_.setConflicts(conflicts_.get());
  }
  if (problem.model().sos.empty()) return;
  sosPropagator_ = std::make_unique<SosPropagator>(problem);
  domain_.addPropagator(sosPropagator_.get());
}

void Worker::returnToRoot() {
  domain_.backtrackTo(0);
  if (orbitalFixing_) orbitalFixing_->retreat(0);
  chain_.clear();
  path_.reset();
}

void Worker::separateInTree(const ImplicationTable &implications,
                            const std::function<int(CutFamily)> &levelOf, const CutPool &pool) {
  treeSeparation_ =
      std::make_unique<TreeSeparation>(problem_, domain_, implications, levelOf, pool, nextCutId_);
}

void Worker::cutByProofs(int level) {
  proofCuts_ = std::make_unique<ProofCuts>(problem_, domain_, level);
  brancher_.setProofs(proofCuts_.get());
}

void Worker::useSymmetry(const SymmetryGroup &group) {
  returnToRoot();
  orbitalFixing_.emplace(problem_, group);
}

void Worker::followRootOf(Worker &other) {
  other.returnToRoot();
  for (int j = 0; j < problem_.numCols(); ++j) {
    domain_.tighten(j, BoundSide::Lower, other.domain_.lower(j), {Reason::Other, -1});
    domain_.tighten(j, BoundSide::Upper, other.domain_.upper(j), {Reason::Other, -1});
  }
  domain_.propagate(control_.work);
  lp_.follow(domain_);
  lp_.copyCuts(other.lp_);
  lp_.simplex().options().logging = false;
  pseudoCosts_ = other.pseudoCosts_;
  brancher_.setRootPoint(other.brancher_.rootPoint());
  brancher_.setCutEfficacy(other.brancher_.cutEfficacy());
}

// Rows and symmetry, until neither implies more. False: the domain is empty.
bool Worker::propagate() {
  while (domain_.propagate(control_.work)) {
    const std::size_t changes = domain_.trail().size();
    if (orbitalFixing_ && !orbitalFixing_->tighten(domain_, control_.work)) return false;
    if (domain_.trail().size() == changes) return true;
  }
  return false;
}

// Undoes what the node does not share with the last one and makes its other decisions.
bool Worker::moveTo(const Node &node) {
  Vec<std::shared_ptr<const NodePath>> target(node.depth);
  std::shared_ptr<const NodePath> step = node.path;
  for (int k = node.depth - 1; k >= 0; --k) {
    target[k] = step;
    step = step->parent;
  }
  std::size_t common = 0;
  while (common < chain_.size() && common < target.size() && chain_[common] == target[common])
    ++common;
  // The engine still has the parent's basis.
  const bool continues = path_ && node.path && node.path->parent == path_;
  if (conflicts_ && conflicts_->store().waitsForRoot()) common = 0;
  domain_.backtrackTo(static_cast<int>(common));
  if (orbitalFixing_) orbitalFixing_->retreat(static_cast<int>(common));
  chain_.resize(common);
  path_ = node.path;
  bool possible = enterConflicts() && propagate();
  for (std::size_t k = common; k < target.size() && possible; ++k) {
    if (orbitalFixing_)
      orbitalFixing_->advance(target[k]->decision, target[k]->preferred, control_.work);
    possible = domain_.decide(target[k]->decision) && propagate();
    chain_.push_back(target[k]);
  }
  if (possible && !continues && node.basis) lp_.setBasis(*node.basis);
  return possible;
}

bool Worker::enterConflicts() {
  if (!conflicts_) return true;
  control_.work.charge(conflicts_->store().takeWork());
  return conflicts_->store().enter(domain_);
}

void Worker::learnFromDomain() {
  if (conflicts_) conflicts_->learnFromDomain(control_.work);
}

void Worker::learnFromRelaxation(bool cutOff) {
  if (conflicts_) conflicts_->learnFromRelaxation(lp_, cutOff, sink_.cutoff(), control_.work);
  if (proofCuts_) proofCuts_->take(lp_, cutOff, sink_.cutoff(), control_.work);
}

LpStatus Worker::solveRelaxation() {
  lp_.follow(domain_);
  lp_.setCutoff(sink_.cutoff());
  const double before = lp_.iterations();
  LpStatus status = lp_.solve(control_);
  if (status == LpStatus::Numeric) {
    // Once more from the slack basis.
    NodeBasis slack;
    slack.basis.col.assign(problem_.numCols(), VarStatus::AtLower);
    slack.basis.row.assign(problem_.numRows(), VarStatus::Basic);
    lp_.setBasis(slack);
    status = lp_.solve(control_);
  }
  if (status == LpStatus::Optimal) lp_.ageCuts();
  brancher_.noteNodeIterations(lp_.iterations() - before);
  return status;
}

void Worker::learnFrom(const Node &node, LpStatus status) {
  const BranchInfo &info = node.branch;
  if (info.col < 0) return;
  if (status == LpStatus::Optimal)
    pseudoCosts_.update(info.col, info.distance, lp_.objective() - info.parentObjective);
  else
    pseudoCosts_.noteCutoff(info.col, info.up);
}

bool Worker::tightenByReducedCosts(const Vec<double> &x, const Vec<double> &reducedCost,
                                   double objective) {
  const double room = sink_.cutoff() - objective;
  if (sink_.cutoff() >= kUserInf) return true;
  const double tolerance = problem_.tolerances().dual;
  for (int j = 0; j < problem_.numCols(); ++j) {
    const double d = reducedCost[j];
    if (problem_.kind(j) != VarKind::Integer || std::fabs(d) <= tolerance || domain_.isFixed(j))
      continue;
    const bool atLower = d > 0 && x[j] <= domain_.lower(j) + tolerance;
    const bool atUpper = d < 0 && x[j] >= domain_.upper(j) - tolerance;
    if (!atLower && !atUpper) continue;
    const double step = room / std::fabs(d);
    if (step >= domain_.upper(j) - domain_.lower(j)) continue;
    const double bound = atLower ? domain_.lower(j) + step : domain_.upper(j) - step;
    if (!domain_.tighten(j, atLower ? BoundSide::Upper : BoundSide::Lower, bound,
                         {Reason::Other, -1}))
      return false;
  }
  return true;
}

bool Worker::pointIsCutOff() const {
  const Vec<double> &x = lp_.x();
  const double tolerance = problem_.tolerances().primal;
  for (int j = 0; j < problem_.numCols(); ++j)
    if ((problem_.isIntegral(j) || problem_.isSemi(j)) &&
        (x[j] < domain_.lower(j) - tolerance || x[j] > domain_.upper(j) + tolerance))
      return true;
  return false;
}

NodeOutcome Worker::outcomeOf(LpStatus status) const {
  return status == LpStatus::Cutoff ? NodeOutcome::Cutoff : NodeOutcome::Infeasible;
}

// An unbounded relaxation with all holes and sets decided: integrality may still leave no point.
void Worker::lookForPoint(NodeResult &result) {
  MipModel model = problem_.model();
  model.lp.colLower = domain_.lower();
  model.lp.colUpper = domain_.upper();
  for (VarKind &kind : model.kind) kind = withoutHole(kind);
  MipOptions options = options_;
  options.iterationLimit -= lpIterations();
  const MipOutcome outcome = findAnyPoint(model, options, control_, [this] { sink_.alive(); });
  nestedIterations_ += outcome.iterations;
  result.unbounded = !outcome.solutions.empty();
  if (result.unbounded) return;
  switch (outcome.status) {
    case MipStatus::Infeasible:
      result.outcome = NodeOutcome::Infeasible;
      break;
    case MipStatus::IterationLimit:
    case MipStatus::NodeLimit:
    case MipStatus::TimeLimit:
    case MipStatus::SoftLimit:
    case MipStatus::WorkLimit:
    case MipStatus::MemoryLimit:
    case MipStatus::Interrupted:
      result.stopped = true;
      result.limit = outcome.status;
      break;
    default:
      result.unsolved = true;
  }
}

NodeResult Worker::process(Node &node) {
  NodeResult result;
  if (!moveTo(node)) {
    learnFrom(node, LpStatus::Infeasible);
    learnFromDomain();
    result.outcome = NodeOutcome::Infeasible;
    return result;
  }
  const bool separates = treeSeparation_ && treeSeparation_->begins(node.depth, control_.work);
  if (proofCuts_) proofCuts_->beginNode();
  for (int round = 0; round < kMaxSolves; ++round) {
    const LpStatus status = solveRelaxation();
    if (round == 0 && (status == LpStatus::Optimal || status == LpStatus::Infeasible ||
                       status == LpStatus::Cutoff))
      learnFrom(node, status);
    if (status == LpStatus::Infeasible || status == LpStatus::Cutoff) {
      learnFromRelaxation(status == LpStatus::Cutoff);
      result.outcome = outcomeOf(status);
      return result;
    }
    if (status == LpStatus::Unbounded) {
      result.outcome = NodeOutcome::Unbounded;
      result.branching = brancher_.chooseWithoutPoint(domain_);
      if (result.branching.result != Branching::Split) lookForPoint(result);
      return result;
    }
    if (status != LpStatus::Optimal) {
      result.stopped = status != LpStatus::Numeric;
      if (result.stopped) return result;
      result.branching = brancher_.chooseBlindly(domain_);
      result.unsolved = result.branching.result != Branching::Split;
      result.objective = node.bound;
      return result;
    }
    result.objective = lp_.objective();
    node.bound = std::max(node.bound, result.objective);
    if (result.objective >= sink_.cutoff()) {
      learnFromRelaxation(true);
      result.outcome = NodeOutcome::Cutoff;
      return result;
    }
    if (!tightenByReducedCosts(lp_.x(), lp_.reducedCost(), result.objective) || !propagate()) {
      learnFromDomain();
      result.outcome = NodeOutcome::Cutoff;
      return result;
    }
    if (pointIsCutOff()) continue;
    if (keepsPoints_) result.x = lp_.x();
    Vec<int> fractional;
    fractionalColumns(domain_, lp_.x(), fractional);
    result.fractional = static_cast<int>(fractional.size());
    if (separates && !fractional.empty() &&
        treeSeparation_->round(lp_, control_.work, nextCutId_) > 0)
      continue;
    if (proofCuts_ && !fractional.empty() && proofCuts_->round(lp_, control_.work, nextCutId_) > 0)
      continue;
    result.branching = brancher_.choose(domain_, lp_, sink_, control_);
    switch (result.branching.result) {
      case Branching::Tightened:
        if (!propagate()) {
          learnFromDomain();
          result.outcome = NodeOutcome::Infeasible;
          return result;
        }
        continue;
      case Branching::Pruned:
        learnFromDomain();
        result.outcome = NodeOutcome::Cutoff;
        return result;
      case Branching::Stopped:
        result.stopped = true;
        return result;
      case Branching::Refused:
        result.unsolved = true;
        return result;
      case Branching::None:
      case Branching::Split:
        return result;
    }
  }
  // Tightening goes on and on: split where we stand.
  result.branching = brancher_.chooseBlindly(domain_);
  result.unsolved = result.branching.result != Branching::Split;
  return result;
}

}  // namespace tarvik
