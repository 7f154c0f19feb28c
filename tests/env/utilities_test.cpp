// Facts of the machine and the small exported utilities.
#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "base/random.h"
#include "env_fixture.h"

namespace {

TEST(Utilities, PlatformFactsHaveTheirForm) {
#ifdef __linux__
  EXPECT_STREQ(TVKplatform(), "linux64");
#endif
#ifdef __x86_64__
  EXPECT_STREQ(TVKplatformext(), "[x86]");
#endif
  EXPECT_NE(TVKgitrevision()[0], '\0');
  char text[512];
  std::memset(text, 'z', sizeof text);
  EXPECT_EQ(TVKgetdistro(text), 0);
  EXPECT_GE(std::count(text, text + std::strlen(text), ' '), 2);
  EXPECT_EQ(TVKgetcpu(text), 0);
  EXPECT_NE(text[0], '\0');
  EXPECT_EQ(TVKgetcpu(nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKgetdistro(nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_GE(TVKgetcores(), 1);
  EXPECT_LE(TVKgetcores(), sysconf(_SC_NPROCESSORS_ONLN));
}

TEST(Utilities, SameStringComparesAPrefix) {
  EXPECT_EQ(TVKissamestring("ParameterSet 1", "PARAMETERSET", 12), 1);
  EXPECT_EQ(TVKissamestring("abc", "abd", 2), 1);
  EXPECT_EQ(TVKissamestring("abc", "abd", 3), 0);
  EXPECT_EQ(TVKissamestring("ab", "AB", 10), 1);
  EXPECT_EQ(TVKissamestring("ab", "abc", 10), 0);
  EXPECT_EQ(TVKissamestring("x", "y", 0), 1);
  EXPECT_EQ(TVKissamestring("[", "{", 1), 0);
}

TEST(Utilities, CsvLinesAreCutAtCommas) {
  char **fields = nullptr;
  int capacity = 0, count = 0;
  char line[] = "a,, b c,";
  ASSERT_EQ(TVKparsecsv(line, &fields, &capacity, &count), 0);
  ASSERT_EQ(count, 4);
  EXPECT_STREQ(fields[0], "a");
  EXPECT_STREQ(fields[1], "");
  EXPECT_STREQ(fields[2], " b c");
  EXPECT_STREQ(fields[3], "");
  EXPECT_EQ(capacity, 24);
  // A second line is appended; many fields make the array grow.
  std::string many(99, ',');
  ASSERT_EQ(TVKparsecsv(many.data(), &fields, &capacity, &count), 0);
  EXPECT_EQ(count, 104);
  EXPECT_GE(capacity, 104);
  EXPECT_STREQ(fields[103], "");
  EXPECT_STREQ(fields[0], "a");
  EXPECT_EQ(TVKparsecsv(nullptr, &fields, &capacity, &count), TVK_ERROR_NULL_ARGUMENT);
  TVKfree(fields);
  TVKfree(nullptr);
}

TEST(Utilities, SortingMovesValuesAlong) {
  tarvik::Random random(3);
  for (const int n : {0, 1, 2, 15, 16, 17, 100, 5000}) {
    for (const int kind : {0, 1, 2, 3}) {
      std::vector<int> ind(n);
      std::vector<double> val(n);
      for (int k = 0; k < n; ++k) {
        ind[k] = kind == 0   ? random.below(1 << 30)
                 : kind == 1 ? random.below(5)
                 : kind == 2 ? k
                             : std::min(k, n - k);
        val[k] = ind[k] * 0.5;
      }
      std::vector<int> expected = ind;
      std::sort(expected.begin(), expected.end());
      TVKsortIDi(n, ind.data(), val.data());
      EXPECT_EQ(ind, expected) << n << " " << kind;
      for (int k = 0; k < n; ++k) ASSERT_EQ(val[k], ind[k] * 0.5);
    }
  }
}

TEST(Utilities, CleaningMergesAndDropsZeros) {
  int length = 6;
  int ind[] = {4, 1, 4, 2, 1, 4};
  double val[] = {5, 2, -3, 0, -2, 10};
  EXPECT_EQ(TVKclean2(&length, ind, val), 12);
  ASSERT_EQ(length, 1);
  EXPECT_EQ(ind[0], 4);
  EXPECT_EQ(val[0], 12);

  tarvik::Random random(4);
  for (int round = 0; round < 200; ++round) {
    std::map<std::pair<int, int>, double> expected;
    std::vector<int> ind0, ind1;
    std::vector<double> values;
    length = random.below(60);
    for (int k = 0; k < length; ++k) {
      ind0.push_back(random.below(5));
      ind1.push_back(random.below(5));
      values.push_back(random.below(7) - 3);
      expected[{ind0[k], ind1[k]}] += values[k];
    }
    TVKclean3(&length, ind0.data(), ind1.data(), values.data());
    int k = 0;
    for (const auto &[key, value] : expected) {
      if (value == 0) continue;
      ASSERT_LT(k, length);
      EXPECT_EQ(key, std::make_pair(ind0[k], ind1[k]));
      EXPECT_EQ(value, values[k++]);
    }
    EXPECT_EQ(k, length);
  }
  length = 0;
  EXPECT_EQ(TVKclean2(&length, ind, val), 0);
}

}  // namespace
