#include "failing_heap.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

std::atomic<long> newBudget{-1};  // -1: never fails
std::atomic<bool> newFailed{false};

void *plainNew(std::size_t size) { return std::malloc(size ? size : 1); }

void *countedNew(std::size_t size) {
  if (newBudget.load() >= 0 && newBudget.fetch_sub(1) <= 0) {
    newBudget.store(0);
    newFailed.store(true);
    return nullptr;
  }
  return plainNew(size);
}

// A mark in front of every block tells the heap's own blocks from others.
constexpr std::size_t kMark = 0x7461727669;
struct Mark {
  std::size_t mark, size;
};

}  // namespace

void *operator new(std::size_t size) {
  if (void *block = countedNew(size)) return block;
  throw std::bad_alloc();
}
void *operator new[](std::size_t size) { return operator new(size); }
// Who asks this way gets along without the memory; the calls succeed all the same.
void *operator new(std::size_t size, const std::nothrow_t &) noexcept { return plainNew(size); }
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept { return plainNew(size); }
void operator delete(void *block) noexcept { std::free(block); }
void operator delete[](void *block) noexcept { std::free(block); }
void operator delete(void *block, std::size_t) noexcept { std::free(block); }
void operator delete[](void *block, std::size_t) noexcept { std::free(block); }
void operator delete(void *block, const std::nothrow_t &) noexcept { std::free(block); }
void operator delete[](void *block, const std::nothrow_t &) noexcept { std::free(block); }

namespace tarvik_test {

bool FailingHeap::refuses() {
  const long budget = failAt.load();
  if (budget >= 0 && allocations.load() >= budget) {
    refused = true;
    return true;
  }
  ++allocations;
  return false;
}

void *FailingHeap::allocate(std::size_t size, void *self) {
  auto *heap = static_cast<FailingHeap *>(self);
  if (heap->refuses()) return nullptr;
  auto *mark = static_cast<Mark *>(std::malloc(size + sizeof(Mark)));
  if (!mark) return nullptr;
  *mark = {kMark, size};
  ++heap->live;
  return mark + 1;
}

void *FailingHeap::zeroAllocate(std::size_t count, std::size_t size, void *self) {
  void *block = allocate(count * size, self);
  return block ? std::memset(block, 0, count * size) : nullptr;
}

void *FailingHeap::reallocate(void *block, std::size_t size, void *self) {
  void *grown = allocate(size, self);
  if (!grown || !block) return grown;
  const std::size_t old = (static_cast<Mark *>(block) - 1)->size;
  std::memcpy(grown, block, old < size ? old : size);
  release(block, self);
  return grown;
}

void FailingHeap::release(void *block, void *self) {
  if (!block) return;
  auto *heap = static_cast<FailingHeap *>(self);
  Mark *mark = static_cast<Mark *>(block) - 1;
  if (mark->mark != kMark) {
    heap->foreign = true;
    return;
  }
  mark->mark = 0;
  --heap->live;
  std::free(mark);
}

FailingNewScope::FailingNewScope(long failAt) {
  newFailed.store(false);
  newBudget.store(failAt);
}

FailingNewScope::~FailingNewScope() { newBudget.store(-1); }

bool FailingNewScope::hasFailed() { return newFailed.load(); }

}  // namespace tarvik_test
