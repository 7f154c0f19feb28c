// Building and changing models of 10^5 and 10^6 elements: time an element must not grow with the
// size. The peak of the model's memory account is reported per byte of the finished data.
//
// The heap keeps what it has got from the system, so that both sizes work in memory that is mapped
// already: what is measured is the library and the memory, not the kernel's page faults, which the
// smaller size would escape and the larger one would not. Benchmarks named "bare" access memory
// of the same size in the same way and do nothing else: what these lose from one size to the other
// is the machine's.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "attr/attr_access.h"
#include "model/model.h"

namespace {

const bool heapKeepsItsMemory = mallopt(M_MMAP_MAX, 0) && mallopt(M_TRIM_THRESHOLD, -1);

// 0 .. n - 1 in random order.
std::vector<int> shuffled(int n) {
  std::vector<int> order(n);
  std::iota(order.begin(), order.end(), 0);
  std::shuffle(order.begin(), order.end(), std::mt19937(1));
  return order;
}

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

  // n variables and n constraints; column j has its entries in the rows j, j + 1, ... (cyclic) or
  // in rows that are scattered over all.
  void fill(int n, int perColumn, bool scatter = false) {
    std::vector<std::size_t> beg;
    std::vector<int> ind;
    std::vector<double> val(static_cast<std::size_t>(perColumn) * n, 1.5);
    const std::vector<int> order = shuffled(scatter ? n : 0);
    for (int j = 0; j < n; ++j) {
      beg.push_back(ind.size());
      for (int k = 0; k < perColumn; ++k) {
        const int row = scatter ? order[j] + k * (n / perColumn) : j + k;
        ind.push_back(row % n);
      }
    }
    TVKaddconstrs(model, n, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    TVKupdatemodel(model);
    TVKXaddvars(model, n, ind.size(), beg.data(), ind.data(), val.data(), nullptr, nullptr, nullptr,
                nullptr, nullptr);
    TVKupdatemodel(model);
  }

  void addNamed(int n) {
    for (int j = 0; j < n; ++j) {
      const std::string name = "variable_" + std::to_string(j);
      TVKaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', name.c_str());
    }
    TVKupdatemodel(model);
  }

  TVKenv *env = nullptr;
  TVKmodel *model = nullptr;
};

double dataBytes(const tarvik::ModelData &d) {
  return static_cast<double>(d.numVars()) * (3 * 8 + 1 + 8) + d.numConstrs() * 9.0 +
         static_cast<double>(d.a.numNz()) * 12 +
         static_cast<double>(d.varNames.poolBytes() + 8 * d.varNames.size());
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
  f.fill(n, 2);
  const std::vector<int> order = shuffled(n);
  for (auto _ : state) {
    for (int k = 0; k < n; ++k) {
      const int var = order[k];
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
    f.fill(n, 2);
    const double data = dataBytes(f.model->data());
    state.ResumeTiming();
    for (int j = 0; j < n; j += 2) TVKdelvars(f.model, 1, &j);
    TVKupdatemodel(f.model);
    state.PauseTiming();
    state.counters["peak_per_data"] = f.peak() / data;
    state.ResumeTiming();
  }
  report(state, n);
}

// The first lookup builds the index, so every run has its share of that.
void lookUp(benchmark::State &state, bool inOrder) {
  const int n = static_cast<int>(state.range(0));
  Fixture f;
  f.addNamed(n);
  const std::vector<int> order = shuffled(n);
  std::vector<std::string> names;
  for (int k = 0; k < n; ++k) names.push_back("variable_" + std::to_string(inOrder ? k : order[k]));
  for (auto _ : state) {
    state.PauseTiming();
    f.model->dataChanged();
    state.ResumeTiming();
    int index = 0;
    for (const std::string &name : names) TVKgetvarbyname(f.model, name.c_str(), &index);
    benchmark::DoNotOptimize(index);
  }
  state.counters["peak_per_data"] = f.peak() / dataBytes(f.model->data());
  report(state, n);
}
void nameLookupsInOrder(benchmark::State &state) { lookUp(state, true); }
void nameLookupsScattered(benchmark::State &state) { lookUp(state, false); }

// One read in a table like that of a name index, then one in texts that depends on it; the next
// table read depends on the text, as a lookup begins when the one before has returned.
void bareLookups(benchmark::State &state) {
  const int n = static_cast<int>(state.range(0));
  constexpr double kSlotsPerName = 2.8;  // of eight bytes
  const auto slotOf = [](int k) { return static_cast<std::size_t>(kSlotsPerName * k); };
  std::vector<std::int64_t> table(slotOf(n) + 1);
  std::vector<std::int64_t> texts(2 * static_cast<std::size_t>(n));
  const std::vector<int> order = shuffled(n);
  std::mt19937 random(2);
  std::vector<int> slot = order;
  std::shuffle(slot.begin(), slot.end(), random);
  for (int k = 0; k < n; ++k) {
    const int next = order[(k + 1) % n];
    table[slotOf(slot[order[k]])] = 2 * next;
    texts[2 * static_cast<std::size_t>(next)] = slot[next];
  }
  for (auto _ : state) {
    std::int64_t at = slot[order[0]];
    for (int k = 0; k < n; ++k)
      at = texts[static_cast<std::size_t>(table[slotOf(static_cast<int>(at))])];
    benchmark::DoNotOptimize(at);
  }
  report(state, n);
}

struct RowBuffers {
  explicit RowBuffers(int n, std::size_t numNz) : beg(n), ind(numNz), val(numNz) {}
  std::vector<std::size_t> beg;
  std::vector<int> ind;
  std::vector<double> val;
};

constexpr int kPerColumn = 10;

void extractRows(benchmark::State &state, bool scatter, bool single) {
  const int n = static_cast<int>(state.range(0)) / kPerColumn;
  const int step = single ? 1 : n;
  Fixture f;
  f.fill(n, kPerColumn, scatter);
  RowBuffers rows(step, static_cast<std::size_t>(step) * kPerColumn);
  for (auto _ : state) {
    state.PauseTiming();
    f.model->dataChanged();
    state.ResumeTiming();
    std::size_t numNz = 0;
    for (int i = 0; i < n; i += step) {
      TVKXgetconstrs(f.model, &numNz, rows.beg.data(), rows.ind.data(), rows.val.data(), i, step);
      benchmark::DoNotOptimize(rows.val.data());
    }
  }
  state.counters["peak_per_data"] = f.peak() / dataBytes(f.model->data());
  report(state, static_cast<double>(kPerColumn) * n);
}
void rowsOfBand(benchmark::State &state) { extractRows(state, false, false); }
void rowsOfScattered(benchmark::State &state) { extractRows(state, true, false); }
void singleRowsOfBand(benchmark::State &state) { extractRows(state, false, true); }

void scalarRead(benchmark::State &state) {
  Fixture f;
  f.fill(10, 2);
  int value = 0;
  for (auto _ : state) {
    TVKgetintattr(f.model, "NumVars", &value);
    benchmark::DoNotOptimize(value);
  }
}

void elements(benchmark::internal::Benchmark *b) {
  b->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
}
void nonzeros(benchmark::internal::Benchmark *b) {
  b->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond);
}
BENCHMARK(singleVariableAdds)->Apply(elements);
BENCHMARK(coefficientChanges)->Apply(elements);
BENCHMARK(deleteEverySecond)->Apply(elements);
BENCHMARK(nameLookupsInOrder)->Apply(elements);
BENCHMARK(nameLookupsScattered)->Apply(elements);
BENCHMARK(bareLookups)->Apply(elements);
BENCHMARK(rowsOfBand)->Apply(nonzeros);
BENCHMARK(rowsOfScattered)->Apply(nonzeros);
BENCHMARK(singleRowsOfBand)->Apply(nonzeros);
BENCHMARK(scalarRead);

}  // namespace
