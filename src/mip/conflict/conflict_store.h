// The conflicts that a search has learned: disjunctions of bounds on integral columns, one of which
// every point has that is feasible and better than the cutoff. They hold everywhere, and they go on
// holding, since cutoffs only fall.
//
// Two disjuncts of each conflict are watched, which still can hold or else were the last that could
// not; so only changes of watched bounds cost anything, and undoing changes costs nothing
// (Moskewicz et al., 2001). A conflict of which one disjunct is left tightens that bound.
//
// The store is bounded: conflicts that have not propagated for long make room for new ones.
// Activity of columns: how often they were part of recent conflicts.
#pragma once

#include <utility>

#include "mip/domain.h"

namespace tarvik {

// x_col >= value (Lower), or x_col <= value (Upper); the column is integral.
struct Disjunct {
  int col;
  BoundSide side;
  double value;
};

using Disjunction = Vec<Disjunct>;

class ConflictStore : public Propagator {
 public:
  explicit ConflictStore(const Problem &problem);

  // A disjunction that was learned here, or by another explorer; it counts from the next enter()
  // on.
  void learn(Disjunction &&conflict);
  // The latest of those learned here, for others.
  void shareLearned(bool share) { shares_ = share; }
  Vec<Disjunction> takeShared();
  void receive(const Disjunction &conflict) { waiting_.push_back(conflict); }

  // Whether some of what waits bounds a single column, and so holds at level 0 only.
  bool waitsForRoot() const;
  // Begins to propagate what waits, at any level of the domain; single bounds have to be entered at
  // level 0. False: the domain became empty.
  bool enter(Domain &domain);

  bool onChange(Domain &domain, int trailPosition) override;

  const Disjunction &conflict(int index) const { return conflicts_[index].disjuncts; }
  int size() const { return size_; }
  double learned() const { return learned_; }
  // Counted units since the last call.
  double takeWork() { return std::exchange(work_, 0.0); }

  // The columns of a conflict take part in branching scores: 0 to 1.
  void noteActivity(int col);
  double activityScore(int col) const;

  // Whether the disjunct has become impossible.
  static bool isFalse(const Domain &domain, const Disjunct &disjunct) {
    return disjunct.side == BoundSide::Lower ? domain.upper(disjunct.col) < disjunct.value
                                             : domain.lower(disjunct.col) > disjunct.value;
  }
  static bool isTrue(const Domain &domain, const Disjunct &disjunct) {
    return disjunct.side == BoundSide::Lower ? domain.lower(disjunct.col) >= disjunct.value
                                             : domain.upper(disjunct.col) <= disjunct.value;
  }
  // The side of the bound that makes a disjunct impossible.
  static BoundSide opposite(BoundSide side) {
    return side == BoundSide::Lower ? BoundSide::Upper : BoundSide::Lower;
  }

 private:
  struct Conflict {
    Disjunction disjuncts;  // the first two are watched
    double lastUse = 0;     // learned_ at the time
  };

  Vec<int> &watchers(const Disjunct &disjunct) {
    return watchers_[2 * static_cast<std::size_t>(disjunct.col) +
                     (opposite(disjunct.side) == BoundSide::Upper)];
  }
  bool enterOne(Domain &domain, Disjunction &&conflict);
  bool moveWatch(const Domain &domain, int index, int watched);
  void makeRoom(const Domain &domain);
  void rebuildWatchers();

  Vec<Conflict> conflicts_;
  Vec<int> free_;  // indices without a conflict
  Vec<Vec<int>> watchers_;
  Vec<Disjunction> waiting_, shared_;
  int size_ = 0, capacity_;
  double learned_ = 0, work_ = 0;
  bool shares_ = false;
  Vec<double> activity_;
  double increment_ = 1, total_ = 0;
  int active_ = 0;  // columns with activity
};

}  // namespace tarvik
