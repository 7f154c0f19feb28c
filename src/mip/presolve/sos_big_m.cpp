#include "mip/presolve/sos_big_m.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {

// Automatic limits: larger multipliers make weak rows and lose precision.
constexpr double kAutomaticLimit = 1e4;
// Sets with more choices are spelled in digits by themselves.
constexpr int kMostChoices = 200;
// Members of smaller range get rows of their own: the inverse would be a large entry.
constexpr double kSmallestJoined = 1e-2;

int grayCode(int choice) { return choice ^ (choice >> 1); }
bool digitOf(int choice, int digit) { return ((grayCode(choice) >> digit) & 1) != 0; }

int numDigits(int choices) {
  int digits = 0;
  while ((1 << digits) < choices) ++digits;
  return digits;
}

}  // namespace

bool SosBigM::isFit(const SosSet &set, double limit) const {
  return std::all_of(set.cols.begin(), set.cols.end(), [&](int j) {
    const double lower = (*lower_)[j], upper = (*upper_)[j];
    return lower <= 0 && upper >= 0 && std::max(-lower, upper) <= limit;
  });
}

int SosBigM::run(MipModel &model, const SosBigMOptions &options, const Vec<double> &lower,
                 const Vec<double> &upper) {
  ModelEditor editor(model);
  lower_ = &lower;
  upper_ = &upper;
  editor_ = &editor;
  numOldCols_ = model.lp.numCols;
  Vec<SosSet> left;
  for (SosSet &set : model.sos) {
    const double wanted = options.limit[set.type - 1];
    const double limit = wanted < 0 ? kAutomaticLimit : wanted;
    if (limit == 0 || !isFit(set, limit)) {
      left.push_back(std::move(set));
      continue;
    }
    int encoding = options.encoding[set.type - 1];
    if (encoding < 0) encoding = static_cast<int>(set.cols.size()) > kMostChoices ? 3 : 0;
    rewrite(set, encoding);
  }
  model.sos.swap(left);
  if (!codes_.empty()) editor.apply();
  editor_ = nullptr;
  lower_ = upper_ = nullptr;
  return static_cast<int>(codes_.size());
}

void SosBigM::addLink(int member, const Vec<int> &binaries, const Vec<double> &factors,
                      double constant) {
  for (const double bound : {(*upper_)[member], (*lower_)[member]}) {
    if (bound == 0) continue;
    Vec<int> cols{member};
    Vec<double> values{1};
    for (std::size_t k = 0; k < binaries.size(); ++k) {
      cols.push_back(binaries[k]);
      values.push_back(-bound * factors[k]);
    }
    const double side = bound * constant;
    editor_->addRow(cols, values, bound > 0 ? -kInf : side, bound > 0 ? side : kInf);
  }
}

void SosBigM::rewrite(const SosSet &set, int encoding) {
  Code code{set, encoding, static_cast<int>(set.cols.size()) - (set.type - 1), 0, 0};
  code.count = encoding == 0   ? code.numChoices
               : encoding == 1 ? code.numChoices - 1
                               : numDigits(code.numChoices);
  code.first = numOldCols_;
  for (int k = 0; k < code.count; ++k) {
    const int col = editor_->addBinary();
    if (k == 0) code.first = col;
  }
  if (encoding == 0)
    writeChoices(code);
  else if (encoding == 1)
    writeIncremental(code);
  else
    writeDigits(code);
  codes_.push_back(std::move(code));
}

void SosBigM::writeChoices(const Code &code) {
  const int members = static_cast<int>(code.set.cols.size());
  for (int m = 0; m < members; ++m) {
    Vec<int> binaries;
    for (int c = std::max(0, m - code.set.type + 1); c <= std::min(m, code.numChoices - 1); ++c)
      binaries.push_back(code.first + c);
    addLink(code.set.cols[m], binaries, Vec<double>(binaries.size(), 1.0), 0);
  }
  Vec<int> all;
  for (int c = 0; c < code.numChoices; ++c) all.push_back(code.first + c);
  editor_->addRow(all, Vec<double>(all.size(), 1.0), 1, 1);
}

// Choice c is taken where binary c - 1 is one (or c is the first) and binary c is zero (or c is the
// last).
void SosBigM::writeIncremental(const Code &code) {
  const int members = static_cast<int>(code.set.cols.size());
  for (int m = 0; m < members; ++m) {
    // Of the member's choices from..to: falls between binary from - 1 and binary to.
    const int from = std::max(0, m - code.set.type + 1), to = std::min(m, code.numChoices - 1);
    Vec<int> binaries;
    Vec<double> factors;
    if (from > 0) binaries.push_back(code.first + from - 1), factors.push_back(1);
    if (to < code.count) binaries.push_back(code.first + to), factors.push_back(-1);
    addLink(code.set.cols[m], binaries, factors, from > 0 ? 0 : 1);
  }
  for (int k = 0; k + 1 < code.count; ++k)
    editor_->addRow({code.first + k, code.first + k + 1}, {1, -1}, 0, kInf);
}

void SosBigM::writeDigits(const Code &code) {
  const int members = static_cast<int>(code.set.cols.size());
  for (int digit = 0; digit < code.count; ++digit) {
    if (code.encoding == 3) {
      joinMembers(code, digit, false);
      joinMembers(code, digit, true);
      continue;
    }
    for (int m = 0; m < members; ++m) {
      const int from = std::max(0, m - code.set.type + 1), to = std::min(m, code.numChoices - 1);
      if (digitOf(from, digit) != digitOf(to, digit)) continue;
      const bool one = digitOf(from, digit);
      addLink(code.set.cols[m], {code.first + digit}, {one ? 1.0 : -1.0}, one ? 0 : 1);
    }
  }
}

// Members of which at most one is nonzero at a time (all of type 1, every other one of type 2) and
// whose choices all have this digit: their shares x / bound sum to at most one if the digit is
// right, to zero else.
void SosBigM::joinMembers(const Code &code, int digit, bool one) {
  const int members = static_cast<int>(code.set.cols.size());
  for (int parity = 0; parity < code.set.type; ++parity) {
    Vec<int> cols;
    Vec<double> shares;
    for (int m = parity; m < members; m += code.set.type) {
      const int from = std::max(0, m - code.set.type + 1), to = std::min(m, code.numChoices - 1);
      if (digitOf(from, digit) != one || digitOf(to, digit) != one) continue;
      const int col = code.set.cols[m];
      const double lower = (*lower_)[col], upper = (*upper_)[col];
      if ((lower < 0 && upper > 0) || upper - lower < kSmallestJoined) {
        addLink(col, {code.first + digit}, {one ? 1.0 : -1.0}, one ? 0 : 1);
      } else {
        cols.push_back(col);
        shares.push_back(1 / (upper > 0 ? upper : lower));
      }
    }
    if (cols.empty()) continue;
    cols.push_back(code.first + digit);
    shares.push_back(one ? -1 : 1);
    editor_->addRow(cols, shares, -kInf, one ? 0 : 1);
  }
}

void SosBigM::extend(Vec<double> &x) const {
  for (const Code &code : codes_) {
    int choice = 0;
    double largest = -1;
    for (int c = 0; c < code.numChoices; ++c) {
      double size = 0;
      for (int m = c; m < c + code.set.type; ++m) size += std::fabs(x[code.set.cols[m]]);
      if (size > largest) largest = size, choice = c;
    }
    for (int k = 0; k < code.count; ++k)
      x.push_back(code.encoding == 0   ? k == choice
                  : code.encoding == 1 ? k < choice
                                       : digitOf(choice, k));
  }
}

}  // namespace tarvik
