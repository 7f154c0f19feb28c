#include "base/memory.h"

#include <cstdlib>
#include <cstring>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace tarvik {

namespace {

constexpr std::int64_t kFlushBytes = std::int64_t{4} << 20;

struct BlockHeader {
  MemoryAccount *root;
  std::size_t bytes;
};
static_assert(sizeof(BlockHeader) == 16);

constexpr std::size_t kHugePage = std::size_t{2} << 20;

// Asks for huge pages in a large block: the random accesses of hash tables and sparse
// factorizations would otherwise wait for page tables as long as for the data. Advice only.
void preferHugePages([[maybe_unused]] void *block, [[maybe_unused]] std::size_t bytes) {
#ifdef __linux__
  if (bytes < 2 * kHugePage) return;
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t begin = (address + kHugePage - 1) / kHugePage * kHugePage;
  const std::uintptr_t end = (address + bytes) / kHugePage * kHugePage;
  if (begin < end) madvise(reinterpret_cast<void *>(begin), end - begin, MADV_HUGEPAGE);
#endif
}

// A block of the platform, null when there is none.
void *platformAllocate(std::size_t bytes) {
  void *block = std::malloc(bytes);
  if (block) preferHugePages(block, bytes);
  return block;
}

}  // namespace

// The current account of a thread and what the thread has charged to its root since the last
// flush. The delta is zero whenever there is no current account.
struct ThreadLedger {
  MemoryAccount *current = nullptr;
  std::int64_t delta = 0;

  MemoryAccount *root() const { return current ? current->root_ : nullptr; }
  void enter(MemoryAccount *account) {
    if (delta != 0 && (!account || account->root_ != root())) flush();
    current = account;
  }
  void flush() {
    root()->flush(delta);
    delta = 0;
  }
};

namespace {
thread_local constinit ThreadLedger ledger;
}

MemoryAccount *currentAccount() { return ledger.current; }

AccountScope::AccountScope(MemoryAccount *account) : previous_(ledger.current) {
  ledger.enter(account);
}

AccountScope::~AccountScope() { ledger.enter(previous_); }

void forgetAccount(MemoryAccount *account) {
  if (ledger.current != account && ledger.root() != account) return;
  if (ledger.root() == account) ledger.delta = 0;
  ledger.enter(nullptr);
}

MemoryAccount *MemoryAccount::create(const MemoryFunctions &functions) {
  void *block;
  if (functions.zeroAllocate) {
    block = functions.zeroAllocate(1, sizeof(MemoryAccount), functions.userData);
  } else if (functions.allocate) {
    block = functions.allocate(sizeof(MemoryAccount), functions.userData);
  } else {
    block = std::malloc(sizeof(MemoryAccount));
  }
  if (!block) throw std::bad_alloc();
  return new (block) MemoryAccount(functions);
}

void MemoryAccount::destroy(MemoryAccount *root) {
  forgetAccount(root);
  const MemoryFunctions functions = root->functions_;
  root->~MemoryAccount();
  if (functions.release)
    functions.release(root, functions.userData);
  else
    std::free(root);
}

std::int64_t MemoryAccount::bytesInUse() const {
  std::int64_t bytes = root_->inUse_.load(std::memory_order_relaxed);
  if (ledger.root() == root_) bytes += ledger.delta;
  return bytes < 0 ? 0 : bytes;
}

std::int64_t MemoryAccount::peakBytes() const {
  const std::int64_t now = bytesInUse();
  const std::int64_t peak = root_->peak_.load(std::memory_order_relaxed);
  return now > peak ? now : peak;
}

bool MemoryAccount::exceeds(const std::atomic<double> &limit, std::size_t request) const {
  const double bytes = limit.load(std::memory_order_relaxed);
  return bytes < 1e100 && counting() &&
         static_cast<double>(bytesInUse()) + static_cast<double>(request) > bytes;
}

bool MemoryAccount::softLimitExceeded(std::size_t request) const {
  return exceeds(softLimit_, request);
}

void MemoryAccount::charge(MemoryAccount *root, std::int64_t bytes) {
  if (!root->counting()) return;
  if (ledger.root() != root) {
    root->flush(bytes);
    return;
  }
  ledger.delta += bytes;
  if (ledger.delta > kFlushBytes || ledger.delta < -kFlushBytes) ledger.flush();
}

void MemoryAccount::flush(std::int64_t delta) {
  const std::int64_t now = inUse_.fetch_add(delta, std::memory_order_relaxed) + delta;
  if (now < 0) {
    inUse_.fetch_sub(now, std::memory_order_relaxed);
    return;
  }
  std::int64_t peak = peak_.load(std::memory_order_relaxed);
  while (now > peak && !peak_.compare_exchange_weak(peak, now, std::memory_order_relaxed)) {
  }
}

void *accountAllocate(MemoryAccount *account, std::size_t bytes) {
  const std::size_t total = bytes + sizeof(BlockHeader);
  if (total < bytes) throw std::bad_alloc();
  if (account && account->exceeds(account->hardLimit_, total)) throw std::bad_alloc();
  MemoryAccount *root = account ? account->root_ : nullptr;
  void *raw = root && root->functions_.allocate
                  ? root->functions_.allocate(total, root->functions_.userData)
                  : platformAllocate(total);
  if (!raw) throw std::bad_alloc();
  auto *header = static_cast<BlockHeader *>(raw);
  header->root = root;
  header->bytes = total;
  if (root) MemoryAccount::charge(root, static_cast<std::int64_t>(total));
  return header + 1;
}

void accountRelease(void *block) {
  if (!block) return;
  BlockHeader *header = static_cast<BlockHeader *>(block) - 1;
  MemoryAccount *root = header->root;
  if (root) MemoryAccount::charge(root, -static_cast<std::int64_t>(header->bytes));
  if (root && root->functions_.release)
    root->functions_.release(header, root->functions_.userData);
  else
    std::free(header);
}

}  // namespace tarvik
