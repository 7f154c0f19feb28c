#include "presolve/presolve_log.h"

#include <algorithm>

namespace tarvik {

// What presolve achieved, as far as there is a reduced model to speak of.
void logPresolve(const Presolve &presolve, PresolveStatus status, const char *name, Log &log) {
  const PresolveStats &stats = presolve.stats();
  const auto positive = [](int count) { return std::max(0, count); };
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
