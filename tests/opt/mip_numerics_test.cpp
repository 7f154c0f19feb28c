// Mixed-integer models whose numbers once led to wrong answers: far bounds, large factors between
// merged columns, rounded ratios, relaxations without an optimum.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "tiny_model.h"

namespace {

struct Answer {
  int status = -1;
  double objective = 0;
};

Answer solve(const std::string &text) {
  tiny::LoggedEnv env;
  const std::string name =
      (std::filesystem::temp_directory_path() / "tarvik_mip_numerics.lp").string();
  std::ofstream(name) << text;
  TVKmodel *model = nullptr;
  EXPECT_EQ(TVKreadmodel(env.get(), name.c_str(), &model), 0);
  std::filesystem::remove(name);
  Answer answer;
  EXPECT_EQ(TVKsetparam(TVKgetenv(model), "MIPGap", "0"), 0);
  EXPECT_EQ(TVKsetparam(TVKgetenv(model), "NodeLimit", "500"), 0);
  EXPECT_EQ(TVKoptimize(model), 0);
  EXPECT_EQ(TVKgetintattr(model, "Status", &answer.status), 0);
  if (answer.status == TVK_OPTIMAL) {
    EXPECT_EQ(TVKgetdblattr(model, "ObjVal", &answer.objective), 0);
  }
  TVKfreemodel(model);
  return answer;
}

TEST(MipNumerics, FarBoundsKeepTheirDigits) {
  const Answer answer = solve(
      "max\n x\nst\n 1.1 x + 3.4 y <= 14.3\n 1.1 x - 3.4 y <= 14.3\n"
      "bounds\n -9e9 <= x <= 9e9\n y <= 3\ngenerals\n x y\nend\n");
  EXPECT_EQ(answer.status, TVK_OPTIMAL);
  EXPECT_EQ(answer.objective, 13);
}

TEST(MipNumerics, MergedColumnsOfDifferentSizeComeApart) {
  const Answer answer = solve(
      "min\n x + 1000000 y + 3 a + 2 b\nst\n x + 1000000 y + 7 a + 5 b >= 5004000\n"
      " x + 1000000 y - 3 a + 2 b >= 5003900\n x + 1000000 y + a - b >= 5003000\n"
      " 3 a + 5 b >= 1\nbounds\n x <= 1000000\n y <= 9\n a <= 1\n b <= 1\n"
      "generals\n y a b\nend\n");
  EXPECT_EQ(answer.status, TVK_OPTIMAL);
  EXPECT_NEAR(answer.objective, 5003993, 1e-3);
}

TEST(MipNumerics, RoundedRatiosImplyNothing) {
  const Answer answer = solve(
      "min\n x + 5 y + z\nst\n 0.333333333333 x - y - z = 0\n y + 2 z >= 10000000\n"
      " x + y + 3 z >= 7\n y - z >= 0.5\nbounds\n x <= 9e7\n y <= 3e7\n z <= 3e7\n"
      "generals\n y z\nend\n");
  EXPECT_EQ(answer.status, TVK_OPTIMAL);
  EXPECT_NEAR(answer.objective, 4.000000400002e7, 1);
}

TEST(MipNumerics, BranchingNeedsNoPoint) {
  const Answer answer = solve(
      "min\n -2 x - y - 3 z\nst\n x + y - 3 z = 16\n 2 x - 3 y - 2 z <= 3333333333333337\n"
      " x + 4 y - z = 2\nbounds\n x >= -1e16\n y <= 1e16\n z <= 1e16\ngenerals\n x y z\nend\n");
  EXPECT_GT(answer.status, TVK_LOADED);
}

}  // namespace
