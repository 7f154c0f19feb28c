// An ordered partition of the vertices of a coloured graph into cells, which is refined until it is
// equitable: all vertices of a cell have the same edges into every other cell. Cells are named by
// their first position. Splits are recorded and can be undone.
//
// What a refinement does depends on the structure of the graph only, never on the numbering of the
// vertices; so two partitions that a symmetry maps to each other are refined alike. The trace
// tells: one partition records it, the other is compared with it and stops where they part.
//
// Literature: McKay (1981); Darga, Liffiton, Sakallah and Markov (2004).
#pragma once

#include "base/solve_control.h"
#include "mip/symmetry/coloured_graph.h"

namespace tarvik {

struct RefinementTrace {
  Vec<std::uint64_t> events;
  std::size_t position = 0;
  bool recording = true;

  // False: this is not what was recorded.
  bool note(std::uint64_t event) {
    if (recording) {
      events.resize(position);
      events.push_back(event);
    } else if (position >= events.size() || events[position] != event) {
      return false;
    }
    ++position;
    return true;
  }
};

class OrderedPartition {
 public:
  // Cells by colour; all of them wait to be refined by.
  explicit OrderedPartition(const ColouredGraph &graph);

  int cellOf(int vertex) const { return cellOf_[vertex]; }
  int length(int cell) const { return length_[cell]; }
  int element(int position) const { return elements_[position]; }

  // The first cell of several columns at or behind the given one; numCols: none.
  int firstOpenCell(int from) const;

  // Makes the vertex a cell of its own, the first of its former cell.
  void individualise(int vertex);
  // False when the trace parts or the work limit is passed: the partition is to be undone.
  bool refine(RefinementTrace &trace, WorkMeter &work, double workLimit);

  // Splits so far, in order: the cells that came to be, and those that they were split from.
  const Vec<int> &splits() const { return splits_; }
  const Vec<int> &parents() const { return parents_; }
  void undoTo(std::size_t splits, WorkMeter &work);

 private:
  void split(int cell, int at);
  void enqueue(int cell);
  double countEdges(int cell);
  bool splitByKeys(int cell, RefinementTrace &trace);
  void forgetPending();

  const ColouredGraph *graph_;
  Vec<int> elements_, place_;  // vertex at a position, position of a vertex
  Vec<int> cellOf_, length_;   // of a vertex, of a cell
  Vec<int> splits_, parents_;
  Vec<int> queue_;  // cells to refine by, from next_ on
  std::size_t next_ = 0;
  Vec<char> queued_;
  Vec<std::uint64_t> key_;  // of a vertex: mixed weights of its edges into the splitting cell
  Vec<int> touched_, touchedCells_;  // of a cell: how many were touched; they stand at its end
};

}  // namespace tarvik
