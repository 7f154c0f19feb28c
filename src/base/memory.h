// Memory accounts. Everything whose size grows with a model is allocated through the current
// account: a thread-local pointer that the frame of an exported call and worker threads set with
// AccountScope. Every block carries a 16-byte header with its account and its size, so it is
// given back to whom it was charged wherever it is freed. A thread collects its changes and
// flushes them to the shared counter every 4 MiB, so that parallel code does not contend.
//
// Without a current account (kernel tests, for instance) blocks come from the platform and are
// charged to nobody.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

namespace tarvik {

// Memory functions of the caller; each may be null, then the platform's is used.
struct MemoryFunctions {
  void *(*allocate)(std::size_t size, void *userData) = nullptr;
  void *(*zeroAllocate)(std::size_t count, std::size_t size, void *userData) = nullptr;
  void *(*reallocate)(void *block, std::size_t size, void *userData) = nullptr;
  void (*release)(void *block, void *userData) = nullptr;
  void *userData = nullptr;
};

class MemoryAccount {
 public:
  MemoryAccount() = default;
  explicit MemoryAccount(const MemoryFunctions &functions) : functions_(functions) {}
  MemoryAccount(const MemoryAccount &) = delete;
  MemoryAccount &operator=(const MemoryAccount &) = delete;

  // Limits in bytes; infinite when at or beyond 1e100.
  void setHardLimit(double bytes) { hardLimit_.store(bytes, std::memory_order_relaxed); }
  void setSoftLimit(double bytes) { softLimit_.store(bytes, std::memory_order_relaxed); }
  // A disabled account counts nothing and enforces nothing.
  void setCounting(bool on) { counting_ = on; }
  bool counting() const { return counting_; }

  // Bytes in use and their peak, up to the deltas that other threads still hold.
  std::int64_t bytesInUse() const;
  std::int64_t peakBytes() const;
  // True when the soft limit is exceeded once `request` more bytes are taken.
  bool softLimitExceeded(std::size_t request = 0) const;

  const MemoryFunctions &functions() const { return functions_; }

 private:
  friend void *accountAllocate(MemoryAccount *account, std::size_t bytes);
  friend void accountRelease(void *block);
  friend struct ThreadLedger;

  bool refuses(std::size_t request) const;
  void charge(std::int64_t bytes);
  void flush(std::int64_t delta);

  MemoryFunctions functions_;
  std::atomic<std::int64_t> inUse_{0};
  std::atomic<std::int64_t> peak_{0};
  std::atomic<double> hardLimit_{1e100};
  std::atomic<double> softLimit_{1e100};
  bool counting_ = true;
};

// The account that allocations of this thread are charged to; may be null.
MemoryAccount *currentAccount();

// Makes an account current for the life of the scope.
class AccountScope {
 public:
  explicit AccountScope(MemoryAccount *account);
  ~AccountScope();
  AccountScope(const AccountScope &) = delete;
  AccountScope &operator=(const AccountScope &) = delete;

 private:
  MemoryAccount *previous_;
};

// Before an account dies, forget this thread's unflushed delta of it.
void forgetAccount(MemoryAccount *account);

// Allocates from an account (null: from the platform, uncharged); throws std::bad_alloc.
// The block is aligned to 16 bytes.
void *accountAllocate(MemoryAccount *account, std::size_t bytes);
void accountRelease(void *block);

// The stateless allocator behind Vec: charges the current account.
template <class T>
struct AccountAllocator {
  using value_type = T;
  AccountAllocator() = default;
  template <class U>
  AccountAllocator(const AccountAllocator<U> &) {}
  T *allocate(std::size_t n) {
    static_assert(alignof(T) <= 16);
    if (n > static_cast<std::size_t>(-1) / sizeof(T) - 16) throw std::bad_alloc();
    return static_cast<T *>(accountAllocate(currentAccount(), n * sizeof(T)));
  }
  void deallocate(T *block, std::size_t) { accountRelease(block); }
  template <class U>
  bool operator==(const AccountAllocator<U> &) const {
    return true;
  }
};

template <class T>
using Vec = std::vector<T, AccountAllocator<T>>;

}  // namespace tarvik
