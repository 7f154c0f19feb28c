// Every allocation may fail: the call that needed it answers 10001 with its text, nothing leaks,
// and what existed before stays usable.
#include "env_fixture.h"
#include "failing_heap.h"

namespace {

using tarvik_test::EnvTest;
using tarvik_test::FailingHeap;
using tarvik_test::FailingNewScope;

int emptyEnv(FailingHeap &heap, TVKenv **env) {
  return TVKemptyenvadv(env, FailingHeap::allocate, FailingHeap::zeroAllocate,
                        FailingHeap::reallocate, FailingHeap::release, nullptr, nullptr, &heap);
}

class AllocationFailureTest : public EnvTest {
 protected:
  void SetUp() override {
    EnvTest::SetUp();
    write("tarvik.env", "NodefileDir nodes\nMethod 1\n");
    write("more.prm", "ResultFile result.sol\nnonsense 3\nThreads 2.5\n");
  }

  // The calls of a small program; stops at the first that fails.
  int useEnvironment(FailingHeap &heap) {
    if (const int code = emptyEnv(heap, &program_)) return code;
    TVKsetintparam(program_, "OutputFlag", 0);
    if (const int code = TVKsetstrparam(program_, "SolFiles", "incumbent")) return code;
    if (const int code = TVKsetstrparam(program_, "LogFile", "run.log")) return code;
    if (const int code = TVKstartenv(program_)) return code;
    if (const int code = TVKreadparams(program_, "more.prm")) return code;
    for (const int index : {3, 0, 7}) {
      if (TVKgettuneenv(program_, index)) continue;
      EXPECT_STREQ(TVKgeterrormsg(program_), "Out of memory");
      return TVK_ERROR_OUT_OF_MEMORY;
    }
    if (const int code = TVKwriteparams(program_, "out.prm")) return code;
    return TVKresetparams(program_);
  }

  void expectSound(FailingHeap &heap, int code, long n) {
    EXPECT_TRUE(code == 0 || code == TVK_ERROR_OUT_OF_MEMORY) << n << ": " << code;
    if (code != 0 && program_) {
      EXPECT_STREQ(TVKgeterrormsg(program_), "Out of memory") << n;
    }
    if (program_) {
      EXPECT_EQ(TVKsetintparam(program_, "OutputFlag", 0), 0) << n;
      EXPECT_EQ(TVKsetintparam(program_, "Threads", 3), 0) << n;
      EXPECT_EQ(TVKsetstrparam(program_, "NodefileDir", "later"), 0) << n;
    }
    EXPECT_EQ(TVKfreeenv(program_), 0);
    program_ = nullptr;
    EXPECT_EQ(heap.live, 0) << n;
    EXPECT_FALSE(heap.foreign);
  }

  TVKenv *program_ = nullptr;
};

TEST_F(AllocationFailureTest, OfTheCallersAllocator) {
  for (long n = 0;; ++n) {
    FailingHeap heap;
    heap.failAt = n;
    const int code = useEnvironment(heap);
    heap.failAt = -1;
    expectSound(heap, code, n);
    if (!heap.refused) break;
    EXPECT_EQ(code, TVK_ERROR_OUT_OF_MEMORY) << n;
    ASSERT_LT(n, 1000);
  }
}

TEST_F(AllocationFailureTest, OfTheLibrarysSmallObjects) {
  for (long n = 0;; ++n) {
    FailingHeap heap;
    int code;
    bool failed;
    {
      const FailingNewScope scope(n);
      code = useEnvironment(heap);
      failed = FailingNewScope::hasFailed();
    }
    expectSound(heap, code, n);
    if (!failed) break;
    EXPECT_EQ(code, TVK_ERROR_OUT_OF_MEMORY) << n;
    ASSERT_LT(n, 1000);
  }
}

TEST_F(AllocationFailureTest, EverythingIsFreedThroughTheCallersAllocator) {
  FailingHeap heap;
  ASSERT_EQ(useEnvironment(heap), 0);
  EXPECT_GT(heap.live, 10);
  expectSound(heap, 0, -1);
}

}  // namespace
