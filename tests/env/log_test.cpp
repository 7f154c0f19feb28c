// Error messages and the routing of log lines.
#include <vector>

#include "env/env.h"
#include "env_fixture.h"

namespace {

using tarvik_test::collectLog;
using tarvik_test::EnvTest;
using tarvik_test::readFile;

class LogTest : public EnvTest {};

TEST_F(LogTest, MessagesLastUntilTheNextCall) {
  start();
  EXPECT_NE(TVKsetintparam(env_, "nonsense", 1), 0);
  EXPECT_EQ(message(), "Unknown parameter: nonsense");
  EXPECT_EQ(message(), "Unknown parameter: nonsense");
  EXPECT_EQ(TVKsetintparam(env_, "Threads", 1), 0);
  EXPECT_EQ(message(), "");
  const std::string longName(600, 'x');
  EXPECT_NE(TVKsetintparam(env_, longName.c_str(), 1), 0);
  EXPECT_EQ(message(), ("Unknown parameter: " + longName).substr(0, 511));
}

TEST_F(LogTest, TheFirstMessageAndOutOfMemoryWin) {
  start();
  env_->recordError(TVK_ERROR_CALLBACK, false, "first %d", 1);
  env_->recordError(TVK_ERROR_NUMERIC, false, "second");
  EXPECT_EQ(env_->finishCall(TVK_ERROR_NUMERIC), TVK_ERROR_NUMERIC);
  EXPECT_EQ(message(), "first 1");
  env_->recordError(TVK_ERROR_NUMERIC, true, "third");
  EXPECT_EQ(message(), "third");
  env_->holdErrors(true);
  env_->recordError(TVK_ERROR_NUMERIC, true, "fourth");
  env_->clearErrorAtEntry();
  env_->finishCall(0);
  EXPECT_EQ(message(), "third");
  EXPECT_EQ(env_->lastErrorCode(), TVK_ERROR_NUMERIC);
  env_->finishCall(TVK_ERROR_OUT_OF_MEMORY);
  EXPECT_EQ(message(), "Out of memory");
  env_->holdErrors(false);
  env_->clearErrorAtEntry();
  for (const auto &[code, text] : {std::pair{10015, "Error number 10015"},
                                   {77, "Error number 77"},
                                   {10016, "Not available for MIP models"}}) {
    env_->clearErrorAtEntry();
    EXPECT_EQ(env_->finishCall(code), code);
    EXPECT_EQ(message(), text);
  }
}

TEST_F(LogTest, LinesAreCollectedAcrossCalls) {
  start();
  TVKmsg(env_, "abc");
  EXPECT_EQ(takeLog(), "");
  TVKmsg(env_, "def\nghi\n\n");
  EXPECT_EQ(takeLog(), "abcdef\nghi\n\n");
  TVKmsg(env_, "100%% of %s and %n stay %d\n");
  EXPECT_EQ(takeLog(), "100% of %s and %n stay %d\n");
  TVKmsg(env_, nullptr);
  TVKmsg(nullptr, "x");
}

int collectPieces(const char *msg, void *data) {
  static_cast<std::vector<std::string> *>(data)->emplace_back(msg);
  return 0;
}

TEST_F(LogTest, LongLinesAreCutIntoPieces) {
  start();
  std::vector<std::string> pieces;
  ASSERT_EQ(TVKsetlogcallbackfuncenv(env_, collectPieces, &pieces), 0);
  TVKmsg(env_, std::string(1500, 'a').c_str());
  ASSERT_EQ(pieces.size(), 2u);
  EXPECT_EQ(pieces[0], std::string(511, 'a'));
  EXPECT_EQ(pieces[1], std::string(511, 'a'));
  pieces.clear();
  TVKmsg(env_, "\n");
  TVKmsg(env_, (std::string(600, 'b') + "\n").c_str());
  ASSERT_EQ(pieces.size(), 3u);
  EXPECT_EQ(pieces[1], std::string(511, 'b'));
  EXPECT_EQ(pieces[2], std::string(89, 'b') + "\n");
  pieces.clear();
  TVKmsg(env_, (std::string(1500, 'c') + "\n").c_str());
  ASSERT_EQ(TVKsetstrparam(env_, "NodefileDir", std::string(1500, 'd').c_str()), 0);
  TVKmsg(env_, "next\n");
  ASSERT_FALSE(pieces.empty());
  EXPECT_EQ(pieces.back(), "next\n") << "a cut line goes on in the next one";
}

TEST_F(LogTest, DestinationsFollowTheParameters) {
  start();
  ASSERT_EQ(TVKsetstrparam(env_, "LogFile", "run.log"), 0);
  ASSERT_EQ(TVKsetintparam(env_, "LogToConsole", 1), 0);
  takeLog();
  ::testing::internal::CaptureStdout();
  TVKmsg(env_, "one\n");
  TVKmsg(env_, "dropped when the destinations change");
  TVKsetintparam(env_, "LogToConsole", 0);
  TVKmsg(env_, "two\n");
  TVKsetintparam(env_, "OutputFlag", 0);
  TVKmsg(env_, "three\n");
  EXPECT_FALSE(env_->logReachesAnybody());
  TVKsetintparam(env_, "OutputFlag", 1);
  EXPECT_TRUE(env_->logReachesAnybody());
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "one\n");
  EXPECT_EQ(
      takeLog(),
      "one\nSet parameter LogToConsole to value 0\ntwo\nSet parameter OutputFlag to value 1\n");
  const std::string file = readFile("run.log");
  EXPECT_NE(file.find("\nTarvik 11.0.3 ("), std::string::npos);
  EXPECT_NE(file.find(std::string(TVKplatform()) + TVKplatformext() + ") logging started "),
            std::string::npos);
  EXPECT_NE(file.find("one\nSet parameter LogToConsole to value 0\ntwo\n"), std::string::npos);
  EXPECT_EQ(file.find("three"), std::string::npos);
}

TEST_F(LogTest, LogFileIsSwitchedWhole) {
  start();
  EXPECT_EQ(TVKsetstrparam(env_, "LogFile", "first.log"), 0);
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(TVKsetstrparam(env_, "LogFile", "no/such/directory/x.log"), TVK_ERROR_FILE_WRITE);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "Warning: Failed to open log file 'no/such/directory/x.log'\n");
  EXPECT_EQ(message(), "Unable to write file");
  EXPECT_EQ(strParam("LogFile"), "first.log");
  TVKmsg(env_, "still here\n");
  EXPECT_EQ(TVKsetstrparam(env_, "LogFile", "second.log"), 0);
  EXPECT_EQ(TVKsetstrparam(env_, "LogFile", ""), 0);
  TVKmsg(env_, "nowhere\n");
  const std::string first = readFile("first.log"), second = readFile("second.log");
  EXPECT_NE(first.find("still here\n"), std::string::npos);
  EXPECT_NE(second.find("Set parameter LogFile to value \"second.log\"\n"), std::string::npos);
  EXPECT_EQ(second.find("nowhere"), std::string::npos);
  // Appended to, not begun anew.
  EXPECT_EQ(TVKsetstrparam(env_, "LogFile", "first.log"), 0);
  EXPECT_EQ(readFile("first.log").compare(0, first.size(), first), 0);
}

TEST_F(LogTest, AMissingLogDirectoryOnlyWarnsAtTheStart) {
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(TVKloadenv(&env_, "no/such/directory/x.log"), 0);
  const std::string out = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(out.find("Warning: Failed to open log file 'no/such/directory/x.log'\n"), 0u);
  EXPECT_EQ(out.find("Warning", 1), std::string::npos);
}

TEST_F(LogTest, MessagesBeforeTheStartGoToStandardError) {
  create();
  ::testing::internal::CaptureStderr();
  TVKmsg(env_, "early\n");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Environment not started\n");
  EXPECT_EQ(takeLog(), "");
}

struct Nested {
  TVKenv *env;
  std::string text;
  int depth = 0;
};

int logAgain(const char *msg, void *data) {
  auto *nested = static_cast<Nested *>(data);
  nested->text += msg;
  if (nested->depth++ == 0) TVKsetintparam(nested->env, "Threads", 1);
  return 0;
}

TEST_F(LogTest, ALogCallbackMayLog) {
  start();
  Nested nested{env_, ""};
  ASSERT_EQ(TVKsetlogcallbackfuncenv(env_, logAgain, &nested), 0);
  TVKmsg(env_, "one\ntwo\n");
  EXPECT_EQ(nested.text.find("one\n"), 0u);
  EXPECT_NE(nested.text.find("two\n"), std::string::npos);
  EXPECT_NE(nested.text.find("Set parameter Threads to value 1\n"), std::string::npos);
}

}  // namespace
