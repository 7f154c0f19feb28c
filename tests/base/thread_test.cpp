// Threads: the caller's functions, inherited accounts, failures in the body.
#include "base/thread.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <stdexcept>
#include <vector>

#include "base/memory.h"

namespace {

using namespace tarvik;

struct Crew {
  int created = 0, joined = 0;
  bool refuse = false;

  ThreadFunctions functions() { return {create, join, this}; }
  static int create(void **thread, void *(*start)(void *), void *argument, void *self) {
    auto *crew = static_cast<Crew *>(self);
    if (crew->refuse) return 1;
    ++crew->created;
    auto *handle = new pthread_t;
    *thread = handle;
    return pthread_create(handle, nullptr, start, argument);
  }
  static void join(void *thread, void *self) {
    ++static_cast<Crew *>(self)->joined;
    auto *handle = static_cast<pthread_t *>(thread);
    pthread_join(*handle, nullptr);
    delete handle;
  }
};

TEST(Thread, RunsBodiesThroughEitherKindOfFunctions) {
  Crew crew;
  for (const ThreadFunctions &functions : {ThreadFunctions(), crew.functions()}) {
    std::atomic<int> sum{0};
    std::vector<Thread> threads;
    for (int k = 1; k <= 4; ++k) threads.emplace_back(functions, [&sum, k] { sum += k; });
    for (Thread &thread : threads) thread.join();
    EXPECT_EQ(sum, 10);
    EXPECT_FALSE(threads[0].joinable());
    threads[0].join();
  }
  EXPECT_EQ(crew.created, 4);
  EXPECT_EQ(crew.joined, 4);
}

TEST(Thread, FailuresAppearWhereTheThreadIsJoined) {
  Thread thread(ThreadFunctions(), [] { throw std::runtime_error("inside"); });
  EXPECT_THROW(thread.join(), std::runtime_error);
  {
    const Thread unjoined(ThreadFunctions(), [] { throw std::runtime_error("lost"); });
  }
  Crew crew;
  crew.refuse = true;
  EXPECT_THROW(Thread(crew.functions(), [] {}), std::bad_alloc);
  EXPECT_EQ(crew.joined, 0);
}

TEST(Thread, InheritsTheAccountOfItsCreator) {
  MemoryAccount account;
  const AccountScope scope(&account);
  Vec<char> kept;
  Thread thread(ThreadFunctions(), [&kept] { kept.resize(1000); });
  thread.join();
  EXPECT_EQ(account.bytesInUse(), 1016);
}

}  // namespace
