// Building and changing models of 10^5 and 10^6 elements: time an element must not grow with the
// size. The peak of the model's memory account is reported per byte of the finished data.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "attr/attr_access.h"
#include "model/model.h"

namespace {

class Fixture {
 public:
  Fixture() {
    TVKemptyenv(&env);
    TVKsetintparam(env, "OutputFlag", 0);
    TVKstartenv(env);
    TVKnewmodel(env, &model, nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr);
  }
  ~Fixture() {
    TVKfreemodel(model);
    TVKfreeenv(env);
  }
  double peak() const { return static_cast<double>(model->env().account().peakBytes()); }

  // Two entries a column in rows j and j + 1 (cyclic).
  void fill(int n, bool named) {
    std::vector<std::string> names;
    std::vector<const char *> pointers;
    for (int j = 0; named && j < n; ++j) names.push_back("variable_" + std::to_string(j));
    for (const std::string &name : names) pointers.push_back(name.c_str());
    std::vector<int> beg, ind;
    std::vector<double> val(2 * static_cast<std::size_t>(n), 1.5);
    for (int j = 0; j < n; ++j) {
      beg.push_back(2 * j);
      ind.push_back(j);
      ind.push_back((j + 1) % n);
    }
    TVKaddconstrs(model, n, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    TVKupdatemodel(model);
    TVKaddvars(model, n, 2 * n, beg.data(), ind.data(), val.data(), nullptr, nullptr, nullptr,
               nullptr, named ? pointers.data() : nullptr);
    TVKupdatemodel(model);
  }

  TVKenv *env = nullptr;
  TVKmodel *model = nullptr;
};

double dataBytes(const tarvik::ModelData &d) {
  return static_cast<double>(d.numVars()) * (3 * 8 + 1 + 8) + d.numConstrs() * 9.0 +
         static_cast<double>(d.a.numNz()) * 12;
}

void report(benchmark::State &state, double elements) {
  state.counters["per_element"] = benchmark::Counter(
      elements, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void singleVariableAdds(benchmark::State &state) {
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    Fixture f;
    TVKaddconstrs(f.model, 10, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    TVKupdatemodel(f.model);
    const double before = f.peak();
    state.ResumeTiming();
    const double val[] = {1, 2};
    for (int j = 0; j < n; ++j) {
      const int ind[] = {j % 10, (j + 1) % 10};
      TVKaddvar(f.model, 2, ind, val, 1, 0, 1, 'C', nullptr);
    }
    TVKupdatemodel(f.model);
    state.PauseTiming();
    state.counters["peak_per_data"] = (f.peak() - before) / dataBytes(f.model->data());
    state.ResumeTiming();
  }
  report(state, n);
}

void coefficientChanges(benchmark::State &state) {
  const int n = static_cast<int>(state.range(0));
  Fixture f;
  f.fill(n, false);
  for (auto _ : state) {
    for (int k = 0; k < n; ++k) {
      const int var = static_cast<int>((static_cast<std::int64_t>(k) * 7919) % n);
      const double value = 1 + k;
      TVKchgcoeffs(f.model, 1, &var, &var, &value);
    }
    TVKupdatemodel(f.model);
  }
  state.counters["peak_per_data"] = f.peak() / (dataBytes(f.model->data()) + 16.0 * n);
  report(state, n);
}

void deleteEverySecond(benchmark::State &state) {
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    Fixture f;
    f.fill(n, false);
    state.ResumeTiming();
    for (int j = 0; j < n; j += 2) TVKdelvars(f.model, 1, &j);
    TVKupdatemodel(f.model);
  }
  report(state, n);
}

void nameLookups(benchmark::State &state) {
  const int n = static_cast<int>(state.range(0));
  Fixture f;
  f.fill(n, true);
  std::vector<std::string> names;
  for (int k = 0; k < n; ++k)
    names.push_back("variable_" + std::to_string((static_cast<std::int64_t>(k) * 7919) % n));
  for (auto _ : state) {
    state.PauseTiming();
    f.model->derived() = {};
    state.ResumeTiming();
    int index = 0;
    for (const std::string &name : names) TVKgetvarbyname(f.model, name.c_str(), &index);
    benchmark::DoNotOptimize(index);
  }
  report(state, n);
}

void rowExtraction(benchmark::State &state) {
  const int n = static_cast<int>(state.range(0)) / 2;
  Fixture f;
  f.fill(n, false);
  std::vector<std::size_t> beg(n);
  std::vector<int> ind(2 * static_cast<std::size_t>(n));
  std::vector<double> val(2 * static_cast<std::size_t>(n));
  for (auto _ : state) {
    std::size_t nz = 0;
    TVKXgetconstrs(f.model, &nz, beg.data(), ind.data(), val.data(), 0, n);
    benchmark::DoNotOptimize(val.data());
  }
  report(state, 2.0 * n);
}

void scalarRead(benchmark::State &state) {
  Fixture f;
  f.fill(10, false);
  int value = 0;
  for (auto _ : state) {
    TVKgetintattr(f.model, "NumVars", &value);
    benchmark::DoNotOptimize(value);
  }
}

BENCHMARK(singleVariableAdds)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(coefficientChanges)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(deleteEverySecond)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(nameLookups)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(rowExtraction)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(scalarRead);

}  // namespace
