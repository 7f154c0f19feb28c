// The reductions, one file each. A try... function looks at one row or column and returns true
// when it changed the model (the row or column may then be gone); the undo... function restores
// what its record says; the crush... function of a reduction that removes
// columns takes them out of a row (false: it cannot). Files tell what is reduced, why that is
// right, and how it is undone.
#pragma once

#include "presolve/row_image.h"
#include "presolve/workspace.h"

namespace tarvik::presolve {

// implied_bounds.cpp
// The column has no such bound, or rows imply it even if both its bounds go.
bool lowerImplied(const Workspace &ws, int col);
bool upperImplied(const Workspace &ws, int col);
// The bound is absent or implied, and the column keeps its other one: columns do not become free,
// since one that stays nonbasic at zero would rest on no bound.
bool canOpenAbove(const Workspace &ws, int col);
bool canOpenBelow(const Workspace &ws, int col);
// Removes the bound if it can be.
bool openAbove(Workspace &ws, int col);
bool openBelow(Workspace &ws, int col);

// fixed_col.cpp
enum class FixedAt : int { Lower, Upper, Both, Nothing };
void fixCol(Workspace &ws, int col, double value, FixedAt at);
bool tryFixedOrEmptyCol(Workspace &ws, int col);
void undoFixedCol(RecordReader record, PostsolveState &state);
bool crushFixedCol(RecordReader record, RowImage &image);

// redundant_row.cpp
void dropRow(Workspace &ws, int row);
bool tryRedundantRow(Workspace &ws, int row);
bool dropImpliedRows(Workspace &ws);  // by ws.derived
void undoRedundantRow(RecordReader record, PostsolveState &state);

// singleton_row.cpp
bool trySingletonRow(Workspace &ws, int row);
void undoSingletonRow(RecordReader record, PostsolveState &state);

// forcing_row.cpp
bool tryForcingRow(Workspace &ws, int row);
void undoForcingRow(RecordReader record, PostsolveState &state);

// dual_fixing.cpp
bool tryDualFixing(Workspace &ws, int col);
void undoUnconstrainedCol(RecordReader record, PostsolveState &state);
bool crushUnconstrainedCol(RecordReader record, RowImage &image);

// singleton_col.cpp
bool tryFreeSingletonCol(Workspace &ws, int col);
void undoFreeSingletonCol(RecordReader record, PostsolveState &state);
bool crushFreeSingletonCol(RecordReader record, RowImage &image);
bool trySlackCol(Workspace &ws, int col);
void undoSlackCol(RecordReader record, PostsolveState &state);
bool crushSlackCol(RecordReader record, RowImage &image);

// doubleton.cpp
bool tryDoubletonEquation(Workspace &ws, int row);
void undoDoubleton(RecordReader record, PostsolveState &state);
bool crushDoubleton(RecordReader record, RowImage &image);

// substitution.cpp
// Eliminates the column of an entry by the equation of its row; record and bounds are dealt with
// by the caller.
void eliminate(Workspace &ws, int position);
bool substituteImpliedFree(Workspace &ws);
void undoSubstitution(RecordReader record, PostsolveState &state);
bool crushSubstitution(RecordReader record, RowImage &image);

// parallel_rows.cpp, parallel_cols.cpp
bool mergeParallelRows(Workspace &ws);
void undoParallelRows(RecordReader record, PostsolveState &state);
bool mergeParallelCols(Workspace &ws);
void undoParallelCols(RecordReader record, PostsolveState &state);
bool crushParallelCols(RecordReader record, RowImage &image);

// dependent_rows.cpp
bool removeDependentRows(Workspace &ws);

// sparsify.cpp
bool sparsifyRows(Workspace &ws);
void undoAddedEquation(RecordReader record, PostsolveState &state);

// dominated_col.cpp
bool fixDominatedCols(Workspace &ws);
void undoEquationSide(RecordReader record, PostsolveState &state);

}  // namespace tarvik::presolve
