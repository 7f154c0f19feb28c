#include "base/memory.h"

#include <cstdlib>

namespace tarvik {

namespace {

constexpr std::int64_t kFlushBytes = std::int64_t{4} << 20;

struct BlockHeader {
  MemoryAccount *account;
  std::size_t bytes;
};
static_assert(sizeof(BlockHeader) == 16);

}  // namespace

// What a thread has charged to one account and not yet flushed.
struct ThreadLedger {
  MemoryAccount *current = nullptr;
  MemoryAccount *owner = nullptr;  // the account that delta belongs to
  std::int64_t delta = 0;

  void add(MemoryAccount *account, std::int64_t bytes) {
    if (owner != account) {
      flush();
      owner = account;
    }
    delta += bytes;
    if (delta > kFlushBytes || delta < -kFlushBytes) flush();
  }
  void flush() {
    if (owner && delta != 0) owner->flush(delta);
    delta = 0;
  }
  ~ThreadLedger() { flush(); }
};

namespace {
thread_local ThreadLedger ledger;
}

MemoryAccount *currentAccount() { return ledger.current; }

AccountScope::AccountScope(MemoryAccount *account) : previous_(ledger.current) {
  ledger.current = account;
}

AccountScope::~AccountScope() { ledger.current = previous_; }

void forgetAccount(MemoryAccount *account) {
  if (ledger.owner == account) {
    ledger.owner = nullptr;
    ledger.delta = 0;
  }
  if (ledger.current == account) ledger.current = nullptr;
}

std::int64_t MemoryAccount::bytesInUse() const {
  std::int64_t bytes = inUse_.load(std::memory_order_relaxed);
  if (ledger.owner == this) bytes += ledger.delta;
  return bytes < 0 ? 0 : bytes;
}

std::int64_t MemoryAccount::peakBytes() const {
  const std::int64_t now = bytesInUse();
  const std::int64_t peak = peak_.load(std::memory_order_relaxed);
  return now > peak ? now : peak;
}

bool MemoryAccount::refuses(std::size_t request) const {
  const double limit = hardLimit_.load(std::memory_order_relaxed);
  return counting_ && limit < 1e100 &&
         static_cast<double>(bytesInUse()) + static_cast<double>(request) > limit;
}

bool MemoryAccount::softLimitExceeded(std::size_t request) const {
  const double limit = softLimit_.load(std::memory_order_relaxed);
  return counting_ && limit < 1e100 &&
         static_cast<double>(bytesInUse()) + static_cast<double>(request) > limit;
}

void MemoryAccount::charge(std::int64_t bytes) {
  if (counting_) ledger.add(this, bytes);
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
  if (account && account->refuses(total)) throw std::bad_alloc();
  void *raw = account && account->functions_.allocate
                  ? account->functions_.allocate(total, account->functions_.userData)
                  : std::malloc(total);
  if (!raw) throw std::bad_alloc();
  auto *header = static_cast<BlockHeader *>(raw);
  header->account = account;
  header->bytes = total;
  if (account) account->charge(static_cast<std::int64_t>(total));
  return header + 1;
}

void accountRelease(void *block) {
  if (!block) return;
  BlockHeader *header = static_cast<BlockHeader *>(block) - 1;
  MemoryAccount *account = header->account;
  if (account) account->charge(-static_cast<std::int64_t>(header->bytes));
  if (account && account->functions_.release)
    account->functions_.release(header, account->functions_.userData);
  else
    std::free(header);
}

}  // namespace tarvik
