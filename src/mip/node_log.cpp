#include "mip/node_log.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "mip/gap_rules.h"
#include "mip/node_queue.h"

namespace tarvik {

namespace {

constexpr const char *kTitle =
    "    Nodes    |    Current Node    |     Objective Bounds      |     Work\n";
constexpr const char *kPoolTitle =
    "    Nodes    |    Current Node    |      Pool Obj. Bounds     |     Work\n"
    "             |                    |   Worst                   |\n";
constexpr const char *kColumns =
    " Expl Unexpl |  Obj  Depth IntInf | Incumbent    BestBd   Gap | It/Node Time\n";

FieldText plainText(const char *text) {
  FieldText field;
  std::snprintf(field.text, sizeof field.text, "%s", text);
  return field;
}

FieldText incumbentField(const MipOptions &options, double value, int width) {
  return value >= kUserInf ? plainText("-") : formatField(options.objSense * value, width);
}

FieldText boundField(const MipOptions &options, double value) {
  if (value >= kUserInf) return plainText("infeasible");
  if (value <= -kUserInf) return plainText("-");
  return formatField(options.objSense * value, 10);
}

FieldText gapField(const SearchState &state) {
  FieldText field;
  const double gap = mipRelativeGap(1, state.bound, state.incumbent);
  if (gap >= 100) return plainText("-");
  const char *format = gap >= 0.995 ? "%.0f%%" : gap >= 0.0995 ? "%.1f%%" : "%.2f%%";
  std::snprintf(field.text, sizeof field.text, format, 100 * gap);
  return field;
}

FieldText perNodeField(const SearchState &state, const char *none) {
  if (state.explored <= 0) return plainText(none);
  FieldText field;
  const double value = (state.iterations - state.rootIterations) / state.explored;
  std::snprintf(field.text, sizeof field.text, value >= 99.5 ? "%.0f" : "%.1f", value);
  return field;
}

FieldText timeField(double seconds) {
  FieldText field;
  std::snprintf(field.text, sizeof field.text, "%.0fs", std::floor(seconds));
  return field;
}

}  // namespace

FieldText formatField(double value, int width) {
  FieldText field;
  value += 0.0;  // the sense of the model makes negative zeros
  const auto print = [&](const char *format, int decimals, double shown) {
    return std::snprintf(field.text, sizeof field.text, format, std::max(decimals, 0), shown);
  };
  const int exponent = value == 0 ? 0 : static_cast<int>(std::log10(std::fabs(value)));
  if (exponent > 6) {
    if (print("%.*e", width - 7, value) < width) print("%.*e", width - 6, value);
    return field;
  }
  int decimals = width - 5;
  if (value != 0 && exponent > 2)
    decimals = value > 0 ? width - 2 - exponent : width - 3 - exponent;
  const double power = std::pow(10.0, decimals);
  const double rounded = std::round(value * power) / power;
  const int digits = value == 0 ? 1 : exponent + 1;
  if (digits > 3)
    print("%.*f", rounded > 0 ? width - 1 - digits : width - digits - 2, rounded);
  else
    print("%.*f", width - 5, rounded);
  return field;
}

bool NodeLog::due() const {
  if (options_.subMip || !control_.log->enabled()) return false;
  if (options_.verbose) return true;
  const double interval = options_.displayInterval;
  return std::floor(control_.limits.seconds() / interval) != std::floor(last_ / interval);
}

void NodeLog::printed() { last_ = control_.limits.seconds(); }
void NodeLog::rootSolved() {
  rootSolved_ = true;
  printed();
}

void NodeLog::enterCompletion() {
  completing_ = true;
  headerPrinted_ = false;
  last_ = -1;
}

void NodeLog::nodeLogHeader() {
  if (headerPrinted_) return;
  headerPrinted_ = true;
  control_.log->print("\n%s%s\n", completing_ ? kPoolTitle : kTitle, kColumns);
}

void NodeLog::line(const SearchState &state, const char *objective, int depth,
                   const char *infeasible) {
  nodeLogHeader();
  control_.log->print(" %5.0f %5.0f %10s %4d %4s %10s %10s %6s %5s %5s\n", state.explored,
                      state.unexplored, objective, depth, infeasible,
                      incumbentField(options_, state.incumbent, 10).text,
                      boundField(options_, state.bound).text, gapField(state).text,
                      perNodeField(state, "-").text, timeField(control_.limits.seconds()).text);
  linePrinted_ = true;
  printed();
}

void NodeLog::nodeLogLine(const SearchState &state, NodeOutcome outcome, double objective,
                          int depth, int infeasibilities) {
  if (options_.subMip || !control_.log->enabled()) return;
  if (linePrinted_ && !due()) return;
  const char *text = nullptr;
  switch (outcome) {
    case NodeOutcome::Solved:
    case NodeOutcome::NotEvaluated:
      break;
    case NodeOutcome::Postponed:
      text = "postponed";
      break;
    case NodeOutcome::Infeasible:
      text = "infeasible";
      break;
    case NodeOutcome::Cutoff:
      // Without an incumbent the cutoff was the caller's.
      text = state.incumbent >= 1e97 ? "infeasible" : "cutoff";
      break;
    case NodeOutcome::Exploded:
      text = "exploded";
      break;
    case NodeOutcome::Unbounded:
      text = "unbounded";
      break;
  }
  char count[16] = "-";
  if (outcome == NodeOutcome::Solved)
    std::snprintf(count, sizeof count, "%3d", infeasibilities);
  else if (outcome != NodeOutcome::NotEvaluated)
    count[0] = '\0';
  line(state, text ? text : formatField(options_.objSense * objective, 10).text, depth, count);
}

void NodeLog::nodeLogIncumbentLine(const SearchState &state, int depth) {
  if (options_.subMip || completing_ || !control_.log->enabled()) return;
  nodeLogHeader();
  control_.log->print("*%5.0f %5.0f %10s %4d    %12s %10s %6s %5s %5s\n", state.explored,
                      state.unexplored, "", depth,
                      incumbentField(options_, state.incumbent, 12).text,
                      boundField(options_, state.bound).text, gapField(state).text,
                      perNodeField(state, "-").text, timeField(control_.limits.seconds()).text);
  printed();
}

void NodeLog::nodeLogHeuristicLine(const SearchState &state) {
  if (options_.subMip || completing_ || !control_.log->enabled()) return;
  if (!rootSolved_) {
    control_.log->print("Found heuristic solution: objective %s\n",
                        incumbentField(options_, state.incumbent, 12).text);
    return;
  }
  nodeLogHeader();
  control_.log->print("H%5.0f %5.0f                    %12s %10s %6s %5s %5s\n", state.explored,
                      state.unexplored, incumbentField(options_, state.incumbent, 12).text,
                      boundField(options_, state.bound).text, gapField(state).text,
                      perNodeField(state, " -").text, timeField(control_.limits.seconds()).text);
  printed();
}

void NodeLog::takeSamples(const NodeQueue &queue) {
  samples_.clear();
  for (const Node *node : queue.someNodes(kMostSamples))
    samples_.push_back({node->depth, node->bound});
}

void NodeLog::nodeLogProgressLine(const SearchState &state, const NodeQueue &queue,
                                  int infeasibilities) {
  if (!due()) return;
  if (state.unexplored > static_cast<double>(samples_.size())) takeSamples(queue);
  Sample shown{9, state.bound};
  if (!samples_.empty()) {
    shown = samples_[static_cast<std::size_t>(
        std::fmod(state.explored, static_cast<double>(samples_.size())))];
    shown.objective = std::min(std::max(shown.objective, state.bound), state.incumbent);
  }
  char count[16];
  std::snprintf(count, sizeof count, "%3d", infeasibilities);
  line(state, formatField(options_.objSense * shown.objective, 10).text, shown.depth, count);
}

void NodeLog::nodeLogElapsed(const char *phase) {
  if (headerPrinted_ || !due()) return;
  const double seconds = control_.limits.seconds();
  if (phase)
    control_.log->print("Total elapsed time = %.2fs (%s)\n", seconds, phase);
  else
    control_.log->print("Total elapsed time = %.2fs\n", seconds);
  printed();
}

}  // namespace tarvik
