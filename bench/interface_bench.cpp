// Calls that programs make by the million. Budgets: setting a parameter by name 200 ns, reading a
// scalar attribute 100 ns.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "tarvik.h"

namespace {

TVKenv *silentEnv() {
  TVKenv *env = nullptr;
  if (TVKemptyenv(&env) != 0 || TVKsetintparam(env, "OutputFlag", 0) != 0 || TVKstartenv(env) != 0)
    std::abort();
  return env;
}

void setIntParam(benchmark::State &state) {
  TVKenv *env = silentEnv();
  int value = 0;
  for (auto _ : state) benchmark::DoNotOptimize(TVKsetintparam(env, "SimplexPricing", value ^= 1));
  TVKfreeenv(env);
}
BENCHMARK(setIntParam);

void setDblParam(benchmark::State &state) {
  TVKenv *env = silentEnv();
  double value = 1;
  for (auto _ : state) benchmark::DoNotOptimize(TVKsetdblparam(env, "TimeLimit", value += 1));
  TVKfreeenv(env);
}
BENCHMARK(setDblParam);

void setParamFromText(benchmark::State &state) {
  TVKenv *env = silentEnv();
  const char *texts[] = {"0.25", "0.5"};
  int k = 0;
  for (auto _ : state) benchmark::DoNotOptimize(TVKsetparam(env, "mip_gap", texts[k ^= 1]));
  TVKfreeenv(env);
}
BENCHMARK(setParamFromText);

void getIntParam(benchmark::State &state) {
  TVKenv *env = silentEnv();
  int value = 0;
  for (auto _ : state) benchmark::DoNotOptimize(TVKgetintparam(env, "Threads", &value));
  TVKfreeenv(env);
}
BENCHMARK(getIntParam);

}  // namespace
