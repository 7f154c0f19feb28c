// Bounds of columns that follow from symmetry along a path of decisions, for one worker.
//
// Why it is right. Let G be the symmetries of the problem and x a solution that the search still
// wants: better than every cutoff it will ever use. All images of x under G are solutions of the
// same value. Follow them down the tree: at a node, those that satisfy the preferred decision go to
// its child; if there are none, all go to the other one. So at the end one leaf is reached by a set
// S of images, never empty; it suffices that no node on the way loses any of S.
//
//  - S is mapped to itself by every symmetry that keeps the conjunction of the preferred decisions
//    on the path: an image of a member satisfies these as well, and where the other child was
//    taken no image satisfied the preferred decision. (Decisions without a preferred child count as
//    preferred in both.) These are the symmetries that keep the marks set here.
//  - What else the search derives at a node (rows, cuts, reduced costs, strong branching, the
//    cutoff) holds for all solutions that are wanted and satisfy the node's decisions and bounds,
//    hence for all of S, by induction. So it may be moved along these symmetries too: all columns
//    of an orbit get the tightest bounds of its members.
//
// It follows that bounds with this reason hold below their node only, together with the decisions
// on the path: elsewhere in the tree other images are looked for. At the root the marks are empty,
// and the bounds hold for all solutions that are wanted, because those of all of G do.
//
// The search must want one image only, not all; and it must not derive anything that drops some
// optimal solutions for others by another argument than this. Reductions of that kind come before
// the symmetries are computed.
//
// Literature: Margot (2003); Ostrowski, Linderoth, Rossi and Smriglio (2011); Pfetsch and Rehn
// (2019); van Doornmalen and Hojny (2022).
#pragma once

#include <memory>

#include "mip/symmetry/symmetry_group.h"

namespace tarvik {

class OrbitalFixing {
 public:
  OrbitalFixing(const Problem &problem, const SymmetryGroup &group);

  // One more decision on the path; it is marked when it is preferred.
  void advance(const Vec<BoundChange> &decision, bool preferred, WorkMeter &work);
  // Back to the first `decisions` of the path.
  void retreat(int decisions);

  // Tightens the bounds of integral columns to those of their orbits, at the domain's current
  // level; the domain stands at the end of the path. False: it became empty.
  bool tighten(Domain &domain, WorkMeter &work);

 private:
  void computeOrbits(WorkMeter &work);
  bool tightenOrbit(int orbit, Domain &domain);

  const Problem &problem_;
  const SymmetryGroup &group_;
  ColumnMarks marks_;
  struct Step {
    std::size_t marks;
    std::shared_ptr<const Vec<DensePermutation>> stabilizer;
  };
  Vec<Step> before_;  // each decision
  // Of all marked columns, in the small part of the group.
  std::shared_ptr<const Vec<DensePermutation>> stabilizer_;
  bool stale_ = true;  // the orbits
  Orbits orbits_;
  Vec<int> orbitOf_;      // of a column, -1: none of several
  std::size_t seen_ = 0;  // trail entries that were looked at with these orbits
};

}  // namespace tarvik
