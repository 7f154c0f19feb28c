// Exported functions: access to the final basis.
#include "model/model_call.h"
#include "opt/basis_access.h"

using tarvik::Model;
using tarvik::modelCall;

extern "C" {

int TVKFSolve(TVKmodel *model, const TVKsvec *b, TVKsvec *x) {
  return modelCall(model, nullptr, [&](Model &m) { tarvik::solveWithBasis(m, b, x); });
}

int TVKBSolve(TVKmodel *model, const TVKsvec *b, TVKsvec *y) {
  return modelCall(model, nullptr, [&](Model &m) { tarvik::solveWithTransposedBasis(m, b, y); });
}

int TVKBinvColj(TVKmodel *model, int j, TVKsvec *x) {
  return modelCall(model, nullptr, [&](Model &m) { tarvik::inverseTimesColumn(m, j, x); });
}

int TVKBinvj(TVKmodel *model, int j, TVKsvec *x) {
  return modelCall(model, nullptr, [&](Model &m) { tarvik::columnOfInverse(m, j, x); });
}

int TVKBinvi(TVKmodel *model, int i, TVKsvec *x) {
  return modelCall(model, nullptr, [&](Model &m) { tarvik::rowOfInverse(m, i, x); });
}

int TVKBinvRowi(TVKmodel *model, int i, TVKsvec *x) {
  return modelCall(model, nullptr, [&](Model &m) { tarvik::rowOfInverseTimesMatrix(m, i, x); });
}

int TVKgetBasisHead(TVKmodel *model, int *bhead) {
  return modelCall(model, nullptr, [&](Model &m) { tarvik::getBasisHead(m, bhead); });
}

int TVKsingularvectors(TVKmodel *model, TVKsvec **uP, TVKsvec **vP) {
  return modelCall(model, nullptr, [&](Model &m) { tarvik::getSingularVectors(m, uP, vP); });
}

}  // extern "C"
