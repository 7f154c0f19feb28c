// Pairs of rows taken together. For two inequalities ax <= b and cx <= d every multiplier m >= 0
// gives the inequality (a + mc)x <= b + md; the one that leaves the least slack within the bounds
// is found by walking along the breakpoints -a_j/c_j, where columns cancel (the slack is convex
// and piecewise linear in m). It tightens bounds of integral columns, or proves infeasibility. With
// -a in the place of a the same walk solves max ax subject to cx <= d within the bounds: where that
// is at most b, the first row is redundant.
//
// Partners are the rows that a row shares most columns with. No point of the model is lost.
//
// Literature: Achterberg, Bixby, Gu, Rothberg and Weninger (2020), section 5.4; Gemander, Chen,
// Weninger, Gottwald, Gleixner and Martin (2020).
#pragma once

#include "mip/mip_model.h"
#include "mip/problem.h"

namespace tarvik {

struct TwoRowResult {
  bool infeasible = false;
  int bounds = 0, sides = 0;  // bounds tightened, sides of rows found redundant
};

TwoRowResult reduceTwoRows(MipModel &model, const MipTolerances &tolerances, WorkMeter &work);

}  // namespace tarvik
