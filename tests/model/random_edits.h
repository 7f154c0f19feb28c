// Random edits of a model and of the plain model beside it, with what may disturb them: calls
// that fail and memory that runs out. Disturbances are drawn from their own generator, so that
// the edits are the same with and without them.
#pragma once

#include <cstdlib>

#include "base/random.h"
#include "model_fixture.h"
#include "plain_model.h"

// A caller's allocator that refuses everything after a number of allocations.
struct StarvingHeap {
  static void *allocate(std::size_t size, void *self) {
    auto *heap = static_cast<StarvingHeap *>(self);
    if (heap->budget == 0) return nullptr;
    if (heap->budget > 0) --heap->budget;
    return std::malloc(size);
  }
  static void release(void *block, void *) { std::free(block); }

  int budget = -1;  // -1: enough
};

class RandomEdits : public ModelTest {
 protected:
  int makeEnv() override {
    return TVKemptyenvadv(&env, StarvingHeap::allocate, nullptr, nullptr, StarvingHeap::release,
                          nullptr, nullptr, &heap);
  }

  // A new model and the generators of a run.
  void begin(std::uint64_t seed);
  // An edit, drawn from all kinds.
  void edit();
  // Changes the update mode at random; the model has no pending changes.
  void changeMode();
  // Deletes half of the variables when there are many.
  void thinOut();

  // A call that must succeed; when memory is short it first fails without a trace.
  template <class Call>
  void expectOk(Call &&call) {
    if (starving && failures.below(2) == 0) {
      heap.budget = failures.below(8);
      const int code = call();
      heap.budget = -1;
      if (code == 0) return;
      ASSERT_EQ(code, TVK_ERROR_OUT_OF_MEMORY) << error();
    }
    ASSERT_EQ(call(), 0) << error();
  }
  // Sets a basis of the elements that exist; the model has no pending changes before and after.
  void setBasis();
  // One of all kinds of calls that fail.
  void failSomehow();
  // The update, for which general constraints that lost what they need must go first.
  void update();

  void compare();

  int pick(std::size_t size) { return random.below(static_cast<int>(size)); }
  double number() { return random.below(19) - 9; }
  std::string newName(const char *prefix) { return prefix + std::to_string(nextName++); }
  // What edits may refer to; attributes of pending elements may always be set.
  std::size_t varLimit() const { return mode ? ref.vars.size() : base.vars; }
  std::size_t constrLimit() const { return mode ? ref.constrs.size() : base.constrs; }
  std::vector<int> someVars(int atMost);

  plain::Model ref;
  tarvik::Random random{0}, failures{0};
  StarvingHeap heap;
  bool starving = false;
  int mode = 1;

 private:
  // random_edits.cpp
  void addVariables();
  void addConstraints();
  void addRange();
  void changeCoefficients();
  void deleteSome();
  void setBounds();
  void setObjectiveValues();
  void setRows();
  void setTypes();
  void addQuadratics();
  void setPiecewise();

  // random_edits_parts.cpp
  void addQuadraticConstraint();
  void setQuadraticConstraint();
  void addSet();
  void addCone();
  void addGeneral();
  void deleteParts();
  void setSettings();
  void setTags();
  void setStarts();
  void setObjectives();
  void setScenarios();
  template <class T>
  void setOneOf(std::vector<T> &elements, const char *attribute, int value);

  // random_compare.cpp
  void compareVars();
  void compareRows();
  void compareQuadratics();
  void compareSets();
  void compareGenerals();
  void compareObjectives();
  void compareScenarios();
  void compareStarts();
  void compareBasis();
  template <class T>
  void compareSettings(const std::vector<T> &elements, const char *attribute, int unset);
  template <class T>
  void compareTags(const std::vector<T> &elements, const char *attribute);

  struct Sizes {
    std::size_t vars = 0, constrs = 0, qconstrs = 0, sos = 0, gens = 0;
  };
  Sizes base;  // at the last update
  int nextName = 0;
};
