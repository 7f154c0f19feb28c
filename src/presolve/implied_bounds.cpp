// Column bounds that rows imply, given the bounds of the other columns: such a bound may be
// removed, which leaves the feasible points as they are and needs no undoing. What several rows
// imply together is shown without either bound of the column, so that both may go.

#include "presolve/derived_bounds.h"
#include "presolve/reductions.h"

namespace tarvik::presolve {

bool lowerImplied(const Workspace &ws, int j) {
  const Col &col = ws.model.col(j);
  if (!col.hasLower()) return true;
  for (const Entry &entry : ws.model.colEntries(j))
    if (ws.model.impliedLower(entry) >= col.lower - ws.roundingTol(col.lower)) return true;
  return ws.derived && ws.derived->impliesBound(j, false);
}

bool upperImplied(const Workspace &ws, int j) {
  const Col &col = ws.model.col(j);
  if (!col.hasUpper()) return true;
  for (const Entry &entry : ws.model.colEntries(j))
    if (ws.model.impliedUpper(entry) <= col.upper + ws.roundingTol(col.upper)) return true;
  return ws.derived && ws.derived->impliesBound(j, true);
}

bool canOpenAbove(const Workspace &ws, int j) {
  const Col &col = ws.model.col(j);
  return !col.hasUpper() || (col.hasLower() && upperImplied(ws, j));
}

bool canOpenBelow(const Workspace &ws, int j) {
  const Col &col = ws.model.col(j);
  return !col.hasLower() || (col.hasUpper() && lowerImplied(ws, j));
}

bool openAbove(Workspace &ws, int j) {
  if (!canOpenAbove(ws, j)) return false;
  if (ws.model.col(j).hasUpper()) ws.model.setColUpper(j, kInf);
  return true;
}

bool openBelow(Workspace &ws, int j) {
  if (!canOpenBelow(ws, j)) return false;
  if (ws.model.col(j).hasLower()) ws.model.setColLower(j, -kInf);
  return true;
}

}  // namespace tarvik::presolve
