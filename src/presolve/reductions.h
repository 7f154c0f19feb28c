// The reductions, one file each. A try... function looks at one row or column and returns true
// when it changed the model (the row or column may then be gone); the undo... function restores
// what its record says. Files tell what is reduced, why that is right, and how it is undone.
#pragma once

#include "presolve/workspace.h"

namespace tarvik::presolve {

// implied_bounds.cpp
// The column has no such bound, or a row implies it.
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

// redundant_row.cpp
void dropRow(Workspace &ws, int row);
bool tryRedundantRow(Workspace &ws, int row);
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

// singleton_col.cpp
bool tryFreeSingletonCol(Workspace &ws, int col);
void undoFreeSingletonCol(RecordReader record, PostsolveState &state);
bool trySlackCol(Workspace &ws, int col);
void undoSlackCol(RecordReader record, PostsolveState &state);

// doubleton.cpp
bool tryDoubletonEquation(Workspace &ws, int row);
void undoDoubleton(RecordReader record, PostsolveState &state);

// substitution.cpp
// Eliminates the column of an entry by the equation of its row; record and bounds are dealt with
// by the caller.
void eliminate(Workspace &ws, int position);
bool substituteImpliedFree(Workspace &ws);
void undoSubstitution(RecordReader record, PostsolveState &state);

// parallel_rows.cpp, parallel_cols.cpp
bool mergeParallelRows(Workspace &ws);
void undoParallelRows(RecordReader record, PostsolveState &state);
bool mergeParallelCols(Workspace &ws);
void undoParallelCols(RecordReader record, PostsolveState &state);

// dominated_col.cpp
bool fixDominatedCols(Workspace &ws);
void undoEquationSide(RecordReader record, PostsolveState &state);

}  // namespace tarvik::presolve
