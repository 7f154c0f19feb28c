// From a point to a vertex that is no worse (Megiddo 1991; the primal part of the crossover of
// Bixby and Saltzman 1994). The working bounds are moved so that the point satisfies them; a basis
// is made of the variables that are furthest inside theirs; then every other variable inside its
// bounds is pushed, in the direction that does not raise the objective, until it reaches a bound
// or a basic variable blocks it, with which it changes places. The working bounds stay moved:
// the primal simplex goes on within them and takes the shifts away at its end, as it does with
// its own perturbation.
#pragma once

#include "simplex/engine.h"

namespace tarvik {

class VertexPush {
 public:
  explicit VertexPush(Engine<double> &engine) : e_(engine) {}

  // x by column, within the true bounds. False when a limit stopped it or the factors broke: the
  // engine then has some basis, but nothing can be said of it.
  bool run(const Vec<double> &x);

 private:
  struct Step {
    int sign = 0;  // of the pushed variable's change
    double length = 0;
    BasisPos row = -1;  // of the variable that blocks; -1 when the own bound is reached
    int side = 0;       // the bound that it reaches: -1 lower, +1 upper
  };

  void moveBounds(const Vec<double> &x);
  void chooseBasis();
  bool push(VarIndex j);
  int direction(VarIndex j) const;
  void findBlock(VarIndex q, Step &step) const;
  void movePrimal(const Step &step);
  UpdateResult exchange(VarIndex j, const Step &step);
  void placeAt(VarIndex j, int side);
  bool renew();
  double inside(VarIndex j) const;
  bool atBound(VarIndex j) const;
  template <class F>
  void forColumn(F &&f) const;

  Engine<double> &e_;
  Vec<double> point_;  // n + m
  Vec<VarIndex> candidates_;
};

}  // namespace tarvik
