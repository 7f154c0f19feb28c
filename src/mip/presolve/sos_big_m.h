// Rewrites ordered sets with binary columns: every binary vector stands for one choice of members
// that may be nonzero, and rows hold the others at zero with their bounds as big M. For sets whose
// members have small bounds the rows' relaxation says more than branching on the set.
//
// Encodings, with n choices (members of a set of type 1, neighbouring pairs of type 2):
//   0  one binary a choice, one of them is one; a member is nonzero only in its choices;
//   1  the same in incremental form: binaries that fall along the order, the choice being where;
//   2  ceil(log n) binaries that spell the choice in a Gray code; one row a member and fixed digit;
//   3  the same with members that exclude each other joined in one row: fewer and tighter.
//
// Literature: Beale and Tomlin (1970); Markowitz and Manne (1957); Vielma and Nemhauser (2011).
#pragma once

#include "mip/mip_options.h"
#include "mip/presolve/model_editor.h"

namespace tarvik {

class SosBigM {
 public:
  // Returns the number of sets rewritten. The bounds, one a column, may be implied ones.
  int run(MipModel &model, const SosBigMOptions &options, const Vec<double> &lower,
          const Vec<double> &upper);

  int numOldCols() const { return numOldCols_; }
  // Appends the values of the new columns that fit a point of the old ones.
  void extend(Vec<double> &x) const;

 private:
  struct Code {
    SosSet set;
    int encoding;
    int numChoices;
    int first, count;  // new columns
  };

  bool isFit(const SosSet &set, double limit) const;
  void rewrite(const SosSet &set, int encoding);
  void writeChoices(const Code &code);
  void writeIncremental(const Code &code);
  void writeDigits(const Code &code);
  void joinMembers(const Code &code, int digit, bool one);
  // The row that holds a member at zero unless the sum of factors x binaries plus constant is one.
  void addLink(int member, const Vec<int> &binaries, const Vec<double> &factors, double constant);

  const Vec<double> *lower_ = nullptr, *upper_ = nullptr;
  ModelEditor *editor_ = nullptr;
  int numOldCols_ = 0;
  Vec<Code> codes_;
};

}  // namespace tarvik
