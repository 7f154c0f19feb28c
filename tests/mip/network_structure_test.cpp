// Continuous columns that a network makes integral.
#include "mip/presolve/network_structure.h"

#include <gtest/gtest.h>

#include "support/random_lp.h"

namespace tarvik {
namespace {

using test::denseLp;

MipModel continuousModel(const LpModel &lp) {
  MipModel model;
  model.lp = lp;
  model.kind.assign(lp.numCols, VarKind::Continuous);
  return model;
}

// Two supplies, two demands; x11, x12, x21, x22.
LpModel transport() {
  return denseLp({3, 1, 2, 4}, {{0, kInf}, {0, 7}, {0, kInf}, {0, kInf}},
                 {{1, 1, 0, 0}, {0, 0, 1, 1}, {1, 0, 1, 0}, {0, 1, 0, 1}},
                 {{-kInf, 10}, {-kInf, 5}, {6, kInf}, {8, 8}});
}

TEST(NetworkStructure, MakesFlowsIntegral) {
  MipModel model = continuousModel(transport());
  const NetworkStructure found = detectNetworkStructure(model);
  EXPECT_EQ(found.continuous, 4);
  EXPECT_TRUE(found.changed);
  for (const VarKind kind : model.kind) EXPECT_EQ(kind, VarKind::Integer);
  // A common factor of a row changes nothing; a wide bound keeps its column as it is.
  LpModel scaled = transport();
  for (NzIndex k = scaled.a.start[0]; k < scaled.a.start[2]; ++k)
    if (scaled.a.index[k] == 0) scaled.a.value[k] = 2.5;
  scaled.rowUpper[0] = 25;
  scaled.colUpper[1] = 1e9;
  model = continuousModel(scaled);
  EXPECT_TRUE(detectNetworkStructure(model).changed);
  EXPECT_EQ(model.kind[0], VarKind::Integer);
  EXPECT_EQ(model.kind[1], VarKind::Continuous);
}

TEST(NetworkStructure, LeavesOtherModelsAlone) {
  std::vector<LpModel> models;
  // Unequal coefficients in a row.
  models.push_back(denseLp({1, 1}, {{0, 5}, {0, 5}}, {{1, 2}}, {{-kInf, 4}}));
  // A column in three rows.
  models.push_back(denseLp({1, 1}, {{0, 5}, {0, 5}}, {{1, 1}, {1, -1}, {-1, 1}},
                           {{-kInf, 4}, {-kInf, 4}, {-kInf, 4}}));
  // A fractional right-hand side, bound, or fixed value.
  models.push_back(denseLp({1, 1}, {{0, 5}, {0, 5}}, {{1, 1}}, {{-kInf, 0.5}}));
  models.push_back(denseLp({1, 1}, {{0, 2.5}, {0, 5}}, {{1, 1}}, {{-kInf, 4}}));
  models.push_back(denseLp({1, 1}, {{0.5, 0.5}, {0, 5}}, {{1, 1}}, {{-kInf, 4}}));
  // An odd cycle: half of each column is a vertex, whatever the order of the columns.
  models.push_back(denseLp({-1, -1, -1}, {{0, 1}, {0, 1}, {0, 1}},
                           {{1, 1, 0}, {0, 1, 1}, {1, 0, 1}},
                           {{-kInf, 1}, {-kInf, 1}, {-kInf, 1}}));
  models.push_back(denseLp({-1, -1, -1}, {{0, 1}, {0, 1}, {0, 1}},
                           {{1, 0, 1}, {0, 1, 1}, {1, 1, 0}},
                           {{-kInf, 1}, {-kInf, 1}, {-kInf, 1}}));
  for (std::size_t k = 0; k < models.size(); ++k) {
    MipModel model = continuousModel(models[k]);
    const NetworkStructure found = detectNetworkStructure(model);
    EXPECT_EQ(found.continuous, 0) << k;
    EXPECT_FALSE(found.changed) << k;
    for (const VarKind kind : model.kind) EXPECT_EQ(kind, VarKind::Continuous) << k;
  }
}

}  // namespace
}  // namespace tarvik
