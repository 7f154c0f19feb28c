#include "opt/previous_solve.h"

#include <cstring>

#include "tarvik.h"

namespace tarvik {

namespace {

// Unchanged variables: a share of all, and so many more.
constexpr double kShare = 0.5, kShareAfterDiscreteChanges = 0.9, kFloor = 1000;

std::uint64_t mixed(std::uint64_t hash, double value) {
  std::uint64_t word;
  std::memcpy(&word, &value, sizeof word);
  hash = (hash ^ word) * 0x9e3779b97f4a7c15u;
  return hash ^ (hash >> 32);
}

}  // namespace

Vec<std::uint32_t> variableMarks(const ModelData &data) {
  Vec<std::uint32_t> marks(data.numVars());
  for (int j = 0; j < data.numVars(); ++j) {
    std::uint64_t hash = static_cast<unsigned char>(data.vtype[j]);
    for (const double value : {data.obj[j], data.lb[j], data.ub[j]}) hash = mixed(hash, value);
    for (NzIndex k = data.a.start[j]; k < data.a.start[j + 1]; ++k)
      hash = mixed(hash, data.a.value[k]);
    marks[j] = static_cast<std::uint32_t>(hash);
  }
  return marks;
}

bool mostlyUnchanged(const ModelData &data, const Vec<std::uint32_t> &marksThen) {
  const int n = data.numVars();
  if (static_cast<int>(marksThen.size()) != n) return false;
  const Vec<std::uint32_t> marks = variableMarks(data);
  int unchanged = 0;
  bool discreteChanges = false;
  for (int j = 0; j < n; ++j) {
    if (marks[j] == marksThen[j])
      ++unchanged;
    else if (data.vtype[j] != TVK_CONTINUOUS)
      discreteChanges = true;
  }
  return unchanged >= (discreteChanges ? kShareAfterDiscreteChanges : kShare) * n + kFloor;
}

}  // namespace tarvik
