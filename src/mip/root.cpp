// The root of a search: its relaxation, rounds of cutting planes that go on while they pay, and the
// heuristics that need a relaxation to start from.
#include <algorithm>
#include <cmath>

#include "mip/cuts/cut_filter.h"
#include "mip/degenerate_moves.h"
#include "mip/gap_rules.h"
#include "mip/mip_search.h"
#include "mip/nonbasic_probing.h"
#include "mip/probing.h"
#include "mip/symmetry/automorphism_search.h"

namespace tarvik {

namespace {

constexpr int kMaxRounds = 100;
constexpr int kStallRounds = 4;
// A round that improves the bound by less than this share of it has stalled.
constexpr double kLeastImprovement = 1e-4;
// Cuts whose logical was basic in so many solves leave the relaxation.
constexpr int kSlackAge = 2;

// This share of the integral columns must have been fixed, and this gap be left, for another
// presolve to pay: small trees are done sooner than another root.
constexpr double kRestartShare = 0.2;
constexpr double kRestartGap = 0.01;

// Work of probing: so much, and so much for each entry of the matrix.
constexpr double kProbingWork = 1e7;
constexpr double kProbingShare = 200;

// Values of MIPFocus.
constexpr int kProofFocus = 2, kBoundFocus = 3;

// Nonbasic columns that are probed.
constexpr int kNonbasicCandidates = 100;

// The search for symmetries may take so much, and this share of the root's work; the second one is
// that of the aggressive level.
constexpr double kSymmetryWork = 1e6;
constexpr double kSymmetryShare = 0.01;
constexpr double kThoroughSymmetryShare = 1;

const char *textOf(LpStatus status) {
  switch (status) {
    case LpStatus::Infeasible:
      return "infeasible";
    case LpStatus::InfeasibleOrUnbounded:
      return "infeasible or unbounded";
    case LpStatus::Unbounded:
      return "unbounded";
    case LpStatus::Cutoff:
      return "cutoff";
    case LpStatus::IterationLimit:
      return "iteration limit";
    case LpStatus::TimeLimit:
      return "time limit";
    case LpStatus::Interrupted:
    case LpStatus::Callback:
      return "interrupted";
    case LpStatus::Numeric:
      return "numerical trouble";
    case LpStatus::WorkLimit:
      return "work limit";
    case LpStatus::MemoryLimit:
      return "memory limit";
    default:
      return "unknown termination status";
  }
}

}  // namespace

void MipSearch::reportRoot(double seconds, double work) const {
  if (options_.subMip) return;
  const double workUnits = work * 1e-9;
  if (rootStatus_ == LpStatus::Optimal)
    control_.log->print(
        "\nRoot relaxation: objective %.6e, %.0f iterations, %.2f seconds (%.2f work units)\n",
        options_.objSense * worker().lpObjective() + 0.0, rootIterations_, seconds, workUnits);
  else
    control_.log->print("\nRoot relaxation: %s, %.0f iterations, %.2f seconds (%.2f work units)\n",
                        textOf(rootStatus_), rootIterations_, seconds, workUnits);
}

void MipSearch::rememberRoot() {
  const Relaxation &lp = worker().lp();
  root_ = {lp.x(), lp.reducedCost(), lp.objective()};
  rootBound_ = std::max(rootBound_, root_.objective);
  worker().brancher().setRootPoint(root_.x);
}

void MipSearch::solveRoot() {
  createSeparators();
  branchSets_ = detectBranchSets(problem_);
  worker().brancher().setBranchSets(branchSets_);
  Domain &domain = worker().domain();
  Relaxation &lp = worker().lp();
  if (!domain.propagate(control_.work)) {
    rootStatus_ = LpStatus::Infeasible;
    close();
    return;
  }
  if (options_.presolveMip && options_.presolve.level != 0) {
    const double budget = control_.work.counted() + kProbingWork +
                          kProbingShare * static_cast<double>(problem_.cols().numNz());
    implications_ = ImplicationTable(1000 + 2 * static_cast<std::size_t>(problem_.cols().numNz()));
    if (probeBinaries(domain, control_, budget, &implications_).infeasible) {
      rootStatus_ = LpStatus::Infeasible;
      close();
      return;
    }
  }
  HeuristicContext context = heuristicContext();
  if (main().heuristics().beforeRoot(context, control_.work.counted() - startWork_))
    provenInfeasible();
  if (status_ != MipStatus::Running || infeasible_) {
    rootDone_ = infeasible_;
    mipCheckTermination();
    return;
  }
  const double seconds = control_.limits.seconds(), work = control_.work.counted();
  lp.follow(domain);
  lp.setCutoff(cutoff_);
  {
    const ProgressScope told(control_, observer ? observer->progress() : nullptr);
    lp.solve(control_);
  }
  rootStatus_ = lp.status();
  lp.simplex().options().logging = false;
  rootIterations_ = lp.iterations();
  reportRoot(control_.limits.seconds() - seconds, control_.work.counted() - work);
  log_.rootSolved();
  if (rootStatus_ == LpStatus::Infeasible || rootStatus_ == LpStatus::Cutoff) {
    rootDone_ = true;
    infeasible_ = !hasIncumbent();
    status_ = hasIncumbent() ? MipStatus::Optimal : MipStatus::Infeasible;
    return;
  }
  const bool mayBeBounded = !problem_.semis().empty() || !problem_.model().sos.empty();
  if (rootStatus_ == LpStatus::Unbounded && !mayBeBounded) {
    status_ = MipStatus::Unbounded;
    return;
  }
  if (rootStatus_ == LpStatus::Optimal) {
    moveOnFace();
    rememberRoot();
    observeRoot();
    HeuristicContext early = heuristicContext();
    if (!main().heuristics().beforeCuts(early, control_.work.counted() - startWork_))
      rootCutLoop();
    else
      provenInfeasible();
    runRootHeuristics();
    fixNonbasicColumns();
    if (!options_.subMip) reportLurkingBounds();
  }
  mipCheckTermination();
  rootDone_ = true;
  worker().numberCutsFrom(nextCutId_);
  if (rootCutsPay_ && options_.cuts.mir > 1)
    worker().separateInTree(
        implications_, [this](CutFamily family) { return levelOf(family); }, cutPool_);
  if (levelOf(CutFamily::InfProof) > 0 && !pool_.inUse())
    worker().cutByProofs(levelOf(CutFamily::InfProof));
  auto root = std::allocate_shared<Node>(AccountAllocator<Node>());
  root->bound = rootBound_;
  root->estimate = rootBound_;
  root->basis = lp.basis();
  queue_.push(std::move(root));
  mipCheckTermination();
  if (status_ == MipStatus::Running && isWorthRestart()) status_ = MipStatus::Restart;
}

// Reductions, cuts and heuristics start over where the root has fixed much.
bool MipSearch::isWorthRestart() {
  if (options_.restarts == 0 || options_.subMip || !options_.presolveMip ||
      options_.presolve.level == 0 || pool_.inUse() || rootStatus_ != LpStatus::Optimal)
    return false;
  if (hasIncumbent() && mipRelativeGap(1, bestBound(), incumbentObjective_) < kRestartGap)
    return false;
  if (!main().applyCutoff()) return false;
  int open = 0, fixed = 0;
  for (const int j : problem_.integers()) {
    if (problem_.lp().colLower[j] == problem_.lp().colUpper[j]) continue;
    ++open;
    fixed += worker().domain().isFixed(j);
  }
  return fixed > 0 && fixed >= kRestartShare * open;
}

// For the tree, before its first node: what ends at the root needs none.
void MipSearch::findSymmetries() {
  if (symmetriesSought_ || options_.symmetry == 0 || options_.subMip) return;
  symmetriesSought_ = true;
  const double share = options_.symmetry > 1 ? kThoroughSymmetryShare : kSymmetryShare;
  const double now = control_.work.counted();
  SymmetrySearchResult found =
      findGenerators(problem_, control_.work, now + kSymmetryWork + share * (now - startWork_));
  if (found.generators.empty()) return;
  symmetries_ = std::make_unique<SymmetryGroup>(std::move(found.generators), problem_.numCols());
  worker().useSymmetry(*symmetries_);
}

// Other optima of the relaxation, with fewer fractional columns.
void MipSearch::moveOnFace() {
  if (options_.degenMoves <= 0 || options_.subMip) return;
  degenerateMoves(worker().domain(), worker().lp(), options_.degenMoves, control_,
                  [this] { log_.nodeLogElapsed("DegenMoves"); });
}

// True when the point ends the search at the root.
bool MipSearch::rootPointIsFeasible() {
  Vec<int> fractional;
  fractionalColumns(worker().domain(), worker().lp().x(), fractional);
  lastInfeasibilities_ = static_cast<int>(fractional.size());
  if (!fractional.empty() || !problem_.semis().empty() || !problem_.model().sos.empty())
    return false;
  return main().submit(Vec<double>(worker().lp().x()), SolutionSource::Node);
}

// What the cutoff has cut off may lie below the incumbent, by the gap that is allowed.
void MipSearch::rootEndsAtCutoff() {
  rootBound_ = provenBound();
  infeasible_ = !hasIncumbent();
}

int MipSearch::separateRound(int round, Vec<Cut> &cuts) {
  SeparationPoint point{};
  point.problem = &problem_;
  point.global = &worker().domain();
  point.lp = &worker().lp();
  const Vec<double> x(worker().lp().x());
  point.x = &x;
  point.work = &control_.work;
  point.round = round;
  point.implications = &implications_;
  point.aggregations = options_.cuts.aggregationPasses;
  if (options_.branchByCuts) point.gomoryEfficacy = &gomoryEfficacy_;
  const int gomoryPasses = options_.cuts.gomoryPasses;
  for (const auto &separator : separators_) {
    if (control_.limits.pollNow(control_.work, 0) != StopReason::None) break;
    alive();
    if (separator->family() == CutFamily::Gomory && gomoryPasses >= 0 && round >= gomoryPasses)
      continue;
    separator->separate(point, levelOf(separator->family()), cuts);
  }
  return static_cast<int>(cuts.size());
}

// Slack cuts are pooled. The separators read the tableau, which deleting rows leaves without
// factors: not before they had their turn.
void MipSearch::removeSlackCuts(int age) {
  for (const auto &cut : worker().lp().removeSlackCuts(age)) cutPool_.add(cut);
}

MipSearch::Round MipSearch::separateAndSolve(int round) {
  Relaxation &lp = worker().lp();
  Domain &domain = worker().domain();
  const double before = lp.objective();
  Vec<Cut> cuts;
  const int fresh = separateRound(round, cuts);
  cutPool_.separate(lp.x(), control_.work, cuts);
  if (cuts.empty()) return Round::Over;
  CutFilter filter;
  filter.limit = std::max(100, std::min(2000, problem_.numRows() + problem_.numCols() / 2));
  Vec<std::shared_ptr<const Cut>> chosen;
  Vec<CutId> ids;
  for (const int k : chooseCuts(cuts, problem_, lp.x(), filter)) {
    if (k < fresh) ++cutCounters_[static_cast<int>(cuts[k].family)];
    chosen.push_back(std::allocate_shared<Cut>(AccountAllocator<Cut>(), std::move(cuts[k])));
    ids.push_back(nextCutId_++);
  }
  if (chosen.empty()) return Round::Over;
  removeSlackCuts(kSlackAge);
  lp.addCuts(chosen, ids);
  lp.setCutoff(cutoff_);
  const LpStatus status = lp.solve(control_);
  if (status == LpStatus::Infeasible || status == LpStatus::Cutoff) {
    rootEndsAtCutoff();
    return Round::Over;
  }
  if (status != LpStatus::Optimal) return Round::Over;
  lp.ageCuts();
  rememberRoot();
  if (!worker().tightenByReducedCosts(root_.x, root_.reducedCost, root_.objective) ||
      !domain.propagate(control_.work)) {
    rootEndsAtCutoff();
    return Round::Over;
  }
  lp.follow(domain);
  const bool improved =
      lp.objective() - before > kLeastImprovement * (1 + std::fabs(lp.objective()));
  return improved ? Round::Improved : Round::Stalled;
}

void MipSearch::rootCutLoop() {
  if (rootPointIsFeasible()) return;
  const double first = worker().lpObjective();
  const int limit = options_.cuts.passes >= 0 ? options_.cuts.passes : kMaxRounds;
  int stalled = 0;
  for (int round = 0; round < limit && stalled < kStallRounds; ++round) {
    mipCheckTermination();
    if (status_ != MipStatus::Running || separators_.empty()) break;
    const Round result = separateAndSolve(round);
    if (result == Round::Over) break;
    stalled = result == Round::Improved ? 0 : stalled + 1;
    if (!options_.subMip) log_.nodeLogElapsed(nullptr);
    observeRoot();
    log_.nodeLogLine(state(), NodeOutcome::Solved, worker().lpObjective(), 0, lastInfeasibilities_);
    if (rootPointIsFeasible()) break;
  }
  if (worker().lp().status() == LpStatus::Optimal) removeSlackCuts(1);
  worker().lp().solve(control_);
  worker().brancher().setCutEfficacy(gomoryEfficacy_);
  const double last = worker().lpObjective();
  rootCutsPay_ = limit > 0 && last - first > kLeastImprovement * (1 + std::fabs(last));
}

void MipSearch::runRootHeuristics() {
  // Before a restart they had their turn.
  if (inherited_ || worker().lp().status() != LpStatus::Optimal) return;
  HeuristicContext context = heuristicContext();
  const Vec<double> x(worker().lp().x());
  context.x = &x;
  context.root = true;
  if (main().heuristics().atRoot(context, control_.work.counted() - startWork_)) provenInfeasible();
}

// Over the benchmark set it saves a twentieth of the nodes, but no work: only where the caller asks
// for proofs.
void MipSearch::fixNonbasicColumns() {
  mipCheckTermination();
  if (status_ != MipStatus::Running || !options_.fixByStrongBranching || options_.subMip ||
      options_.focus < kProofFocus || options_.focus > kBoundFocus || !hasIncumbent() ||
      worker().lp().status() != LpStatus::Optimal || !main().applyCutoff())
    return;
  const int most = options_.strongBranchCandidates;
  const NonbasicProbing probing = nonbasicStrongBranch(
      worker().domain(), worker().lp(), main(), most < 0 ? kNonbasicCandidates : most, control_);
  if (probing.infeasible) rootEndsAtCutoff();
}

// Integral columns whose other branch, by the reduced costs of the root, is beyond the incumbent.
int MipSearch::reportLurkingBounds() const {
  if (!hasIncumbent() || root_.x.empty()) return 0;
  const double z = incumbentObjective_, t = std::fabs(z) + 1e-4;
  int unfixed = 0, count[3] = {0, 0, 0};
  for (const int j : problem_.integers()) {
    if (worker().domain().isFixed(j)) continue;
    ++unfixed;
    const double bound = root_.objective + std::fabs(root_.reducedCost[j]);
    count[0] += bound > z + 0.001 * t;
    count[1] += bound > z + 0.01 * t;
    count[2] += bound > z + 0.1 * t;
  }
  if (count[0] + count[1] + count[2] > 0)
    control_.log->print("Lurking bound gaps: %d 0.1%%, %d 1%%, %d 10%% (of %d unfixed ints)\n",
                        count[0], count[1], count[2], unfixed);
  return count[0];
}

int MipSearch::levelOf(CutFamily family) const {
  const CutSettings &cuts = options_.cuts;
  switch (family) {
    case CutFamily::Gomory:
      return cuts.gomoryPasses < -1 ? 2 : cuts.gomoryPasses != 0;
    case CutFamily::LiftProject:
      // Automatic: not worth their linear programs.
      return std::max(cuts.liftProject, 0);
    case CutFamily::Cover:
      return cuts.cover;
    case CutFamily::ImpliedBound:
      return cuts.implied;
    case CutFamily::ProjImpliedBound:
      return cuts.projImplied;
    case CutFamily::Clique:
      return cuts.clique;
    case CutFamily::Mir:
      return cuts.mir;
    case CutFamily::Mixing:
      return cuts.mixing;
    case CutFamily::StrongCg:
      return cuts.strongCg;
    case CutFamily::FlowCover:
      return cuts.flowCover;
    case CutFamily::FlowPath:
      return cuts.flowPath;
    case CutFamily::GubCover:
      return cuts.gubCover;
    case CutFamily::InfProof:
      return cuts.infProof;
    case CutFamily::ZeroHalf:
      return cuts.zeroHalf;
    case CutFamily::ModK:
      return cuts.modK;
    case CutFamily::Network:
      return cuts.network;
    default:
      return 0;
  }
}

void MipSearch::createSeparators() {
  makeSeparators(separators_);
  separators_.erase(std::remove_if(separators_.begin(), separators_.end(),
                                   [&](const auto &s) { return levelOf(s->family()) == 0; }),
                    separators_.end());
}

}  // namespace tarvik
