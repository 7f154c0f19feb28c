#include "presolve/presolve_log.h"

#include <algorithm>

namespace tarvik {

void logSparsified(NzIndex removed, NzIndex from, Log &log) {
  if (removed <= 0) return;
  log.print("Sparsify removed %d nonzeros (%.0f%%)\n", static_cast<int>(removed),
            100.0 * static_cast<double>(removed) / static_cast<double>(from));
}

// What presolve achieved, as far as there is a reduced model to speak of.
void logPresolve(const Presolve &presolve, PresolveStatus status, const char *name, Log &log) {
  const PresolveStats &stats = presolve.stats();
  const auto positive = [](int count) { return std::max(0, count); };
  logSparsified(stats.sparsified, stats.sparsifiedFrom, log);
  if (stats.rowsRemoved < 0 || stats.colsRemoved < 0)
    log.print("%s added %d rows and %d columns\n", name, positive(-stats.rowsRemoved),
              positive(-stats.colsRemoved));
  if (stats.rowsRemoved > 0 || stats.colsRemoved > 0)
    log.print("%s removed %d rows and %d columns\n", name, positive(stats.rowsRemoved),
              positive(stats.colsRemoved));
  log.print("%s time: %.2fs\n", name, stats.seconds);
  if (status == PresolveStatus::Solved) log.print("%s: All rows and columns removed\n", name);
  if (status != PresolveStatus::Reduced && status != PresolveStatus::Unchanged) return;
  const LpModel &reduced = presolve.reduced();
  log.print("%sd: %d rows, %d columns, %lu nonzeros\n\n", name, reduced.numRows, reduced.numCols,
            static_cast<unsigned long>(reduced.a.numNz()));
}

}  // namespace tarvik
