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

TVKmodel *smallModel(TVKenv *env) {
  TVKmodel *model = nullptr;
  if (TVKnewmodel(env, &model, "small", 1000, nullptr, nullptr, nullptr, nullptr, nullptr) != 0)
    std::abort();
  return model;
}

void getIntAttr(benchmark::State &state) {
  TVKenv *env = silentEnv();
  TVKmodel *model = smallModel(env);
  int value = 0;
  for (auto _ : state) benchmark::DoNotOptimize(TVKgetintattr(model, "NumVars", &value));
  TVKfreemodel(model);
  TVKfreeenv(env);
}
BENCHMARK(getIntAttr);

void getDblAttr(benchmark::State &state) {
  TVKenv *env = silentEnv();
  TVKmodel *model = smallModel(env);
  double value = 0;
  for (auto _ : state) benchmark::DoNotOptimize(TVKgetdblattr(model, "ObjCon", &value));
  TVKfreemodel(model);
  TVKfreeenv(env);
}
BENCHMARK(getDblAttr);

void getDblAttrElement(benchmark::State &state) {
  TVKenv *env = silentEnv();
  TVKmodel *model = smallModel(env);
  double value = 0;
  int element = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(TVKgetdblattrelement(model, "UB", element, &value));
    element = (element + 1) % 1000;
  }
  TVKfreemodel(model);
  TVKfreeenv(env);
}
BENCHMARK(getDblAttrElement);

}  // namespace
