// Exported functions: facts of the machine and the build, small utilities of language interfaces.
#include <cstdlib>
#include <utility>

#include "base/sort_together.h"
#include "base/sparse_clean.h"
#include "env/platform.h"
#include "env/revision.h"
#include "tarvik.h"

using namespace tarvik;

namespace {

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Grows the field array as TVKparsecsv promises.
bool growFields(char ***fields, int *capacity) {
  const std::size_t bytes = 2 * static_cast<std::size_t>(*capacity) * sizeof(char *) + 64;
  auto **grown = static_cast<char **>(std::realloc(*fields, bytes));
  if (!grown) return false;
  *fields = grown;
  *capacity = 2 * *capacity + 8;
  return true;
}

double finishClean(int *lenP, const CleanResult &result) {
  *lenP = result.length;
  return result.largest;
}

}  // namespace

extern "C" {

const char *TVKplatform(void) { return platformName(); }
const char *TVKplatformext(void) { return platformExtension(); }
const char *TVKgitrevision(void) { return sourceRevision(); }

int TVKgetcpu(char *buffer) { return buffer ? processorBrand(buffer) : TVK_ERROR_NULL_ARGUMENT; }

int TVKgetdistro(char *buffer) {
  return buffer ? systemDescription(buffer) : TVK_ERROR_NULL_ARGUMENT;
}

int TVKgetcores(void) { return physicalCoreCount(); }

int TVKissamestring(const char *a, const char *b, int n) {
  if (n < 1) return 1;
  if (!a || !b) return a == b;
  for (int k = 0; k < n; ++k) {
    if (lowered(a[k]) != lowered(b[k])) return 0;
    if (a[k] == '\0') return 1;
  }
  return 1;
}

int TVKparsecsv(char *line, char ***fieldsP, int *capacityP, int *countP) {
  if (!line || !fieldsP || !capacityP || !countP) return TVK_ERROR_NULL_ARGUMENT;
  if (*capacityP < 0 || *countP < 0) return TVK_ERROR_INVALID_ARGUMENT;
  if (*capacityP == 0 && !growFields(fieldsP, capacityP)) return TVK_ERROR_OUT_OF_MEMORY;
  char *field = line;
  for (int position = 0;; ++position) {
    // Room for every position, and for fields of earlier lines in front of them.
    while (position >= *capacityP || *countP >= *capacityP)
      if (!growFields(fieldsP, capacityP)) return TVK_ERROR_OUT_OF_MEMORY;
    const char c = line[position];
    if (c != ',' && c != '\0') continue;
    (*fieldsP)[(*countP)++] = field;
    if (c == '\0') return 0;
    line[position] = '\0';
    field = line + position + 1;
  }
}

void TVKsortIDi(int n, int *ind, double *val) {
  if (!ind || !val) return;
  sortTogether(
      n, [&](auto i, auto j) { return ind[i] < ind[j]; },
      [&](auto i, auto j) {
        std::swap(ind[i], ind[j]);
        std::swap(val[i], val[j]);
      });
}

double TVKclean2(int *lenP, int *ind, double *val) {
  if (!lenP || !ind || !val || *lenP <= 0) return 0;
  return finishClean(lenP, cleanPairs(*lenP, ind, val));
}

double TVKclean3(int *lenP, int *ind0, int *ind1, double *val) {
  if (!lenP || !ind0 || !ind1 || !val || *lenP <= 0) return 0;
  return finishClean(lenP, cleanTriplets(*lenP, ind0, ind1, val));
}

}  // extern "C"
