// What a re-solve costs: CPU time of an optimize call after one bound was tightened, one violated
// row added, or one cost changed, against the first solve of the same model. Budget: 5 % in the
// median. Models come from the files named on the command line, else from generators.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "tarvik.h"

namespace {

double cpuSeconds() {
  timespec now;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

void require(int code, const char *what) {
  if (code == 0) return;
  std::fprintf(stderr, "%s: error %d\n", what, code);
  std::exit(1);
}

struct Lp {
  std::vector<double> obj, lb, ub, rhs, val;
  std::vector<char> sense;
  std::vector<int> beg{0}, ind;
  void row(const std::vector<int> &cols, const std::vector<double> &vals, char s, double b) {
    ind.insert(ind.end(), cols.begin(), cols.end());
    val.insert(val.end(), vals.begin(), vals.end());
    beg.push_back(static_cast<int>(ind.size()));
    sense.push_back(s);
    rhs.push_back(b);
  }
  void cols(int count, double cost, double lower, double upper) {
    obj.insert(obj.end(), count, cost);
    lb.insert(lb.end(), count, lower);
    ub.insert(ub.end(), count, upper);
  }
};

using Maker = std::function<TVKmodel *(TVKenv *)>;

TVKmodel *build(TVKenv *env, const Lp &lp) {
  TVKmodel *model = nullptr;
  require(TVKnewmodel(env, &model, "bench", static_cast<int>(lp.obj.size()), lp.obj.data(),
                      lp.lb.data(), lp.ub.data(), nullptr, nullptr),
          "TVKnewmodel");
  require(TVKaddconstrs(model, static_cast<int>(lp.rhs.size()), static_cast<int>(lp.ind.size()),
                        lp.beg.data(), lp.ind.data(), lp.val.data(), lp.sense.data(), lp.rhs.data(),
                        nullptr),
          "TVKaddconstrs");
  require(TVKupdatemodel(model), "TVKupdatemodel");
  return model;
}

double uniform(std::mt19937 &random, double from, double to) {
  return from + (to - from) * static_cast<double>(random() >> 5) / static_cast<double>(1u << 27);
}

// Supplies and demands with shipping costs.
Lp transport(int sources, int sinks, unsigned seed) {
  std::mt19937 random(seed);
  Lp lp;
  for (int k = 0; k < sources * sinks; ++k)
    lp.cols(1, std::round(uniform(random, 5, 100)), 0, TVK_INFINITY);
  for (int i = 0; i < sources; ++i) {
    std::vector<int> cols;
    for (int j = 0; j < sinks; ++j) cols.push_back(i * sinks + j);
    lp.row(cols, std::vector<double>(cols.size(), 1), '<', 120.0 * sinks / sources);
  }
  for (int j = 0; j < sinks; ++j) {
    std::vector<int> cols;
    for (int i = 0; i < sources; ++i) cols.push_back(i * sinks + j);
    lp.row(cols, std::vector<double>(cols.size(), 1), '>', std::round(uniform(random, 50, 150)));
  }
  return lp;
}

// Products made on shared machines over periods, with stock, overtime and capacities.
Lp production(int products, int machines, int periods, unsigned seed) {
  std::mt19937 random(seed);
  Lp lp;
  const int perPeriod = 2 * products + machines;
  for (int t = 0; t < periods; ++t) {
    for (int p = 0; p < products; ++p) lp.cols(1, uniform(random, 1, 10), 0, 200);
    for (int p = 0; p < products; ++p) lp.cols(1, uniform(random, 0.1, 1), 0, 300);
    lp.cols(machines, uniform(random, 20, 40), 0, TVK_INFINITY);
  }
  for (int t = 0; t < periods; ++t) {
    const int base = t * perPeriod;
    for (int p = 0; p < products; ++p) {
      std::vector<int> cols{base + p, base + products + p};
      std::vector<double> vals{1, -1};
      if (t > 0) {
        cols.push_back(base - perPeriod + products + p);
        vals.push_back(1);
      }
      lp.row(cols, vals, '=', std::round(uniform(random, 0, 100)));
    }
    for (int m = 0; m < machines; ++m) {
      std::vector<int> cols;
      std::vector<double> vals;
      for (int p = 0; p < products; ++p) {
        if (random() % 4 != 0) continue;
        cols.push_back(base + p);
        vals.push_back(uniform(random, 0.5, 3));
      }
      cols.push_back(base + 2 * products + m);
      vals.push_back(-1);
      lp.row(cols, vals, '<', 20.0 * products);
    }
  }
  return lp;
}

// Several commodities on a grid with joint capacities.
Lp multicommodity(int side, int commodities, unsigned seed) {
  std::mt19937 random(seed);
  struct Arc {
    int from, to;
  };
  std::vector<Arc> arcs;
  for (int r = 0; r < side; ++r)
    for (int c = 0; c < side; ++c) {
      const int v = r * side + c;
      if (c + 1 < side) arcs.insert(arcs.end(), {{v, v + 1}, {v + 1, v}});
      if (r + 1 < side) arcs.insert(arcs.end(), {{v, v + side}, {v + side, v}});
    }
  const int numArcs = static_cast<int>(arcs.size()), nodes = side * side;
  Lp lp;
  for (int k = 0; k < commodities; ++k)
    for (int a = 0; a < numArcs; ++a)
      lp.cols(1, std::round(uniform(random, 1, 20)), 0, TVK_INFINITY);
  lp.cols(commodities, 1e4, 0, TVK_INFINITY);  // demand left unserved
  for (int k = 0; k < commodities; ++k) {
    const int source = static_cast<int>(random() % nodes);
    const int sink = (source + 1 + static_cast<int>(random() % (nodes - 1))) % nodes;
    const double demand = std::round(uniform(random, 5, 20));
    std::vector<std::vector<int>> cols(nodes);
    std::vector<std::vector<double>> vals(nodes);
    for (int a = 0; a < numArcs; ++a) {
      cols[arcs[a].from].push_back(k * numArcs + a);
      vals[arcs[a].from].push_back(1);
      cols[arcs[a].to].push_back(k * numArcs + a);
      vals[arcs[a].to].push_back(-1);
    }
    for (const auto &[node, sign] : {std::pair(source, 1.0), std::pair(sink, -1.0)}) {
      cols[node].push_back(commodities * numArcs + k);
      vals[node].push_back(sign);
    }
    for (int v = 0; v < nodes; ++v)
      lp.row(cols[v], vals[v], '=', v == source ? demand : v == sink ? -demand : 0);
  }
  for (int a = 0; a < numArcs; ++a) {
    std::vector<int> cols;
    for (int k = 0; k < commodities; ++k) cols.push_back(k * numArcs + a);
    lp.row(cols, std::vector<double>(cols.size(), 1), '<', std::round(uniform(random, 8, 30)));
  }
  return lp;
}

// Covering rows over random subsets.
Lp covering(int rows, int cols, unsigned seed) {
  std::mt19937 random(seed);
  Lp lp;
  for (int j = 0; j < cols; ++j) lp.cols(1, std::round(uniform(random, 1, 100)), 0, 1);
  for (int i = 0; i < rows; ++i) {
    std::vector<int> members;
    for (int k = 0; k < 12; ++k) members.push_back(static_cast<int>(random() % cols));
    std::sort(members.begin(), members.end());
    members.erase(std::unique(members.begin(), members.end()), members.end());
    lp.row(members, std::vector<double>(members.size(), 1), '>', 1);
  }
  return lp;
}

std::vector<double> values(TVKmodel *model, const char *name, int count) {
  std::vector<double> result(count);
  require(TVKgetdblattrarray(model, name, 0, count, result.data()), name);
  return result;
}

enum Change { kBound, kRow, kCost, kNumChanges };

// Changes the model so that the last optimum is none any more.
void apply(TVKmodel *model, Change change) {
  int n = 0;
  require(TVKgetintattr(model, "NumVars", &n), "NumVars");
  const std::vector<double> x = values(model, "X", n), lb = values(model, "LB", n);
  std::vector<int> inside;
  for (int j = 0; j < n; ++j)
    if (x[j] > lb[j] + 1e-3 * (1 + std::fabs(x[j]))) inside.push_back(j);
  if (change == kCost) {
    const std::vector<double> rc = values(model, "RC", n), obj = values(model, "Obj", n);
    int best = 0;
    for (int j = 0; j < n; ++j)
      if (rc[j] > 0 && (rc[best] <= 0 || rc[j] < rc[best])) best = j;
    require(TVKsetdblattrelement(model, "Obj", best, obj[best] - 1.5 * rc[best] - 1e-3), "Obj");
  } else if (change == kBound && !inside.empty()) {
    const int j = inside[inside.size() / 2];
    const double from = lb[j] <= -1e20 ? x[j] - 1 : lb[j];
    require(TVKsetdblattrelement(model, "UB", j, from + 0.95 * (x[j] - from)), "UB");
  } else if (change == kRow) {
    std::vector<int> cols;
    double activity = 0, least = 0;
    for (std::size_t k = 0; k < inside.size() && cols.size() < 8; k += 1 + inside.size() / 8) {
      const int j = inside[k];
      cols.push_back(j);
      activity += x[j];
      least += lb[j] <= -1e20 ? x[j] - 1 : lb[j];
    }
    const std::vector<double> ones(cols.size(), 1);
    require(TVKaddconstr(model, static_cast<int>(cols.size()), cols.data(), ones.data(), '<',
                         least + 0.95 * (activity - least), nullptr),
            "TVKaddconstr");
  }
}

double optimizeSeconds(TVKmodel *model) {
  const double start = cpuSeconds();
  require(TVKoptimize(model), "TVKoptimize");
  return cpuSeconds() - start;
}

struct Resolve {
  double cold = 0, warm = 0, iterations = 0;
  int status = 0;  // of the first solve where that found no optimum, else of the second
  bool measured = false;
  double share() const { return warm / cold; }
};

Resolve resolve(TVKenv *env, const Maker &make, Change change) {
  Resolve result;
  TVKmodel *model = make(env);
  result.cold = optimizeSeconds(model);
  require(TVKgetintattr(model, "Status", &result.status), "Status");
  if (result.status == TVK_OPTIMAL) {
    apply(model, change);
    result.warm = optimizeSeconds(model);
    result.measured = true;
    require(TVKgetintattr(model, "Status", &result.status), "Status");
    require(TVKgetdblattr(model, "IterCount", &result.iterations), "IterCount");
  }
  TVKfreemodel(model);
  return result;
}

// The median of several, as long as that takes little time: single ones of a few milliseconds are
// off by a tenth.
Resolve typicalResolve(TVKenv *env, const Maker &make, Change change) {
  constexpr std::size_t kMost = 5;
  constexpr double kSeconds = 5;
  std::vector<Resolve> all;
  double seconds = 0;
  do {
    all.push_back(resolve(env, make, change));
    if (!all.back().measured) return all.back();
    seconds += all.back().cold;
  } while (all.size() < kMost && seconds + 2 * all.back().cold < kSeconds);
  std::sort(all.begin(), all.end(),
            [](const Resolve &a, const Resolve &b) { return a.share() < b.share(); });
  return all[all.size() / 2];
}

// Re-solve times as shares of the first solve's; none when the model has no optimum.
std::vector<double> measure(TVKenv *env, const std::string &name, const Maker &make) {
  std::vector<double> shares;
  std::printf("%-24s", name.c_str());
  for (int change = 0; change < kNumChanges; ++change) {
    const Resolve result = typicalResolve(env, make, static_cast<Change>(change));
    if (!result.measured) {
      std::printf(" status %d", result.status);
      break;
    }
    if (change == 0) std::printf(" %10.4f", result.cold);
    std::printf("   %8.5f %6.2f%% %5.0f it st %d", result.warm, 100 * result.share(),
                result.iterations, result.status);
    std::fflush(stdout);
    shares.push_back(result.share());
  }
  std::printf("\n");
  return shares;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

}  // namespace

int main(int argc, char **argv) {
  TVKenv *env = nullptr;
  require(TVKemptyenv(&env), "TVKemptyenv");
  require(TVKsetintparam(env, "OutputFlag", 0), "OutputFlag");
  require(TVKstartenv(env), "TVKstartenv");
  std::vector<std::pair<std::string, Maker>> models;
  for (int k = 1; k < argc; ++k)
    models.emplace_back(std::string(argv[k]).substr(std::string(argv[k]).rfind('/') + 1),
                        [file = argv[k]](TVKenv *e) {
                          TVKmodel *model = nullptr;
                          require(TVKreadmodel(e, file, &model), file);
                          return model;
                        });
  const auto generated = [&](const char *name, Lp lp) {
    models.emplace_back(name, [lp = std::move(lp)](TVKenv *e) { return build(e, lp); });
  };
  if (argc == 1) {
    generated("transport 60x200", transport(60, 200, 1));
    generated("production 40x10x24", production(40, 10, 24, 2));
    generated("multicommodity 8x20", multicommodity(8, 20, 3));
    generated("covering 1000x3000", covering(1000, 3000, 4));
    generated("production 20x30x40", production(20, 30, 40, 5));
  }
  std::printf("%-24s %10s   %s\n", "model", "cold s",
              "s, share and iterations after a bound, a row, a cost changed");
  std::vector<double> all[kNumChanges];
  for (const auto &[name, make] : models) {
    const std::vector<double> shares = measure(env, name, make);
    for (std::size_t k = 0; k < shares.size(); ++k) all[k].push_back(shares[k]);
  }
  std::printf("median:");
  for (const std::vector<double> &shares : all)
    if (!shares.empty()) std::printf("  %.2f%%", 100 * median(shares));
  std::printf("\n");
  TVKfreeenv(env);
  return 0;
}
