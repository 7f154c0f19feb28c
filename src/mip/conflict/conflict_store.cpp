#include "mip/conflict/conflict_store.h"

#include <algorithm>

namespace tarvik {

namespace {

// Conflicts kept at most; more than this many columns do not earn more of them.
constexpr int kLeastCapacity = 1000;
constexpr int kMostCapacity = 10000;
// What others are told about.
constexpr std::size_t kLongestShared = 30;
// Activity fades by this factor with every conflict.
constexpr double kFading = 0.98;
constexpr double kRescale = 1e100;

}  // namespace

ConflictStore::ConflictStore(const Problem &problem)
    : watchers_(2 * static_cast<std::size_t>(problem.numCols())),
      capacity_(std::min(std::max(problem.numCols(), kLeastCapacity), kMostCapacity)),
      activity_(problem.numCols(), 0) {}

void ConflictStore::learn(Disjunction &&conflict) {
  ++learned_;
  increment_ /= kFading;
  if (increment_ > kRescale) {
    for (double &activity : activity_) activity /= kRescale;
    total_ /= kRescale;
    increment_ /= kRescale;
  }
  for (const Disjunct &disjunct : conflict) noteActivity(disjunct.col);
  if (shares_ && conflict.size() <= kLongestShared) shared_.push_back(conflict);
  waiting_.push_back(std::move(conflict));
}

Vec<Disjunction> ConflictStore::takeShared() {
  Vec<Disjunction> result;
  result.swap(shared_);
  return result;
}

void ConflictStore::noteActivity(int col) {
  active_ += activity_[col] == 0;
  activity_[col] += increment_;
  total_ += increment_;
}

double ConflictStore::activityScore(int col) const {
  if (activity_[col] == 0) return 0;
  const double relative = activity_[col] * active_ / total_;
  return relative / (1 + relative);
}

bool ConflictStore::waitsForRoot() const {
  return std::any_of(waiting_.begin(), waiting_.end(),
                     [](const Disjunction &conflict) { return conflict.size() < 2; });
}

bool ConflictStore::enter(Domain &domain) {
  Vec<Disjunction> waiting;
  waiting.swap(waiting_);
  bool possible = true;
  for (Disjunction &conflict : waiting) {
    if (conflict.size() < 2 && domain.level() > 0) {
      waiting_.push_back(std::move(conflict));
      continue;
    }
    possible = enterOne(domain, std::move(conflict)) && possible;
  }
  return possible;
}

bool ConflictStore::enterOne(Domain &domain, Disjunction &&conflict) {
  if (conflict.size() == 1)
    return domain.tighten(conflict[0].col, conflict[0].side, conflict[0].value,
                          {Reason::Other, -1});
  // First what can still hold, then what was ruled out last.
  const auto time = [&](const Disjunct &d) {
    if (!isFalse(domain, d)) return kMaxInt;
    return domain.position(d.col, opposite(d.side));
  };
  std::stable_sort(conflict.begin(), conflict.end(),
                   [&](const Disjunct &a, const Disjunct &b) { return time(a) > time(b); });
  if (size_ >= capacity_) makeRoom(domain);
  int index = static_cast<int>(conflicts_.size());
  if (free_.empty()) {
    conflicts_.emplace_back();
  } else {
    index = free_.back();
    free_.pop_back();
  }
  conflicts_[index] = {std::move(conflict), learned_};
  ++size_;
  const Disjunction &disjuncts = conflicts_[index].disjuncts;
  watchers(disjuncts[0]).push_back(index);
  watchers(disjuncts[1]).push_back(index);
  if (!isFalse(domain, disjuncts[1]) || isTrue(domain, disjuncts[0])) return true;
  return domain.tighten(disjuncts[0].col, disjuncts[0].side, disjuncts[0].value,
                        {Reason::Conflict, index});
}

bool ConflictStore::onChange(Domain &domain, int trailPosition) {
  const TrailEntry entry = domain.trail()[trailPosition];
  Vec<int> &watching =
      watchers_[2 * static_cast<std::size_t>(entry.col) + (entry.side == BoundSide::Upper)];
  std::size_t kept = 0, next = 0;
  bool possible = true;
  while (possible && next < watching.size()) {
    const int index = watching[next++];
    const Disjunction &disjuncts = conflicts_[index].disjuncts;
    const bool first = disjuncts[0].col == entry.col && opposite(disjuncts[0].side) == entry.side;
    const int watched = first ? 0 : 1;
    if (!isFalse(domain, disjuncts[watched]) || isTrue(domain, disjuncts[1 - watched])) {
      watching[kept++] = index;
      continue;
    }
    if (moveWatch(domain, index, watched)) continue;
    watching[kept++] = index;
    conflicts_[index].lastUse = learned_;
    const Disjunct &left = disjuncts[1 - watched];
    possible = domain.tighten(left.col, left.side, left.value, {Reason::Conflict, index});
  }
  work_ += 4.0 * static_cast<double>(next);
  while (next < watching.size()) watching[kept++] = watching[next++];
  watching.resize(kept);
  return possible;
}

// To a disjunct that can still hold.
bool ConflictStore::moveWatch(const Domain &domain, int index, int watched) {
  Disjunction &disjuncts = conflicts_[index].disjuncts;
  for (std::size_t k = 2; k < disjuncts.size(); ++k) {
    if (isFalse(domain, disjuncts[k])) continue;
    work_ += static_cast<double>(k);
    std::swap(disjuncts[watched], disjuncts[k]);
    watchers(disjuncts[watched]).push_back(index);
    return true;
  }
  work_ += static_cast<double>(disjuncts.size());
  return false;
}

// Half of the conflicts go, those first that have not been of use for longest; the reasons of
// bounds in force stay.
void ConflictStore::makeRoom(const Domain &domain) {
  Vec<char> isReason(conflicts_.size(), 0);
  const Vec<TrailEntry> &trail = domain.trail();
  for (std::size_t k = domain.globalEnd(); k < trail.size(); ++k)
    if (trail[k].reason.kind == Reason::Conflict) isReason[trail[k].reason.index] = 1;
  Vec<int> order;
  for (int c = 0; c < static_cast<int>(conflicts_.size()); ++c)
    if (!conflicts_[c].disjuncts.empty() && !isReason[c]) order.push_back(c);
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
    if (conflicts_[a].lastUse != conflicts_[b].lastUse)
      return conflicts_[a].lastUse < conflicts_[b].lastUse;
    return conflicts_[a].disjuncts.size() > conflicts_[b].disjuncts.size();
  });
  order.resize(std::min<std::size_t>(order.size(), static_cast<std::size_t>(capacity_) / 2));
  for (const int c : order) {
    conflicts_[c].disjuncts = {};
    free_.push_back(c);
    --size_;
  }
  rebuildWatchers();
}

void ConflictStore::rebuildWatchers() {
  for (Vec<int> &watching : watchers_) watching.clear();
  for (int c = 0; c < static_cast<int>(conflicts_.size()); ++c) {
    const Disjunction &disjuncts = conflicts_[c].disjuncts;
    if (disjuncts.empty()) continue;
    watchers(disjuncts[0]).push_back(c);
    watchers(disjuncts[1]).push_back(c);
  }
}

}  // namespace tarvik
