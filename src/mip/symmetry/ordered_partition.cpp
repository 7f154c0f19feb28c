#include "mip/symmetry/ordered_partition.h"

#include <algorithm>
#include <numeric>

namespace tarvik {

namespace {
// Counted units of following an edge, and of a vertex that is moved or sorted.
constexpr double kEdgeWork = 6;
constexpr double kVertexWork = 20;
}  // namespace

OrderedPartition::OrderedPartition(const ColouredGraph &graph)
    : graph_(&graph),
      elements_(graph.numVertices),
      place_(graph.numVertices),
      cellOf_(graph.numVertices),
      length_(graph.numVertices, 0),
      queued_(graph.numVertices, 0),
      key_(graph.numVertices, 0),
      touched_(graph.numVertices, 0) {
  std::iota(elements_.begin(), elements_.end(), 0);
  std::stable_sort(elements_.begin(), elements_.end(),
                   [&](int a, int b) { return graph.colour[a] < graph.colour[b]; });
  int cell = 0;
  for (int p = 0; p < graph.numVertices; ++p) {
    const int v = elements_[p];
    if (p > 0 && graph.colour[elements_[p - 1]] != graph.colour[v]) cell = p;
    place_[v] = p;
    cellOf_[v] = cell;
    if (length_[cell]++ == 0) enqueue(cell);
  }
}

int OrderedPartition::firstOpenCell(int from) const {
  int cell = from;
  while (cell < graph_->numCols && length_[cell] == 1) ++cell;
  return std::min(cell, graph_->numCols);
}

void OrderedPartition::enqueue(int cell) {
  if (queued_[cell]) return;
  queued_[cell] = 1;
  queue_.push_back(cell);
}

void OrderedPartition::split(int cell, int at) {
  length_[at] = length_[cell] - (at - cell);
  length_[cell] = at - cell;
  for (int p = at; p < at + length_[at]; ++p) cellOf_[elements_[p]] = at;
  splits_.push_back(at);
  parents_.push_back(cell);
}

void OrderedPartition::undoTo(std::size_t splits, WorkMeter &work) {
  while (splits_.size() > splits) {
    const int cell = splits_.back(), parent = parents_.back();
    splits_.pop_back();
    parents_.pop_back();
    for (int p = cell; p < cell + length_[cell]; ++p) cellOf_[elements_[p]] = parent;
    length_[parent] += length_[cell];
    work.charge(length_[cell]);
  }
}

void OrderedPartition::individualise(int vertex) {
  const int cell = cellOf_[vertex];
  const int other = elements_[cell];
  std::swap(elements_[cell], elements_[place_[vertex]]);
  std::swap(place_[vertex], place_[other]);
  split(cell, cell + 1);
  enqueue(cell);
}

// Keys of all vertices joined with the cell; those of larger cells move to the end of theirs.
double OrderedPartition::countEdges(int cell) {
  double work = 0;
  for (int p = cell; p < cell + length_[cell]; ++p) {
    const int v = elements_[p];
    work += kEdgeWork * static_cast<double>(graph_->start[v + 1] - graph_->start[v]);
    for (NzIndex k = graph_->start[v]; k < graph_->start[v + 1]; ++k) {
      const int u = graph_->neighbour[k], c = cellOf_[u];
      if (length_[c] == 1) continue;
      const int end = c + length_[c] - touched_[c];
      if (place_[u] < end) {
        if (touched_[c] == 0) touchedCells_.push_back(c);
        ++touched_[c];
        const int other = elements_[end - 1];
        std::swap(elements_[end - 1], elements_[place_[u]]);
        std::swap(place_[u], place_[other]);
        key_[u] = 0;
      }
      key_[u] += graph_->weight[k];
    }
  }
  return work;
}

bool OrderedPartition::splitByKeys(int cell, RefinementTrace &trace) {
  const int end = cell + length_[cell];
  int begin = end - touched_[cell];
  touched_[cell] = 0;
  const auto byKey = [&](int a, int b) { return key_[a] < key_[b]; };
  std::sort(elements_.begin() + begin, elements_.begin() + end, byKey);
  for (int p = begin; p < end; ++p) place_[elements_[p]] = p;
  const bool all = queued_[cell];
  int largest = cell, last = cell;
  Vec<int> pieces;
  if (begin > cell) pieces.push_back(cell);
  bool same = trace.note(mixBits(static_cast<std::uint64_t>(cell)) + begin);
  while (begin < end) {
    const std::uint64_t key = key_[elements_[begin]];
    if (begin > last) {
      split(last, begin);
      last = begin;
    }
    pieces.push_back(begin);
    int stop = begin;
    while (stop < end && key_[elements_[stop]] == key) ++stop;
    same = same && trace.note(mixBits(key) + stop);
    begin = stop;
  }
  for (const int piece : pieces)
    if (length_[piece] > length_[largest]) largest = piece;
  for (const int piece : pieces)
    if (pieces.size() > 1 && (all || piece != largest)) enqueue(piece);
  return same;
}

void OrderedPartition::forgetPending() {
  for (std::size_t k = next_; k < queue_.size(); ++k) queued_[queue_[k]] = 0;
  queue_.clear();
  next_ = 0;
  for (const int cell : touchedCells_) touched_[cell] = 0;
  touchedCells_.clear();
}

bool OrderedPartition::refine(RefinementTrace &trace, WorkMeter &work, double workLimit) {
  bool same = true;
  while (same && next_ < queue_.size()) {
    const int cell = queue_[next_++];
    queued_[cell] = 0;
    double done = countEdges(cell);
    std::sort(touchedCells_.begin(), touchedCells_.end());
    for (const int touched : touchedCells_) {
      done += kVertexWork * touched_[touched];
      same = same && splitByKeys(touched, trace);
    }
    if (same) touchedCells_.clear();
    work.charge(done);
    if (work.counted() > workLimit) same = false;
  }
  forgetPending();
  return same;
}

}  // namespace tarvik
