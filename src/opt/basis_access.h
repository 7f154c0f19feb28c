// Solves with the final basis matrix B and reads of its inverse, in the user's scale. B has one
// column a basis position, in the order of the basis heading: the column of a variable, or the
// unit vector of a row for its slack. So B^-1 maps rows to basis positions. Each function counts
// as a solve: the model's time and work become those of the call. Without a final basis they
// throw "data not available".
#pragma once

#include "model/model.h"
#include "tarvik.h"

namespace tarvik {

void solveWithBasis(Model &model, const TVKsvec *b, TVKsvec *x);
void solveWithTransposedBasis(Model &model, const TVKsvec *b, TVKsvec *y);
void inverseTimesColumn(Model &model, int col, TVKsvec *x);
void columnOfInverse(Model &model, int row, TVKsvec *x);
void rowOfInverse(Model &model, int position, TVKsvec *x);
// Over the variables and, behind them, the slacks.
void rowOfInverseTimesMatrix(Model &model, int position, TVKsvec *x);
void getBasisHead(Model &model, int *head);
// Vectors u with B u = 0 and v with v'B = 0, empty for a basis that is not singular.
void getSingularVectors(Model &model, TVKsvec **u, TVKsvec **v);

}  // namespace tarvik
