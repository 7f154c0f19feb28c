// The library that is loaded on demand: it factors, and leaves no busy threads behind.
#include "base/lapack.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <thread>

namespace tarvik {
namespace {

double cpuSeconds() {
  timespec time;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

TEST(Lapack, FactorsInOneThread) {
  const lapack::Getrf getrf = lapack::getrf();
  ASSERT_NE(getrf, nullptr);
  const int size = 2;
  double a[] = {1, 2, 3, 4};  // by columns
  int exchange[size], info = -1;
  getrf(&size, &size, a, &size, exchange, &info);
  EXPECT_EQ(info, 0);
  EXPECT_EQ(exchange[0], 2);
  EXPECT_DOUBLE_EQ(a[1], 0.5);
  EXPECT_DOUBLE_EQ(a[3], 1);
  const double before = cpuSeconds();
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_LT(cpuSeconds() - before, 0.02);
}

}  // namespace
}  // namespace tarvik
