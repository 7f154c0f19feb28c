// The open nodes of a search. A node is a chain of decisions shared with its relatives, a lower
// bound, an estimate of the best solution below it, and the basis of its parent by reference.
// Two heaps give the node of the smallest bound and the one of the best estimate; a node taken
// from one is skipped when it comes up in the other.
#pragma once

#include <memory>

#include "mip/domain.h"
#include "mip/relaxation.h"

namespace tarvik {

// The decisions from the root to a node, last first.
struct NodePath {
  std::shared_ptr<const NodePath> parent;
  Vec<BoundChange> decision;
  // Solutions that symmetry maps from one child into the other are looked for in this one; the
  // decisions of all other children leave symmetry as it is (OrbitalFixing).
  bool preferred = true;
};

// What the relaxation at the parent promised for the branching, to learn pseudo-costs from.
struct BranchInfo {
  int col = -1;
  bool up = false;
  double distance = 0;  // signed move of the value
  double parentObjective = 0;
};

struct Node {
  std::shared_ptr<const NodePath> path;
  std::shared_ptr<const NodeBasis> basis;
  double bound = -kUserInf;
  double estimate = -kUserInf;
  int depth = 0;
  std::int64_t id = 0;  // in the order of creation
  BranchInfo branch;
  bool taken = false;
};

class NodeQueue {
 public:
  void push(std::shared_ptr<Node> node);
  bool empty() const { return size_ == 0; }
  int size() const { return size_; }
  // The smallest lower bound; kUserInf when empty.
  double bestBound();
  std::shared_ptr<Node> takeBestBound();
  std::shared_ptr<Node> takeBestEstimate();
  // Up to so many open nodes, the same ones for the same history.
  Vec<const Node *> someNodes(int most) const;
  // Removes the nodes with bounds at or above the cutoff.
  void prune(double cutoff);

 private:
  using Heap = Vec<std::shared_ptr<Node>>;
  void dropTaken(Heap &heap, bool byBound);
  std::shared_ptr<Node> take(Heap &heap, bool byBound);

  Heap byBound_, byEstimate_;
  int size_ = 0;
};

}  // namespace tarvik
