// Random sequences of additions, deletions, changes, attribute writes, failing calls and updates,
// in both update modes, against a plain model that knows elements by identity instead of by index.
// After every update everything that can be queried is compared.
#include "random_edits.h"
#include "snapshot.h"

namespace {

class RandomEditTest : public RandomEdits {
 protected:
  enum class Disturbance { None, FailingCalls, ShortMemory };

  // Edits and updates; what the model looks like after each update is added to seen.
  void run(std::uint64_t seed, int numSteps, Disturbance disturbance,
           std::vector<std::string> *seen = nullptr) {
    begin(seed);
    starving = disturbance == Disturbance::ShortMemory;
    for (int step = 0; step < numSteps && !HasFailure(); ++step) {
      if (step + 1 == numSteps || pick(8) == 0) {
        update();
        if (HasFailure()) return;
        compare();
        if (seen) seen->push_back(snapshot(model));
        changeMode();
        if (pick(4) == 0) setBasis();
        thinOut();
      } else {
        edit();
        if (disturbance == Disturbance::FailingCalls && failures.below(2) == 0) failSomehow();
      }
    }
  }
};

TEST_F(RandomEditTest, AgreesWithThePlainModel) {
  for (std::uint64_t seed = 1; seed <= 2000 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    run(seed, 60, Disturbance::FailingCalls);
  }
}

TEST_F(RandomEditTest, FailingCallsLeaveNoTrace) {
  for (std::uint64_t seed = 5000; seed < 5050 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    std::vector<std::string> undisturbed, disturbed;
    run(seed, 60, Disturbance::None, &undisturbed);
    run(seed, 60, Disturbance::FailingCalls, &disturbed);
    EXPECT_EQ(undisturbed, disturbed);
  }
}

// Every call may find too little memory; it then succeeds as if that had not happened.
TEST_F(RandomEditTest, ShortMemoryLeavesNoTrace) {
  for (std::uint64_t seed = 6000; seed < 6050 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    std::vector<std::string> undisturbed, disturbed;
    run(seed, 60, Disturbance::None, &undisturbed);
    run(seed, 60, Disturbance::ShortMemory, &disturbed);
    EXPECT_EQ(undisturbed, disturbed);
  }
}

}  // namespace
