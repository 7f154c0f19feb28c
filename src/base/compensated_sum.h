// A sum whose rounding errors are kept in a second word (Knuth's two-sum; Ogita, Rump and Oishi,
// 2005): as accurate as if computed in twice the working precision. Terms added and taken away
// again cancel exactly, which is what makes incrementally kept sums trustworthy.
#pragma once

#include <cmath>

namespace tarvik {

class CompensatedSum {
 public:
  CompensatedSum() = default;
  explicit CompensatedSum(double value) : high_(value) {}

  void add(double term) {
    const double sum = high_ + term;
    const double back = sum - high_;
    low_ += (high_ - (sum - back)) + (term - back);
    high_ = sum;
  }
  // Adds a * b with the rounding error of the product. Where the same product is taken away again,
  // adding it rounded does as well and is much faster.
  void addProduct(double a, double b) {
    const double product = a * b;
    add(product);
    low_ += std::fma(a, b, -product);
  }
  double value() const { return high_ + low_; }

 private:
  double high_ = 0;
  double low_ = 0;
};

}  // namespace tarvik
