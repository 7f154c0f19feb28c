#include "mip/cuts/proof_cuts.h"

#include <algorithm>

#include "mip/cuts/cut_filter.h"

namespace tarvik {

namespace {
constexpr std::size_t kMostWaiting = 20;
// Proofs and cuts of more columns than this, or this share of them, are of little use.
constexpr double kLongest = 100;
constexpr double kLongestShare = 0.2;
// Cuts of a round, rounds at a node.
constexpr int kMostCuts = 10;
constexpr int kMostRounds = 2;
constexpr double kLeastEfficacy = 0.03;
// By level: the relaxation gets so many in all, for they never leave it.
constexpr int kMostInAll = 25;
// Share of the search's work by level; what is granted from the start.
constexpr double kWorkShare = 0.02;
constexpr double kFirstWork = 1e6;
}  // namespace

ProofCuts::ProofCuts(const Problem &problem, const Domain &domain, int level)
    : problem_(problem),
      global_(domain),
      bounds_(problem, global_),
      prover_(problem, domain),
      level_(level) {}

bool ProofCuts::isAffordable(const WorkMeter &work) {
  if (start_ < 0) start_ = work.counted();
  return spent_ <= kFirstWork + kWorkShare * level_ * (work.counted() - start_);
}

void ProofCuts::take(Relaxation &lp, bool cutOff, double cutoff, WorkMeter &work) {
  if (count_ >= kMostInAll * level_ || waiting_.size() >= kMostWaiting || !isAffordable(work))
    return;
  const double before = work.counted();
  ProofRow proof;
  const bool proven =
      cutOff ? prover_.cutOff(lp, cutoff, proof, work) : prover_.infeasible(lp, proof, work);
  const double longest = std::max(kLongest, kLongestShare * problem_.numCols());
  if (proven && !proof.index.empty() && static_cast<double>(proof.index.size()) <= longest)
    waiting_.push_back(std::move(proof));
  spent_ += work.counted() - before;
}

void ProofCuts::roundProofs(const SeparationPoint &point, Vec<Cut> &cuts) {
  const RowSystem rows(point);
  MirKernel kernel(point, rows, &bounds_);
  for (const ProofRow &proof : waiting_) {
    BaseRow base;
    base.var = proof.index;
    base.coef = proof.value;
    base.rhs = proof.rhs;
    base.rank = proof.rank;
    Cut cut;
    cut.family = CutFamily::InfProof;
    if (kernel.load(base, 1, Rounding::MixedInteger) && kernel.bestCut(cut))
      cuts.push_back(std::move(cut));
  }
  waiting_.clear();
}

int ProofCuts::round(Relaxation &lp, WorkMeter &work, CutId &nextCutId) {
  if (waiting_.empty() || rounds_++ >= kMostRounds || !isAffordable(work)) return 0;
  const double before = work.counted();
  const Vec<double> x(lp.x());
  SeparationPoint point{};
  point.problem = &problem_;
  point.global = &global_;
  point.lp = &lp;
  point.x = &x;
  point.work = &work;
  point.root = false;
  Vec<Cut> cuts;
  roundProofs(point, cuts);
  CutFilter filter;
  filter.limit = kMostCuts;
  filter.leastEfficacy = kLeastEfficacy;
  Vec<std::shared_ptr<const Cut>> chosen;
  Vec<CutId> ids;
  for (const int k : chooseCuts(cuts, problem_, x, filter)) {
    chosen.push_back(std::allocate_shared<Cut>(AccountAllocator<Cut>(), std::move(cuts[k])));
    ids.push_back(nextCutId++);
  }
  spent_ += work.counted() - before;
  if (chosen.empty()) return 0;
  lp.addCuts(chosen, ids);
  count_ += static_cast<int>(chosen.size());
  return static_cast<int>(chosen.size());
}

}  // namespace tarvik
