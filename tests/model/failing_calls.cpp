// Calls of every kind that fail, whatever the model is like.
#include <limits>

#include "random_edits.h"

namespace {

constexpr int kOutside = 1 << 30;
constexpr int kTwice[] = {0, 0}, kNegative[] = {-1, 0}, kBegin[] = {0, 3}, kSosType = 3;
constexpr double kOnes[] = {1, 1};
const double kNan[] = {std::numeric_limits<double>::quiet_NaN(), 1};
const double kInfinite[] = {std::numeric_limits<double>::infinity(), 1};
const std::string kLong(300, 'x');
const char *const kLongName = kLong.c_str();

using FailingCall = int (*)(TVKmodel *);

constexpr FailingCall kLinear[] = {
    [](TVKmodel *m) { return TVKaddconstr(m, 1, &kOutside, kOnes, '<', 0, "bad"); },
    [](TVKmodel *m) { return TVKaddconstr(m, 1, kNegative, kOnes, '<', 0, "bad"); },
    [](TVKmodel *m) { return TVKaddconstr(m, 0, nullptr, nullptr, '!', 0, "bad"); },
    [](TVKmodel *m) { return TVKaddconstr(m, 0, nullptr, nullptr, '<', kNan[0], "bad"); },
    [](TVKmodel *m) { return TVKaddconstr(m, 1, kTwice, kInfinite, '<', 0, "bad"); },
    [](TVKmodel *m) { return TVKaddconstr(m, 0, nullptr, nullptr, '<', 0, kLongName); },
    [](TVKmodel *m) { return TVKaddconstrs(m, 2, 2, kBegin, kTwice, kOnes, "<<", kOnes, nullptr); },
    [](TVKmodel *m) {
      return TVKaddconstrs(m, 2, 2, nullptr, kTwice, kOnes, "<<", kOnes, nullptr);
    },
    [](TVKmodel *m) { return TVKaddrangeconstr(m, 0, nullptr, nullptr, kNan[0], 1, "bad"); },
    [](TVKmodel *m) { return TVKaddrangeconstr(m, 1, &kOutside, kOnes, 0, 1, "bad"); },
    [](TVKmodel *m) { return TVKaddvar(m, 0, nullptr, nullptr, kNan[0], 0, 1, 'C', "bad"); },
    [](TVKmodel *m) { return TVKaddvar(m, 0, nullptr, nullptr, 0, kNan[0], 1, 'C', "bad"); },
    [](TVKmodel *m) { return TVKaddvar(m, 0, nullptr, nullptr, 0, 0, 1, 'Z', "bad"); },
    [](TVKmodel *m) { return TVKaddvar(m, 0, nullptr, nullptr, 0, 0, 1, 'C', kLongName); },
    [](TVKmodel *m) { return TVKaddvar(m, 1, &kOutside, kOnes, 0, 0, 1, 'C', "bad"); },
    [](TVKmodel *m) { return TVKaddvar(m, 2, kTwice, kOnes, 0, 0, 1, 'C', "bad"); },
    [](TVKmodel *m) { return TVKaddvar(m, -1, kTwice, kOnes, 0, 0, 1, 'C', "bad"); },
    [](TVKmodel *m) { return TVKdelvars(m, 1, &kOutside); },
    [](TVKmodel *m) { return TVKdelvars(m, 1, nullptr); },
    [](TVKmodel *m) { return TVKdelconstrs(m, 2, kNegative); },
    [](TVKmodel *m) { return TVKchgcoeffs(m, 1, &kOutside, &kOutside, kOnes); },
    [](TVKmodel *m) { return TVKchgcoeffs(m, 1, kTwice, kTwice, kNan); },
};

constexpr FailingCall kParts[] = {
    [](TVKmodel *m) { return TVKaddqpterms(m, 1, &kOutside, kTwice, kOnes); },
    [](TVKmodel *m) { return TVKaddqpterms(m, 1, kTwice, kTwice, kInfinite); },
    [](TVKmodel *m) {
      return TVKaddqconstr(m, 1, &kOutside, kOnes, 0, nullptr, nullptr, nullptr, '<', 0, "bad");
    },
    [](TVKmodel *m) {
      return TVKaddqconstr(m, 0, nullptr, nullptr, 0, nullptr, nullptr, nullptr, '?', 0, "bad");
    },
    [](TVKmodel *m) {
      return TVKaddqconstr(m, 0, nullptr, nullptr, 0, nullptr, nullptr, nullptr, '<', 0, kLongName);
    },
    [](TVKmodel *m) { return TVKdelqconstrs(m, 1, &kOutside); },
    [](TVKmodel *m) { return TVKaddcone(m, 2, kTwice); },
    [](TVKmodel *m) { return TVKaddsos(m, 1, 1, &kSosType, kBegin, kTwice, kOnes); },
    [](TVKmodel *m) { return TVKaddsos(m, 1, 2, kBegin + 1, kBegin, kTwice, kOnes); },
    [](TVKmodel *m) { return TVKdelsos(m, 1, &kOutside); },
    [](TVKmodel *m) { return TVKaddgenconstrAbs(m, kLongName, 0, 0); },
    [](TVKmodel *m) { return TVKaddgenconstrMax(m, "bad", kOutside, 0, nullptr, 0); },
    [](TVKmodel *m) { return TVKaddgenconstrNorm(m, "bad", 0, 0, nullptr, 3); },
    [](TVKmodel *m) {
      return TVKaddgenconstrIndicator(m, "bad", 0, 0, 1, &kOutside, kOnes, '<', 0);
    },
    [](TVKmodel *m) { return TVKaddgenconstrPWL(m, "bad", 0, 0, 0, nullptr, nullptr); },
    [](TVKmodel *m) { return TVKaddgenconstrPoly(m, "bad", kOutside, 0, 2, kOnes, ""); },
    [](TVKmodel *m) { return TVKaddgenconstrExp(m, "bad", 0, 0, "FuncPieces=2.5"); },
    [](TVKmodel *m) { return TVKdelgenconstrs(m, 1, kNegative); },
    [](TVKmodel *m) {
      return TVKsetobjective(m, 1, 0, 1, &kOutside, kOnes, 0, nullptr, nullptr, nullptr);
    },
    [](TVKmodel *m) {
      return TVKsetobjective(m, -1, 3, 0, nullptr, nullptr, 1, &kOutside, kTwice, kOnes);
    },
    [](TVKmodel *m) { return TVKsetobjectiven(m, 7, 1, 1, 0, 0, "bad", 1, 1, &kOutside, kOnes); },
    [](TVKmodel *m) { return TVKsetpwlobj(m, kOutside, 2, kOnes, kOnes); },
    [](TVKmodel *m) { return TVKsetpwlobj(m, 0, 2, kNan, kOnes); },
};

constexpr FailingCall kAttributes[] = {
    [](TVKmodel *m) { return TVKsetdblattrelement(m, "UB", kOutside, 1); },
    [](TVKmodel *m) { return TVKsetdblattrelement(m, "LB", 0, kNan[0]); },
    [](TVKmodel *m) { return TVKsetdblattrlist(m, "Obj", 2, kNegative, kOnes); },
    [](TVKmodel *m) { return TVKsetcharattrelement(m, "VType", 0, 'Q'); },
    [](TVKmodel *m) { return TVKsetcharattrelement(m, "Sense", 0, 'Q'); },
    [](TVKmodel *m) { return TVKsetstrattrelement(m, "VarName", 0, kLongName); },
    [](TVKmodel *m) { return TVKsetstrattrelement(m, "ConstrName", 0, kLongName); },
    [](TVKmodel *m) { return TVKsetintattr(m, "ModelSense", 0); },
    [](TVKmodel *m) { return TVKsetintattr(m, "NumVars", 1); },
    [](TVKmodel *m) { return TVKsetintattrelement(m, "VBasis", 0, -9); },
    [](TVKmodel *m) { return TVKsetintattrelement(m, "FuncPieces", 0, -3); },
    [](TVKmodel *m) { return TVKsetdblattrelement(m, "ScenNLB", 0, 1e30); },
    [](TVKmodel *m) { return TVKsetdblattr(m, "ObjCon", kNan[0]); },
};

}  // namespace

void RandomEdits::failSomehow() {
  const auto fail = [&](const auto &calls) {
    const int k = failures.below(static_cast<int>(std::size(calls)));
    EXPECT_NE(calls[k](model), 0) << k;
    EXPECT_NE(error(), "") << k;
  };
  const int kind = failures.below(5);
  if (kind < 2)
    fail(kLinear);
  else if (kind < 4)
    fail(kParts);
  else
    fail(kAttributes);
}
