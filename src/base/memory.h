// Memory accounts. Everything whose size grows with a model is allocated through the current
// account: a thread-local pointer that the frame of an exported call and worker threads set with
// AccountScope. Every block carries a 16-byte header with its account and its size, so it is
// given back to whom it was charged wherever it is freed.
//
// Accounts form one level: a root holds the counters and the caller's memory functions, a view
// charges its root and adds limits of its own (an environment copy has its own MemLimit but
// shares the counters of its master). Blocks name the root, so a view may die before them.
//
// Inside a scope a thread collects its changes and flushes them to the shared counter every
// 4 MiB and when the scope ends, so that parallel code does not contend. What a thread frees
// outside of a scope is counted at once; hence no thread remembers an account that may be dead.
//
// Without a current account (kernel tests, for instance) blocks come from the platform and are
// charged to nobody.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <utility>
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
  // A view of the account that `of` belongs to.
  struct View {};
  MemoryAccount(View, MemoryAccount &of) : root_(of.root_) {}
  MemoryAccount(const MemoryAccount &) = delete;
  MemoryAccount &operator=(const MemoryAccount &) = delete;

  // A root that lives in a block of the functions it serves; throws std::bad_alloc.
  static MemoryAccount *create(const MemoryFunctions &functions);
  // Ends a root made by create(); every block charged to it has been released.
  static void destroy(MemoryAccount *root);

  // Limits in bytes; infinite when at or beyond 1e100.
  void setHardLimit(double bytes) { hardLimit_.store(bytes, std::memory_order_relaxed); }
  void setSoftLimit(double bytes) { softLimit_.store(bytes, std::memory_order_relaxed); }
  // A disabled account counts nothing and enforces nothing.
  void setCounting(bool on) { root_->counting_.store(on, std::memory_order_relaxed); }
  bool counting() const { return root_->counting_.load(std::memory_order_relaxed); }

  // Bytes in use and their peak, up to the deltas that other threads still hold.
  std::int64_t bytesInUse() const;
  std::int64_t peakBytes() const;
  // True when the soft limit is exceeded once `request` more bytes are taken.
  bool softLimitExceeded(std::size_t request = 0) const;

  const MemoryFunctions &functions() const { return root_->functions_; }

 private:
  friend void *accountAllocate(MemoryAccount *account, std::size_t bytes);
  friend void accountRelease(void *block);
  friend struct ThreadLedger;

  bool exceeds(const std::atomic<double> &limit, std::size_t request) const;
  static void charge(MemoryAccount *root, std::int64_t bytes);
  void flush(std::int64_t delta);

  MemoryFunctions functions_;
  MemoryAccount *root_ = this;
  std::atomic<std::int64_t> inUse_{0};
  std::atomic<std::int64_t> peak_{0};
  std::atomic<double> hardLimit_{1e100};
  std::atomic<double> softLimit_{1e100};
  std::atomic<bool> counting_{true};
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

// Base of single objects that live on the current account.
struct AccountAllocated {
  static void *operator new(std::size_t bytes) { return accountAllocate(currentAccount(), bytes); }
  static void operator delete(void *block) { accountRelease(block); }
};

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

// The same, but elements made without a value are left as they are.
template <class T>
struct RawAllocator : AccountAllocator<T> {
  RawAllocator() = default;
  template <class U>
  RawAllocator(const RawAllocator<U> &) {}
  template <class U>
  struct rebind {
    using other = RawAllocator<U>;
  };
  template <class U>
  void construct(U *place) noexcept {
    ::new (static_cast<void *>(place)) U;
  }
  template <class U, class... Args>
  void construct(U *place, Args &&...args) {
    ::new (static_cast<void *>(place)) U(std::forward<Args>(args)...);
  }
};

template <class T>
using Vec = std::vector<T, AccountAllocator<T>>;
// Numbers that resize() does not set: for large arrays that are filled right away.
template <class T>
using RawVec = std::vector<T, RawAllocator<T>>;
using AccountString = std::basic_string<char, std::char_traits<char>, AccountAllocator<char>>;

}  // namespace tarvik
