// What the node log prints, and when.
#include "mip/node_log.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <string>

#include "mip/node_queue.h"

namespace tarvik::test {
namespace {

class CollectedLog : public Log {
 public:
  void print(const char *format, ...) override {
    char text[1024];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    all += text;
  }
  std::string take() {
    std::string result;
    result.swap(all);
    return result;
  }
  std::string all;
};

class NodeLogTest : public testing::Test {
 protected:
  NodeLogTest() { options_.displayInterval = 1e6; }
  SolveControl started() {
    SolveControl control;
    control.log = &lines_;
    control.limits.start();
    return control;
  }
  void open(int depth, double bound) {
    auto node = std::make_shared<Node>();
    node->depth = depth;
    node->bound = bound;
    queue_.push(std::move(node));
  }
  static SearchState stateOf(double explored, double unexplored, double incumbent, double bound) {
    SearchState state;
    state.explored = explored;
    state.unexplored = unexplored;
    state.incumbent = incumbent;
    state.bound = bound;
    return state;
  }
  // Depth, infeasibilities and objective of a progress line.
  std::string shown(const SearchState &state) {
    lines_.take();
    log_.nodeLogProgressLine(state, queue_, 7);
    const std::string line = lines_.take();
    const std::size_t begin = line.rfind('\n', line.size() - 2);
    return line.substr(begin == std::string::npos ? 13 : begin + 14, 20);
  }

  CollectedLog lines_;
  SolveControl control_ = started();
  MipOptions options_;
  NodeQueue queue_;
  NodeLog log_{options_, control_};
};

TEST_F(NodeLogTest, TheFirstRegularLineIsAlwaysPrinted) {
  log_.rootSolved();
  log_.nodeLogHeuristicLine(stateOf(0, 0, 5, 1));
  EXPECT_NE(lines_.take().find("H    0     0"), std::string::npos);
  log_.nodeLogLine(stateOf(0, 0, 5, 1), NodeOutcome::Solved, 1, 0, 3);
  EXPECT_NE(lines_.take().find("    0     0    1.00000    0    3"), std::string::npos);
  log_.nodeLogLine(stateOf(1, 2, 5, 1), NodeOutcome::Solved, 1, 0, 3);
  log_.nodeLogProgressLine(stateOf(1, 2, 5, 1), queue_, 3);
  EXPECT_EQ(lines_.take(), "");
  // What comes next is about another kind of bounds and begins with its own header.
  log_.enterCompletion();
  log_.nodeLogLine(stateOf(1, 2, 5, 1), NodeOutcome::Solved, 1, 0, 3);
  EXPECT_NE(lines_.take().find("|   Worst "), std::string::npos);
}

TEST_F(NodeLogTest, ProgressLinesShowOpenNodes) {
  options_.verbose = true;
  // Nothing is open: the bound stands in.
  EXPECT_EQ(shown(stateOf(4, 0, kUserInf, 1.5)), "   1.50000    9    7");
  open(3, 2);
  open(5, 2.5);
  open(8, 9);
  EXPECT_EQ(shown(stateOf(3, 3, 4, 1.5)), "   2.00000    3    7");
  EXPECT_EQ(shown(stateOf(4, 3, 4, 1.5)), "   2.50000    5    7");
  // Never beyond the incumbent or below the bound.
  EXPECT_EQ(shown(stateOf(5, 3, 4, 1.5)), "   4.00000    8    7");
  EXPECT_EQ(shown(stateOf(3, 3, 4, 2.25)), "   2.25000    3    7");
  // Samples are taken anew when there are more open nodes than samples, a hundred at most.
  for (int k = 0; k < 200; ++k) open(20, 3);
  EXPECT_EQ(shown(stateOf(99, 203, 4, 1.5)), "   3.00000   20    7");
  EXPECT_EQ(shown(stateOf(100, 203, 4, 1.5)), "   2.00000    3    7");
}

TEST_F(NodeLogTest, ElapsedTimeIsToldUntilTheTableBegins) {
  log_.nodeLogElapsed("DegenMoves");
  EXPECT_EQ(lines_.take(), "");
  options_.verbose = true;
  log_.nodeLogElapsed("DegenMoves");
  const std::string line = lines_.take();
  EXPECT_EQ(line.find("Total elapsed time = "), 0u);
  EXPECT_NE(line.find("s (DegenMoves)\n"), std::string::npos);
  log_.nodeLogElapsed(nullptr);
  EXPECT_NE(lines_.take().find("s\n"), std::string::npos);
  log_.nodeLogLine(stateOf(0, 0, 5, 1), NodeOutcome::Solved, 1, 0, 3);
  EXPECT_TRUE(log_.tableBegun());
  lines_.take();
  log_.nodeLogElapsed(nullptr);
  EXPECT_EQ(lines_.take(), "");
}

}  // namespace
}  // namespace tarvik::test
