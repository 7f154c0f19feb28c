// Every allocation may fail: the call that needed it answers 10001 with its text, nothing leaks,
// and what existed before stays usable.
#include "env_fixture.h"
#include "failing_heap.h"
#include "small_program.h"

namespace {

using tarvik_test::EnvTest;
using tarvik_test::FailingHeap;
using tarvik_test::FailingNewScope;
using tarvik_test::SmallProgram;

int emptyEnv(FailingHeap &heap, TVKenv **env) {
  return TVKemptyenvadv(env, FailingHeap::allocate, FailingHeap::zeroAllocate,
                        FailingHeap::reallocate, FailingHeap::release, nullptr, nullptr, &heap);
}

class AllocationFailureTest : public EnvTest {
 protected:
  void SetUp() override {
    EnvTest::SetUp();
    write("tarvik.env", "NodefileDir nodes\nMethod 1\n");
    write("more.prm", "WorkerPool pool\nnonsense 3\nThreads 2.5\n");
  }

  int useParameters(FailingHeap &heap) {
    if (const int code = emptyEnv(heap, &program_)) return code;
    TVKsetintparam(program_, "OutputFlag", 0);
    if (const int code = TVKsetstrparam(program_, "SolFiles", "incumbent")) return code;
    if (const int code = TVKsetstrparam(program_, "LogFile", "run.log")) return code;
    if (const int code = TVKstartenv(program_)) return code;
    if (const int code = TVKreadparams(program_, "more.prm")) return code;
    for (const int index : {3, 0, 7})
      if (!TVKgettuneenv(program_, index)) return TVK_ERROR_OUT_OF_MEMORY;
    return TVKwriteparams(program_, "out.prm");
  }

  // Stops at the first call that fails.
  int useEnvironment(FailingHeap &heap) {
    if (const int code = useParameters(heap)) {
      if (program_) {
        EXPECT_STREQ(TVKgeterrormsg(program_), "Out of memory");
      }
      return code;
    }
    {
      SmallProgram small(program_, "a");
      if (const int code = small.run()) {
        expectOutOfMemory(small);
        return code;
      }
    }
    return TVKresetparams(program_);
  }

  // The message stands where the failing call left it.
  void expectOutOfMemory(const SmallProgram &small) {
    const std::string own = TVKgeterrormsg(program_);
    const std::string models = TVKgetmerrormsg(small.model());
    const std::string seconds = TVKgetmerrormsg(small.second());
    EXPECT_TRUE(own == "Out of memory" || models == "Out of memory" || seconds == "Out of memory")
        << own << models << seconds;
  }

  void expectSound(FailingHeap &heap, int code, long n) {
    EXPECT_TRUE(code == 0 || code == TVK_ERROR_OUT_OF_MEMORY) << n << ": " << code;
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
    ASSERT_LT(n, 10000);
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
    ASSERT_LT(n, 10000);
  }
}

TEST_F(AllocationFailureTest, ModelsAndEnvironmentsAreFreedInAnyOrder) {
  for (int order = 0; order < 6; ++order) {
    FailingHeap heap;
    TVKenv *env = nullptr;
    ASSERT_EQ(emptyEnv(heap, &env), 0);
    TVKsetintparam(env, "OutputFlag", 0);
    ASSERT_EQ(TVKstartenv(env), 0);
    {
      SmallProgram first(env, "1"), second(env, "2");
      ASSERT_EQ(first.run(), 0);
      ASSERT_EQ(second.run(), 0);
      ASSERT_NE(TVKgettuneenv(env, 0), nullptr);
      if (order % 3 == 0) {
        ASSERT_EQ(TVKfreeenv(env), 0);
      }
      if (order < 3) first.freeAll();
      // A master that the caller has freed serves its models on.
      ASSERT_EQ(TVKsetintparam(TVKgetenv(second.model()), "Threads", 2), 0);
      ASSERT_EQ(TVKsetdblattrelement(second.model(), "Obj", 0, 7), 0);
      ASSERT_EQ(TVKupdatemodel(second.model()), 0);
      if (order % 3 == 1) {
        ASSERT_EQ(TVKfreeenv(env), 0);
      }
      second.freeAll();
    }
    if (order % 3 == 2) {
      EXPECT_GT(heap.live, 0);
      ASSERT_EQ(TVKfreeenv(env), 0);
    }
    EXPECT_EQ(heap.live, 0) << order;
    EXPECT_FALSE(heap.foreign) << order;
  }
}

TEST_F(AllocationFailureTest, EverythingIsFreedThroughTheCallersAllocator) {
  FailingHeap heap;
  ASSERT_EQ(useEnvironment(heap), 0);
  EXPECT_GT(heap.live, 10);
  expectSound(heap, 0, -1);
}

}  // namespace
