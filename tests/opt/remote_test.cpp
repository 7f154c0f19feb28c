// What a library without remote services answers, and that it touches nothing.
#include <gtest/gtest.h>

#include <string>

#include "opt/tiny_model.h"
#include "tarvik.h"

namespace {

TEST(Remote, BatchesAreCheckedThenRefused) {
  tiny::LoggedEnv env;
  TVKmodel *model = nullptr;
  ASSERT_EQ(TVKnewmodel(env.get(), &model, "batch", 1, nullptr, nullptr, nullptr, nullptr, nullptr),
            0);
  char id[512] = "untouched";
  EXPECT_EQ(TVKoptimizebatch(nullptr, id), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKoptimizebatch(model, nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_STREQ(TVKgetmerrormsg(model),
               "Must provide a valid pointer to store the resulting batchID");
  EXPECT_EQ(TVKoptimizebatch(model, id), TVK_ERROR_INVALID_ARGUMENT);
  ASSERT_EQ(TVKsetstrattrelement(model, "VTag", 0, "tagged"), 0);
  ASSERT_EQ(TVKupdatemodel(model), 0);
  EXPECT_EQ(TVKoptimizebatch(model, id), TVK_ERROR_NOT_SUPPORTED);
  EXPECT_STREQ(TVKgetmerrormsg(model), "Not implemented for regular environments");
  EXPECT_STREQ(id, "untouched");
  EXPECT_EQ(TVKprefetchattr(model, "X"), TVK_ERROR_NOT_SUPPORTED);
  EXPECT_EQ(TVKfreemodel(model), 0);
}

TEST(Remote, HandlesAreCheckedFirst) {
  tiny::LoggedEnv env;
  double stats[4] = {7, 7, 7, 7};
  EXPECT_EQ(TVKgetcommstats(nullptr, stats), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKgetcommstats(env.get(), stats), TVK_ERROR_NOT_SUPPORTED);
  EXPECT_EQ(stats[0], 7);
  TVKbatch *batch = nullptr;
  EXPECT_EQ(TVKgetbatch(env.get(), "id", &batch), TVK_ERROR_NOT_SUPPORTED);
  EXPECT_EQ(batch, nullptr);
  EXPECT_EQ(TVKupdatebatch(nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKgetbatchjsonsolution(nullptr, nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKpingserver("server", "password"), TVK_ERROR_NOT_SUPPORTED);
}

}  // namespace
