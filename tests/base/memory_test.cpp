// Memory accounts: counting, limits, views, the caller's functions, threads.
#include "base/memory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <thread>

namespace {

using namespace tarvik;

struct CountingHeap {
  std::set<void *> live;
  int failAt = -1;  // this many allocations succeed; -1: all
  int allocations = 0;
  bool foreignRelease = false;

  MemoryFunctions functions() { return {allocate, nullptr, nullptr, release, this}; }
  static void *allocate(std::size_t size, void *self) {
    auto *heap = static_cast<CountingHeap *>(self);
    if (heap->failAt >= 0 && heap->allocations >= heap->failAt) return nullptr;
    ++heap->allocations;
    void *block = std::malloc(size);
    heap->live.insert(block);
    return block;
  }
  static void release(void *block, void *self) {
    auto *heap = static_cast<CountingHeap *>(self);
    if (heap->live.erase(block) == 0) heap->foreignRelease = true;
    std::free(block);
  }
};

constexpr std::int64_t kMebi = std::int64_t{1} << 20;

TEST(MemoryAccount, CountsWhatIsHeldAndItsPeak) {
  MemoryAccount account;
  {
    const AccountScope scope(&account);
    Vec<char> small(1000);
    EXPECT_EQ(account.bytesInUse(), 1016);
    {
      const Vec<char> large(static_cast<std::size_t>(20 * kMebi));
      EXPECT_EQ(account.bytesInUse(), 20 * kMebi + 16 + 1016);
    }
    EXPECT_EQ(account.bytesInUse(), 1016);
    EXPECT_GE(account.peakBytes(), 20 * kMebi);
  }
  EXPECT_EQ(account.bytesInUse(), 0);
}

TEST(MemoryAccount, BlocksReturnToTheirAccountWhereverTheyAreFreed) {
  MemoryAccount first, second;
  Vec<char> a, b;
  {
    const AccountScope scope(&first);
    a.resize(100);
    const AccountScope inner(&second);
    b.resize(1000);
    EXPECT_EQ(second.bytesInUse(), 1016);
    a = Vec<char>();
    EXPECT_EQ(first.bytesInUse(), 0);
  }
  EXPECT_EQ(currentAccount(), nullptr);
  b = Vec<char>();
  EXPECT_EQ(second.bytesInUse(), 0);
}

TEST(MemoryAccount, TheHardLimitRefusesTheSoftLimitTells) {
  MemoryAccount account;
  account.setHardLimit(10000);
  account.setSoftLimit(5000);
  const AccountScope scope(&account);
  Vec<char> block(4000);
  EXPECT_FALSE(account.softLimitExceeded());
  EXPECT_TRUE(account.softLimitExceeded(2000));
  EXPECT_THROW(Vec<char>(6000), std::bad_alloc);
  EXPECT_EQ(account.bytesInUse(), 4016);
  Vec<char> more(5000);
  EXPECT_TRUE(account.softLimitExceeded());
  account.setCounting(false);
  EXPECT_FALSE(account.softLimitExceeded());
  EXPECT_NO_THROW(Vec<char>(60000));
}

TEST(MemoryAccount, ViewsShareCountersAndHaveTheirOwnLimits) {
  MemoryAccount root;
  Vec<char> survivor;
  {
    MemoryAccount view(MemoryAccount::View{}, root);
    MemoryAccount viewOfView(MemoryAccount::View{}, view);
    view.setHardLimit(1000);
    const AccountScope scope(&viewOfView);
    survivor.resize(5000);
    EXPECT_EQ(root.bytesInUse(), 5016);
    EXPECT_EQ(view.bytesInUse(), 5016);
    const AccountScope inner(&view);
    EXPECT_THROW(Vec<char>(10), std::bad_alloc);
  }
  survivor = Vec<char>();
  EXPECT_EQ(root.bytesInUse(), 0);
}

TEST(MemoryAccount, TheCallersFunctionsServeEveryBlock) {
  CountingHeap heap;
  MemoryAccount *account = MemoryAccount::create(heap.functions());
  {
    const AccountScope scope(account);
    Vec<int> numbers(100, 1);
    numbers.resize(1000);
    EXPECT_EQ(heap.live.size(), 2u);
    heap.failAt = heap.allocations;
    EXPECT_THROW(numbers.resize(10000), std::bad_alloc);
    EXPECT_EQ(numbers.size(), 1000u);
    EXPECT_EQ(account->bytesInUse(), 4016);
  }
  MemoryAccount::destroy(account);
  EXPECT_TRUE(heap.live.empty());
  EXPECT_FALSE(heap.foreignRelease);
  heap.failAt = 0;
  EXPECT_THROW(MemoryAccount::create(heap.functions()), std::bad_alloc);
}

TEST(MemoryAccount, ThreadsFlushWhatTheyChargedAndForgetDeadAccounts) {
  Vec<char> handedOver;
  {
    MemoryAccount account;
    std::thread worker([&] {
      const AccountScope scope(&account);
      handedOver.resize(5000);
      for (int round = 0; round < 1000; ++round) Vec<char>(10000);
    });
    worker.join();
    EXPECT_EQ(account.bytesInUse(), 5016);
    // A thread without a scope gives blocks back too, and remembers nothing of the account.
    std::thread([&] { handedOver = Vec<char>(); }).join();
    EXPECT_EQ(account.bytesInUse(), 0);
    const AccountScope scope(&account);
    handedOver.resize(100);
    handedOver = Vec<char>();
    forgetAccount(&account);
    EXPECT_EQ(currentAccount(), nullptr);
  }
}

TEST(MemoryAccount, RefusesWhatCannotBeCounted) {
  EXPECT_THROW(accountAllocate(nullptr, static_cast<std::size_t>(-1)), std::bad_alloc);
  EXPECT_THROW(AccountAllocator<double>().allocate(static_cast<std::size_t>(-1) / 8),
               std::bad_alloc);
  accountRelease(nullptr);
}

}  // namespace
