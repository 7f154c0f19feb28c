#include "mip/gap_rules.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {

// What rounding may add to a target before nodes that just meet it are explored for nothing.
double withSlack(double target) { return std::fabs(target) * 1e-6 + 1e-10 + target; }

}  // namespace

double mipRelativeGap(double sense, double bound, double incumbent) {
  if (bound == kUndefined) return kUndefined;
  if (std::fabs(incumbent) >= kUserInf || std::fabs(bound) >= kUserInf) return kUserInf;
  if (sense * bound > sense * incumbent - 1e-10) return 0;
  if (std::fabs(incumbent) < 1e-6) return kUserInf;
  return std::fabs((incumbent - bound) / incumbent);
}

bool mipGapReached(const MipOptions &options, double incumbent, double bound) {
  if (incumbent < kUserInf && options.mipGap > 0 &&
      options.mipGap > (incumbent - bound) / std::max(std::fabs(incumbent), 1e-6))
    return true;
  return options.mipGapAbs > 0 && options.mipGapAbs > incumbent - bound;
}

double mipPruningBound(const MipOptions &options, double incumbent) {
  if (incumbent >= kUserInf) return kUserInf;
  double result = kUserInf;
  if (options.mipGap > 0)
    result = std::min(result,
                      withSlack(incumbent - options.mipGap * std::max(std::fabs(incumbent), 1e-6)));
  if (options.mipGapAbs > 0) result = std::min(result, withSlack(incumbent - options.mipGapAbs));
  return result;
}

double mipSolutionCutoff(const MipOptions &options, double z, double step, double constant) {
  if (z > options.cutoff) return options.cutoff;
  if (z >= kUserInf) return kUserInf;
  const double plain = z - (std::fabs(z) + 1) * 1e-10;
  if (step <= 0) return plain;
  const double below = std::floor((z - constant - std::max(1e-10, step * 1e-10)) / step) * step;
  const double slack = std::max(
      {(std::fabs(z) + 1) * 1e-6, step * options.tolerances.integral, options.tolerances.dual});
  const double addend = slack + constant;
  double cutoff = below + addend;
  const bool exact =
      std::fabs(below) > std::fabs(addend) ? cutoff - addend == below : cutoff - below == addend;
  if (!exact) cutoff *= cutoff > 0 ? 1.0000000000000002 : 0.9999999999999998;
  return std::min(cutoff, plain);
}

double mipPoolCutoff(const MipOptions &options, double incumbent) {
  double result = kUserInf;
  if (incumbent >= kUserInf) return result;
  const double slack = (std::fabs(incumbent) + 1) * 1e-10;
  if (options.poolGap < kUserInf)
    result = std::min(result, slack + options.poolGap * std::fabs(incumbent) + incumbent);
  if (options.poolGapAbs < kUserInf)
    result = std::min(result, slack + options.poolGapAbs + incumbent);
  return result;
}

}  // namespace tarvik
