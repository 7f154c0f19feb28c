#include <cstdlib>

#include "file_fixture.h"

namespace tarvik {
namespace {

// The internal parameters that read a model in a random order.
class PermutationTest : public FileTest {
 protected:
  static constexpr int kSize = 12;

  // max sum j x_j with row i: sum of x_j, j <= i, at most i + 1.
  std::string staircase() const {
    std::string text = "Maximize\n obj:";
    for (int j = 0; j < kSize; ++j)
      text += " + " + std::to_string(j + 1) + " x" + std::to_string(j);
    text += "\nSubject To\n";
    for (int i = 0; i < kSize; ++i) {
      text += " r" + std::to_string(i) + ":";
      for (int j = 0; j <= i; ++j) text += " + x" + std::to_string(j);
      text += " <= " + std::to_string(i + 1) + "\n";
    }
    return text + "End\n";
  }
  static bool inOrder(TVKmodel *model, const char *attribute, char letter) {
    for (int k = 0; k < kSize; ++k) {
      char *name = nullptr;
      EXPECT_EQ(TVKgetstrattrelement(model, attribute, k, &name), 0);
      if (name != letter + std::to_string(k)) return false;
    }
    return true;
  }
};

TEST_F(PermutationTest, OrderChangesAndTheModelDoesNot) {
  TVKmodel *plain = read("plain.lp", staircase());
  for (const int seed : {1, 2, 3}) {
    TVKsetintparam(env_, "TARV_PAR_PERMUTATIONSEED", seed);
    TVKmodel *shuffled = read("plain.lp", staircase());
    EXPECT_FALSE(inOrder(shuffled, "VarName", 'x'));
    EXPECT_FALSE(inOrder(shuffled, "ConstrName", 'r'));
    for (int k = 0; k < kSize; ++k) {
      char *name = nullptr;
      TVKgetstrattrelement(shuffled, "VarName", k, &name);
      const int var = std::atoi(name + 1);
      EXPECT_EQ(attr(shuffled, "Obj", k), attr(plain, "Obj", var));
      for (int row = 0; row < kSize; ++row) {
        TVKgetstrattrelement(shuffled, "ConstrName", row, &name);
        double value = -1;
        ASSERT_EQ(TVKgetcoeff(shuffled, row, k, &value), 0);
        EXPECT_EQ(value, var <= std::atoi(name + 1) ? 1 : 0);
      }
    }
    for (int row = 0; row < kSize; ++row) {
      char *name = nullptr;
      TVKgetstrattrelement(shuffled, "ConstrName", row, &name);
      EXPECT_EQ(attr(shuffled, "RHS", row), std::atoi(name + 1) + 1);
    }
  }
}

TEST_F(PermutationTest, RowsAndColumnsAreSwitchedApart) {
  TVKsetintparam(env_, "TARV_PAR_PERMUTATIONSEED", 5);
  TVKsetintparam(env_, "TARV_PAR_PERMUTEROWS", 0);
  TVKmodel *columns = read("columns.lp", staircase());
  EXPECT_TRUE(inOrder(columns, "ConstrName", 'r'));
  EXPECT_FALSE(inOrder(columns, "VarName", 'x'));
  TVKsetintparam(env_, "TARV_PAR_PERMUTEROWS", 1);
  TVKsetintparam(env_, "TARV_PAR_PERMUTECOLS", 0);
  TVKmodel *rows = read("rows.lp", staircase());
  EXPECT_FALSE(inOrder(rows, "ConstrName", 'r'));
  EXPECT_TRUE(inOrder(rows, "VarName", 'x'));
}

}  // namespace
}  // namespace tarvik
