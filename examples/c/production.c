/* A joiner's weekly plan: maximize the profit of chairs, tables and shelves within the hours at
 * saw and bench and the oak at hand; then buy oak and see what its price foretold. */
#include <stdio.h>
#include <stdlib.h>

#include "tarvik.h"

static void check(int code, TVKenv *env) {
  if (code == 0) return;
  fprintf(stderr, "error %d: %s\n", code, TVKgeterrormsg(env));
  exit(1);
}

/* Solves, expecting an optimum, and returns the profit. */
static double solve(TVKenv *env, TVKmodel *model) {
  int status = 0;
  double profit = 0;
  check(TVKoptimize(model), TVKgetenv(model));
  check(TVKgetintattr(model, "Status", &status), TVKgetenv(model));
  if (status != TVK_OPTIMAL) {
    fprintf(stderr, "no optimum: status %d\n", status);
    TVKfreemodel(model);
    TVKfreeenv(env);
    exit(1);
  }
  check(TVKgetdblattr(model, "ObjVal", &profit), TVKgetenv(model));
  return profit;
}

int main(void) {
  const char *pieces[] = {"chairs", "tables", "shelves"};
  const char *resources[] = {"saw", "bench", "oak"};
  const double profits[] = {45, 80, 35};
  const double limits[] = {40, TVK_INFINITY, TVK_INFINITY};
  const double available[] = {80, 180, 400};
  const int begin[] = {0, 3, 6};
  const int piece[] = {0, 1, 2, 0, 1, 2, 0, 1, 2};
  const double use[] = {1, 2, 1, 3, 4, 1, 5, 20, 8};
  const char sense[] = {TVK_LESS_EQUAL, TVK_LESS_EQUAL, TVK_LESS_EQUAL};

  TVKenv *env = NULL;
  TVKmodel *model = NULL;
  double made[3], price[3], before, after;
  int k;

  check(TVKemptyenv(&env), env);
  check(TVKsetintparam(env, "OutputFlag", 0), env);
  check(TVKstartenv(env), env);
  check(TVKnewmodel(env, &model, "workshop", 3, profits, NULL, limits, NULL, pieces), env);
  check(TVKaddconstrs(model, 3, 9, begin, piece, use, sense, available, resources),
        TVKgetenv(model));
  check(TVKsetintattr(model, "ModelSense", TVK_MAXIMIZE), TVKgetenv(model));

  before = solve(env, model);
  check(TVKgetdblattrarray(model, "X", 0, 3, made), TVKgetenv(model));
  check(TVKgetdblattrarray(model, "Pi", 0, 3, price), TVKgetenv(model));
  printf("Profit %.2f\n", before);
  for (k = 0; k < 3; ++k) printf("  %-8s %6.2f\n", pieces[k], made[k]);
  printf("What one unit more is worth\n");
  for (k = 0; k < 3; ++k) printf("  %-8s %6.3f\n", resources[k], price[k]);

  check(TVKsetdblattrelement(model, "RHS", 2, available[2] + 10), TVKgetenv(model));
  after = solve(env, model);
  printf("Ten units of oak more bring %.2f; their price foretold %.2f\n", after - before,
         10 * price[2]);

  TVKfreemodel(model);
  TVKfreeenv(env);
  return 0;
}
