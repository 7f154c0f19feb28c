#include "mip/node_queue.h"

#include <algorithm>

namespace tarvik {

namespace {

// Heaps of the standard library keep the largest on top: "less" means "comes later".
bool laterByBound(const std::shared_ptr<Node> &a, const std::shared_ptr<Node> &b) {
  if (a->bound != b->bound) return a->bound > b->bound;
  if (a->estimate != b->estimate) return a->estimate > b->estimate;
  return a->id > b->id;
}
bool laterByEstimate(const std::shared_ptr<Node> &a, const std::shared_ptr<Node> &b) {
  if (a->estimate != b->estimate) return a->estimate > b->estimate;
  return a->id > b->id;
}
using Later = bool (*)(const std::shared_ptr<Node> &, const std::shared_ptr<Node> &);
Later orderOf(bool byBound) { return byBound ? laterByBound : laterByEstimate; }

}  // namespace

void NodeQueue::push(std::shared_ptr<Node> node) {
  byBound_.push_back(node);
  std::push_heap(byBound_.begin(), byBound_.end(), laterByBound);
  byEstimate_.push_back(std::move(node));
  std::push_heap(byEstimate_.begin(), byEstimate_.end(), laterByEstimate);
  ++size_;
}

void NodeQueue::dropTaken(Heap &heap, bool byBound) {
  while (!heap.empty() && heap.front()->taken) {
    std::pop_heap(heap.begin(), heap.end(), orderOf(byBound));
    heap.pop_back();
  }
}

double NodeQueue::bestBound() {
  dropTaken(byBound_, true);
  return byBound_.empty() ? kUserInf : byBound_.front()->bound;
}

std::shared_ptr<Node> NodeQueue::take(Heap &heap, bool byBound) {
  dropTaken(heap, byBound);
  if (heap.empty()) return nullptr;
  std::shared_ptr<Node> node = heap.front();
  std::pop_heap(heap.begin(), heap.end(), orderOf(byBound));
  heap.pop_back();
  node->taken = true;
  --size_;
  return node;
}

std::shared_ptr<Node> NodeQueue::takeBestBound() { return take(byBound_, true); }
std::shared_ptr<Node> NodeQueue::takeBestEstimate() { return take(byEstimate_, false); }

Vec<const Node *> NodeQueue::someNodes(int most) const {
  Vec<const Node *> nodes;
  for (const std::shared_ptr<Node> &node : byBound_) {
    if (static_cast<int>(nodes.size()) == most) break;
    if (!node->taken) nodes.push_back(node.get());
  }
  return nodes;
}

void NodeQueue::prune(double cutoff) {
  for (Heap *heap : {&byBound_, &byEstimate_}) {
    heap->erase(
        std::remove_if(heap->begin(), heap->end(),
                       [&](const auto &node) { return node->taken || node->bound >= cutoff; }),
        heap->end());
    std::make_heap(heap->begin(), heap->end(), orderOf(heap == &byBound_));
  }
  size_ = static_cast<int>(byBound_.size());
}

}  // namespace tarvik
