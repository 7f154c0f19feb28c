// The command-line tool as a child process: exit codes, messages, files.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

const std::string kTool = TARVIK_BIN_DIR "/tarvik_cl";
const std::string kExamples = TARVIK_SOURCE_DIR "/examples/";

struct ToolRun {
  int exitCode;
  std::string out, err;
};

std::string contents(const std::filesystem::path &path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

class TarvikCl : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = std::filesystem::temp_directory_path() / "tarvik_cl_XXXXXX";
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    directory_ = name;
  }
  void TearDown() override { std::filesystem::remove_all(directory_); }

  std::string path(const std::string &name) const { return directory_ / name; }

  // Runs in the test's own directory, with its output in files.
  ToolRun run(const std::string &arguments) const {
    const std::string command =
        "cd " + directory_.string() + " && " + kTool + " " + arguments + " >out 2>err </dev/null";
    const int status = std::system(command.c_str());
    EXPECT_TRUE(WIFEXITED(status)) << command;
    return {WEXITSTATUS(status), contents(path("out")), contents(path("err"))};
  }

  // A failed run: its exit code, and one line on standard error that holds text.
  void expectFailure(const std::string &arguments, int exitCode, const std::string &text) const {
    const ToolRun failed = run(arguments);
    EXPECT_EQ(failed.exitCode, exitCode) << arguments << "\n" << failed.out;
    EXPECT_NE(failed.err.find(text), std::string::npos) << failed.err;
    EXPECT_EQ(failed.err.find('\n') + 1, failed.err.size()) << failed.err;
  }

  std::filesystem::path directory_;
};

TEST_F(TarvikCl, SolvesAndTellsWhatItDid) {
  const ToolRun done = run(kExamples + "diet.mps");
  EXPECT_EQ(done.exitCode, 0) << done.err;
  EXPECT_EQ(done.err, "");
  EXPECT_NE(done.out.find("Tarvik Optimizer version 11.0.3"), std::string::npos) << done.out;
  EXPECT_NE(done.out.find("\nOptimal objective  7.848437500e+00\n"), std::string::npos) << done.out;
}

TEST_F(TarvikCl, SetsParametersAndWritesResults) {
  const ToolRun done =
      run("Method=0 Presolve=0 LogToConsole=0 LogFile=run.log ResultFile=plan.sol " + kExamples +
          "workshop.lp");
  EXPECT_EQ(done.exitCode, 0) << done.err;
  EXPECT_EQ(done.out, "");
  const std::string log = contents(path("run.log"));
  EXPECT_NE(log.find(", tarvik_cl) logging started"), std::string::npos) << log;
  EXPECT_NE(log.find("Set parameter Method to value 0\n"), std::string::npos) << log;
  EXPECT_NE(log.find("\nOptimal objective  2.675000000e+03\n"), std::string::npos) << log;
  const std::string solution = contents(path("plan.sol"));
  EXPECT_NE(solution.find("# Objective value = 2675"), std::string::npos) << solution;
  EXPECT_NE(solution.find("chairs 40\n"), std::string::npos) << solution;
}

TEST_F(TarvikCl, EndsWellWithAnyStatus) {
  std::ofstream(path("none.lp")) << "Minimize\n x\nSubject To\n c: x >= 2\nBounds\n x <= 1\nEnd\n";
  const ToolRun infeasible = run("none.lp");
  EXPECT_EQ(infeasible.exitCode, 0) << infeasible.err;
  EXPECT_NE(infeasible.out.find("\nInfeasible model\n"), std::string::npos) << infeasible.out;
  const ToolRun stopped = run("TimeLimit=0 Presolve=0 " + kExamples + "shifts.lp");
  EXPECT_EQ(stopped.exitCode, 0) << stopped.err;
  EXPECT_NE(stopped.out.find("\nTime limit reached\n"), std::string::npos) << stopped.out;
}

TEST_F(TarvikCl, ExplainsItself) {
  const ToolRun help = run("--help");
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_NE(help.out.find("Usage: tarvik_cl"), std::string::npos);
  EXPECT_EQ(run("TimeLimit=1 " + kExamples + "diet.mps --help").out, help.out);
  const ToolRun version = run("--version");
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_EQ(version.out.find("Tarvik Optimizer version 11.0.3 build "), 0u) << version.out;
}

TEST_F(TarvikCl, RefusesBadArgumentsInOneLine) {
  const std::string model = kExamples + "diet.mps";
  expectFailure("", 2, "no model file given");
  expectFailure("TimeLimit=1", 2, "no model file given");
  expectFailure("--fast " + model, 2, "unknown option: --fast");
  expectFailure("TimeLimit 5 " + model, 2, "expected Param=value before the model file: TimeLimit");
  expectFailure("=5 " + model, 2, "a setting without a name: =5");
  expectFailure("NoSuchParam=1 " + model, 1, "NoSuchParam");
  expectFailure("Method=9 " + model, 1, "Method=9");
  expectFailure("TimeLimit=soon " + model, 1, "TimeLimit=soon");
}

TEST_F(TarvikCl, RefusesUnreadableFilesInOneLine) {
  expectFailure("missing.mps", 1, "Unable to open file 'missing.mps' for input");
  std::ofstream(path("notes.txt")) << "not a model\n";
  expectFailure("notes.txt", 1, "Unknown file type for file 'notes.txt'");
  std::ofstream(path("broken.lp")) << "Minimize\n 3 x +\nSubject To\n c: x >= >= 2\nEnd\n";
  expectFailure("broken.lp", 1, "broken.lp");
}

// A dense model that takes far longer than the first lines of its log.
void writeSlowModel(const std::string &path) {
  constexpr int kSize = 600;
  std::ofstream lp(path);
  lp << "Minimize\n obj:";
  for (int j = 0; j < kSize; ++j) lp << " + " << 1 + (j * 37) % 101 << " x" << j << "\n";
  lp << "Subject To\n";
  for (int i = 0; i < kSize; ++i) {
    lp << " r" << i << ":";
    for (int j = 0; j < kSize; ++j)
      lp << " + " << 1 + (i * i + j * j * 7 + i * j) % 89 << " x" << j << "\n";
    lp << " >= " << 1 + (i * 13) % 50 << "\n";
  }
  lp << "End\n";
}

TEST_F(TarvikCl, InterruptEndsTheRunGracefully) {
  writeSlowModel(path("slow.lp"));
  const std::string out = path("out");
  const pid_t child = fork();
  if (child == 0) {
    if (!freopen(out.c_str(), "w", stdout)) _exit(99);
    execl(kTool.c_str(), "tarvik_cl", "Presolve=0", path("slow.lp").c_str(), nullptr);
    _exit(98);
  }
  int status = 0;
  pid_t ended = 0;
  while (ended == 0 && contents(out).find("Optimize a model") == std::string::npos) {
    usleep(1000);
    ended = waitpid(child, &status, WNOHANG);
  }
  if (ended == 0) {
    kill(child, SIGINT);
    ASSERT_EQ(waitpid(child, &status, 0), child);
  }
  ASSERT_TRUE(WIFEXITED(status)) << contents(out);
  EXPECT_EQ(WEXITSTATUS(status), 0);
  const std::string log = contents(out);
  EXPECT_NE(log.find("\nSolve interrupted\n"), std::string::npos) << log;
  EXPECT_NE(log.find("\nInterrupt request received\n"), std::string::npos) << log;
}

}  // namespace
