// General constraints: checks, the options text of function constraints, and queueing.
#pragma once

#include "model/edits.h"

namespace tarvik {

// Checks of single options; values that are too small or too large are adjusted with a warning,
// impossible ones are an Error.
void checkFuncPieces(Env &env, int &pieces);
void checkFuncPieceLength(Env &env, double &length);
void checkFuncPieceError(Env &env, double &error);
void checkFuncPieceRatio(Env &env, double &ratio);
void checkFuncNonlinear(Env &env, int &nonlinear);

// Items keyword=value separated by white space; a keyword may be shortened. Null and empty texts
// give the defaults.
FuncOptions parseFuncOptions(const char *text);
// The text of all options that differ from their defaults, as parseFuncOptions() reads it.
std::string formatFuncOptions(const FuncOptions &options);

// Completes the checks that concern variables and name, and queues the constraint.
void addGenConstr(Model &model, GenConstr &&constr, const char *name);
// The same for types 8 to 17, with the checks of options and data.
void addFuncConstr(Model &model, GenConstr &&constr, const char *options, const char *name);

// A list of variables as a caller hands it in.
Vec<int> operandList(int count, const int *vars);

}  // namespace tarvik
