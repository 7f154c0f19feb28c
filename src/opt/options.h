// Parameters become plain option structs here, in one place; kernels never read parameters.
#pragma once

#include "base/solve_control.h"
#include "env/env.h"
#include "opt/lp_driver.h"
#include "opt/lp_from_model.h"
#include "presolve/presolve.h"
#include "simplex/simplex.h"

namespace tarvik {

SimplexOptions simplexOptions(const Env &env);
PresolveOptions presolveOptions(const Env &env);
// Of any solve of a linear program; who knows the method and the start adds what depends on them.
LpDriverOptions lpDriverOptions(const Env &env, bool logging);

BoundRules boundRules(const Env &env);

// Limits of a solve that starts now, its stop flags and its memory account.
Limits solveLimits(const Env &env);

}  // namespace tarvik
