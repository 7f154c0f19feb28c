// The bounds of one node of the search, with a trail: every change has its reason and can be
// undone. Row activities are kept up to date with every change, in doubled precision so that
// undoing leaves no drift; rows whose activity can imply something wait in a queue.
//
// Levels: the trail positions at which branching decisions were made. backtrackTo(0) returns to
// the bounds of the root; changes made at level 0 are global and stay.
//
// Integral columns always have integral bounds. Bounds of continuous columns are tightened only by
// a worthwhile amount, so that propagation terminates.
//
// Literature: Savelsbergh (1994); Achterberg (2007), chapter 7.
#pragma once

#include "base/compensated_sum.h"
#include "mip/problem.h"

namespace tarvik {

enum class BoundSide : char { Lower, Upper };

struct BoundChange {
  int col;
  BoundSide side;
  double value;
};

// Why a bound was changed.
struct Reason {
  enum Kind : char {
    Decision,   // a branching
    Row,        // row `index` of the problem
    Objective,  // the objective cutoff
    Symmetry,   // the image of a bound of another column: valid by the node's place in the tree,
                // not by other bounds; whoever explains it must keep it, like a decision
    Conflict,   // learned conflict `index`
    Other,      // reduced costs, sets, global facts
  } kind = Other;
  int index = -1;
};

struct TrailEntry {
  int col;
  BoundSide side;
  double value, old;
  Reason reason;
  int previous;  // trail position of the change before it of the same bound, -1: the root's bound
};

// Why the domain became empty: an inequality that no point within the bounds satisfies, or
// (col >= 0) a bound for which there is no room.
struct Failure {
  Reason reason;
  int col = -1;
  BoundSide side = BoundSide::Lower;
  double value = 0;
};

// Something that derives bound changes from bound changes besides the rows: ordered sets, say.
// Called with every change that was made, in order.
class Propagator {
 public:
  virtual ~Propagator() = default;
  // May call Domain::tighten; false: the domain is empty.
  virtual bool onChange(class Domain &domain, int trailPosition) = 0;
};

class Domain {
 public:
  explicit Domain(const Problem &problem);
  Domain(const Domain &) = default;

  const Problem &problem() const { return *problem_; }
  double lower(int col) const { return lower_[col]; }
  double upper(int col) const { return upper_[col]; }
  const Vec<double> &lower() const { return lower_; }
  const Vec<double> &upper() const { return upper_; }
  bool isFixed(int col) const { return lower_[col] == upper_[col]; }
  bool isBinary(int col) const {
    return problem_->kind(col) == VarKind::Integer && lower_[col] == 0 && upper_[col] == 1;
  }

  // Tightens a bound (no tighter: no effect) without propagating; integral columns' bounds are
  // rounded. False when the domain became empty; it stays so until backtracked.
  bool tighten(int col, BoundSide side, double value, Reason reason);
  // A new level with the bound changes of one decision.
  bool decide(const Vec<BoundChange> &changes);
  // Everything that follows from the changes so far. False: empty. Work is charged.
  bool propagate(WorkMeter &work);
  bool empty() const { return empty_; }
  const Failure &failure() const { return failure_; }  // of an empty domain

  int level() const { return static_cast<int>(levelStart_.size()); }
  void backtrackTo(int level);
  const Vec<TrailEntry> &trail() const { return trail_; }
  int levelStart(int level) const { return levelStart_[level - 1]; }  // levels from 1
  // The trail position of the current lower or upper bound; -1: the root's.
  int position(int col, BoundSide side) const {
    return side == BoundSide::Lower ? lowerPos_[col] : upperPos_[col];
  }
  // The same as it was when the trail was `time` long.
  int positionAt(int col, BoundSide side, int time) const {
    int result = position(col, side);
    while (result >= time) result = trail_[result].previous;
    return result;
  }
  // The bound since that trail position.
  double boundSince(int col, BoundSide side, int position) const {
    if (position >= 0) return trail_[position].value;
    return side == BoundSide::Lower ? problem_->lp().colLower[col] : problem_->lp().colUpper[col];
  }
  // What was changed before this trail position holds everywhere.
  int globalEnd() const {
    return levelStart_.empty() ? static_cast<int>(trail_.size()) : levelStart_[0];
  }

  // Solutions with an objective above `cutoff` are of no interest: the objective becomes a row.
  void setCutoff(double cutoff);
  double cutoff() const { return cutoff_; }
  // The columns with costs, and these.
  const Vec<int> &objectiveCols() const { return objectiveCols_; }
  const Vec<double> &objectiveCoefs() const { return objectiveCoefs_; }

  void addPropagator(Propagator *propagator) { propagators_.push_back(propagator); }

  // Columns whose bounds differ from what they were at the last call of takeChanged(), each once.
  Vec<int> takeChanged();

  // Activity bounds of a row; infinite ones as -+kInf.
  double minActivity(int row) const;
  double maxActivity(int row) const;

 private:
  struct Activity {
    CompensatedSum sum;
    int infinite = 0;
  };

  void initialiseActivities();
  void change(int col, BoundSide side, double value);
  void updateActivities(int col, BoundSide side, double from, double to);
  void enqueueIfUseful(int row);
  void markChanged(int col);
  bool tellPropagators();
  bool propagateRow(int row, WorkMeter &work);
  bool propagateObjective(WorkMeter &work);
  bool atMost(const int *index, const double *value, int count, double sign, double limit,
              const Activity &least, Reason reason);
  bool fail(const Failure &failure);
  bool worthwhile(int col, BoundSide side, double value) const;
  double rounded(int col, BoundSide side, double value) const;
  double semiAdjusted(int col, BoundSide side, double value) const;

  const Problem *problem_;
  Vec<double> lower_, upper_;
  Vec<int> lowerPos_, upperPos_;
  Vec<TrailEntry> trail_;
  Vec<int> levelStart_;
  Vec<Activity> min_, max_;
  Vec<double> reach_;  // by row: the most that one column can contribute to its activity range
  Vec<int> queue_;
  Vec<char> queued_;
  Vec<int> changed_;
  Vec<char> isChanged_;
  Vec<Propagator *> propagators_;
  Vec<int> objectiveCols_;
  Vec<double> objectiveCoefs_;
  Activity objectiveMin_;
  double objectiveReach_ = 0;
  double cutoff_ = kUserInf;
  bool objectiveQueued_ = false;
  int told_ = 0;  // trail entries that the propagators have seen
  bool empty_ = false;
  Failure failure_;
};

}  // namespace tarvik
