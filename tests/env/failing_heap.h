// Heaps that fail on demand: a caller's allocator for TVKemptyenvadv, and the global operator new
// of the test program. Both count what is live.
#pragma once

#include <atomic>
#include <cstddef>

namespace tarvik_test {

// An allocator to hand to TVKemptyenvadv with itself as the user data. After `failAt` successful
// allocations every further one fails; -1 means never.
class FailingHeap {
 public:
  static void *allocate(std::size_t size, void *self);
  static void *zeroAllocate(std::size_t count, std::size_t size, void *self);
  static void *reallocate(void *block, std::size_t size, void *self);
  static void release(void *block, void *self);

  std::atomic<long> live{0};
  std::atomic<long> allocations{0};
  std::atomic<long> failAt{-1};
  std::atomic<bool> refused{false};  // an allocation has failed
  std::atomic<bool> foreign{false};  // a block was released that came from elsewhere

 private:
  bool refuses();
};

// While it lives, the calling program's operator new fails after `failAt` successful calls.
class FailingNewScope {
 public:
  explicit FailingNewScope(long failAt);
  ~FailingNewScope();
  FailingNewScope(const FailingNewScope &) = delete;
  FailingNewScope &operator=(const FailingNewScope &) = delete;

  // True once an allocation has been refused.
  static bool hasFailed();
};

}  // namespace tarvik_test
